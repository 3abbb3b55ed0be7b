#include "GridFixture.h"

#include "AttribGridModel.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>

using AttribGridTest = GridFixture;

TEST_F(AttribGridTest, EditedValuesAreSavedTrimmedIntoTheRowLeft) {
    makeGrids();
    loadModule();
    TypeIntoCell(*m_attrib, 1, 1, QStringLiteral("  Input Z  "));
    EXPECT_TRUE(m_attrib->IsModified());
    // Shown as typed, untrimmed, until the row is left.
    EXPECT_EQ(m_attrib->CellText(1, 1), QStringLiteral("  Input Z  "));
    QString value;
    EXPECT_TRUE(m_module.GetAttrValue(QStringLiteral("DESC"), value, 1));
    EXPECT_EQ(value, QStringLiteral("Input A"));

    ClickCell(*m_term, 2, 2);
    EXPECT_TRUE(m_module.GetAttrValue(QStringLiteral("DESC"), value, 1));
    EXPECT_EQ(value, QStringLiteral("Input Z"));
    // The new row's block and values are shown, and the flag starts over.
    EXPECT_EQ(m_attrib->CellText(0, 1), QStringLiteral("FUSE_"));
    EXPECT_EQ(m_attrib->CellText(1, 1), QStringLiteral("F1"));
    EXPECT_EQ(m_attrib->CellText(1, 0), QStringLiteral("Value"));
    EXPECT_FALSE(m_attrib->IsModified());

    // A block with no attributes: captions and no columns; the next save writes nothing.
    const QString before = m_module.GetTermSpecial(3);
    ClickCell(*m_term, 3, 2);
    EXPECT_EQ(m_attrib->model()->columnCount(), 0);
    EXPECT_EQ(m_attrib->model()->rowCount(), 1);
    ClickCell(*m_term, 1, 2);
    EXPECT_EQ(m_module.GetTermSpecial(3), before);
}

TEST_F(AttribGridTest, TheOpenEditorsValueIsSavedAndTheSkipFlagHoldsOneChange) {
    makeGrids();
    loadModule();
    ClickCell(*m_attrib, 1, 2);
    QTest::keyClick(m_attrib, Qt::Key_F2);
    QWidget* editor = QApplication::focusWidget();
    ASSERT_NE(editor, m_attrib);
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(editor, QStringLiteral("9"));
    // The editor's flush before a save: row 1 saved and shown again, editor still open.
    const _rowchange flush{1, 1, true};
    m_attrib->OnTermRowChange(1, &flush);
    QString value;
    EXPECT_TRUE(m_module.GetAttrValue(QStringLiteral("TERM_"), value, 1));
    EXPECT_EQ(value, QStringLiteral("9"));

    // Skipped once: the values shown are not saved into row 2, then saving resumes.
    m_attrib->SetSkipSave(true);
    const _rowchange skipped{2, 1, true};
    m_attrib->OnTermRowChange(1, &skipped);
    EXPECT_FALSE(m_module.GetAttrValue(QStringLiteral("TERM_"), value, 2));
    m_attrib->OnTermRowChange(1, &skipped);
    EXPECT_TRUE(m_module.GetAttrValue(QStringLiteral("TERM_"), value, 2));
    // A null change does nothing at all.
    m_attrib->OnTermRowChange(2, nullptr);
    EXPECT_EQ(m_attrib->CellText(0, 1), QStringLiteral("DESC"));
}

TEST_F(AttribGridTest, CtrlZAndCtrlYUndoAndRedoValueEdits) {
    makeGrids();
    loadModule();
    QSignalSpy notices(m_attrib, &CAttribGridWnd::modifiedFlagChanged);
    TypeIntoCell(*m_attrib, 1, 1, QStringLiteral("First"));
    TypeIntoCell(*m_attrib, 1, 1, QStringLiteral("Second"));
    pressKey(*m_attrib, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(m_attrib->CellText(1, 1), QStringLiteral("First"));
    pressKey(*m_attrib, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(m_attrib->CellText(1, 1), QStringLiteral("Input A"));
    pressKey(*m_attrib, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(m_attrib->CellText(1, 1), QStringLiteral("First"));
    EXPECT_TRUE(m_attrib->IsModified());
    settle();
    EXPECT_GE(notices.count(), 1);
    // What was undone in the attribute grid leaves the terminal grid's steps alone.
    EXPECT_FALSE(m_term->UndoStack().canUndo());
}

TEST_F(AttribGridTest, ColumnWidthsAreRememberedForColumnsShownLater) {
    makeGrids();
    loadModule();
    m_attrib->SetColWidth(2, 77);
    m_attrib->SetHeaderHeight(33);
    m_window.reset();
    EXPECT_EQ(storedLayout("AttribGrid", "ColWidth2"), 77u);
    // No offset in this grid's stored header height.
    EXPECT_EQ(storedLayout("AttribGrid", "RowHeight0"), 33u);

    // The new grid has no columns when it reads the layout; row 1's block brings two.
    makeGrids();
    EXPECT_EQ(m_attrib->model()->columnCount(), 0);
    loadModule();
    ASSERT_EQ(m_attrib->model()->columnCount(), 2);
    EXPECT_EQ(m_attrib->columnWidth(1), 77);
}
