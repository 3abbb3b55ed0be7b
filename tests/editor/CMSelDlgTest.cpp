#include "CKVModuleDB.h"
#include "CMSelDlg.h"
#include "CModuleTree.h"
#include "CatalogLookup.h"
#include "DialogControls.h"
#include "EditorFixture.h"
#include "LispText.h"
#include "ModalRunner.h"
#include "SelectionList.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QPushButton>
#include <QTreeWidget>

namespace {

const QString kKestrel = QStringLiteral("Kestrel Automation");

}  // namespace

class CMSelDlgTest : public EditorFixture {
protected:
    QString expected(const QString& type, const QString& catalog, int style, bool horizontal,
                     double scale, bool extra) {
        CKVModuleDB db;
        EXPECT_TRUE(db.Open(databasePath()));
        CatalogPath path;
        EXPECT_TRUE(FindCatalog(db, kKestrel, QStringLiteral("KX"), type, catalog, path));
        const int handle = db.LoadModule(path.table, path.catalog, false);
        CKVModule module = db.GetModule(handle);
        module.SetManufacturer(path.manufacturer);
        HostValue answer;
        EXPECT_TRUE(
            BuildSelectionAnswer(module, &db, style, false, horizontal, scale, extra, answer));
        return LispText::Print(answer);
    }
    // Selects a type in the tree and a catalog row in its list.
    static void chooseInList(CMSelDlg& dialog, const QString& type, const QString& catalog) {
        CModuleTree& tree = dialog.Tree();
        QTreeWidgetItem* kx = tree.FindItem(kKestrel, QStringLiteral("KX"), type, catalog);
        ASSERT_NE(kx, nullptr);
        tree.setCurrentItem(kx->parent());
        QTreeWidget& list = dialog.List();
        for (int i = 0; i < list.topLevelItemCount(); ++i) {
            list.topLevelItem(i)->setSelected(list.topLevelItem(i)->text(0) == catalog);
        }
    }
};

TEST_F(CMSelDlgTest, ACatalogChosenInItsTypesListGivesItsWholeList) {
    CMSelDlg dialog;
    dialog.SetStyle(3);
    dialog.SetOrientation(1);
    dialog.SetScale(2.5);
    dialog.SetExtraFlag(true);
    QueuedModalScript script;
    script.push([](QDialog& d) {
        auto& selection = static_cast<CMSelDlg&>(d);
        chooseInList(selection, QStringLiteral("Digital Input"), QStringLiteral("KX-DI24"));
        EXPECT_EQ(selection.List().topLevelItemCount(), 2);
        EXPECT_TRUE(FindControl<QPushButton>(&d, CMSelDlg::kIdOk)->isEnabled());
        selection.OnOK();
        return 0;
    });
    ASSERT_EQ(ModalRunner::Run(dialog), kIdOk);
    ASSERT_TRUE(dialog.HasResult());
    EXPECT_EQ(
        LispText::Print(dialog.GetResult()),
        expected(QStringLiteral("Digital Input"), QStringLiteral("KX-DI24"), 3, true, 2.5, true));
    // The tree follows the row that was confirmed.
    EXPECT_EQ(dialog.Tree().currentItem()->text(0), QStringLiteral("KX-DI24"));
}

TEST_F(CMSelDlgTest, OkNeedsAScaleAndATypeNeedsARow) {
    CMSelDlg dialog;
    QueuedModalScript script;
    script.push([this](QDialog& d) {
        auto& selection = static_cast<CMSelDlg&>(d);
        chooseInList(selection, QStringLiteral("Analog Output"), QStringLiteral("KX-AO8"));
        auto* scale = FindControl<QComboBox>(&d, CMSelDlg::kIdScale);
        auto* ok = FindControl<QPushButton>(&d, CMSelDlg::kIdOk);
        EXPECT_TRUE(ok->isEnabled());
        scale->setEditText(QString());
        EXPECT_FALSE(ok->isEnabled());
        scale->setEditText(QStringLiteral("abc"));
        EXPECT_TRUE(ok->isEnabled());

        selection.List().clearSelection();
        selection.OnOK();
        EXPECT_TRUE(d.isVisible());
        EXPECT_EQ(m_messages.shown.size(), 1u);
        return int(kIdCancel);
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 4005);
}

TEST_F(CMSelDlgTest, TheRecentSelectionOpensTheNextDialog) {
    QueuedModalScript script;
    {
        CMSelDlg first;
        script.push([](QDialog& d) {
            auto& selection = static_cast<CMSelDlg&>(d);
            selection.Tree().SelectModule(kKestrel, "KX", "Analog Output", "KX-AO2");
            selection.OnOK();
            return 0;
        });
        ASSERT_EQ(ModalRunner::Run(first), kIdOk);
    }
    CMSelDlg second;
    script.push([](QDialog& d) {
        auto& selection = static_cast<CMSelDlg&>(d);
        EXPECT_EQ(selection.Tree().currentItem()->text(0), QStringLiteral("KX-AO2"));
        EXPECT_EQ(selection.List().topLevelItemCount(), 1);
        return int(kIdCancel);
    });
    EXPECT_EQ(ModalRunner::Run(second), kIdCancel);
    EXPECT_TRUE(script.done());
}

TEST_F(CMSelDlgTest, LockedStyleAndOrientationStillReachTheList) {
    CMSelDlg dialog;
    dialog.SetStyle(4);
    dialog.SetOrientation(1);
    dialog.SetLockStyle(true);
    dialog.SetScale(1.0);
    QueuedModalScript script;
    script.push([](QDialog& d) {
        auto& selection = static_cast<CMSelDlg&>(d);
        EXPECT_FALSE(FindControl<QAbstractButton>(&d, CMSelDlg::kIdStyleFirst + 3)->isEnabled());
        EXPECT_FALSE(FindControl<QAbstractButton>(&d, CMSelDlg::kIdVertical)->isEnabled());
        selection.Tree().SelectModule(kKestrel, "KX", "Digital Input", "KX-DI16");
        selection.OnOK();
        return 0;
    });
    ASSERT_EQ(ModalRunner::Run(dialog), kIdOk);
    EXPECT_TRUE(
        LispText::Print(dialog.GetResult()).endsWith(QStringLiteral("(\"4\" \"H\" 1.0 nil)")))
        << qPrintable(LispText::Print(dialog.GetResult()));
}

TEST_F(CMSelDlgTest, WithoutADatabaseTheDialogCancels) {
    QFile::remove(databasePath());
    m_host.reset(new StandaloneHost(StandaloneHostConfig()));
    m_host->setReporter([](const QString&) {});
    m_host->openDocument();
    SetCurrentHost(m_host.get());
    CMSelDlg dialog;
    QueuedModalScript script;
    script.push([](QDialog&) { return 0; });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
}
