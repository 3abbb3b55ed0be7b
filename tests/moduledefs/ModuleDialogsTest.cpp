#include "CKVModuleDB.h"
#include "CModBoxInfoDlg.h"
#include "CModEditSpecsDlg.h"
#include "CModNewDlg.h"
#include "CPromptDlg.h"
#include "DialogControls.h"
#include "EditorFixture.h"
#include "ModalRunner.h"
#include "PlcdbProcess.h"
#include "ViewInput.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include <memory>

namespace {

using Dlg = CModDataDlgBase;
const QString kInputs = QStringLiteral("Digital Input");

QComboBox* Combo(QWidget* dialog, int id) {
    return FindControl<QComboBox>(dialog, id);
}

// The line edit of an edit or of an editable combo.
QLineEdit* Edit(QWidget* dialog, int id) {
    if (QComboBox* combo = Combo(dialog, id)) {
        return combo->lineEdit();
    }
    return FindControl<QLineEdit>(dialog, id);
}

// Opens the combo's list and clicks the entry, as a user chooses it.
void ChooseEntry(QComboBox* combo, const QString& text) {
    combo->showPopup();
    QAbstractItemView* view = combo->view();
    const QModelIndex index = view->model()->index(combo->findText(text), 0);
    ASSERT_TRUE(index.isValid()) << qPrintable(text);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(index).center());
}

}  // namespace

class ModuleDialogsTest : public EditorFixture {
protected:
    void writeDefault(const char* name, const QByteArray& text) {
        QFile file(m_dir.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    // The new-module dialog on the database copy with the caller's names, shown and
    // active for keys and focus.
    CModNewDlg& openNew(const QStringList& names = {}) {
        m_new = std::make_unique<CModNewDlg>();
        m_new->SetDbPath(databasePath());
        m_new->SetManufacturer(names.value(0));
        m_new->SetSeries(names.value(1));
        m_new->SetType(names.value(2));
        EXPECT_TRUE(ShowActive(*m_new));
        return *m_new;
    }
    void type(QWidget* dialog, int id, const QString& text) {
        QLineEdit* edit = Edit(dialog, id);
        edit->setFocus();
        QTest::keyClicks(edit, text);
    }
    void clear(QWidget* dialog, int id) {
        Edit(dialog, id)->selectAll();
        QTest::keyClick(Edit(dialog, id), Qt::Key_Backspace);
    }
    void click(QWidget* dialog, int id) {
        QTest::mouseClick(FindControl<QPushButton>(dialog, id), Qt::LeftButton);
    }
    bool okLit(QWidget* dialog) {
        return FindControl<QPushButton>(dialog, Dlg::kIdOk)->isEnabled();
    }

    std::unique_ptr<CModNewDlg> m_new;
};

TEST_F(ModuleDialogsTest, TypedNamesLoseLeadingBlanksAndStopAtTheirLimitWithTheCaretAtTheEnd) {
    CModNewDlg& dialog = openNew();
    const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyz");
    const QString long3 = letters + letters + letters;
    const struct {
        int id;
        QString typed;
        QString shown;
    } cases[] = {
        {Dlg::kIdManufacturer, QStringLiteral("  ") + letters.left(25), letters.left(24)},
        {Dlg::kIdSeries, QStringLiteral(" ") + letters, letters.left(24)},
        {Dlg::kIdType, QStringLiteral("  ") + long3, long3.left(60)},
        {Dlg::kIdCatalog, QStringLiteral(" ") + long3, long3.left(60)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        type(&dialog, c.id, c.typed);
        EXPECT_EQ(Edit(&dialog, c.id)->text(), c.shown);
        EXPECT_EQ(Edit(&dialog, c.id)->cursorPosition(), c.shown.size());
        // Trailing blanks go when the user leaves the field, and only then.
        clear(&dialog, c.id);
        type(&dialog, c.id, QStringLiteral("NV 1  "));
        EXPECT_EQ(Edit(&dialog, c.id)->text(), QStringLiteral("NV 1  "));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        EXPECT_EQ(Edit(&dialog, c.id)->text(), QStringLiteral("NV 1"));
    }
}

TEST_F(ModuleDialogsTest, OkIsOnExactlyWhileTheFiveTextsAreThere) {
    CModNewDlg& dialog = openNew();
    EXPECT_FALSE(okLit(&dialog));
    type(&dialog, Dlg::kIdManufacturer, kNorvale);
    type(&dialog, Dlg::kIdSeries, kSeries);
    type(&dialog, Dlg::kIdType, kInputs);
    type(&dialog, Dlg::kIdCatalog, QStringLiteral("   "));
    EXPECT_FALSE(okLit(&dialog));
    type(&dialog, Dlg::kIdCatalog, QStringLiteral("NV-1199"));
    EXPECT_TRUE(okLit(&dialog));
    clear(&dialog, Dlg::kIdTermCount);
    EXPECT_FALSE(okLit(&dialog));

    // A count out of its range is refused with the range message before the store is
    // touched.
    for (const char* count : {"0", "10001"}) {
        clear(&dialog, Dlg::kIdTermCount);
        type(&dialog, Dlg::kIdTermCount, QString::fromLatin1(count));
        m_messages.shown.clear();
        click(&dialog, Dlg::kIdOk);
        ASSERT_EQ(m_messages.shown.size(), 1u);
        EXPECT_TRUE(m_messages.shown[0].text.contains(QStringLiteral("10000")));
        EXPECT_TRUE(dialog.isVisible());
    }
    EXPECT_FALSE(stored(kInputs, QStringLiteral("NV-1199")));
}

TEST_F(ModuleDialogsTest, AnExistingCatalogShowsItsMessageAndPutsTheFocusOnTheCatalog) {
    CModNewDlg& dialog = openNew({kNorvale, kSeries, kInputs});
    type(&dialog, Dlg::kIdCatalog, QStringLiteral("nv-1108"));
    Edit(&dialog, Dlg::kIdDescription)->setFocus();
    click(&dialog, Dlg::kIdOk);
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 10117);
    EXPECT_TRUE(m_messages.shown[0].text.contains(QStringLiteral("\"nv-1108\"")));
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(QApplication::focusWidget(), Edit(&dialog, Dlg::kIdCatalog));
    EXPECT_EQ(stored(kInputs, QStringLiteral("NV-1108")).value_or(CKVModule()).GetDescription(),
              QStringLiteral("8 point 24V DC sink input"));
}

TEST_F(ModuleDialogsTest, TheModuleDataDialogShowsTheModuleAndChangesItOnlyOnOk) {
    CKVModule module = stored(kInputs, QStringLiteral("NV-1108")).value_or(CKVModule());
    ASSERT_EQ(module.GetTermCount(), 11);
    module.SetAddrBase(QStringLiteral("HEX"));
    module.SetBoxA1(-1.0);
    module.SetBoxA2(0.0);
    module.SetDirFlags(QStringLiteral("0"));
    const CKVModule original = module;
    QWidget owner;
    owner.setGeometry(40, 300, 700, 500);
    owner.show();

    const struct {
        int answer;
        int promptAnswer;
    } cases[] = {{kIdCancel, kIdOk}, {kIdOk, kIdCancel}, {kIdOk, kIdOk}};
    for (const auto& c : cases) {
        CModEditSpecsDlg dialog(&module, &owner);
        dialog.SetManufacturer(kNorvale);
        dialog.SetSeries(kSeries);
        dialog.SetType(kInputs);
        QueuedModalScript script;
        script.push([&](QDialog& d) {
            EXPECT_EQ(d.windowTitle(), QStringLiteral("Edit Module Data"));
            EXPECT_EQ(d.frameGeometry().top(), owner.frameGeometry().top());
            for (const int id : {Dlg::kIdManufacturer, Dlg::kIdSeries, Dlg::kIdType,
                                 Dlg::kIdCatalog, Dlg::kIdTermCount, Dlg::kIdTermSpin}) {
                EXPECT_FALSE(FindControl<QWidget>(&d, id)->isEnabled()) << id;
            }
            EXPECT_EQ(Edit(&d, Dlg::kIdTermCount)->text(), QStringLiteral("11"));
            EXPECT_EQ(Combo(&d, Dlg::kIdAddrBase)->currentIndex(), 2);
            EXPECT_EQ(Combo(&d, Dlg::kIdDirection)->currentText(), QStringLiteral("Not set"));
            click(&d, Dlg::kIdBoxInfo);
            click(&d, Dlg::kIdPrompts);
            clear(&d, Dlg::kIdDescription);
            type(&d, Dlg::kIdDescription, QStringLiteral("eight inputs"));
            return c.answer;
        });
        script.push([](QDialog& box) {
            // Unset shows empty, zero shows as a number.
            const QStringList texts = static_cast<CModBoxInfoDlg&>(box).GetTexts();
            EXPECT_EQ(texts.value(BoxTextOrder::ValueIndex(false, 1)), QString());
            EXPECT_EQ(texts.value(BoxTextOrder::ValueIndex(false, 2)), QStringLiteral("0.0000"));
            EXPECT_EQ(texts.value(BoxTextOrder::ValueIndex(false, 3)), QStringLiteral("0.2500"));
            return int(kIdCancel);
        });
        script.push([&c](QDialog& prompts) {
            ClickItem(*FindControl<QListWidget>(&prompts, CPromptDlg::kIdPrompts), 0);
            QTest::keyClicks(FindControl<QLineEdit>(&prompts, CPromptDlg::kIdEntry),
                             QStringLiteral("BANK"));
            QTest::mouseClick(FindControl<QPushButton>(&prompts, CPromptDlg::kIdSet),
                              Qt::LeftButton);
            return c.promptAnswer;
        });
        EXPECT_EQ(ModalRunner::Run(dialog), c.answer);
        EXPECT_TRUE(script.done());

        const bool bOk = c.answer == kIdOk;
        EXPECT_EQ(module.GetDescription(),
                  bOk ? QStringLiteral("eight inputs") : original.GetDescription());
        EXPECT_EQ(module.GetAddrBase(),
                  bOk ? QStringLiteral("Hexadecimal") : QStringLiteral("HEX"));
        EXPECT_EQ(module.GetDirFlags(), QStringLiteral("0"));
        EXPECT_EQ(module.GetBoxA1(), -1.0);
        EXPECT_EQ(module.GetBoxA2(), 0.0);
        QStringList prompts(9, QString());
        prompts[0] =
            bOk && c.promptAnswer == kIdOk ? QStringLiteral("BANK") : QStringLiteral("RACK");
        prompts[1] = QStringLiteral("SLOT");
        EXPECT_EQ(module.Prompts(), prompts);
    }
}

TEST_F(ModuleDialogsTest, TheDialogAndPlcdbNewMakeTheSameModuleFromTheSameInputs) {
    writeDefault("KVDEFINF.DAT", "Defaults of a new module\n;Hex\n;24V DC\n;7\n;4\n" +
                                     QByteArray(";\n").repeated(12) + ";NOTE.SHT\n;TAIL.SHT\n");
    writeDefault("KVDEFPMT.DAT", "RACK\nSLOT\n");
    writeDefault("KVDEFTPS.DAT", "Relay Output\n");
    const QString second = m_dir.filePath(QStringLiteral("SECOND.MDB"));
    ASSERT_TRUE(QFile::copy(BuildPath(QStringLiteral("sample/ZEL_PLC.MDB")), second));

    // A type the store lacks, chosen from the defaults, makes a new index row.
    CModNewDlg& dialog = openNew({QStringLiteral("Kestrel Automation"), QStringLiteral("KX")});
    ChooseEntry(Combo(&dialog, Dlg::kIdType), QStringLiteral("Relay Output"));
    type(&dialog, Dlg::kIdCatalog, QStringLiteral("KX-RO4"));
    type(&dialog, Dlg::kIdDescription, QStringLiteral("4 relays, 2A"));
    type(&dialog, Dlg::kIdColText1, QStringLiteral("4 pts"));
    QTest::keyClick(Combo(&dialog, Dlg::kIdAddrBase), Qt::Key_Up);
    ChooseEntry(Combo(&dialog, Dlg::kIdDirection), QStringLiteral("Output"));
    click(&dialog, Dlg::kIdOk);
    ASSERT_FALSE(dialog.isVisible());

    qputenv("PLCDB_PROGRAM_DIR", m_dir.path().toLocal8Bit());
    const PlcdbRun made =
        RunPlcdb({"--db", second, "new", "--manufacturer", "Kestrel Automation", "--series", "KX",
                  "--type", "Relay Output", "--catalog", "KX-RO4", "--description", "4 relays, 2A",
                  "--col-text1", "4 pts", "--address-base", "hexadecimal", "--direction", "out"});
    qunsetenv("PLCDB_PROGRAM_DIR");
    ASSERT_EQ(made.status, 0) << qPrintable(made.err);

    const QJsonObject fromDialog = ExportedModule(databasePath(), QStringLiteral("KX-RO4"));
    const QJsonObject spec = fromDialog.value("spec").toObject();
    EXPECT_EQ(spec.value("AddrBase").toString(), QStringLiteral("Hexadecimal"));
    EXPECT_EQ(spec.value("DirFlags").toString(), QStringLiteral("2"));
    EXPECT_EQ(spec.value("ColText2").toString(), QStringLiteral("24V DC"));
    EXPECT_EQ(fromDialog.value("type").toString(), QStringLiteral("Relay Output"));
    EXPECT_EQ(fromDialog.value("terminals").toArray().size(), 4);
    EXPECT_EQ(ExportedModule(second, QStringLiteral("KX-RO4")), fromDialog);
}
