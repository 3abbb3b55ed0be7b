#include "BlockDefsTable.h"
#include "BlocksGridModel.h"
#include "CBlocksGrid.h"
#include "MenuChooser.h"
#include "TestSupport.h"
#include "ViewInput.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <memory>

namespace {

class BlocksGridTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_texts.loaded()) << qPrintable(m_texts.error()); }
    void TearDown() override { m_window.reset(); }

    // The grid over rows, in a window of its own with the focus.
    void makeGrid(const QList<BlockDefRow>& rows = {{"HP1DI", "Inputs", "Digital in", "HP1DI.BMP"},
                                                    {"HP1DO", "Outputs", "Digital out", ""},
                                                    {"TB1", "Other", "Plain", ""}}) {
        m_table.SetRows(rows);
        m_window = std::make_unique<QWidget>();
        m_grid = new CBlocksGrid;
        (new QVBoxLayout(m_window.get()))->addWidget(m_grid);
        m_grid->SetTable(&m_table);
        m_grid->Initialize();
        m_window->resize(900, 600);
        m_window->show();
        activate();
    }
    // A context menu may have left no window active; keys need one.
    void activate() {
        ASSERT_TRUE(Activate(*m_window));
        m_grid->setFocus();
    }
    void pressKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        activate();
        QTest::keyClick(m_grid, Qt::Key(key), modifiers);
    }
    // The table's row as "file|category|description|sample".
    QString row(int r) const {
        QStringList cells;
        for (int col = 1; col <= BlockDefsTable::ColumnCount; ++col) {
            cells.append(m_table.Value(r, col));
        }
        return cells.join(u'|');
    }
    void menu(int r, int col, const char* entry) {
        ChooseCellMenuEntry(*m_window, *m_grid, r, col, QString::fromUtf8(entry));
    }
    // Whether the entry could be chosen in the menu opened at a point of the viewport.
    bool offered(QPoint at, const char* entry) {
        at = m_grid->viewport()->mapTo(m_window.get(), at);
        return ChooseMenuEntry(QString::fromUtf8(entry), [&] {
            QTest::mouseClick(m_window->windowHandle(), Qt::RightButton, {}, at);
        });
    }
    static QString clipboard() { return QGuiApplication::clipboard()->text(); }

    ProgramTexts m_texts;
    BlockDefsTable m_table;
    std::unique_ptr<QWidget> m_window;
    CBlocksGrid* m_grid = nullptr;
};

TEST(BlocksGridModel, CategoryChoicesAreTheCellsOwnValueThenOtherRowsOnceInRowOrder) {
    // Own value trimmed and first; case differences count; blanks are no choice.
    const QStringList categories{"Inputs", "  Outputs ", "inputs", "", "Inputs", "Outputs", " "};
    EXPECT_EQ(BlocksGridModel::CategoryChoices(categories, 2),
              (QStringList{"Outputs", "Inputs", "inputs"}));
    for (const int row : {1, 4, 7}) {
        EXPECT_EQ(BlocksGridModel::CategoryChoices(categories, row),
                  (QStringList{"Inputs", "Outputs", "inputs"}))
            << "row " << row;
    }
}

TEST_F(BlocksGridTest, TheCategoryTakesTypedTextAndChosenLinesAndAnOpenEditorCountsAsTheValue) {
    makeGrid();
    // Regression: the combo completed "Out" to the choice "Outputs" and "relays" to
    // "Relays".
    TypeIntoCell(*m_grid, 1, 2, QStringLiteral("Relays"));
    TypeIntoCell(*m_grid, 2, 2, QStringLiteral("Out"));
    EXPECT_EQ(m_table.Value(2, 2), QStringLiteral("Out"));
    TypeIntoCell(*m_grid, 2, 2, QStringLiteral("relays"));
    EXPECT_EQ(m_table.Value(2, 2), QStringLiteral("relays"));

    // Row 3's choices: its own "Other", then "Relays".
    ClickCell(*m_grid, 3, 2);
    QTest::keyClick(m_grid, Qt::Key_F2);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(m_table.Value(3, 2), QStringLiteral("Relays"));

    // Typed but not entered: the grid reads the editor; the table has it once committed.
    ClickCell(*m_grid, 2, 3);
    QTest::keyClick(m_grid, Qt::Key_F2);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Fuse"));
    EXPECT_EQ(m_grid->GetCellValue(2, 3), QStringLiteral("Fuse"));
    EXPECT_EQ(m_table.Value(2, 3), QStringLiteral("Digital out"));
    m_grid->CommitEditor();
    EXPECT_EQ(m_table.Value(2, 3), QStringLiteral("Fuse"));
}

TEST_F(BlocksGridTest, ReachingTheLastRowAddsOneFreeRowAndARemovedLastRowComesBackOnlyWhenReached) {
    makeGrid();
    ClickCell(*m_grid, 2, 4);
    EXPECT_EQ(m_table.RowCount(), 3);
    ClickCell(*m_grid, 3, 1);
    ASSERT_EQ(m_table.RowCount(), 4);
    EXPECT_EQ(row(4), QStringLiteral("| ||"));
    ClickCell(*m_grid, 2, 1);
    ClickCell(*m_grid, 3, 2);
    EXPECT_EQ(m_table.RowCount(), 4);
    pressKey(Qt::Key_Down);
    EXPECT_EQ(m_table.RowCount(), 5);

    // Removing the current last row moves the current cell up, which is no move of the
    // user's: no free row comes back until the last row is reached again.
    menu(5, 1, "Remove Row");
    menu(4, 3, "Remove Row");
    EXPECT_EQ(m_grid->CurrentRow(), 3);
    EXPECT_EQ(m_table.RowCount(), 3);
    EXPECT_EQ(m_grid->model()->rowCount(), 3);
    ClickCell(*m_grid, 2, 1);
    EXPECT_EQ(m_table.RowCount(), 3);
    ClickCell(*m_grid, 3, 1);
    EXPECT_EQ(m_table.RowCount(), 4);
}

TEST_F(BlocksGridTest, InsertRowAddsAnEmptyRowBelowTheContextRowAndDropsTheUndoSteps) {
    makeGrid();
    TypeIntoCell(*m_grid, 1, 3, QStringLiteral("In"));
    ASSERT_EQ(m_grid->UndoStack().count(), 1);
    menu(1, 2, "Insert Row");
    ASSERT_EQ(m_table.RowCount(), 4);
    EXPECT_EQ(row(2), QStringLiteral("|||"));
    EXPECT_EQ(row(3), QStringLiteral("HP1DO|Outputs|Digital out|"));
    // Steps recorded before the rows moved would name the wrong rows.
    EXPECT_EQ(m_grid->UndoStack().count(), 0);
}

TEST_F(BlocksGridTest, TheMenuOffersNothingOutsideTheCellsAndPastingOnlyWithText) {
    makeGrid();
    QGuiApplication::clipboard()->setText(QStringLiteral("X"));
    const QPoint below(20, m_grid->viewport()->height() - 5);
    ASSERT_FALSE(m_grid->indexAt(below).isValid());
    for (const char* entry :
         {"Copy", "Cut", "Paste", "Copy Row", "Cut Row", "Paste Row", "Insert Row", "Remove Row"}) {
        EXPECT_FALSE(offered(below, entry)) << entry;
    }

    QGuiApplication::clipboard()->clear();
    EXPECT_FALSE(offered(CellCentre(*m_grid, 2, 2), "Paste"));
    EXPECT_FALSE(offered(CellCentre(*m_grid, 2, 2), "Paste Row"));
    EXPECT_TRUE(offered(CellCentre(*m_grid, 2, 2), "Copy"));
    EXPECT_TRUE(offered(CellCentre(*m_grid, 1, 1), "Paste"));
    EXPECT_EQ(m_table.Value(1, 1), QStringLiteral("Outputs"));
}

TEST_F(BlocksGridTest, CellsAndWholeRowsGoThroughTheClipboardAsTabSeparatedText) {
    makeGrid();
    menu(1, 3, "Copy");
    EXPECT_EQ(clipboard(), QStringLiteral("Digital in"));
    menu(2, 4, "Paste");
    EXPECT_EQ(m_table.Value(2, 4), QStringLiteral("Digital in"));
    menu(1, 1, "Cut");
    EXPECT_EQ(clipboard(), QStringLiteral("HP1DI"));
    EXPECT_EQ(m_table.Value(1, 1), QString());
    pressKey(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(m_table.Value(1, 1), QStringLiteral("HP1DI"));

    // A row is copied from any of its cells and pasted from its first column on.
    menu(1, 2, "Copy Row");
    EXPECT_EQ(clipboard(), QStringLiteral("HP1DI\tInputs\tDigital in\tHP1DI.BMP"));
    menu(3, 3, "Paste Row");
    EXPECT_EQ(row(3), QStringLiteral("HP1DI|Inputs|Digital in|HP1DI.BMP"));
    menu(2, 4, "Cut Row");
    EXPECT_EQ(clipboard(), QStringLiteral("HP1DO\tOutputs\tDigital out\tDigital in"));
    EXPECT_EQ(row(2), QStringLiteral("|||"));
    pressKey(Qt::Key_Z, Qt::ControlModifier);  // one step for the whole row
    EXPECT_EQ(row(2), QStringLiteral("HP1DO|Outputs|Digital out|Digital in"));

    // Two rows pasted into the last column: what lies beyond the grid is left out, the
    // second line lands in the free row that the move to the last row added.
    QGuiApplication::clipboard()->setText(QStringLiteral("A\tB\r\nC\tD\r\n"));
    menu(3, 4, "Paste");
    EXPECT_EQ(row(3), QStringLiteral("HP1DI|Inputs|Digital in|A"));
    ASSERT_EQ(m_table.RowCount(), 4);
    EXPECT_EQ(row(4), QStringLiteral("| ||C"));
}

TEST_F(BlocksGridTest, ATableChangedBehindTheGridIsShownAgainKeepingTheCurrentCell) {
    makeGrid();
    TypeIntoCell(*m_grid, 2, 1, QStringLiteral("HP2DO"));
    m_table.AppendRow({"HP1SHLD", "", "", ""});  // a merge: steps dropped, no free row
    m_grid->TableChanged();
    EXPECT_EQ(m_grid->model()->rowCount(), 4);
    EXPECT_EQ(m_table.RowCount(), 4);
    EXPECT_EQ(m_grid->CurrentRow(), 2);
    EXPECT_EQ(m_grid->UndoStack().count(), 0);
    // Rows dropped behind the grid leave the current cell on the last row: no free row.
    ClickCell(*m_grid, 3, 1);
    m_table.RemoveRow(4);
    m_grid->TableChanged();
    EXPECT_EQ(m_grid->CurrentRow(), 3);
    EXPECT_EQ(m_table.RowCount(), 3);
    // A browsed path replaces what an open editor holds.
    ClickCell(*m_grid, 1, 4);
    QTest::keyClick(m_grid, Qt::Key_F2);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("typed"));
    EXPECT_TRUE(m_grid->SetCellValue(1, 4, QStringLiteral("C:/blocks/HP1DI.BMP")));
    m_grid->CommitEditor();
    EXPECT_EQ(m_table.Value(1, 4), QStringLiteral("C:/blocks/HP1DI.BMP"));
}

TEST_F(BlocksGridTest, ADoubleClickOnAColumnHeaderSortsTheRowsByItIgnoringCaseEmptiesLast) {
    makeGrid({{"HP1DO", "outputs", "Digital out", ""},
              {"TB1", "", "Plain", ""},
              {"HP1DI", "Inputs", "Digital in", ""},
              {"HP1AI", "Outputs", "Analog in", ""}});
    QHeaderView* header = m_grid->horizontalHeader();
    const auto doubleClickHeader = [header](int col) {
        const int x = header->sectionViewportPosition(col - 1) + header->sectionSize(col - 1) / 2;
        QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, QPoint(x, header->height() / 2));
    };
    const auto files = [this] {
        return QStringList{m_table.Value(1, 1), m_table.Value(2, 1), m_table.Value(3, 1),
                           m_table.Value(4, 1)};
    };
    doubleClickHeader(2);  // equal keys keep their order: outputs before Outputs
    EXPECT_EQ(files(), (QStringList{"HP1DI", "HP1DO", "HP1AI", "TB1"}));
    EXPECT_EQ(row(1), QStringLiteral("HP1DI|Inputs|Digital in|"));
    EXPECT_EQ(m_grid->model()->index(3, 0).data().toString(), QStringLiteral("TB1"));
    doubleClickHeader(1);
    EXPECT_EQ(files(), (QStringList{"HP1AI", "HP1DI", "HP1DO", "TB1"}));
}

}  // namespace
