#include "CAttribGridWnd.h"
#include "CMEditDlg.h"
#include "CModuleTree.h"
#include "CPickTerm.h"
#include "CTermGridWnd.h"
#include "CatalogDocument.h"
#include "DialogControls.h"
#include "EditorFixture.h"
#include "MenuChooser.h"
#include "ModalRunner.h"
#include "ResourceLibrary.h"
#include "ZelDbMigrate.h"

#include <QApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace {

const QString kNorvale = QStringLiteral("Norvale Controls");
const QString kSeries = QStringLiteral("NV-100");
const QString kInputs = QStringLiteral("Digital Input");
const QString kOutputs = QStringLiteral("Digital Output");
const QString kNv1108Description = QStringLiteral("8 point 24V DC sink input");

}  // namespace

class CMEditDlgTest : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        m_dialog = std::make_unique<CMEditDlg>();
        m_dialog->SetDbPath(databasePath());
        m_dialog->resize(900, 600);
        m_dialog->show();
        ASSERT_TRUE(m_dialog->isVisible());
        // Focus moves only in an active window, and a label edit ends with its focus.
        m_dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog.get()));
    }
    void TearDown() override {
        m_dialog.reset();
        EditorFixture::TearDown();
    }
    CModuleTree& tree() { return m_dialog->Tree(); }
    // A type of the NV-100 series, or one of its catalogs.
    QTreeWidgetItem* item(const QString& type, const QString& catalog = QString()) {
        if (!catalog.isEmpty()) {
            return tree().FindItem(kNorvale, kSeries, type, catalog);
        }
        QTreeWidgetItem* node = tree().topLevelItem(0);
        for (const QString& name : {kNorvale, kSeries, type}) {
            QTreeWidgetItem* next = nullptr;
            for (int i = 0; node && i < node->childCount(); ++i) {
                if (node->child(i)->text(0) == name) {
                    next = node->child(i);
                }
            }
            node = next;
        }
        return node;
    }
    // Clicks an item of the tree as a user does.
    void click(QTreeWidgetItem* target) {
        ASSERT_NE(target, nullptr);
        tree().scrollToItem(target);
        QTest::mouseClick(tree().viewport(), Qt::LeftButton, {},
                          tree().visualItemRect(target).center());
    }
    void clickButton(int id) {
        auto* button = FindControl<QPushButton>(m_dialog.get(), id);
        ASSERT_NE(button, nullptr);
        ASSERT_TRUE(button->isEnabled()) << id;
        QTest::mouseClick(button, Qt::LeftButton);
    }
    // Clicks a cell of a grid, rows and columns from 1.
    static void clickCell(GridCore& grid, int row, int col) {
        grid.scrollTo(grid.model()->index(row - 1, col - 1));
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {},
                          grid.visualRect(grid.model()->index(row - 1, col - 1)).center());
    }
    // Opens the cell's editor with F2, types text over its value and presses Return.
    static void typeIntoCell(GridCore& grid, int row, int col, const QString& text) {
        clickCell(grid, row, col);
        QTest::keyClick(&grid, Qt::Key_F2);
        QWidget* editor = QApplication::focusWidget();
        ASSERT_NE(editor, nullptr);
        ASSERT_NE(editor, &grid);
        QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(editor, text);
        QTest::keyClick(editor, Qt::Key_Return);
        // The commit and the modified notices are posted.
        QCoreApplication::processEvents();
    }
    // The attribute grid's column of tag, from its header row; -1 when not shown.
    int attribColumn(const QString& tag) {
        CAttribGridWnd& grid = m_dialog->AttribGrid();
        for (int col = 1; col <= grid.model()->columnCount(); ++col) {
            if (grid.CellText(0, col) == tag) {
                return col;
            }
        }
        return -1;
    }
    // Right-clicks a cell of the terminal grid and chooses entry from its menu.
    void contextCommand(int row, int col, const QString& entry) {
        CTermGridWnd& grid = m_dialog->TermGrid();
        const QPoint cell = grid.visualRect(grid.model()->index(row - 1, col - 1)).center();
        EXPECT_TRUE(ChooseMenuEntry(entry, [&] {
            QTest::mouseClick(m_dialog->windowHandle(), Qt::RightButton, {},
                              grid.viewport()->mapTo(m_dialog.get(), cell));
        })) << qPrintable(entry);
    }
    // The whole database as plcdb export writes it, read through a store of its own.
    QJsonObject exported() {
        CKVModuleDB db;
        QJsonObject document;
        EXPECT_TRUE(db.Open(databasePath()));
        EXPECT_TRUE(CatalogDocument::Export(db, document, nullptr));
        return document;
    }
    // The rows of a module as the store holds them.
    QStringList storedRows(const QString& type, const QString& catalog) {
        CKVModuleDB db;
        QString table;
        QStringList rows;
        if (!db.Open(databasePath()) || !db.GetTypeTableName(kNorvale, kSeries, type, table)) {
            return rows;
        }
        const int handle = db.LoadModule(table, catalog, false);
        for (int row = 1; handle != -1 && row <= db.GetModule(handle).GetTermCount(); ++row) {
            rows << db.GetModule(handle).GetTermText(row) + u'|' +
                        db.GetModule(handle).GetTermSpecial(row);
        }
        return rows;
    }

    // What the spec data dialog does on OK: the open module changes and is marked.
    void changeSpecData(const QString& description) {
        CKVModule* module = m_dialog->GetCurrentModule();
        ASSERT_NE(module, nullptr);
        module->SetDescription(description);
        m_dialog->MarkSpecChanged();
    }
    QString storedDescription(const QString& type, const QString& catalog) {
        CKVModuleDB db;
        QString table;
        if (!db.Open(databasePath()) || !db.GetTypeTableName(kNorvale, kSeries, type, table)) {
            return QStringLiteral("<no table>");
        }
        const int handle = db.LoadModule(table, catalog, true);
        return handle == -1 ? QStringLiteral("<no module>") : db.GetModule(handle).GetDescription();
    }
    int questionsAsked(int number) const {
        int count = 0;
        for (const MessageRequest& request : m_messages.shown) {
            count += request.number == number ? 1 : 0;
        }
        return count;
    }
    bool saveLit() {
        return FindControl<QPushButton>(m_dialog.get(), CMEditDlg::kIdSave)->isEnabled();
    }

    std::unique_ptr<CMEditDlg> m_dialog;
};

TEST_F(CMEditDlgTest, ReturnAndTheCancelKeyDuringALabelEditEndItAndKeepTheDialogOpen) {
    QTreeWidgetItem* outputs = item(kOutputs);
    ASSERT_NE(outputs, nullptr);
    tree().SetContextItem(outputs);

    // Return reaches the dialog while the label is edited: the new name stands.
    tree().OnRename();
    ASSERT_TRUE(tree().IsEditingLabel());
    tree().findChild<QLineEdit*>()->setText(QStringLiteral("Relay Output"));
    QTest::keyClick(m_dialog.get(), Qt::Key_Return);
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_dialog->isVisible());
    EXPECT_FALSE(tree().IsEditingLabel());
    EXPECT_EQ(outputs->text(0), QStringLiteral("Relay Output"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    // The cancel key during an edit drops it.
    tree().OnRename();
    ASSERT_TRUE(tree().IsEditingLabel());
    tree().findChild<QLineEdit*>()->setText(QStringLiteral("Coil Output"));
    QTest::keyClick(m_dialog.get(), Qt::Key_Escape);
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_dialog->isVisible());
    EXPECT_EQ(outputs->text(0), QStringLiteral("Relay Output"));

    // F1 and the help button open the editor's topic.
    QStringList reports;
    m_host->setReporter([&reports](const QString& text) { reports << text; });
    QTest::keyClick(m_dialog.get(), Qt::Key_F1);
    clickButton(CMEditDlg::kIdHelp);
    EXPECT_EQ(reports, QStringList(2, QStringLiteral("Help topic: plc_dbeditor")));

    // Without an edit the same key closes the dialog, with OK.
    QTest::keyClick(m_dialog.get(), Qt::Key_Escape);
    EXPECT_FALSE(m_dialog->isVisible());
    EXPECT_EQ(m_dialog->result(), QDialog::Accepted);
    EXPECT_TRUE(m_messages.shown.empty());
}

TEST_F(CMEditDlgTest, TheSaveQuestionOnASelectionChangeKeepsWritesOrDropsTheChanges) {
    struct Case {
        int answer;
        bool moves;
        const char* stored;
    };
    const Case cases[] = {
        {kIdCancel, false, "8 point 24V DC sink input"},
        {kIdNo, true, "8 point 24V DC sink input"},
        {kIdYes, true, "eight inputs"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.answer);
        click(item(kInputs, QStringLiteral("NV-1108")));
        ASSERT_TRUE(m_dialog->IsModuleLoaded());
        changeSpecData(QStringLiteral("eight inputs"));
        EXPECT_TRUE(saveLit());

        m_messages.shown.clear();
        m_messages.answers = {c.answer};
        click(item(kInputs, QStringLiteral("NV-1116")));
        EXPECT_EQ(questionsAsked(4012), 1);
        EXPECT_EQ(tree().currentItem()->text(0),
                  c.moves ? QStringLiteral("NV-1116") : QStringLiteral("NV-1108"));
        EXPECT_EQ(m_dialog->GetCurrentModule()->GetCatalog(),
                  c.moves ? QStringLiteral("NV-1116") : QStringLiteral("NV-1108"));
        EXPECT_EQ(storedDescription(kInputs, QStringLiteral("NV-1108")),
                  QString::fromUtf8(c.stored));
        EXPECT_EQ(saveLit(), !c.moves);
        if (!c.moves) {
            // The change is still there, unsaved.
            EXPECT_EQ(m_dialog->GetCurrentModule()->GetDescription(),
                      QStringLiteral("eight inputs"));
            m_messages.answers = {kIdNo};
            click(item(kInputs, QStringLiteral("NV-1116")));
        }
        // Coming back reads the module from the store.
        click(item(kInputs, QStringLiteral("NV-1108")));
        EXPECT_EQ(m_dialog->GetCurrentModule()->GetDescription(), QString::fromUtf8(c.stored));
        click(item(kInputs, QStringLiteral("NV-1116")));
    }
}

TEST_F(CMEditDlgTest, AMoveAsksThenGivesUpTheChangesWhileACopyKeepsThem) {
    click(item(kInputs, QStringLiteral("NV-1108")));
    changeSpecData(QStringLiteral("eight inputs"));

    // A copy: asked, No, and the change stays unsaved.
    tree().SetContextItem(item(kInputs, QStringLiteral("NV-1116")));
    tree().OnCopy();
    m_messages.answers = {kIdNo};
    tree().SetContextItem(item(kOutputs));
    tree().OnPaste();
    EXPECT_EQ(questionsAsked(4012), 1);
    EXPECT_NE(item(kOutputs, QStringLiteral("NV-1116")), nullptr);
    EXPECT_TRUE(m_dialog->IsSpecDirty());
    EXPECT_TRUE(saveLit());

    // Cancel at the question ends the paste before anything is copied.
    tree().SetContextItem(item(kInputs, QStringLiteral("NV-1132")));
    tree().OnCut();
    m_messages.answers = {kIdCancel};
    tree().SetContextItem(item(kOutputs));
    tree().OnPaste();
    EXPECT_EQ(item(kOutputs, QStringLiteral("NV-1132")), nullptr);
    EXPECT_TRUE(m_dialog->IsSpecDirty());

    // A move: asked once, No, the change is given up and nothing is written.
    m_messages.shown.clear();
    m_messages.answers = {kIdNo};
    tree().OnPaste();
    EXPECT_EQ(questionsAsked(4012), 1);
    EXPECT_NE(item(kOutputs, QStringLiteral("NV-1132")), nullptr);
    EXPECT_EQ(item(kInputs, QStringLiteral("NV-1132")), nullptr);
    EXPECT_FALSE(m_dialog->IsSpecDirty());
    EXPECT_FALSE(saveLit());
    EXPECT_EQ(storedDescription(kInputs, QStringLiteral("NV-1108")), kNv1108Description);
}

TEST_F(CMEditDlgTest, DeletingTheOpenCatalogDropsRowChangesButLeavesTheSpecDataToAsk) {
    click(item(kInputs, QStringLiteral("NV-1108")));
    // A value of row 2 left behind: it counts as unsaved rows.
    clickCell(m_dialog->TermGrid(), 2, CTermGridWnd::ColumnShow);
    const int term = attribColumn(QStringLiteral("TERM_"));
    ASSERT_NE(term, -1);
    typeIntoCell(m_dialog->AttribGrid(), 1, term, QStringLiteral("20"));
    clickCell(m_dialog->TermGrid(), 3, CTermGridWnd::ColumnShow);
    EXPECT_TRUE(m_dialog->IsRowsDirty());
    changeSpecData(QStringLiteral("eight inputs"));
    tree().SetContextItem(item(kInputs, QStringLiteral("NV-1108")));
    m_messages.answers = {kIdYes, kIdNo};  // delete it; do not save
    tree().OnDelete();
    EXPECT_EQ(m_messages.shown.at(0).number, 10121);
    EXPECT_FALSE(m_dialog->IsRowsDirty());
    // The spec data flag stood when the selection left the deleted catalog.
    EXPECT_EQ(questionsAsked(4012), 1);
    EXPECT_EQ(storedDescription(kInputs, QStringLiteral("NV-1108")), QStringLiteral("<no module>"));
}

TEST_F(CMEditDlgTest, InsertThenCancelAtTheQuestionStaysAndALaterCloseStillInserts) {
    click(item(kInputs, QStringLiteral("NV-1108")));
    changeSpecData(QStringLiteral("eight inputs"));
    m_messages.answers = {kIdCancel};
    clickButton(CMEditDlg::kIdInsert);
    EXPECT_TRUE(m_dialog->isVisible());
    EXPECT_TRUE(m_dialog->GetInsertRequested());

    m_messages.answers = {kIdNo};
    clickButton(CMEditDlg::kIdDone);
    EXPECT_FALSE(m_dialog->isVisible());
    EXPECT_EQ(m_dialog->result(), QDialog::Accepted);
    EXPECT_TRUE(m_dialog->GetInsertRequested());
    EXPECT_EQ(questionsAsked(4012), 2);
}

TEST_F(CMEditDlgTest, AStartWithoutAUsableDatabaseEndsWithCancel) {
    // The dialog must have ended by itself once its first events ran.
    const auto endsAtOnce = [](QDialog& d) {
        QCoreApplication::processEvents();
        EXPECT_FALSE(d.isVisible());
        return 0;
    };
    QueuedModalScript script;

    // No database on the host's path.
    m_host = std::make_unique<StandaloneHost>(StandaloneHostConfig());
    m_host->setReporter([](const QString&) {});
    m_host->openDocument();
    SetCurrentHost(m_host.get());
    CMEditDlg missing;
    script.push(endsAtOnce);
    EXPECT_EQ(ModalRunner::Run(missing), kIdCancel);
    EXPECT_TRUE(m_messages.shown.empty());

    // A file that is no database: message 5003 with the path, under title 5000.
    const QString junk = QDir(m_dir.path()).filePath(QStringLiteral("junk.mdb"));
    QFile file(junk);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a database at all, only text that goes on for a while");
    file.close();
    CMEditDlg unreadable;
    unreadable.SetDbPath(junk);
    script.push(endsAtOnce);
    EXPECT_EQ(ModalRunner::Run(unreadable), kIdCancel);
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 5003);
    EXPECT_TRUE(m_messages.shown[0].text.contains(QDir::toNativeSeparators(junk)));
    EXPECT_EQ(m_messages.shown[0].caption, QStringLiteral("PLC Database"));
    EXPECT_TRUE(script.done());
}

TEST_F(CMEditDlgTest, AnOlderFileIsUpgradedOnlyWhenTheUserSaysYes) {
    m_dialog.reset();
    const QString old = QDir(m_dir.path()).filePath(QStringLiteral("OLD.MDB"));
    ASSERT_TRUE(CreateVersion1Database(old));
    {
        CKVModuleDB db;
        ASSERT_TRUE(db.Open(old));
        ASSERT_TRUE(db.AddIndex(QStringLiteral("M"), QStringLiteral("S"), QStringLiteral("T")));
    }
    CMEditDlg dialog;
    dialog.SetDbPath(old);
    dialog.show();
    CModuleTree& oldTree = dialog.Tree();
    QTreeWidgetItem* type =
        oldTree.findItems(QStringLiteral("T"), Qt::MatchExactly | Qt::MatchRecursive).value(0);
    ASSERT_NE(type, nullptr);
    QTreeWidgetItem* before = oldTree.currentItem();

    m_messages.answers = {kIdNo};
    oldTree.setCurrentItem(type);
    EXPECT_EQ(oldTree.currentItem(), before);
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 10126);
    bool required = true;
    CheckForMigration(old, required, false, QString());
    EXPECT_TRUE(required);

    m_messages.answers = {kIdYes};
    oldTree.setCurrentItem(type);
    EXPECT_EQ(oldTree.currentItem(), type);
    required = true;
    CheckForMigration(old, required, false, QString());
    EXPECT_FALSE(required);
}

TEST_F(CMEditDlgTest, CellChangesLightSaveAndSaveWritesExactlyThoseIntoTheStore) {
    click(item(kInputs, QStringLiteral("NV-1108")));
    const QStringList before = storedRows(kInputs, QStringLiteral("NV-1108"));
    ASSERT_EQ(before.size(), 11);
    EXPECT_FALSE(saveLit());

    typeIntoCell(m_dialog->TermGrid(), 4, CTermGridWnd::ColumnSpacing, QStringLiteral("1.5"));
    EXPECT_TRUE(saveLit());
    // A value typed into the attribute grid and not yet taken into the row.
    clickCell(m_dialog->TermGrid(), 3, CTermGridWnd::ColumnShow);
    const int term = attribColumn(QStringLiteral("TERM_"));
    ASSERT_NE(term, -1);
    typeIntoCell(m_dialog->AttribGrid(), 1, term, QStringLiteral("30"));

    clickButton(CMEditDlg::kIdSave);
    QCoreApplication::processEvents();
    EXPECT_FALSE(saveLit());
    QStringList expected = before;
    expected[2] = QStringLiteral("HP?DI|TERM_=30;\\SPECIAL=ADDR_IN;DESC2=CH01");
    expected[3] = QStringLiteral(
        "HP?DI|TERM_=4;\\SPECIAL=ADDR_IN;DESC3=CH02;"
        "\\SPECIAL=SPACINGFACTOR=1.500000");
    EXPECT_EQ(storedRows(kInputs, QStringLiteral("NV-1108")), expected);

    // Nothing is left to ask about when leaving.
    clickButton(CMEditDlg::kIdDone);
    EXPECT_FALSE(m_dialog->isVisible());
    EXPECT_EQ(questionsAsked(4012), 0);
}

TEST_F(CMEditDlgTest, ABlockPickedAnEditUndoneAndSaveChangeExactlyThatRowOfTheExport) {
    const QJsonObject before = exported();
    click(item(kInputs, QStringLiteral("NV-1108")));

    // Row 3 gets the digital output block through the picker.
    QueuedModalScript script;
    script.push([](QDialog& picker) {
        auto* categories = FindControl<QListWidget>(&picker, CPickTerm::kIdCategories);
        auto* blocks = FindControl<QListWidget>(&picker, CPickTerm::kIdBlocks);
        const QList<QListWidgetItem*> digital =
            categories->findItems(QStringLiteral("Digital"), Qt::MatchExactly);
        EXPECT_EQ(digital.size(), 1);
        if (digital.size() != 1) {
            return 0;
        }
        QTest::mouseClick(categories->viewport(), Qt::LeftButton, {},
                          categories->visualItemRect(digital.first()).center());
        const QList<QListWidgetItem*> output =
            blocks->findItems(QStringLiteral("Digital output"), Qt::MatchExactly);
        EXPECT_EQ(output.size(), 1);
        if (output.size() != 1) {
            return 0;
        }
        blocks->doItemsLayout();
        QTest::mouseClick(blocks->viewport(), Qt::LeftButton, {},
                          blocks->visualItemRect(output.first()).center());
        QTest::mouseClick(FindControl<QPushButton>(&picker, CPickTerm::kIdOk), Qt::LeftButton);
        return 0;
    });
    // The picker writes the block only into the current cell's row when that cell is in
    // the terminal column, so the user clicks the cell first.
    clickCell(m_dialog->TermGrid(), 3, CTermGridWnd::ColumnTerminal);
    contextCommand(3, CTermGridWnd::ColumnTerminal, LoadResString(CTermGridWnd::kCmdEditCells));
    QCoreApplication::processEvents();
    EXPECT_TRUE(script.done());
    EXPECT_EQ(script.seen, QStringList{QStringLiteral("CPickTerm")});
    EXPECT_TRUE(saveLit());
    EXPECT_EQ(m_dialog->GetCurrentModule()->GetTermText(3), QStringLiteral("HP?DO"));

    // An attribute value typed and taken back with Ctrl+Z, once the editor is active again.
    m_dialog->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog.get()));
    CAttribGridWnd& attributes = m_dialog->AttribGrid();
    const int term = attribColumn(QStringLiteral("TERM_"));
    ASSERT_NE(term, -1);
    typeIntoCell(attributes, 1, term, QStringLiteral("99"));
    EXPECT_EQ(attributes.CellText(1, term), QStringLiteral("99"));
    attributes.setFocus();
    QTest::keyClick(&attributes, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(attributes.CellText(1, term), QStringLiteral("3"));

    EXPECT_EQ(m_dialog->GetCurrentModule()->GetTermText(3), QStringLiteral("HP?DO"));
    clickButton(CMEditDlg::kIdSave);
    EXPECT_EQ(m_dialog->GetCurrentModule()->GetTermText(3), QStringLiteral("HP?DO"));
    QJsonObject expected = before;
    QJsonArray modules = expected.value(QStringLiteral("modules")).toArray();
    bool found = false;
    for (qsizetype i = 0; i < modules.size(); ++i) {
        QJsonObject module = modules[i].toObject();
        if (module.value(QStringLiteral("spec")).toObject().value(QStringLiteral("Code")) !=
            QStringLiteral("NV-1108")) {
            continue;
        }
        QJsonArray rows = module.value(QStringLiteral("terminals")).toArray();
        QJsonObject third = rows[2].toObject();
        EXPECT_EQ(third.value(QStringLiteral("text")), QStringLiteral("HP?DI"));
        third.insert(QStringLiteral("text"), QStringLiteral("HP?DO"));
        rows[2] = third;
        module.insert(QStringLiteral("terminals"), rows);
        modules[i] = module;
        found = true;
    }
    ASSERT_TRUE(found);
    expected.insert(QStringLiteral("modules"), modules);
    EXPECT_EQ(QString::fromUtf8(QJsonDocument(exported()).toJson()),
              QString::fromUtf8(QJsonDocument(expected).toJson()));
}
