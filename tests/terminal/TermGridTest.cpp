#include "GridFixture.h"

#include "StandaloneHost.h"

#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLocale>
#include <QSignalSpy>
#include <QTest>

using TermGridTest = GridFixture;

TEST_F(TermGridTest, LoadingShowsTheRowsUnmodifiedAndOnlyAMoveToAnotherRowTellsARowChange) {
    makeGrids();
    QSignalSpy notices(m_term, &CTermGridWnd::modifiedFlagChanged);
    loadModule();
    ASSERT_EQ(m_term->model()->rowCount(), 3);
    // hp?fuse is found through the search form of VP2FUSE and written back as HP?FUSE.
    EXPECT_EQ(m_module.GetTermText(2), QStringLiteral("HP?FUSE"));
    EXPECT_EQ(m_term->GetCellValue(2, 1), QStringLiteral("2"));
    EXPECT_EQ(m_term->model()->index(1, 0).data().toString(), QStringLiteral("Fuse"));
    EXPECT_EQ(m_term->GetCellValue(2, 2), QStringLiteral("1"));
    EXPECT_EQ(m_term->model()->index(1, 1).data().toString(),
              QStringLiteral("Exclude: layout A only"));
    EXPECT_EQ(m_term->GetCellValue(2, 3), QStringLiteral("2"));
    EXPECT_EQ(m_term->GetCellValue(3, 4), QStringLiteral("1"));
    EXPECT_EQ(m_term->GetCellValue(3, 5), QStringLiteral("1.5000"));
    EXPECT_EQ(m_term->GetCellValue(1, 5), QString());
    EXPECT_EQ(m_term->model()->headerData(4, Qt::Horizontal).toString(), QStringLiteral("Spacing"));
    settle();
    EXPECT_GE(notices.count(), 1);
    EXPECT_FALSE(m_term->IsModified());
    // The load tells row 1 without saving, and the attribute grid shows its values.
    EXPECT_EQ(toldChanges().value(0), QStringLiteral("block 1, row 1 to 1"));
    EXPECT_EQ(m_term->CurrentRow(), 1);
    EXPECT_EQ(m_attrib->CellText(0, 1), QStringLiteral("DESC"));
    EXPECT_EQ(m_attrib->CellText(1, 1), QStringLiteral("Input A"));
    EXPECT_EQ(m_attrib->CellText(1, 2), QStringLiteral("1"));

    // Moves inside row 1 tell nothing.
    m_changes.clear();
    ClickCell(*m_term, 1, 3);
    ClickCell(*m_term, 1, 5);
    ClickCell(*m_term, 2, 5);
    pressKey(*m_term, Qt::Key_Down);
    EXPECT_EQ(toldChanges(),
              (QStringList{"block 2, row 1 to 2, saving", "block 3, row 2 to 3, saving"}));
}

TEST_F(TermGridTest, ARowWhoseBlockIsNotListedShowsMessage10058AndAnEmptyGrid) {
    m_module.SetTermRow(3, QStringLiteral("HP?NOPE;\\SPECIAL=BREAK"));
    makeGrids();
    m_term->LoadModule(kHandle);
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 10058);
    EXPECT_EQ(m_messages.shown[0].caption, QStringLiteral("Unknown Terminal Block"));
    EXPECT_EQ(m_messages.shown[0].icon, MsgIcon::Information);
    EXPECT_EQ(m_term->model()->rowCount(), 0);
    EXPECT_FALSE(m_term->IsModified());
    EXPECT_TRUE(m_changes.empty());
    // Nothing of the module changed, not even the rows before the unknown one.
    EXPECT_EQ(m_module.GetTermText(2), QStringLiteral("hp?fuse"));

    // No module: an empty grid and a row change with block 0.
    m_term->LoadModule(-1);
    EXPECT_EQ(m_term->model()->rowCount(), 0);
    ASSERT_EQ(m_changes.size(), 1u);
    EXPECT_EQ(m_changes[0].blockIndex, 0);
    EXPECT_EQ(m_attrib->model()->columnCount(), 0);
}

TEST_F(TermGridTest, EditsOfEveryColumnWriteThroughToTheModule) {
    makeGrids();
    loadModule();
    settle();
    // Show: the drop list's third line is the include flag.
    ClickCell(*m_term, 1, 2);
    QTest::keyClick(m_term, Qt::Key_F2);
    auto* combo = qobject_cast<QComboBox*>(QApplication::focusWidget());
    ASSERT_NE(combo, nullptr);
    EXPECT_EQ(m_term->GetCellValue(1, 2), QStringLiteral("0"));
    combo->setCurrentIndex(2);
    // The open editor's choice counts before it is committed.
    EXPECT_EQ(m_term->GetCellValue(1, 2), QStringLiteral("2"));
    QTest::keyClick(combo, Qt::Key_Return);
    settle();
    EXPECT_EQ(m_module.GetIncludeExclude(1), 2);
    EXPECT_TRUE(m_term->IsModified());

    // Break: a click in the middle of the cell.
    ClickCell(*m_term, 1, 4);
    EXPECT_EQ(m_module.GetBreak(1), 1);
    ClickCell(*m_term, 1, 4);
    EXPECT_EQ(m_module.GetBreak(1), 0);

    // Terminal: the block's name goes in module form, the row change is told with the
    // new block, and the attribute grid shows that block's tags.
    m_changes.clear();
    ClickCell(*m_term, 1, 1);
    QTest::keyClick(m_term, Qt::Key_F2);
    combo = qobject_cast<QComboBox*>(QApplication::focusWidget());
    ASSERT_NE(combo, nullptr);
    // The next line picked from the list is taken at once.
    QTest::keyClick(combo, Qt::Key_Down);
    settle();
    EXPECT_EQ(m_module.GetTermText(1), QStringLiteral("HP?FUSE"));
    EXPECT_EQ(toldChanges(), QStringList{"block 2, row 1 to 1, saving"});
    EXPECT_EQ(m_attrib->CellText(0, 1), QStringLiteral("FUSE_"));
    // Pairs of the old block stay in the row.
    QString value;
    EXPECT_TRUE(m_module.GetAttrValue(QStringLiteral("DESC"), value, 1));
    EXPECT_EQ(value, QStringLiteral("Input A"));
}

TEST_F(TermGridTest, SpacingUsesTheLocaleSeparatorBothWaysAndCellEditsUndoExactly) {
    QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
    m_module.SetSpacingFactor(2, 0.123456);
    makeGrids();
    loadModule();
    const QStringList loaded = moduleRows();
    EXPECT_EQ(m_term->GetCellValue(3, 5), QStringLiteral("1,5000"));
    // Showing four decimals does not round what the row holds.
    EXPECT_EQ(m_term->GetCellValue(2, 5), QStringLiteral("0,1235"));
    EXPECT_EQ(m_module.GetSpacingFactor(2), 0.123456);
    TypeIntoCell(*m_term, 1, 5, QStringLiteral("2,25"));
    EXPECT_EQ(m_module.GetSpacingFactor(1), 2.25);
    EXPECT_EQ(m_term->GetCellValue(1, 5), QStringLiteral("2,2500"));
    // Cleared is unset.
    TypeIntoCell(*m_term, 3, 5, QString());
    EXPECT_EQ(m_module.GetSpacingFactor(3), -1.0);
    EXPECT_FALSE(m_module.GetTermSpecial(3).contains(QStringLiteral("SPACINGFACTOR")));
    EXPECT_EQ(m_term->GetCellValue(3, 5), QString());
    ClickCell(*m_term, 2, 4);
    EXPECT_EQ(m_module.GetBreak(2), 1);
    const QStringList edited = moduleRows();

    for (int i = 0; i < 3; ++i) {
        pressKey(*m_term, Qt::Key_Z, Qt::ControlModifier);
    }
    EXPECT_EQ(moduleRows(), loaded);
    EXPECT_EQ(m_term->GetCellValue(3, 5), QStringLiteral("1,5000"));
    for (int i = 0; i < 3; ++i) {
        pressKey(*m_term, Qt::Key_Y, Qt::ControlModifier);
    }
    EXPECT_EQ(moduleRows(), edited);
    // A new module starts with nothing to undo.
    loadModule();
    EXPECT_FALSE(m_term->UndoStack().canUndo());
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
}

TEST_F(TermGridTest, InsertCommandsCopyTheRowWithItsAttributeValuesAndUndoAsOneStep) {
    makeGrids();
    loadModule();
    const QStringList loaded = moduleRows();
    // Insert after row 2, chosen from the context menu of another column of that row.
    ClickCell(*m_term, 2, 1);
    contextCommand(2, 3, QStringLiteral("Insert After"));
    EXPECT_EQ(m_term->ContextRow(), 2);
    EXPECT_EQ(m_term->ContextCol(), 3);
    ASSERT_EQ(m_module.GetTermCount(), 4);
    EXPECT_EQ(m_term->model()->rowCount(), 4);
    EXPECT_EQ(m_module.GetTermText(3), QStringLiteral("HP?FUSE"));
    EXPECT_EQ(m_module.GetIncludeExclude(3), 1);
    EXPECT_EQ(m_module.GetAddrFlags(3), 2);
    QString value;
    EXPECT_TRUE(m_module.GetAttrValue(QStringLiteral("RATING"), value, 3));
    EXPECT_EQ(value, QStringLiteral("2A"));
    EXPECT_EQ(m_term->CurrentRow(), 3);
    EXPECT_EQ(m_term->UndoStack().undoText(), QStringLiteral("Insert After"));
    const QStringList inserted = moduleRows();

    pressKey(*m_term, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(moduleRows(), loaded);
    EXPECT_EQ(m_term->model()->rowCount(), 3);
    pressKey(*m_term, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(moduleRows(), inserted);
    EXPECT_EQ(m_term->model()->rowCount(), 4);

    // Insert before the last row: break and spacing come along.
    ClickCell(*m_term, 4, 2);
    contextCommand(4, 2, QStringLiteral("Insert Before"));
    ASSERT_EQ(m_module.GetTermCount(), 5);
    EXPECT_EQ(m_module.GetTermText(4), QStringLiteral("XP2SPACE"));
    EXPECT_EQ(m_module.GetBreak(4), 1);
    EXPECT_EQ(m_module.GetSpacingFactor(4), 1.5);
    EXPECT_EQ(m_term->UndoStack().undoText(), QStringLiteral("Insert Before"));
    pressKey(*m_term, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(moduleRows(), inserted);
}

TEST_F(TermGridTest, DeleteRowsKeepsTheLastRowAndUndoesExactly) {
    makeGrids();
    loadModule();
    const QStringList loaded = moduleRows();
    // Every row selected: nothing happens.
    ClickCell(*m_term, 1, 1);
    pressKey(*m_term, Qt::Key_A, Qt::ControlModifier);
    contextCommand(2, 2, QStringLiteral("Delete Rows"));
    EXPECT_EQ(moduleRows(), loaded);

    ClickCell(*m_term, 1, 2);
    ClickCell(*m_term, 2, 2, Qt::ShiftModifier);
    contextCommand(2, 2, QStringLiteral("Delete Rows"));
    ASSERT_EQ(m_module.GetTermCount(), 1);
    EXPECT_EQ(m_module.GetTermText(1), QStringLiteral("XP2SPACE"));
    EXPECT_EQ(m_term->model()->rowCount(), 1);
    EXPECT_TRUE(m_term->IsModified());
    // The one row left is never deleted.
    contextCommand(1, 1, QStringLiteral("Delete Rows"));
    EXPECT_EQ(m_module.GetTermCount(), 1);

    pressKey(*m_term, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(moduleRows(), loaded);
    EXPECT_EQ(m_term->model()->rowCount(), 3);
    pressKey(*m_term, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(m_module.GetTermCount(), 1);
}

TEST_F(TermGridTest, LayoutIsStoredAtScaleOneAndComesBackScaled) {
    StandaloneHost host{StandaloneHostConfig()};
    FixedScaleUi ui(1.5, 2.0);
    host.setUi(&ui);
    SetCurrentHost(&host);
    struct HostGuard {
        ~HostGuard() { SetCurrentHost(nullptr); }
    } guard;
    makeGrids();
    m_term->SetColWidth(2, 150);
    m_term->SetColWidth(0, 60);
    m_term->SetHeaderHeight(64);
    m_window.reset();
    // Width over the horizontal scale; height over the vertical scale, less 10.
    EXPECT_EQ(storedLayout("TermGrid", "ColWidth2"), 100u);
    EXPECT_EQ(storedLayout("TermGrid", "ColWidth0"), 40u);
    EXPECT_EQ(storedLayout("TermGrid", "RowHeight0"), 22u);

    makeGrids();
    EXPECT_EQ(m_term->columnWidth(1), 150);
    EXPECT_EQ(m_term->ColWidth(0), 60);
    EXPECT_EQ(m_term->horizontalHeader()->height(), 64);
    m_window.reset();
}
