#include "CAttribGridWnd.h"
#include "CModuleSearch.h"
#include "CPickTerm.h"
#include "CTermGridWnd.h"
#include "CatalogDocument.h"
#include "EditorWindowFixture.h"
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
#include <QSysInfo>

#include <algorithm>
#include <utility>

namespace {

const QString kInputs = QStringLiteral("Digital Input");
const QString kOutputs = QStringLiteral("Digital Output");
const QString kNv1108Description = QStringLiteral("8 point 24V DC sink input");

}  // namespace

class CMEditDlgTest : public EditorWindowFixture {
protected:
    // The attribute grid's column of TERM_, from its header row; -1 when not shown.
    int terminalColumn() {
        CAttribGridWnd& grid = m_dialog->AttribGrid();
        for (int col = 1; col <= grid.model()->columnCount(); ++col) {
            if (grid.CellText(0, col) == QStringLiteral("TERM_")) {
                return col;
            }
        }
        return -1;
    }
    // The whole database as plcdb export writes it, read through a store of its own.
    QJsonObject exported() {
        CKVModuleDB db;
        QJsonObject document;
        EXPECT_TRUE(db.Open(databasePath()));
        EXPECT_TRUE(CatalogDocument::Export(db, document, nullptr));
        return document;
    }
    QStringList storedRows(const QString& catalog) {
        const CKVModule module = stored(kInputs, catalog).value_or(CKVModule());
        QStringList rows;
        for (int row = 1; row <= module.GetTermCount(); ++row) {
            rows << module.GetTermText(row) + u'|' + module.GetTermSpecial(row);
        }
        return rows;
    }
    QString storedDescription(const QString& catalog) {
        const std::optional<CKVModule> module = stored(kInputs, catalog);
        return module ? module->GetDescription() : QStringLiteral("<no module>");
    }

    // What the dialog for spec data does on OK: the open module changes and is marked.
    void changeSpecData(const QString& description) {
        CKVModule* module = m_dialog->GetCurrentModule();
        ASSERT_NE(module, nullptr);
        module->SetDescription(description);
        m_dialog->MarkSpecChanged();
    }
    int questionsAsked(int number) const {
        return int(std::count_if(m_messages.shown.begin(), m_messages.shown.end(),
                                 [number](const MessageRequest& r) { return r.number == number; }));
    }
    bool saveLit() { return button(CMEditDlg::kIdSave)->isEnabled(); }
};

TEST_F(CMEditDlgTest, ReturnAndTheCancelKeyDuringALabelEditEndItAndKeepTheDialogOpen) {
    QTreeWidgetItem* outputs = item(kOutputs);
    ASSERT_NE(outputs, nullptr);
    tree().SetContextItem(outputs);

    // Return reaches the dialog while the label is edited: the new name stands. The
    // cancel key during an edit drops it. Neither closes the dialog.
    for (const auto& [key, typed] :
         {std::pair{Qt::Key_Return, "Relay Output"}, std::pair{Qt::Key_Escape, "Coil Output"}}) {
        tree().OnRename();
        ASSERT_TRUE(tree().IsEditingLabel());
        tree().findChild<QLineEdit*>()->setText(QString::fromLatin1(typed));
        QTest::keyClick(m_dialog.get(), key);
        QCoreApplication::processEvents();
        EXPECT_TRUE(m_dialog->isVisible());
        EXPECT_FALSE(tree().IsEditingLabel());
        EXPECT_EQ(outputs->text(0), QStringLiteral("Relay Output"));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

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
    const struct {
        int answer;
        const char* current;  // where the selection is after the answer
        const char* stored;
    } cases[] = {
        {kIdCancel, "NV-1108", "8 point 24V DC sink input"},
        {kIdNo, "NV-1116", "8 point 24V DC sink input"},
        {kIdYes, "NV-1116", "eight inputs"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.answer);
        click(item(kInputs, QStringLiteral("NV-1108")));
        changeSpecData(QStringLiteral("eight inputs"));
        m_messages.shown.clear();
        m_messages.answers = {c.answer, kIdNo};
        click(item(kInputs, QStringLiteral("NV-1116")));
        EXPECT_EQ(questionsAsked(4012), 1);
        EXPECT_EQ(tree().currentItem()->text(0), QString::fromLatin1(c.current));
        EXPECT_EQ(m_dialog->GetCurrentModule()->GetCatalog(), QString::fromLatin1(c.current));
        EXPECT_EQ(storedDescription(QStringLiteral("NV-1108")), QString::fromUtf8(c.stored));
        const bool stayed = c.answer == kIdCancel;
        EXPECT_EQ(saveLit(), stayed);
        if (stayed) {
            // The change is still there, unsaved; the next try gives it up.
            EXPECT_EQ(m_dialog->GetCurrentModule()->GetDescription(),
                      QStringLiteral("eight inputs"));
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
    EXPECT_EQ(storedDescription(QStringLiteral("NV-1108")), kNv1108Description);
}

TEST_F(CMEditDlgTest, DeletingTheOpenCatalogDropsRowChangesButLeavesTheSpecDataToAsk) {
    click(item(kInputs, QStringLiteral("NV-1108")));
    // A value of row 2 left behind: it counts as unsaved rows.
    ClickCell(m_dialog->TermGrid(), 2, CTermGridWnd::ColumnShow);
    TypeIntoCell(m_dialog->AttribGrid(), 1, terminalColumn(), QStringLiteral("20"));
    ClickCell(m_dialog->TermGrid(), 3, CTermGridWnd::ColumnShow);
    EXPECT_TRUE(m_dialog->IsRowsDirty());
    changeSpecData(QStringLiteral("eight inputs"));
    tree().SetContextItem(item(kInputs, QStringLiteral("NV-1108")));
    m_messages.answers = {kIdYes, kIdNo};  // delete it; do not save
    tree().OnDelete();
    EXPECT_EQ(m_messages.shown.at(0).number, 10121);
    EXPECT_FALSE(m_dialog->IsRowsDirty());
    // The flag of changed spec data stood when the selection left the deleted catalog.
    EXPECT_EQ(questionsAsked(4012), 1);
    EXPECT_EQ(storedDescription(QStringLiteral("NV-1108")), QStringLiteral("<no module>"));
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

    startHostWithoutDatabase();
    CMEditDlg missing;
    script.push(endsAtOnce);
    EXPECT_EQ(ModalRunner::Run(missing), kIdCancel);
    EXPECT_TRUE(m_messages.shown.empty());

    // A file that is no database: message 5003 with the path, under title 5000.
    const QString junk = writeJunk();
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

    // Asked each time; only Yes upgrades the file and lets the selection move.
    for (const auto& [answer, upgraded] : {std::pair{kIdNo, false}, std::pair{kIdYes, true}}) {
        m_messages.answers = {answer};
        oldTree.setCurrentItem(type);
        EXPECT_EQ(oldTree.currentItem(), upgraded ? type : before);
        bool required = upgraded;  // the opposite of the answer expected
        CheckForMigration(old, required, false, QString());
        EXPECT_EQ(required, !upgraded);
    }
    EXPECT_EQ(m_messages.shown.size(), 2u);
    EXPECT_EQ(questionsAsked(10126), 2);
}

TEST_F(CMEditDlgTest, CellChangesLightSaveAndSaveWritesExactlyThoseIntoTheStore) {
    click(item(kInputs, QStringLiteral("NV-1108")));
    const QStringList before = storedRows(QStringLiteral("NV-1108"));
    ASSERT_EQ(before.size(), 11);
    EXPECT_FALSE(saveLit());

    TypeIntoCell(m_dialog->TermGrid(), 4, CTermGridWnd::ColumnSpacing, QStringLiteral("1.5"));
    EXPECT_TRUE(saveLit());
    // A value typed into the attribute grid and not yet taken into the row.
    ClickCell(m_dialog->TermGrid(), 3, CTermGridWnd::ColumnShow);
    TypeIntoCell(m_dialog->AttribGrid(), 1, terminalColumn(), QStringLiteral("30"));

    clickButton(CMEditDlg::kIdSave);
    QCoreApplication::processEvents();
    EXPECT_FALSE(saveLit());
    QStringList expected = before;
    expected[2] = QStringLiteral("HP?DI|TERM_=30;\\SPECIAL=ADDR_IN;DESC2=CH01");
    expected[3] = QStringLiteral(
        "HP?DI|TERM_=4;\\SPECIAL=ADDR_IN;DESC3=CH02;"
        "\\SPECIAL=SPACINGFACTOR=1.500000");
    EXPECT_EQ(storedRows(QStringLiteral("NV-1108")), expected);

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
        for (const auto& [id, text] : {std::pair{CPickTerm::kIdCategories, "Digital"},
                                       std::pair{CPickTerm::kIdBlocks, "Digital output"}}) {
            auto* list = FindControl<QListWidget>(&picker, id);
            const auto found = list->findItems(QString::fromLatin1(text), Qt::MatchExactly);
            EXPECT_EQ(found.size(), 1) << text;
            if (found.size() == 1) {
                ClickItem(*list, list->row(found.first()));
            }
        }
        QTest::mouseClick(FindControl<QPushButton>(&picker, CPickTerm::kIdOk), Qt::LeftButton);
        return 0;
    });
    // The picker writes the block only into the current cell's row when that cell is in
    // the terminal column, so the user clicks the cell first.
    CTermGridWnd& rows = m_dialog->TermGrid();
    ClickCell(rows, 3, CTermGridWnd::ColumnTerminal);
    ChooseCellMenuEntry(*m_dialog, rows, 3, CTermGridWnd::ColumnTerminal,
                        LoadResString(CTermGridWnd::kCmdEditCells));
    QCoreApplication::processEvents();
    EXPECT_TRUE(script.done());
    EXPECT_EQ(script.seen, QStringList{QStringLiteral("CPickTerm")});
    EXPECT_TRUE(saveLit());
    EXPECT_EQ(m_dialog->GetCurrentModule()->GetTermText(3), QStringLiteral("HP?DO"));

    // An attribute value typed and taken back with Ctrl+Z, once the editor is active again.
    ASSERT_TRUE(Activate(*m_dialog));
    CAttribGridWnd& attributes = m_dialog->AttribGrid();
    const int term = terminalColumn();
    TypeIntoCell(attributes, 1, term, QStringLiteral("99"));
    EXPECT_EQ(attributes.CellText(1, term), QStringLiteral("99"));
    attributes.setFocus();
    QTest::keyClick(&attributes, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(attributes.CellText(1, term), QStringLiteral("3"));

    clickButton(CMEditDlg::kIdSave);
    EXPECT_EQ(m_dialog->GetCurrentModule()->GetTermText(3), QStringLiteral("HP?DO"));
    // The export changes in that row's text only.
    QJsonObject expected = before;
    QJsonArray modules = expected.value(QStringLiteral("modules")).toArray();
    const auto isNv1108 = [](const QJsonValue& m) {
        return m[QStringLiteral("spec")][QStringLiteral("Code")] == QStringLiteral("NV-1108");
    };
    const auto at = std::find_if(modules.begin(), modules.end(), isNv1108);
    ASSERT_NE(at, modules.end());
    QJsonObject module = at->toObject();
    QJsonArray terminals = module[QStringLiteral("terminals")].toArray();
    QJsonObject third = terminals[2].toObject();
    EXPECT_EQ(third.value(QStringLiteral("text")), QStringLiteral("HP?DI"));
    third[QStringLiteral("text")] = QStringLiteral("HP?DO");
    terminals[2] = third;
    module[QStringLiteral("terminals")] = terminals;
    *at = module;
    expected[QStringLiteral("modules")] = modules;
    EXPECT_EQ(QString::fromUtf8(QJsonDocument(exported()).toJson()),
              QString::fromUtf8(QJsonDocument(expected).toJson()));
}

TEST_F(CMEditDlgTest, ReturnInTheSearchLoadsTheMatchAsAClickDoesAndEscapeOnlyClearsIt) {
    QLineEdit& field = m_dialog->Search().Field();
    QTest::mouseClick(&field, Qt::LeftButton);
    QTest::keyClicks(&field, QStringLiteral("kx-"));
    EXPECT_FALSE(tree().isVisible());
    QTest::keyClick(&field, Qt::Key_Escape);
    EXPECT_TRUE(m_dialog->isVisible());
    EXPECT_EQ(field.text(), QString());
    EXPECT_TRUE(tree().isVisible());

    QTest::keyClicks(&field, QStringLiteral("1116"));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_TRUE(m_dialog->isVisible());
    ASSERT_NE(m_dialog->GetCurrentModule(), nullptr);
    EXPECT_EQ(tree().currentItem()->text(0), QStringLiteral("NV-1116"));
    EXPECT_EQ(m_dialog->TermGrid().model()->rowCount(), storedRows("NV-1116").size());

    // Cancel at the question about unsaved changes keeps the module and the search.
    changeSpecData(QStringLiteral("sixteen inputs"));
    QTest::keyClicks(&field, QStringLiteral("nv-1132"));
    m_messages.answers = {kIdCancel};
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_EQ(questionsAsked(4012), 1);
    EXPECT_EQ(m_dialog->GetCurrentModule()->GetDescription(), QStringLiteral("sixteen inputs"));
    EXPECT_EQ(field.text(), QStringLiteral("nv-1132"));
    EXPECT_TRUE(m_dialog->Search().Matches().isVisible());

    // A double click on the match goes the same way; No gives the change up.
    QTreeWidget& matches = m_dialog->Search().Matches();
    m_messages.answers = {kIdNo};
    ClickCell(matches, 1, 1);
    QTest::mouseDClick(matches.viewport(), Qt::LeftButton, {}, CellCentre(matches, 1, 1));
    EXPECT_EQ(m_dialog->GetCurrentModule()->GetCatalog(), QStringLiteral("NV-1132"));
    EXPECT_EQ(field.text(), QString());
    EXPECT_EQ(storedDescription(QStringLiteral("NV-1116")),
              QStringLiteral("16 point 24V DC sink input"));
}

TEST_F(CMEditDlgTest, AModuleThatAnotherHoldsOpensReadOnlyWithTheHolderNamedUntilItIsLetGo) {
    // The editor lets go of the module that it opened last time.
    click(item(kInputs));
    ZelPlcDbIO other;
    QString table;
    ASSERT_TRUE(
        other.PutConnectionString("Data Source=" + databasePath() + ";Mode=Share Deny None"));
    ASSERT_TRUE(other.GetTypeTableName(kNorvale, kSeries, kInputs, table));
    bool granted = false;
    ModDB::ModuleLock holder;
    const QByteArray user = qgetenv("USER");
    qputenv("USER", "anna");
    ASSERT_TRUE(other.LockModule(table, QStringLiteral("nv-1108"), granted, holder) && granted);
    qputenv("USER", user);
    const QStringList before = storedRows(QStringLiteral("NV-1108"));

    click(item(kInputs, QStringLiteral("NV-1108")));
    ASSERT_EQ(questionsAsked(4037), 1);
    EXPECT_TRUE(m_messages.shown.back().text.startsWith("anna on " + QSysInfo::machineHostName() +
                                                        " has had this module open"));
    // No cell editor opens, and a save writes nothing.
    CTermGridWnd& grid = m_dialog->TermGrid();
    ClickCell(grid, 4, CTermGridWnd::ColumnSpacing);
    QTest::keyClick(&grid, Qt::Key_F2);
    EXPECT_EQ(QApplication::focusWidget(), &grid);
    EXPECT_FALSE(m_dialog->OnSave());
    EXPECT_EQ(storedRows(QStringLiteral("NV-1108")), before);
    // Nor can it be deleted.
    m_messages.answers = {kIdYes};
    tree().SetContextItem(item(kInputs, QStringLiteral("NV-1108")));
    tree().OnDelete();
    EXPECT_EQ(questionsAsked(4039), 1);
    EXPECT_EQ(storedRows(QStringLiteral("NV-1108")), before);

    ASSERT_TRUE(other.UnlockModule(table, QStringLiteral("NV-1108")));
    click(item(kInputs));
    click(item(kInputs, QStringLiteral("NV-1108")));
    EXPECT_FALSE(m_dialog->IsModuleReadOnly());
    // The editor holds it now.
    ASSERT_TRUE(other.LockModule(table, QStringLiteral("NV-1108"), granted, holder));
    EXPECT_FALSE(granted);
}
