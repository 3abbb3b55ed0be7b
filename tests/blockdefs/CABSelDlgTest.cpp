#include "CABSelDlg.h"
#include "CKVModuleDB.h"
#include "CModuleTree.h"
#include "DialogControls.h"
#include "EditorFixture.h"
#include "ModalRunner.h"

#include <QApplication>
#include <QFile>
#include <QPushButton>
#include <QTest>
#include <QTreeWidget>

namespace {

const QString kKestrel = QStringLiteral("Kestrel Automation");

// The four names the dialog answered, in the order the caller takes them.
QStringList Answer(const CABSelDlg& dialog) {
    return {dialog.GetManufacturer(), dialog.GetSeries(), dialog.GetType(), dialog.GetCatalog()};
}

// Clicks (twice for a double click) an item as a user does, opening its parents first.
void ClickItem(QTreeWidget& tree, QTreeWidgetItem* item, bool twice = false) {
    for (QTreeWidgetItem* parent = item->parent(); parent; parent = parent->parent()) {
        parent->setExpanded(true);
    }
    tree.doItemsLayout();
    tree.scrollToItem(item);
    const QPoint at = tree.visualItemRect(item).center();
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, at);
    if (twice) {
        QTest::mouseDClick(tree.viewport(), Qt::LeftButton, {}, at);
    }
}

QTreeWidgetItem* Row(QTreeWidget& list, const QString& catalog) {
    return list.findItems(catalog, Qt::MatchExactly, 0).value(0);
}

// A type of Kestrel's KX series.
QTreeWidgetItem* Type(CABSelDlg& d, const char* type) {
    const auto flags = Qt::MatchExactly | Qt::MatchRecursive;
    for (QTreeWidgetItem* item : d.Tree().findItems(QLatin1String(type), flags)) {
        if (item->parent() && item->parent()->text(0) == QLatin1String("KX")) {
            return item;
        }
    }
    return nullptr;
}

QPushButton* Ok(QDialog& d) {
    return FindControl<QPushButton>(&d, CABSelDlg::kIdOk);
}

QStringList Listed(QTreeWidget& list) {
    QStringList catalogs;
    for (int i = 0; i < list.topLevelItemCount(); ++i) {
        catalogs << list.topLevelItem(i)->text(0);
    }
    return catalogs;
}

}  // namespace

class CABSelDlgTest : public EditorFixture {
protected:
    // Runs a dialog on the sample copy with one step of the user's, which answers its last
    // press (0 when it ended the dialog itself).
    int run(CABSelDlg& dialog, const std::function<int(CABSelDlg&)>& step) {
        dialog.SetPath(databasePath());
        QueuedModalScript script;
        script.push([&step](QDialog& d) { return step(static_cast<CABSelDlg&>(d)); });
        const int result = ModalRunner::Run(dialog);
        EXPECT_TRUE(script.done());
        return result;
    }
};

TEST_F(CABSelDlgTest, OkAnswersTheCatalogOfTheChosenRowOrTheTreeAndTheNextDialogOpensThere) {
    const struct {
        QStringList path;  // manufacturer, series, type, catalog
        bool bInTree;      // the catalog clicked in the tree, else its row under the type
        QStringList listed;
    } cases[] = {
        {{kKestrel, "KX", "Analog Output", "KX-AO8"}, false, {"KX-AO2", "KX-AO8"}},
        {{"Norvale Controls", "NV-100", "Analog Input", "NV-1408"}, true, {"NV-1408"}},
    };
    for (const auto& c : cases) {
        CABSelDlg dialog;
        const int result = run(dialog, [&c](CABSelDlg& d) {
            QTreeWidgetItem* catalog =
                d.Tree().FindItem(c.path[0], c.path[1], c.path[2], c.path[3]);
            if (!catalog) {
                ADD_FAILURE() << "no catalog " << qPrintable(c.path[3]);
                return int(kIdCancel);
            }
            ClickItem(d.Tree(), c.bInTree ? catalog : catalog->parent());
            EXPECT_EQ(Listed(d.List()), c.listed);
            // A catalog of the tree comes selected; under a type the user picks the row.
            EXPECT_EQ(Ok(d)->isEnabled(), c.bInTree);
            if (!c.bInTree) {
                ClickItem(d.List(), Row(d.List(), c.path[3]));
            }
            QTest::mouseClick(Ok(d), Qt::LeftButton);
            EXPECT_EQ(d.Tree().currentItem(), catalog);  // the tree follows the row
            return 0;
        });
        EXPECT_EQ(result, kIdOk) << qPrintable(c.path[3]);
        EXPECT_EQ(Answer(dialog), c.path);
    }
    EXPECT_TRUE(m_messages.shown.empty());
    CABSelDlg next;  // opens at the catalog last chosen
    run(next, [](CABSelDlg& d) {
        const QTreeWidgetItem* current = d.Tree().currentItem();
        EXPECT_EQ(current ? current->text(0) : QString(), QStringLiteral("NV-1408"));
        EXPECT_EQ(Listed(d.List()), QStringList({"NV-1408"}));
        EXPECT_TRUE(Ok(d)->isEnabled());
        return int(kIdCancel);
    });
    EXPECT_EQ(Answer(next), QStringList({"", "", "", ""}));
}

TEST_F(CABSelDlgTest, OkStaysDisabledUntilARowOfTheTypeIsChosen) {
    {
        CKVModuleDB db;
        ASSERT_TRUE(db.Open(databasePath()));
        ASSERT_TRUE(db.AddIndex(kKestrel, QStringLiteral("KX"), QStringLiteral("Relay Output")));
    }
    CABSelDlg dialog;
    run(dialog, [](CABSelDlg& d) {
        ClickItem(d.Tree(), Type(d, "Analog Output"));
        EXPECT_FALSE(Ok(d)->isEnabled());
        ClickItem(d.List(), Row(d.List(), "KX-AO2"));
        EXPECT_TRUE(Ok(d)->isEnabled());
        // A type without catalogs empties the list of the row chosen before.
        ClickItem(d.Tree(), Type(d, "Relay Output"));
        EXPECT_EQ(d.Tree().currentItem(), Type(d, "Relay Output"));
        EXPECT_EQ(d.List().topLevelItemCount(), 0);
        EXPECT_FALSE(Ok(d)->isEnabled());
        return int(kIdCancel);
    });
}

TEST_F(CABSelDlgTest, DoubleClicksConfirmOnARowOrACatalogButNotOnAType) {
    for (const bool bOnList : {true, false}) {  // on the list's row, else on the tree's catalog
        CABSelDlg dialog;
        const int result = run(dialog, [bOnList](CABSelDlg& d) {
            QTreeWidgetItem* type = Type(d, "Digital Input");
            if (!type) {
                ADD_FAILURE() << "no Kestrel KX Digital Input";
                return int(kIdCancel);
            }
            // A type with a row chosen is no catalog: a double click on it stays.
            ClickItem(d.Tree(), type);
            ClickItem(d.List(), Row(d.List(), "KX-DI16"));
            ClickItem(d.Tree(), type, true);
            QApplication::processEvents();
            EXPECT_TRUE(d.isVisible());

            ClickItem(d.Tree(), type);
            if (bOnList) {
                ClickItem(d.List(), Row(d.List(), "KX-DI16"), true);
            } else {
                ClickItem(d.Tree(), type->child(0), true);
            }
            // The confirmation is posted: the dialog ends once the events are handled.
            QApplication::processEvents();
            EXPECT_FALSE(d.isVisible());
            return 0;
        });
        EXPECT_EQ(result, kIdOk) << bOnList;
        EXPECT_EQ(Answer(dialog), QStringList({kKestrel, "KX", "Digital Input", "KX-DI16"}));
    }
    EXPECT_TRUE(m_messages.shown.empty());
}

TEST_F(CABSelDlgTest, AStoreThatCannotBeOpenedIsNamedAndTheDialogCancels) {
    EXPECT_FALSE(CABSelDlg().SetPath(QString()));
    const QString missing = m_dir.filePath(QStringLiteral("absent/ZEL_PLC.MDB"));
    CABSelDlg dialog;
    ASSERT_TRUE(dialog.SetPath(missing));
    QueuedModalScript script;
    script.push([](QDialog&) { return 0; });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 5003);
    EXPECT_TRUE(m_messages.shown[0].text.contains(QStringLiteral("absent")))
        << qPrintable(m_messages.shown[0].text);
    EXPECT_FALSE(QFile::exists(missing));
}
