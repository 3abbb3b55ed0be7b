#include "CABSelDlg.h"
#include "CKVModuleDB.h"
#include "CModuleTree.h"
#include "DialogControls.h"
#include "EditorFixture.h"
#include "GuiHostUi.h"
#include "ModalRunner.h"

#include <QApplication>
#include <QFile>
#include <QHeaderView>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>
#include <QTreeWidget>

namespace {

const QString kKestrel = QStringLiteral("Kestrel Automation");

// The four names the dialog answered, in the order the caller takes them.
QStringList Answer(const CABSelDlg& dialog) {
    return {dialog.GetManufacturer(), dialog.GetSeries(), dialog.GetType(), dialog.GetCatalog()};
}

// Brings an item of a tree into view, as a user opens its parents and scrolls to it.
QPoint ShowItem(QTreeWidget& tree, QTreeWidgetItem* item) {
    for (QTreeWidgetItem* parent = item->parent(); parent; parent = parent->parent()) {
        parent->setExpanded(true);
    }
    tree.doItemsLayout();
    tree.scrollToItem(item);
    return tree.visualItemRect(item).center();
}

void ClickItem(QTreeWidget& tree, QTreeWidgetItem* item) {
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, ShowItem(tree, item));
}

void DoubleClickItem(QTreeWidget& tree, QTreeWidgetItem* item) {
    const QPoint at = ShowItem(tree, item);
    QTest::mouseClick(tree.viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(tree.viewport(), Qt::LeftButton, {}, at);
}

QTreeWidgetItem* Row(QTreeWidget& list, const QString& catalog) {
    return list.findItems(catalog, Qt::MatchExactly, 0).value(0);
}

QPushButton* OkButton(QDialog& d) {
    return FindControl<QPushButton>(&d, CABSelDlg::kIdOk);
}

// The catalogs listed, top to bottom.
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
    // Runs a dialog on the sample copy with one step of the user's; the step answers its
    // last press (0 when it ended the dialog itself or leaves it open).
    int run(CABSelDlg& dialog, const std::function<int(CABSelDlg&)>& step) {
        dialog.SetPath(databasePath());
        QueuedModalScript script;
        script.push([&step](QDialog& d) { return step(static_cast<CABSelDlg&>(d)); });
        const int result = ModalRunner::Run(dialog);
        EXPECT_TRUE(script.done());
        return result;
    }

    // The type item of the sample, found as the user sees it.
    static QTreeWidgetItem* TypeItem(CABSelDlg& dialog, const QString& manufacturer,
                                     const QString& series, const QString& type) {
        const QList<QTreeWidgetItem*> found =
            dialog.Tree().findItems(type, Qt::MatchExactly | Qt::MatchRecursive);
        for (QTreeWidgetItem* item : found) {
            if (item->parent() && item->parent()->text(0) == series &&
                item->parent()->parent()->text(0) == manufacturer) {
                return item;
            }
        }
        return nullptr;
    }
};

TEST_F(CABSelDlgTest, OkAnswersTheCatalogOfTheChosenRowOrTheOneSelectedInTheTree) {
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
            EXPECT_NE(catalog, nullptr);
            if (!catalog) {
                return int(kIdCancel);
            }
            ClickItem(d.Tree(), c.bInTree ? catalog : catalog->parent());
            EXPECT_EQ(Listed(d.List()), c.listed);
            // A catalog of the tree comes selected; under a type the user picks the row.
            EXPECT_EQ(OkButton(d)->isEnabled(), c.bInTree);
            if (!c.bInTree) {
                ClickItem(d.List(), Row(d.List(), c.path[3]));
            }
            QTest::mouseClick(OkButton(d), Qt::LeftButton);
            // The tree follows the row that was confirmed.
            EXPECT_EQ(d.Tree().currentItem(), catalog);
            return 0;
        });
        EXPECT_EQ(result, kIdOk) << qPrintable(c.path[3]);
        EXPECT_EQ(Answer(dialog), c.path);
    }
    EXPECT_TRUE(m_messages.shown.empty());
}

TEST_F(CABSelDlgTest, ATypeWithoutCatalogsListsNothingAndLeavesOkDisabled) {
    {
        CKVModuleDB db;
        ASSERT_TRUE(db.Open(databasePath()));
        ASSERT_TRUE(db.AddIndex(kKestrel, QStringLiteral("KX"), QStringLiteral("Relay Output")));
        db.Close();
    }
    CABSelDlg dialog;
    const int result = run(dialog, [](CABSelDlg& d) {
        // A type with catalogs first, so that the list has rows to lose.
        ClickItem(d.Tree(), TypeItem(d, kKestrel, "KX", "Analog Output"));
        ClickItem(d.List(), Row(d.List(), "KX-AO2"));
        QTreeWidgetItem* empty = TypeItem(d, kKestrel, "KX", "Relay Output");
        EXPECT_NE(empty, nullptr);
        if (empty) {
            ClickItem(d.Tree(), empty);
            EXPECT_EQ(d.Tree().currentItem(), empty);
        }
        EXPECT_EQ(d.List().topLevelItemCount(), 0);
        EXPECT_FALSE(OkButton(d)->isEnabled());
        return int(kIdCancel);
    });
    EXPECT_EQ(result, kIdCancel);
}

TEST_F(CABSelDlgTest, OkPressedOnATypeWithoutASelectedRowShowsTheMessageAndStays) {
    CABSelDlg dialog;
    const int result = run(dialog, [this](CABSelDlg& d) {
        ClickItem(d.Tree(), TypeItem(d, kKestrel, "KX", "Analog Output"));
        EXPECT_EQ(d.List().topLevelItemCount(), 2);
        EXPECT_FALSE(OkButton(d)->isEnabled());
        d.accept();
        EXPECT_TRUE(d.isVisible());
        EXPECT_EQ(d.result(), 0);
        EXPECT_EQ(m_messages.shown.size(), 1u);
        return int(kIdCancel);
    });
    EXPECT_EQ(result, kIdCancel);
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 4005);
    EXPECT_TRUE(dialog.GetCatalog().isEmpty());
}

TEST_F(CABSelDlgTest, DoubleClicksConfirmOnARowOrACatalogAndOnlyOpenTheLevelsAbove) {
    const struct {
        const char* name;
        bool bOnList;  // on the list row, else on the catalog in the tree
    } cases[] = {{"a row of the list", true}, {"a catalog of the tree", false}};
    for (const auto& c : cases) {
        CABSelDlg dialog;
        const int result = run(dialog, [&c](CABSelDlg& d) {
            QTreeWidgetItem* manufacturer =
                d.Tree().findItems(kKestrel, Qt::MatchRecursive).value(0);
            EXPECT_NE(manufacturer, nullptr);
            if (!manufacturer) {
                return int(kIdCancel);
            }
            manufacturer->setExpanded(false);
            DoubleClickItem(d.Tree(), manufacturer);
            QApplication::processEvents();
            EXPECT_TRUE(manufacturer->isExpanded()) << c.name;
            EXPECT_TRUE(d.isVisible()) << c.name;

            // A type with a row chosen is no catalog: a double click on it stays.
            QTreeWidgetItem* type = TypeItem(d, kKestrel, "KX", "Digital Input");
            ClickItem(d.Tree(), type);
            ClickItem(d.List(), Row(d.List(), "KX-DI16"));
            DoubleClickItem(d.Tree(), type);
            QApplication::processEvents();
            EXPECT_TRUE(d.isVisible()) << c.name;
            EXPECT_EQ(d.result(), 0) << c.name;

            ClickItem(d.Tree(), type);
            if (c.bOnList) {
                DoubleClickItem(d.List(), Row(d.List(), "KX-DI16"));
            } else {
                DoubleClickItem(d.Tree(), type->child(0));
            }
            // The confirmation is posted: the dialog ends once the events are handled.
            EXPECT_TRUE(d.isVisible()) << c.name;
            QApplication::processEvents();
            EXPECT_FALSE(d.isVisible()) << c.name;
            return 0;
        });
        EXPECT_EQ(result, kIdOk) << c.name;
        EXPECT_EQ(Answer(dialog), QStringList({kKestrel, "KX", "Digital Input", "KX-DI16"}))
            << c.name;
    }
    EXPECT_TRUE(m_messages.shown.empty());
}

TEST_F(CABSelDlgTest, TheNextDialogOpensAtTheCatalogLastChosen) {
    {
        CABSelDlg first;
        ASSERT_EQ(run(first,
                      [](CABSelDlg& d) {
                          ClickItem(d.Tree(), TypeItem(d, kKestrel, "KX", "Analog Output"));
                          ClickItem(d.List(), Row(d.List(), "KX-AO8"));
                          QTest::mouseClick(OkButton(d), Qt::LeftButton);
                          return 0;
                      }),
                  kIdOk);
    }
    CABSelDlg second;
    const int result = run(second, [](CABSelDlg& d) {
        EXPECT_EQ(d.Tree().currentItem()->text(0), QStringLiteral("KX-AO8"));
        EXPECT_EQ(Listed(d.List()), QStringList({"KX-AO8"}));
        EXPECT_TRUE(OkButton(d)->isEnabled());
        return int(kIdCancel);
    });
    EXPECT_EQ(result, kIdCancel);
    // Cancel answers nothing.
    EXPECT_EQ(Answer(second), QStringList({"", "", "", ""}));
}

TEST_F(CABSelDlgTest, ListColumnsCarryTheirHeadersAndScaleWithTheScreen) {
    FixedScaleUi screen(1.5, 1.5);
    m_host->setUi(&screen);
    CABSelDlg dialog;
    run(dialog, [](CABSelDlg& d) {
        QTreeWidget& list = d.List();
        QStringList headers;
        for (int column = 0; column < list.columnCount(); ++column) {
            headers << list.headerItem()->text(column);
        }
        EXPECT_EQ(headers, QStringList({"Catalog", "Points", "Rating", "Remarks", "Description"}));
        EXPECT_EQ(list.columnWidth(0), 150);
        EXPECT_EQ(list.columnWidth(3), 150);
        // The short columns take the width their headers ask for, whatever the screen's
        // scale; the last one also takes the room that is left.
        EXPECT_EQ(list.columnWidth(1), list.header()->sectionSizeHint(1));
        EXPECT_EQ(list.columnWidth(2), list.header()->sectionSizeHint(2));
        EXPECT_NE(list.columnWidth(1), 75);
        EXPECT_GE(list.columnWidth(4), list.header()->sectionSizeHint(4));
        return int(kIdCancel);
    });
    m_host->setUi(nullptr);
}

TEST_F(CABSelDlgTest, HelpOpensTheAddBlocksPage) {
    GuiHostUi screen(BuildPath(QStringLiteral("help")));
    m_host->setUi(&screen);
    CABSelDlg dialog;
    run(dialog, [](CABSelDlg& d) {
        QTest::mouseClick(FindControl<QPushButton>(&d, CABSelDlg::kIdHelp), Qt::LeftButton);
        const auto* page = d.findChild<QTextBrowser*>(QLatin1String(GuiHostUi::kHelpWindowName));
        EXPECT_NE(page, nullptr);
        if (page) {
            EXPECT_EQ(page->source().fileName(), QStringLiteral("plc_settings_addblocks.html"));
            EXPECT_FALSE(page->toPlainText().isEmpty());
        }
        return int(kIdCancel);
    });
    m_host->setUi(nullptr);
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
