#include "CModDataDlgBase.h"
#include "CTermGridWnd.h"
#include "EditorWindowFixture.h"
#include "ModalRunner.h"
#include "PlcdbProcess.h"
#include "TermGridModel.h"

#include <QComboBox>
#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
#include <QLineEdit>

namespace {

using Dlg = CModDataDlgBase;

void Type(QDialog& dialog, int id, const QString& text) {
    auto* edit = FindControl<QLineEdit>(&dialog, id);
    edit->clear();
    QTest::keyClicks(edit, text);
}

}  // namespace

// The editor's buttons and tree command that open the new-module and module-data dialogs.
class CMEditDlgModuleTest : public EditorWindowFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        QFile prompts(m_dir.filePath(QStringLiteral("KVDEFPMT.DAT")));
        ASSERT_TRUE(prompts.open(QIODevice::WriteOnly));
        prompts.write("RACK\nSLOT\n");
        prompts.close();
        openEditor();
    }
};

TEST_F(CMEditDlgModuleTest, NewOnATypeMakesAModuleThatTheTreeTheGridAndTheExportShow) {
    tree().setCurrentItem(itemAt({kNorvale, kSeries, QStringLiteral("Digital Input"), "NV-1108"}));
    QueuedModalScript script;
    script.push([](QDialog& d) {
        auto& dialog = static_cast<Dlg&>(d);
        // The names of the type the command was given, not of the selection.
        EXPECT_EQ(FindControl<QComboBox>(&d, Dlg::kIdType)->currentText(),
                  QStringLiteral("Digital Output"));
        Type(d, Dlg::kIdCatalog, QStringLiteral("NV-1203"));
        Type(d, Dlg::kIdDescription, QStringLiteral("3 relays 2A"));
        Type(d, Dlg::kIdTermCount, QStringLiteral("3"));
        QTest::mouseClick(FindControl<QPushButton>(&d, Dlg::kIdOk), Qt::LeftButton);
        EXPECT_EQ(dialog.GetCatalog(), QStringLiteral("NV-1203"));
        return 0;
    });
    tree().SetContextItem(item(QStringLiteral("Digital Output")));
    tree().OnNew();
    ASSERT_TRUE(QTest::qWaitFor([&script] { return script.done(); }));

    ASSERT_NE(tree().currentItem(), nullptr);
    EXPECT_EQ(tree().currentItem()->text(0), QStringLiteral("NV-1203"));
    EXPECT_EQ(tree().currentItem()->parent()->text(0), QStringLiteral("Digital Output"));
    CTermGridWnd& grid = m_dialog->TermGrid();
    // Three rows of the space block, the first of the sample block list.
    ASSERT_EQ(grid.Model()->RowCount(), 3);
    for (int row = 1; row <= 3; ++row) {
        EXPECT_EQ(grid.CellText(row, CTermGridWnd::ColumnTerminal), QStringLiteral("1"));
    }
    EXPECT_TRUE(button(CMEditDlg::kIdEditSpecs)->isEnabled());

    const auto row = [](const char* special) {
        return QJsonObject{{"text", "HP?SPACE"}, {"special", special}};
    };
    EXPECT_EQ(ExportedModule(databasePath(), QStringLiteral("NV-1203")).value("terminals"),
              (QJsonArray{row("%%1PROMPT=RACK;%%2PROMPT=SLOT;TERM_=1;MFG=Norvale Controls;"
                              "CAT=NV-1203;DESC=3 relays 2A;TAG=PLC%N;LINE1=RACK %%1;"
                              "LINE2=SLOT %%2"),
                          row("TERM_=2"), row("TERM_=3")}));
}

TEST_F(CMEditDlgModuleTest, EditSpecsIsOnExactlyWithAModuleAndItsOkMarksTheModuleChanged) {
    QPushButton* specs = button(CMEditDlg::kIdEditSpecs);
    tree().setCurrentItem(item(QStringLiteral("Digital Input")));
    EXPECT_FALSE(specs->isEnabled());
    tree().setCurrentItem(itemAt({kNorvale, kSeries, QStringLiteral("Digital Input"), "NV-1108"}));
    ASSERT_TRUE(specs->isEnabled());

    QueuedModalScript script;
    for (const int answer : {kIdCancel, kIdOk}) {
        script.push([answer](QDialog& d) {
            Type(d, Dlg::kIdDescription, QStringLiteral("eight inputs"));
            return answer;
        });
    }
    for (const bool bOk : {false, true}) {
        QTest::mouseClick(specs, Qt::LeftButton);
        EXPECT_EQ(m_dialog->IsSpecDirty(), bOk);
        EXPECT_EQ(button(CMEditDlg::kIdSave)->isEnabled(), bOk);
        EXPECT_EQ(
            m_dialog->GetCurrentModule()->GetDescription(),
            bOk ? QStringLiteral("eight inputs") : QStringLiteral("8 point 24V DC sink input"));
    }

    // New with a manufacturer selected gives the dialog that name alone.
    tree().setCurrentItem(itemAt({QStringLiteral("Kestrel Automation")}));
    m_messages.answers = {kIdNo};
    script.push([](QDialog& d) {
        EXPECT_EQ(static_cast<Dlg&>(d).GetManufacturer(), QStringLiteral("Kestrel Automation"));
        EXPECT_EQ(FindControl<QComboBox>(&d, Dlg::kIdSeries)->currentText(), QString());
        return int(kIdCancel);
    });
    QTest::mouseClick(button(CMEditDlg::kIdNewModule), Qt::LeftButton);
    EXPECT_TRUE(script.done());
    EXPECT_EQ(tree().currentItem()->text(0), QStringLiteral("Kestrel Automation"));
}
