#pragma once

#include "CMEditDlg.h"
#include "CModuleTree.h"
#include "DialogControls.h"
#include "EditorFixture.h"
#include "ViewInput.h"

#include <QPushButton>
#include <QTest>
#include <QTreeWidgetItem>

// The child of parent named text; null when there is none.
inline QTreeWidgetItem* Child(QTreeWidgetItem* parent, const QString& text) {
    for (int i = 0; parent && i < parent->childCount(); ++i) {
        if (parent->child(i)->text(0) == text) {
            return parent->child(i);
        }
    }
    return nullptr;
}

// The editor on the fixture's database copy, shown and active.
class EditorWindowFixture : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        openEditor();
    }
    void TearDown() override {
        m_dialog.reset();
        EditorFixture::TearDown();
    }
    void openEditor() {
        m_dialog = std::make_unique<CMEditDlg>();
        m_dialog->SetDbPath(databasePath());
        m_dialog->resize(900, 600);
        ASSERT_TRUE(ShowActive(*m_dialog));
    }
    CModuleTree& tree() { return m_dialog->Tree(); }
    // The item at the path of names below the root.
    QTreeWidgetItem* itemAt(const QStringList& path) {
        QTreeWidgetItem* node = tree().topLevelItem(0);
        for (const QString& name : path) {
            node = Child(node, name);
        }
        return node;
    }
    // A type of the NV-100 series, or one of its catalogs, from the loaded levels.
    QTreeWidgetItem* item(const QString& type, const QString& catalog = QString()) {
        return catalog.isEmpty() ? itemAt({kNorvale, kSeries, type})
                                 : tree().FindItem(kNorvale, kSeries, type, catalog);
    }
    // Clicks an item of the tree as a user does.
    void click(QTreeWidgetItem* target) {
        ASSERT_NE(target, nullptr);
        tree().scrollToItem(target);
        QTest::mouseClick(tree().viewport(), Qt::LeftButton, {},
                          tree().visualItemRect(target).center());
    }
    QPushButton* button(int id) { return FindControl<QPushButton>(m_dialog.get(), id); }
    // Clicks a button of the editor, which must be enabled.
    void clickButton(int id) {
        QPushButton* target = button(id);
        ASSERT_NE(target, nullptr);
        ASSERT_TRUE(target->isEnabled()) << id;
        QTest::mouseClick(target, Qt::LeftButton);
    }

    std::unique_ptr<CMEditDlg> m_dialog;
};
