#include "CBlocksGrid.h"
#include "CTermBlockDefsDlg.h"
#include "CTermGridWnd.h"
#include "EditorWindowFixture.h"
#include "ModalRunner.h"
#include "PlcdbProcess.h"
#include "TermGridModel.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using Defs = CTermBlockDefsDlg;

// The editor's Block Definitions button on the sample's block list less its shield block,
// in the first folder of the search path, where the editor finds it.
class CMEditDlgBlockDefsTest : public EditorWindowFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        QFile sample(SourcePath(QStringLiteral("data/sample/blocks/kvmbblks.bsf")));
        ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
        QFile bsf(m_dir.filePath(QStringLiteral("kvmbblks.bsf")));
        ASSERT_TRUE(bsf.open(QIODevice::WriteOnly));
        for (const QByteArray& line : sample.readAll().split('\n')) {
            bsf.write(line.startsWith(":HP1SHLD;") ? QByteArray() : line + '\n');
        }
        bsf.close();
        openEditor();
    }
    void select(const QString& type, const QString& catalog) { click(item(type, catalog)); }
    QString selected() {
        const QTreeWidgetItem* item = tree().SelectedItem();
        return item ? item->text(0) : QString();
    }
    QStringList terminalChoices() {
        return m_dialog->TermGrid().Model()->Choices(CTermGridWnd::ColumnTerminal);
    }
};

TEST_F(CMEditDlgBlockDefsTest, ABlockAddedFromAModuleReachesTheTerminalGridAndPlcdbBlocks) {
    select(QStringLiteral("Digital Input"), QStringLiteral("NV-1108"));
    ASSERT_TRUE(m_dialog->IsModuleLoaded());
    ASSERT_FALSE(terminalChoices().contains(QStringLiteral("Cable shield")));
    m_dialog->MarkSpecChanged();
    m_messages.answers = {kIdNo};

    QueuedModalScript script;
    script.push([](QDialog& d) {
        auto& defs = static_cast<Defs&>(d);
        QTest::mouseClick(FindControl<QPushButton>(&d, Defs::kIdAddFromModule), Qt::LeftButton);
        // Keys reach the cells' editors only in the active window.
        EXPECT_TRUE(QTest::qWaitFor([&d] {
            d.activateWindow();
            return QApplication::activeWindow() == &d;
        }));
        const int row = defs.Table().RowCount();
        EXPECT_EQ(defs.Grid().GetCellValue(row, 1), QStringLiteral("VP1SHLD"));
        // The merge names a vertical block under H; the folder has the horizontal one.
        TypeIntoCell(defs.Grid(), row, 1, QStringLiteral("HP1SHLD"));
        TypeIntoCell(defs.Grid(), row, 2, QStringLiteral("Analog"));
        TypeIntoCell(defs.Grid(), row, 3, QStringLiteral("Cable shield"));
        return int(kIdOk);
    });
    script.push([](QDialog& d) {
        auto* tree = FindControl<CModuleTree>(&d, 200);
        tree->setCurrentItem(
            tree->FindItem(kNorvale, kSeries, QStringLiteral("Analog Input"), "NV-1404"));
        return int(kIdOk);
    });
    clickButton(CMEditDlg::kIdBlockDefs);
    EXPECT_TRUE(script.done());
    EXPECT_EQ(script.seen, (QStringList{"CTermBlockDefsDlg", "CABSelDlg"}));

    // The unsaved module was asked about, and no module stays over the new list.
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 4012);
    EXPECT_FALSE(m_dialog->IsModuleLoaded());
    EXPECT_EQ(selected(), QStringLiteral("Digital Input"));
    EXPECT_EQ(terminalChoices().size(), 13);
    EXPECT_EQ(terminalChoices().value(12), QStringLiteral("Cable shield"));

    const PlcdbRun run =
        RunPlcdb({"--support-path", QDir::toNativeSeparators(m_dir.path()), "--kv-lib",
                  QDir::toNativeSeparators(BuildPath(QStringLiteral("sample/blocks"))), "blocks",
                  "--dir", QDir::toNativeSeparators(m_dir.path())});
    ASSERT_EQ(run.status, 0) << qPrintable(run.err);
    const QJsonArray blocks =
        QJsonDocument::fromJson(run.out.toUtf8()).object()[QLatin1String("blocks")].toArray();
    ASSERT_EQ(blocks.size(), 13);
    const QJsonObject shield = blocks.last().toObject();
    EXPECT_EQ(shield[QLatin1String("file")].toString(), QStringLiteral("HP1SHLD"));
    EXPECT_EQ(shield[QLatin1String("category")].toString(), QStringLiteral("Analog"));
    EXPECT_EQ(shield[QLatin1String("description")].toString(), QStringLiteral("Cable shield"));
    QStringList tags;
    for (const QJsonValue& attribute : shield[QLatin1String("attributes")].toArray()) {
        tags << attribute.toObject()[QLatin1String("tag")].toString();
    }
    EXPECT_EQ(tags, (QStringList{"CHAN", "TERM_"}));

    // The editor works on after the selection's and the merge's stores were closed.
    select(QStringLiteral("Analog Input"), QStringLiteral("NV-1404"));
    ASSERT_TRUE(m_dialog->IsModuleLoaded());
    EXPECT_NE(m_dialog->TermGrid().Model()->DisplayText(1, CTermGridWnd::ColumnTerminal),
              QString());
}

TEST_F(CMEditDlgBlockDefsTest, OkWithNoChangeKeepsTheLoadedModule) {
    select(QStringLiteral("Digital Input"), QStringLiteral("NV-1108"));
    ASSERT_TRUE(m_dialog->IsModuleLoaded());
    QueuedModalScript script;
    script.pushAnswer(kIdOk);
    clickButton(CMEditDlg::kIdBlockDefs);
    EXPECT_TRUE(script.done());
    EXPECT_TRUE(m_dialog->IsModuleLoaded());
    EXPECT_EQ(selected(), QStringLiteral("NV-1108"));
}
