#include "ViewInput.h"

#include "MenuChooser.h"

#include <QApplication>
#include <QListWidget>
#include <QTest>

#include <gtest/gtest.h>

QPoint CellCentre(QAbstractItemView& view, int row, int col) {
    const QModelIndex index = view.model()->index(row - 1, col - 1);
    view.scrollTo(index);
    return view.visualRect(index).center();
}

void ClickCell(QAbstractItemView& view, int row, int col, Qt::KeyboardModifiers modifiers) {
    QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, CellCentre(view, row, col));
}

void TypeIntoCell(QAbstractItemView& view, int row, int col, const QString& text) {
    ClickCell(view, row, col);
    QTest::keyClick(&view, Qt::Key_F2);
    QWidget* editor = QApplication::focusWidget();
    ASSERT_NE(editor, nullptr);
    ASSERT_NE(editor, &view);
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty()) {
        QTest::keyClick(editor, Qt::Key_Delete);
    } else {
        QTest::keyClicks(editor, text);
    }
    QTest::keyClick(editor, Qt::Key_Return);
    QCoreApplication::processEvents();
}

void ChooseCellMenuEntry(QWidget& window, QAbstractItemView& view, int row, int col,
                         const QString& entry) {
    const QPoint pos = view.viewport()->mapTo(&window, CellCentre(view, row, col));
    EXPECT_TRUE(ChooseMenuEntry(entry, [&] {
        QTest::mouseClick(window.windowHandle(), Qt::RightButton, {}, pos);
    })) << qPrintable(entry);
}

void ClickItem(QListWidget& list, int row) {
    list.doItemsLayout();
    QListWidgetItem* item = list.item(row);
    ASSERT_NE(item, nullptr) << row;
    list.scrollToItem(item);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(item).center());
}

void DoubleClickItem(QListWidget& list, int row) {
    ClickItem(list, row);
    // The second click of the pair, which the system reports as a double click.
    QTest::mouseDClick(list.viewport(), Qt::LeftButton, {},
                       list.visualItemRect(list.item(row)).center());
}

bool Activate(QWidget& window) {
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
}

bool ShowActive(QWidget& window) {
    window.show();
    return Activate(window);
}
