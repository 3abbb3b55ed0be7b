#include "BlockDefsTable.h"
#include "CBlocksGrid.h"
#include "CRegistryKey.h"
#include "MenuChooser.h"
#include "StandaloneHost.h"
#include "TestSupport.h"
#include "ViewInput.h"

#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <memory>

namespace {

BlockDefRow Row(const char* file, const char* category, const char* description = "",
                const char* sample = "") {
    return {QString::fromUtf8(file), QString::fromUtf8(category), QString::fromUtf8(description),
            QString::fromUtf8(sample)};
}

// The menu entries as the string table names the commands.
const char* const kAllEntries[] = {"Copy",    "Cut",       "Paste",      "Copy Row",
                                   "Cut Row", "Paste Row", "Insert Row", "Remove Row"};

class BlocksGridTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_texts.loaded()) << qPrintable(m_texts.error()); }
    void TearDown() override { m_window.reset(); }

    // The grid over rows, shown in a window of its own with the focus.
    void makeGrid(const QList<BlockDefRow>& rows) {
        m_table.SetRows(rows);
        m_window = std::make_unique<QWidget>();
        auto* layout = new QVBoxLayout(m_window.get());
        m_grid = new CBlocksGrid;
        layout->addWidget(m_grid);
        m_grid->SetTable(&m_table);
        m_grid->Initialize();
        m_window->resize(900, 600);
        m_window->show();
        m_window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
        m_grid->setFocus();
    }
    void makeSampleGrid() {
        makeGrid({Row("HP1DI", "Inputs", "Digital in", "HP1DI.BMP"),
                  Row("HP1DO", "Outputs", "Digital out"), Row("TB1", "Other", "Plain")});
    }

    // The table's row as "file|category|description|sample".
    QString row(int r) const {
        QStringList cells;
        for (int col = 1; col <= BlockDefsTable::ColumnCount; ++col) {
            cells.append(m_table.Value(r, col));
        }
        return cells.join(u'|');
    }
    void contextCommand(int r, int col, const char* entry) {
        ChooseCellMenuEntry(*m_window, *m_grid, r, col, QString::fromUtf8(entry));
    }
    // Whether the entry can be chosen in the menu opened on the cell.
    bool entryEnabledAt(int r, int col, const char* entry) {
        const QPoint pos = m_grid->viewport()->mapTo(m_window.get(), CellCentre(*m_grid, r, col));
        return ChooseMenuEntry(QString::fromUtf8(entry), [&] {
            QTest::mouseClick(m_window->windowHandle(), Qt::RightButton, {}, pos);
        });
    }
    // A context menu may have left no window active; keys need one.
    void activate() {
        m_window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
        m_grid->setFocus();
    }
    void pressKey(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        activate();
        QTest::keyClick(m_grid, Qt::Key(key), modifiers);
    }
    // Opens the category editor of a row with F2 and answers its choices.
    QStringList categoryChoices(int r) {
        ClickCell(*m_grid, r, BlockDefsTable::ColumnCategory);
        QTest::keyClick(m_grid, Qt::Key_F2);
        // The editor has the focus; an editor closed before may not be deleted yet.
        QWidget* focus = QApplication::focusWidget();
        auto* combo = qobject_cast<QComboBox*>(focus);
        if (!combo && focus) {
            combo = qobject_cast<QComboBox*>(focus->parentWidget());
        }
        if (!combo) {
            ADD_FAILURE() << "no combo box in row " << r;
            return {};
        }
        QStringList items;
        for (int i = 0; i < combo->count(); ++i) {
            items.append(combo->itemText(i));
        }
        return items;
    }
    static QString clipboardText() { return QGuiApplication::clipboard()->text(); }

    ProgramTexts m_texts;
    BlockDefsTable m_table;
    std::unique_ptr<QWidget> m_window;
    CBlocksGrid* m_grid = nullptr;
};

TEST_F(BlocksGridTest, CategoryChoicesAreTheCellsOwnValueThenOtherRowsOnceInRowOrder) {
    makeGrid({Row("HP1DI", "Inputs"), Row("HP1DO", "  Outputs "), Row("HP1AI", "inputs"),
              Row("HP1AO", ""), Row("HP1X", "Inputs"), Row("HP1Y", "Outputs")});
    const struct {
        int row;
        QStringList choices;
    } cases[] = {
        // Own value trimmed and first, not again from row 6; case differences count.
        {2, {"Outputs", "Inputs", "inputs"}},
        {1, {"Inputs", "Outputs", "inputs"}},
        // An empty row adds nothing of its own.
        {4, {"Inputs", "Outputs", "inputs"}},
        // The free row below the last holds a blank, which is no choice.
        {7, {"Inputs", "Outputs", "inputs"}},
    };
    for (const auto& c : cases) {
        if (c.row == 7) {
            ClickCell(*m_grid, 6, 1);
        }
        EXPECT_EQ(categoryChoices(c.row), c.choices) << "row " << c.row;
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
    }
    // The editor shows the value as it stands, blanks and all.
    categoryChoices(2);
    EXPECT_EQ(m_grid->GetCellValue(2, 2), QStringLiteral("  Outputs "));
}

TEST_F(BlocksGridTest, TheCategoryTakesTypedTextAndChosenLinesAndAnOpenEditorCountsAsTheValue) {
    makeSampleGrid();
    TypeIntoCell(*m_grid, 1, 2, QStringLiteral("Relays"));
    EXPECT_EQ(m_table.Value(1, 2), QStringLiteral("Relays"));
    // Regression: the combo completed "Out" to the choice "Outputs" and "relays" to
    // "Relays".
    TypeIntoCell(*m_grid, 2, 2, QStringLiteral("Out"));
    EXPECT_EQ(m_table.Value(2, 2), QStringLiteral("Out"));
    TypeIntoCell(*m_grid, 2, 2, QStringLiteral("relays"));
    EXPECT_EQ(m_table.Value(2, 2), QStringLiteral("relays"));

    // Row 3: the first choice is its own "Other", the next "Relays".
    categoryChoices(3);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_EQ(m_table.Value(3, 2), QStringLiteral("Relays"));

    // Typed but not entered: the grid reads the editor, the table still has the old
    // text until the editor is committed.
    ClickCell(*m_grid, 2, 3);
    QTest::keyClick(m_grid, Qt::Key_F2);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("Fuse"));
    EXPECT_EQ(m_grid->GetCellValue(2, 3), QStringLiteral("Fuse"));
    EXPECT_EQ(m_table.Value(2, 3), QStringLiteral("Digital out"));
    m_grid->CommitEditor();
    EXPECT_EQ(m_table.Value(2, 3), QStringLiteral("Fuse"));
    EXPECT_EQ(m_grid->GetCellValue(2, 3), QStringLiteral("Fuse"));

    // Each edit is a step of its own to undo.
    pressKey(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(m_table.Value(2, 3), QStringLiteral("Digital out"));
    pressKey(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(m_table.Value(3, 2), QStringLiteral("Other"));
}

TEST_F(BlocksGridTest, ReachingTheLastRowAddsOneFreeRowAndARemovedLastRowComesBackOnlyWhenReached) {
    makeSampleGrid();
    ClickCell(*m_grid, 1, 1);
    ClickCell(*m_grid, 2, 4);
    EXPECT_EQ(m_table.RowCount(), 3);
    ClickCell(*m_grid, 3, 1);
    ASSERT_EQ(m_table.RowCount(), 4);
    EXPECT_EQ(row(4), QStringLiteral("| ||"));
    // Back and forth to the old last row: no second free row.
    ClickCell(*m_grid, 2, 1);
    ClickCell(*m_grid, 3, 2);
    EXPECT_EQ(m_table.RowCount(), 4);
    pressKey(Qt::Key_Down);
    EXPECT_EQ(m_grid->CurrentRow(), 4);
    EXPECT_EQ(m_table.RowCount(), 5);

    // The free row removed, then the current row, which is now the last: the current
    // cell moves up to the new last row, which is no move of the user's.
    contextCommand(5, 1, "Remove Row");
    EXPECT_EQ(m_table.RowCount(), 4);
    EXPECT_EQ(m_grid->model()->rowCount(), 4);
    contextCommand(4, 3, "Remove Row");
    EXPECT_EQ(m_grid->CurrentRow(), 3);
    EXPECT_EQ(m_table.RowCount(), 3);
    EXPECT_EQ(row(3), QStringLiteral("TB1|Other|Plain|"));
    ClickCell(*m_grid, 2, 1);
    EXPECT_EQ(m_table.RowCount(), 3);
    ClickCell(*m_grid, 3, 1);
    EXPECT_EQ(m_table.RowCount(), 4);
}

TEST_F(BlocksGridTest, AMenuOpenedOutsideTheCellsOffersNothingAndItsCommandsDoNothing) {
    makeSampleGrid();
    QGuiApplication::clipboard()->setText(QStringLiteral("X"));
    const QPoint below =
        m_grid->viewport()->mapTo(m_window.get(), QPoint(20, m_grid->viewport()->height() - 5));
    ASSERT_FALSE(m_grid->indexAt(QPoint(20, m_grid->viewport()->height() - 5)).isValid());
    for (const char* entry : kAllEntries) {
        EXPECT_FALSE(ChooseMenuEntry(QString::fromUtf8(entry), [&] {
            QTest::mouseClick(m_window->windowHandle(), Qt::RightButton, {}, below);
        })) << entry;
        EXPECT_EQ(m_grid->ContextRow(), -1);
        EXPECT_EQ(m_grid->ContextCol(), -1);
    }
    for (const int command : {207, 210, 214, 215, 216, 217, 218, 219}) {
        m_grid->OnCommand(command);
    }
    EXPECT_EQ(m_table.RowCount(), 3);
    EXPECT_EQ(row(1), QStringLiteral("HP1DI|Inputs|Digital in|HP1DI.BMP"));
    EXPECT_EQ(row(3), QStringLiteral("TB1|Other|Plain|"));
    EXPECT_EQ(clipboardText(), QStringLiteral("X"));
}

TEST_F(BlocksGridTest, CellsAndWholeRowsGoThroughTheClipboardAsTabSeparatedText) {
    makeSampleGrid();
    contextCommand(1, 3, "Copy");
    EXPECT_EQ(clipboardText(), QStringLiteral("Digital in"));
    EXPECT_EQ(m_grid->CurrentRow(), 1);
    EXPECT_EQ(m_grid->CurrentCol(), 3);
    contextCommand(2, 4, "Paste");
    EXPECT_EQ(m_table.Value(2, 4), QStringLiteral("Digital in"));
    contextCommand(1, 1, "Cut");
    EXPECT_EQ(clipboardText(), QStringLiteral("HP1DI"));
    EXPECT_EQ(m_table.Value(1, 1), QString());
    pressKey(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(m_table.Value(1, 1), QStringLiteral("HP1DI"));

    // A row is copied from any of its cells, and pasted from its first column on.
    contextCommand(1, 2, "Copy Row");
    EXPECT_EQ(clipboardText(), QStringLiteral("HP1DI\tInputs\tDigital in\tHP1DI.BMP"));
    contextCommand(3, 3, "Paste Row");
    EXPECT_EQ(row(3), QStringLiteral("HP1DI|Inputs|Digital in|HP1DI.BMP"));
    contextCommand(2, 4, "Cut Row");
    EXPECT_EQ(clipboardText(), QStringLiteral("HP1DO\tOutputs\tDigital out\tDigital in"));
    EXPECT_EQ(row(2), QStringLiteral("|||"));
    // One undo step puts the whole row back.
    pressKey(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(row(2), QStringLiteral("HP1DO|Outputs|Digital out|Digital in"));

    // Two rows pasted into the last column: what lies beyond the grid is left out, the
    // second line lands in the free row that the move to the last row added.
    QGuiApplication::clipboard()->setText(QStringLiteral("A\tB\r\nC\tD\r\n"));
    contextCommand(3, 4, "Paste");
    EXPECT_EQ(row(3), QStringLiteral("HP1DI|Inputs|Digital in|A"));
    ASSERT_EQ(m_table.RowCount(), 4);
    EXPECT_EQ(row(4), QStringLiteral("| ||C"));
}

TEST_F(BlocksGridTest, PastingIsOfferedOnlyWithTextOnTheClipboard) {
    makeSampleGrid();
    QGuiApplication::clipboard()->clear();
    EXPECT_FALSE(entryEnabledAt(2, 2, "Paste"));
    EXPECT_FALSE(entryEnabledAt(2, 2, "Paste Row"));
    EXPECT_EQ(row(2), QStringLiteral("HP1DO|Outputs|Digital out|"));
    EXPECT_TRUE(entryEnabledAt(2, 2, "Copy"));
    EXPECT_TRUE(entryEnabledAt(1, 1, "Paste"));
    EXPECT_EQ(m_table.Value(1, 1), QStringLiteral("Outputs"));
}

TEST_F(BlocksGridTest, InsertRowAddsAnEmptyRowBelowTheContextRowAndRemoveRowTakesItAway) {
    makeSampleGrid();
    contextCommand(1, 2, "Insert Row");
    ASSERT_EQ(m_table.RowCount(), 4);
    EXPECT_EQ(row(1), QStringLiteral("HP1DI|Inputs|Digital in|HP1DI.BMP"));
    EXPECT_EQ(row(2), QStringLiteral("|||"));
    EXPECT_EQ(row(3), QStringLiteral("HP1DO|Outputs|Digital out|"));
    contextCommand(2, 1, "Remove Row");
    ASSERT_EQ(m_table.RowCount(), 3);
    EXPECT_EQ(row(2), QStringLiteral("HP1DO|Outputs|Digital out|"));
    // Steps recorded before the rows moved would name the wrong rows: they are dropped.
    activate();
    TypeIntoCell(*m_grid, 1, 3, QStringLiteral("In"));
    contextCommand(1, 1, "Insert Row");
    EXPECT_EQ(m_grid->UndoStack().count(), 0);
}

TEST_F(BlocksGridTest, TheGridTellsWhereBrowsingAppliesAndWhichCellWasDoubleClicked) {
    makeSampleGrid();
    QSignalSpy browse(m_grid, &CBlocksGrid::enableBrowse);
    QSignalSpy doubleClicks(m_grid, &CBlocksGrid::cellDoubleClicked);
    const struct {
        int col;
        bool enable;
    } cases[] = {{1, true}, {2, false}, {3, false}, {4, true}};
    for (const auto& c : cases) {
        ClickCell(*m_grid, 2, c.col);
        ASSERT_FALSE(browse.isEmpty());
        EXPECT_EQ(browse.takeLast().at(0).toBool(), c.enable) << "column " << c.col;
    }
    ClickCell(*m_grid, 1, 4);
    QTest::mouseDClick(m_grid->viewport(), Qt::LeftButton, {}, CellCentre(*m_grid, 1, 4));
    ASSERT_EQ(doubleClicks.count(), 1);
    EXPECT_EQ(doubleClicks[0].at(0).toInt(), 1);
    EXPECT_EQ(doubleClicks[0].at(1).toInt(), 4);
}

TEST_F(BlocksGridTest, ALayoutStoredAtScaleOneAndAHalfKeepsItsSizeAtScaleOne) {
    StandaloneHost host{StandaloneHostConfig()};
    FixedScaleUi wide(1.5, 1.5);
    host.setUi(&wide);
    SetCurrentHost(&host);
    struct HostGuard {
        ~HostGuard() { SetCurrentHost(nullptr); }
    } guard;
    makeSampleGrid();
    EXPECT_EQ(m_grid->horizontalHeader()->minimumSectionSize(), 15);
    m_grid->SetColWidth(1, 150);
    m_grid->SetHeaderHeight(45);
    m_window.reset();
    CRegistryKey key;
    quint32 width = 0;
    quint32 height = 0;
    ASSERT_TRUE(key.Open(QStringLiteral("Settings\\BlocksGrid")));
    ASSERT_TRUE(key.GetValue(QStringLiteral("ColWidth1"), width));
    ASSERT_TRUE(key.GetValue(QStringLiteral("RowHeight0"), height));
    key.Close();
    // 150 / 1.5; the header 45 / 1.5 = 30, stored less 10.
    EXPECT_EQ(width, 100u);
    EXPECT_EQ(height, 20u);

    FixedScaleUi plain(1.0, 1.0);
    host.setUi(&plain);
    makeSampleGrid();
    EXPECT_EQ(m_grid->columnWidth(0), 100);
    EXPECT_EQ(m_grid->horizontalHeader()->height(), 30);
    EXPECT_EQ(m_grid->horizontalHeader()->minimumSectionSize(), 10);
}

TEST_F(BlocksGridTest, ATableChangedBehindTheGridIsShownAgainKeepingTheCurrentCell) {
    makeSampleGrid();
    TypeIntoCell(*m_grid, 2, 1, QStringLiteral("HP2DO"));
    // A rewrite: same rows, other values.
    m_table.SetValue(2, 1, QStringLiteral("HP5DO"));
    m_grid->TableChanged();
    EXPECT_EQ(m_grid->model()->index(1, 0).data().toString(), QStringLiteral("HP5DO"));
    EXPECT_EQ(m_grid->CurrentRow(), 2);
    EXPECT_EQ(m_grid->UndoStack().count(), 1);
    // A merge: one more row, steps dropped, and no free row since nobody moved.
    m_table.AppendRow(Row("HP1SHLD", ""));
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
    EXPECT_FALSE(m_grid->SetCellValue(9, 1, QStringLiteral("X")));
}

TEST_F(BlocksGridTest, ADoubleClickOnAColumnHeaderSortsTheRowsByItIgnoringCaseEmptiesLast) {
    makeGrid({Row("HP1DO", "outputs", "Digital out"), Row("TB1", "", "Plain"),
              Row("HP1DI", "Inputs", "Digital in"), Row("HP1AI", "Outputs", "Analog in")});
    QHeaderView* header = m_grid->horizontalHeader();
    const auto doubleClickHeader = [&](int col) {
        const QPoint centre(
            header->sectionViewportPosition(col - 1) + header->sectionSize(col - 1) / 2,
            header->height() / 2);
        QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, centre);
    };
    doubleClickHeader(2);
    // Equal keys keep their order: outputs before Outputs.
    EXPECT_EQ(row(1), QStringLiteral("HP1DI|Inputs|Digital in|"));
    EXPECT_EQ(row(2), QStringLiteral("HP1DO|outputs|Digital out|"));
    EXPECT_EQ(row(3), QStringLiteral("HP1AI|Outputs|Analog in|"));
    EXPECT_EQ(row(4), QStringLiteral("TB1||Plain|"));
    EXPECT_EQ(m_grid->model()->index(3, 0).data().toString(), QStringLiteral("TB1"));
    doubleClickHeader(1);
    EXPECT_EQ(row(1), QStringLiteral("HP1AI|Outputs|Analog in|"));
    EXPECT_EQ(row(4), QStringLiteral("TB1||Plain|"));
}

}  // namespace
