#include "CMSelDlg.h"
#include "CModuleSearch.h"
#include "CModuleTree.h"
#include "DialogControls.h"
#include "EditorFixture.h"
#include "GuiHostUi.h"
#include "LispText.h"
#include "ModalRunner.h"
#include "PlcdbProcess.h"
#include "ViewInput.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTextBrowser>
#include <QToolTip>
#include <QTreeWidget>

namespace {

const QString kKestrel = QStringLiteral("Kestrel Automation");

// The answer of plcdb select on the database for a module, with more options, as the
// dialog's answer prints it.
QString PlcdbSelect(const QString& database, const QStringList& names, const QStringList& more) {
    const PlcdbRun run = RunPlcdb(QStringList{"--db", database, "select", "--manufacturer",
                                              names.value(0), "--series", names.value(1), "--type",
                                              names.value(2), "--catalog", names.value(3)} +
                                  more);
    EXPECT_EQ(run.status, 0) << qPrintable(run.err);
    return run.out.trimmed();
}

// The dialog's answer as the Lisp side reads it.
QString Printed(CMSelDlg& dialog) {
    return LispText::Print(HostValue().begin().append(dialog.GetResult()).end());
}

void Click(QWidget* widget) {
    ASSERT_NE(widget, nullptr);
    QTest::mouseClick(widget, Qt::LeftButton);
}

// Clicks the list row whose catalog is text.
void ClickRow(QTreeWidget& list, const QString& text) {
    const QList<QTreeWidgetItem*> rows = list.findItems(text, Qt::MatchExactly, 0);
    ASSERT_EQ(rows.size(), 1) << qPrintable(text);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualItemRect(rows.first()).center());
}

// The tooltip a user gets on pointing at pos of widget; empty when none shows.
QString TooltipAt(QWidget* widget, const QPoint& pos) {
    QToolTip::hideText();
    QHelpEvent event(QEvent::ToolTip, pos, widget->mapToGlobal(pos));
    QCoreApplication::sendEvent(widget, &event);
    return QToolTip::isVisible() ? QToolTip::text() : QString();
}

// The control that has the focus: its number, or the text of an unnumbered button.
QString FocusedControl() {
    for (QWidget* w = QApplication::focusWidget(); w; w = w->parentWidget()) {
        if (ControlId(w) != -1) {
            return QString::number(ControlId(w));
        }
    }
    return QStringLiteral("none");
}

}  // namespace

class CMSelDlgTest : public EditorFixture {
protected:
    // Selects a type in the tree and clicks a catalog row in its list.
    static void chooseInList(CMSelDlg& dialog, const QString& manufacturer, const QString& series,
                             const QString& type, const QString& catalog) {
        CModuleTree& tree = dialog.Tree();
        QTreeWidgetItem* item = tree.FindItem(manufacturer, series, type, catalog);
        ASSERT_NE(item, nullptr);
        tree.setCurrentItem(item->parent());
        ClickRow(dialog.List(), catalog);
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
        chooseInList(selection, kKestrel, "KX", "Analog Output", "KX-AO2");
        EXPECT_EQ(selection.List().topLevelItemCount(), 2);
        Click(FindControl<QPushButton>(&d, CMSelDlg::kIdOk));
        return 0;
    });
    ASSERT_EQ(ModalRunner::Run(dialog), kIdOk);
    ASSERT_TRUE(dialog.HasResult());
    EXPECT_EQ(Printed(dialog),
              PlcdbSelect(databasePath(), {kKestrel, "KX", "Analog Output", "KX-AO2"},
                          {"--style", "3", "--orient", "H", "--scale", "2.5", "--extra"}));
    // The tree follows the row that was confirmed.
    EXPECT_EQ(dialog.Tree().currentItem()->text(0), QStringLiteral("KX-AO2"));
}

TEST_F(CMSelDlgTest, StyleAndScaleAreKeptByTheRulesTheCommandLineSharesAndALockKeepsThem) {
    const struct {
        int precision;
        int style;
        int orientation;
        bool bLock;
        QString moduleList;
        QString choices;
    } cases[] = {
        {4, 12, 2, false, SampleNv1408List("2.25", "32.0000", "6.0000"), R"(("1" "V" 0.1235 nil))"},
        {2, 3, 1, true, SampleNv1408List("2.75", "32.00", "6.00"), R"(("3" "H" 0.12 nil))"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.precision);
        startHost(c.precision);
        CMSelDlg dialog;
        dialog.SetStyle(c.style);
        dialog.SetOrientation(c.orientation);
        dialog.SetLockStyle(c.bLock);
        dialog.SetScale(0.123456);
        QueuedModalScript script;
        script.push([&c](QDialog& d) {
            if (c.bLock) {
                for (int id : {CMSelDlg::kIdStyleFirst + c.style - 1, int(CMSelDlg::kIdVertical)}) {
                    EXPECT_FALSE(FindControl<QAbstractButton>(&d, id)->isEnabled()) << id;
                }
            }
            chooseInList(static_cast<CMSelDlg&>(d), kNorvale, kSeries, "Analog Input", "NV-1408");
            Click(FindControl<QPushButton>(&d, CMSelDlg::kIdOk));
            return 0;
        });
        ASSERT_EQ(ModalRunner::Run(dialog), kIdOk);
        const QString answer = Printed(dialog);
        EXPECT_TRUE(answer.startsWith(u'(' + c.moduleList + QStringLiteral(" ((\"HP?SPACE\"")))
            << qPrintable(answer.left(400));
        EXPECT_TRUE(answer.endsWith(QStringLiteral(" (T) ") + c.choices + u')'))
            << qPrintable(answer.right(100));
    }
}

TEST_F(CMSelDlgTest, OkNeedsAScaleAndATypeNeedsARow) {
    CMSelDlg dialog;
    QueuedModalScript script;
    script.push([this](QDialog& d) {
        auto& selection = static_cast<CMSelDlg&>(d);
        chooseInList(selection, kKestrel, "KX", "Analog Output", "KX-AO8");
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

TEST_F(CMSelDlgTest, WithoutADatabaseTheDialogCancels) {
    QFile::remove(databasePath());
    startHostWithoutDatabase();
    CMSelDlg dialog;
    QueuedModalScript script;
    script.push([](QDialog&) { return 0; });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
}

TEST_F(CMSelDlgTest, ALongDatabasePathIsShortenedAndShownWholeAsTooltip) {
    // Regression: the path label took the width of the whole path and widened the dialog.
    const QString folder = m_dir.filePath(QString(40, u'f') + u'/' + QString(40, u'g') + u'/' +
                                          QString(40, u'h') + u'/' + QString(40, u'k'));
    ASSERT_TRUE(QDir().mkpath(folder));
    const QString path = folder + QStringLiteral("/ZEL_PLC.MDB");
    ASSERT_TRUE(QFile::copy(databasePath(), path));
    CMSelDlg dialog;
    dialog.SetDbPath(path);
    QueuedModalScript script;
    script.push([&path](QDialog& d) {
        // ASSERT may leave early; the dialog is cancelled all the same.
        [&] {
            auto* label = FindControl<QLabel>(&d, CMSelDlg::kIdDbPath);
            ASSERT_NE(label, nullptr);
            EXPECT_LT(d.width(), label->fontMetrics().horizontalAdvance(path));
            EXPECT_TRUE(label->text().startsWith(path.left(5))) << qPrintable(label->text());
            EXPECT_TRUE(label->text().endsWith(QStringLiteral("ZEL_PLC.MDB")));
            EXPECT_TRUE(label->text().contains(QChar(0x2026))) << qPrintable(label->text());
            EXPECT_EQ(TooltipAt(label, label->rect().center()), path);
        }();
        return int(kIdCancel);
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
    EXPECT_TRUE(script.done());
}

TEST_F(CMSelDlgTest, ACellTooNarrowForItsTextShowsItAsTooltip) {
    // Regression: a truncated catalog row could not be read whole anywhere.
    CMSelDlg dialog;
    QueuedModalScript script;
    script.push([](QDialog& d) {
        // ASSERT may leave early; the dialog is cancelled all the same.
        [&] {
            auto& selection = static_cast<CMSelDlg&>(d);
            chooseInList(selection, kKestrel, "KX", "Analog Output", "KX-AO2");
            QTreeWidget& list = selection.List();
            QTreeWidgetItem* row = list.findItems("KX-AO2", Qt::MatchExactly, 0).value(0);
            ASSERT_NE(row, nullptr);
            list.header()->resizeSection(0, 300);
            list.header()->resizeSection(4, 40);  // the user narrows the description
            const QPoint catalog = list.visualRect(list.indexFromItem(row, 0)).center();
            const QPoint description = list.visualRect(list.indexFromItem(row, 4)).center();
            EXPECT_EQ(TooltipAt(list.viewport(), catalog), QString());
            EXPECT_EQ(TooltipAt(list.viewport(), description),
                      QStringLiteral("Analog output 2 x 0-10V"));
        }();
        return int(kIdCancel);
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
    EXPECT_TRUE(script.done());
}

TEST_F(CMSelDlgTest, TabWalksTheControlsInScreenOrderBothWays) {
    // Regression: Tab went from the extra check box to OK and reached the styles last.
    CMSelDlg dialog;
    dialog.SetStyle(2);
    QueuedModalScript script;
    script.push([](QDialog& d) {
        auto& selection = static_cast<CMSelDlg&>(d);
        EXPECT_TRUE(Activate(d));
        selection.Tree().SelectModule(kKestrel, "KX", "Analog Output", "KX-AO2");
        selection.Tree().setFocus();
        // The bottom row as this platform lays it out: OK, Cancel, Help.
        // The search field stands above the tree.
        const QStringList forward = {"201", "1118", "1131", "204", "206", "209",
                                     "247", "1",    "2",    "203", "250", "200"};
        QStringList seen;
        for (qsizetype i = 0; i < forward.size(); ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            seen << FocusedControl();
        }
        EXPECT_EQ(seen, forward);
        seen.clear();
        for (qsizetype i = 0; i < forward.size(); ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab, Qt::ShiftModifier);
            seen << FocusedControl();
        }
        QStringList backward(forward.rbegin() + 1, forward.rend());
        backward << "200";
        EXPECT_EQ(seen, backward);
        return int(kIdCancel);
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
    EXPECT_TRUE(script.done());
}

TEST_F(CMSelDlgTest, HelpButtonAndF1OpenTheBundledPage) {
    // Regression: Help said there was no page when the desktop had no browser to open it.
    GuiHostUi screen(BuildPath(QStringLiteral("help")));
    m_host->setUi(&screen);
    CMSelDlg dialog;
    QueuedModalScript script;
    script.push([](QDialog& d) {
        // ASSERT may leave early; the dialog is cancelled all the same.
        [&] {
            const auto helpWindow = [&d] {
                return d.findChild<QTextBrowser*>(QLatin1String(GuiHostUi::kHelpWindowName));
            };
            Click(FindControl<QPushButton>(&d, CMSelDlg::kIdHelp));
            QTextBrowser* page = helpWindow();
            ASSERT_NE(page, nullptr);
            EXPECT_TRUE(page->isVisible());
            EXPECT_EQ(page->source().fileName(), QStringLiteral("plc_selection.html"));
            EXPECT_FALSE(page->toPlainText().isEmpty());
            page->close();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            ASSERT_EQ(helpWindow(), nullptr);

            auto& selection = static_cast<CMSelDlg&>(d);
            QTest::keyClick(&selection.Tree(), Qt::Key_F1);
            ASSERT_NE(helpWindow(), nullptr);
            EXPECT_EQ(helpWindow()->source().fileName(), QStringLiteral("plc_selection.html"));
        }();
        return int(kIdCancel);
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
    EXPECT_TRUE(m_messages.shown.empty());
}

TEST_F(CMSelDlgTest, PlcDataShowsTheDataOfTheChosenModule) {
    // Regression: the button only wrote a line to standard error.
    CMSelDlg dialog;
    QueuedModalScript script;
    script.push([](QDialog& d) {
        auto& selection = static_cast<CMSelDlg&>(d);
        selection.Tree().setCurrentItem(
            selection.Tree().FindItem(kKestrel, "KX", "Analog Output", "KX-AO2")->parent());
        Click(FindControl<QPushButton>(&d, CMSelDlg::kIdExtract));
        ClickRow(selection.List(), "KX-AO2");
        Click(FindControl<QPushButton>(&d, CMSelDlg::kIdExtract));
        return int(kIdCancel);
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
    ASSERT_EQ(m_messages.shown.size(), 2u);
    EXPECT_EQ(m_messages.shown[0].text, QStringLiteral("Choose a module in the list first."));
    EXPECT_EQ(m_messages.shown[1].text,
              QStringLiteral("Catalog: KX-AO2\nManufacturer: Kestrel Automation\nSeries: KX\n"
                             "Type: Analog Output\nDescription: Analog output 2 x 0-10V\n"
                             "Columns: 2 ch | 0-10 V | 16 bit\nAddress base: Decimal\n"
                             "Terminal rows: 9"));
}

TEST_F(CMSelDlgTest, AModuleFoundByTypingAndPickedWithTheKeysGivesTheCommandLinesList) {
    CMSelDlg dialog;
    dialog.SetStyle(2);
    dialog.SetOrientation(1);
    dialog.SetScale(1.5);
    QueuedModalScript script;
    script.push([](QDialog& d) {
        auto& selection = static_cast<CMSelDlg&>(d);
        EXPECT_TRUE(Activate(d));
        QLineEdit& field = selection.Search().Field();
        QTest::mouseClick(&field, Qt::LeftButton);
        // Case ignored: the descriptions of NV-1404 and NV-1408, in catalog order.
        QTest::keyClicks(&field, QStringLiteral("CURRENT"));
        EXPECT_EQ(selection.Search().Matches().topLevelItemCount(), 2);
        QTest::keyClick(&field, Qt::Key_Down);
        QTest::keyClick(&field, Qt::Key_Return);
        // Return picked the match and did not press OK.
        EXPECT_TRUE(d.isVisible());
        EXPECT_EQ(field.text(), QString());
        EXPECT_EQ(selection.Tree().currentItem()->text(0), QStringLiteral("Analog Input"));
        // In the empty field Return is the dialog's again: it presses OK.
        QTest::mouseClick(&field, Qt::LeftButton);
        QTest::keyClick(&field, Qt::Key_Return);
        return 0;
    });
    ASSERT_EQ(ModalRunner::Run(dialog), kIdOk);
    EXPECT_EQ(Printed(dialog),
              PlcdbSelect(databasePath(), {kNorvale, kSeries, "Analog Input", "NV-1408"},
                          {"--style", "2", "--orient", "H", "--scale", "1.5"}));
}
