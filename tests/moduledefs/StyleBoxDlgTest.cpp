#include "CKVModuleDB.h"
#include "CMEditDlg.h"
#include "CStyleBoxDlg.h"
#include "DialogControls.h"
#include "HostBridge.h"
#include "ModalRunner.h"
#include "PlcdbProcess.h"
#include "RealLisp.h"
#include "ResourceLibrary.h"
#include "StandaloneHost.h"
#include "StyleBoxTable.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QTemporaryDir>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

// Screen places 1 to 6 show fields 3, 4, 2, 1, 5, 6.
enum Edit : int {
    kValue3 = 1015,
    kValue4 = 1017,
    kUnit4 = 1018,
    kValue2 = 1019,
    kUnit2 = 1021,
    kValue1 = 1022,
    kUnit1 = 1023,
    kValue5 = 1026,
    kUnit5 = 1027,
    kValue6 = 1029,
    kUnit6 = 1031,
};

QString Text(QDialog& dialog, int id) {
    return FindControl<QLineEdit>(&dialog, id)->text();
}

bool Checked(QDialog& dialog, int id) {
    return FindControl<QRadioButton>(&dialog, id)->isChecked();
}

// A click on the radio button's indicator, as a user makes it.
void ClickRadio(QDialog& dialog, int id) {
    auto* radio = FindControl<QRadioButton>(&dialog, id);
    ASSERT_NE(radio, nullptr) << id;
    const int indicator =
        radio->style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, radio);
    QTest::mouseClick(radio, Qt::LeftButton, {}, QPoint(indicator / 2, radio->height() / 2));
}

// Clicks into the edit, selects all its text and types over it.
void TypeInto(QDialog& dialog, int id, const QString& text) {
    auto* edit = FindControl<QLineEdit>(&dialog, id);
    ASSERT_NE(edit, nullptr) << id;
    QTest::mouseClick(edit, Qt::LeftButton);
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
}

void ClickOk(QDialog& dialog) {
    QTest::mouseClick(FindControl<QPushButton>(&dialog, CStyleBoxDlg::kIdOk), Qt::LeftButton);
}

class StyleBoxDlgTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(QFile::copy(BuildPath(QStringLiteral("sample/ZEL_PLC.MDB")), databasePath()));
        QString error;
        m_resources =
            ResourceLibrary::Load(BuildPath(QString()), QStringLiteral("zel_mbres"), &error);
        ASSERT_TRUE(m_resources) << qPrintable(error);
        SetCurrentResources(m_resources.get());
        ZelPlcDbIO::SetInstance(&m_store);
        startHost({m_dir.path(), BuildPath(QStringLiteral("sample"))});
    }
    void TearDown() override {
        m_dialog.reset();
        SetCurrentHost(nullptr);
        ZelPlcDbIO::SetInstance(nullptr);
        SetCurrentResources(nullptr);
    }
    QString databasePath() const { return m_dir.filePath(QStringLiteral("ZEL_PLC.MDB")); }
    void startHost(const QStringList& supportPath) {
        StandaloneHostConfig config;
        config.supportPath = supportPath;
        config.kvLib = BuildPath(QStringLiteral("sample/blocks"));
        m_host = std::make_unique<StandaloneHost>(config);
        m_host->setReporter([this](const QString& text) { m_reports << text; });
        m_host->openDocument();
        SetCurrentHost(m_host.get());
        // What the editor asks the host's Lisp side at its start.
        for (const char* name :
             {"kv_fio_does_file_exist", "kv_fio_does_file_exist_error", "zel_get_var",
              "kv_fio_does_block_exist_disk", "kv_fio_block_path_failed_msg"}) {
            DeclareLispFunction(QString::fromLatin1(name));
        }
    }
    // The dialog on the copy, started and active, as the editor's button shows it.
    CStyleBoxDlg& open() {
        m_dialog = std::make_unique<CStyleBoxDlg>();
        m_dialog->SetDbPath(databasePath());
        m_dialog->show();
        m_dialog->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(m_dialog.get()));
        return *m_dialog;
    }
    // The store's row, read through a connection of its own.
    ModDB::StyleBoxData storedRow(int style) {
        CKVModuleDB db;
        ModDB::StyleBoxData row;
        EXPECT_TRUE(db.Open(databasePath()));
        EXPECT_TRUE(db.GetStyleBox(style, row));
        db.Close();
        return row;
    }
    void storeRow(int style, const std::array<QString, ModDB::StyleBoxData::kBoxCount>& texts) {
        CKVModuleDB db;
        ASSERT_TRUE(db.Open(databasePath()));
        ModDB::StyleBoxData row;
        row.Box = texts;
        db.UpdateStyleBox(style, row);
        ASSERT_TRUE(db.GetLastFailure().isEmpty()) << qPrintable(db.GetLastFailure());
        db.Close();
    }
    int lastMessage() const {
        return m_messages.shown.empty() ? 0 : m_messages.shown.back().number;
    }

    QTemporaryDir m_dir;
    std::unique_ptr<ResourceLibrary> m_resources;
    std::unique_ptr<StandaloneHost> m_host;
    ZelPlcDbIO m_store;
    ScriptedMessages m_messages;
    QStringList m_reports;
    std::unique_ptr<CStyleBoxDlg> m_dialog;
};

// The box entries of places 2, 4 and 6 of NV-1408, which falls back on the style row
// for all three, as a Lisp reads them from plcdb select with style 3.
QString Nv1408FallBacks(const QString& database) {
    const PlcdbRun run = RunPlcdb({"--db", database, "select", "--manufacturer", "Norvale Controls",
                                   "--series", "NV-100", "--type", "Analog Input", "--catalog",
                                   "NV-1408", "--style", "3", "--orient", "H"});
    EXPECT_EQ(run.status, 0) << qPrintable(run.err);
    const RealLispRun lisp = RunRealLisp(
        QStringLiteral("(let ((m (car (read)))) (print (list (nth 5 m) (nth 8 m) (nth 11 m))))"),
        run.out);
    if (!lisp.found) {
        return QStringLiteral("no Lisp");
    }
    EXPECT_TRUE(lisp.finished) << qPrintable(run.out);
    return lisp.output;
}

TEST_F(StyleBoxDlgTest, BoundsEditedFromTheEditorChangeTheFallBackValuesOfALaterSelect) {
    const QString before = Nv1408FallBacks(databasePath());
    if (before == QStringLiteral("no Lisp")) {
        GTEST_SKIP() << "neither sbcl nor clisp is on PATH; the Lisp reader check is skipped";
    }
    EXPECT_EQ(before, R"((("2.75" ("in")) ("0.5" ("in")) ("0.625" ("in"))))");

    auto editor = std::make_unique<CMEditDlg>();
    editor->SetDbPath(databasePath());
    editor->show();
    QueuedModalScript script;
    script.push([](QDialog& dialog) {
        ClickRadio(dialog, CStyleBoxDlg::kIdStyleFirst + 2);
        EXPECT_EQ(Text(dialog, kValue2), "2.75");
        TypeInto(dialog, kValue2, QStringLiteral("4.5"));
        TypeInto(dialog, kUnit2, QStringLiteral("cm"));
        TypeInto(dialog, kValue4, QStringLiteral("0.75"));
        TypeInto(dialog, kUnit4, QStringLiteral("mm"));
        // Place 6 emptied falls back on the style's place 4.
        TypeInto(dialog, kValue6, QString());
        TypeInto(dialog, kUnit6, QString());
        ClickOk(dialog);
        return 0;
    });
    QTest::mouseClick(FindControl<QPushButton>(editor.get(), CMEditDlg::kIdStyleBox),
                      Qt::LeftButton);
    EXPECT_TRUE(script.done());
    EXPECT_EQ(script.seen, QStringList{"CStyleBoxDlg"});
    EXPECT_TRUE(m_messages.shown.empty());
    editor.reset();

    EXPECT_EQ(Nv1408FallBacks(databasePath()),
              R"((("4.5" ("cm")) ("0.75" ("mm")) ("0.75" ("mm"))))");
}

TEST_F(StyleBoxDlgTest, ARefusedSwitchKeepsTheStyleAndGroupShownAndTheirRadioButtons) {
    storeRow(1, {});
    CStyleBoxDlg& dialog = open();
    for (int id : {kValue1, kUnit1, kValue3, kValue5, kUnit6}) {
        EXPECT_TRUE(Text(dialog, id).isEmpty()) << id;
    }
    // Value 1 alone lacks values 2 to 4, for the style and for the group.
    TypeInto(dialog, kValue1, QStringLiteral("1"));
    ClickRadio(dialog, CStyleBoxDlg::kIdStyleFirst + 1);
    EXPECT_EQ(lastMessage(), 5006);
    EXPECT_EQ(m_messages.shown.back().caption, QStringLiteral("Box Dimensions"));
    EXPECT_TRUE(Checked(dialog, CStyleBoxDlg::kIdStyleFirst));
    EXPECT_FALSE(Checked(dialog, CStyleBoxDlg::kIdStyleFirst + 1));
    EXPECT_EQ(Text(dialog, kValue1), "1");
    ClickRadio(dialog, CStyleBoxDlg::kIdGroupB);
    EXPECT_EQ(m_messages.shown.size(), 2u);
    EXPECT_TRUE(Checked(dialog, CStyleBoxDlg::kIdGroupA));

    // A unit without its value at field 5.
    for (int id : {kValue2, kValue3, kValue4}) {
        TypeInto(dialog, id, QStringLiteral("2"));
    }
    TypeInto(dialog, kUnit5, QStringLiteral("mm"));
    ClickRadio(dialog, CStyleBoxDlg::kIdGroupB);
    EXPECT_EQ(lastMessage(), 5007);
    EXPECT_TRUE(Checked(dialog, CStyleBoxDlg::kIdGroupA));
    EXPECT_EQ(QApplication::focusWidget(), FindControl<QLineEdit>(&dialog, kValue5));

    // Two bad numbers: the later one on the screen is selected; OK is refused.
    TypeInto(dialog, kUnit5, QString());
    TypeInto(dialog, kValue4, QStringLiteral("x"));
    TypeInto(dialog, kValue6, QStringLiteral("."));
    ClickOk(dialog);
    EXPECT_EQ(lastMessage(), 10123);
    EXPECT_EQ(m_messages.shown.back().caption, QStringLiteral("Invalid Number"));
    auto* value6 = FindControl<QLineEdit>(&dialog, kValue6);
    EXPECT_EQ(QApplication::focusWidget(), value6);
    EXPECT_EQ(value6->selectedText(), ".");
    EXPECT_TRUE(dialog.isVisible());
    EXPECT_EQ(m_messages.shown.size(), 4u);
    EXPECT_TRUE(storedRow(1).Box[0].isEmpty());

    // Put right, the switch goes through and the style's texts come back on return.
    TypeInto(dialog, kValue4, QStringLiteral("4"));
    TypeInto(dialog, kValue6, QString());
    ClickRadio(dialog, CStyleBoxDlg::kIdStyleFirst + 1);
    EXPECT_EQ(Text(dialog, kValue1), "1.25");
    ClickRadio(dialog, CStyleBoxDlg::kIdStyleFirst);
    EXPECT_EQ(Text(dialog, kValue4), "4");
    EXPECT_EQ(m_messages.shown.size(), 4u);
}

TEST_F(StyleBoxDlgTest, UnderACommaLocaleNumbersAndUnitsShowACommaAndAreWrittenWithAPoint) {
    struct LocaleGuard {
        LocaleGuard() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
        ~LocaleGuard() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }
    } guard;
    storeRow(2, {"1.5 in", "2.5 sq.in", "3 in", "4 in", "", "", "7", "8", "9", "10", "", ""});
    CStyleBoxDlg& dialog = open();
    ClickRadio(dialog, CStyleBoxDlg::kIdStyleFirst + 1);
    EXPECT_EQ(Text(dialog, kValue1), "1,5");
    EXPECT_EQ(Text(dialog, kValue2), "2,5");
    EXPECT_EQ(Text(dialog, kUnit2), "sq,in");
    TypeInto(dialog, kValue3, QStringLiteral("3,25"));
    // A row text without a blank is all value.
    ClickRadio(dialog, CStyleBoxDlg::kIdGroupB);
    EXPECT_EQ(Text(dialog, kValue1), "7");
    EXPECT_TRUE(Text(dialog, kUnit1).isEmpty());
    ClickOk(dialog);
    EXPECT_FALSE(dialog.isVisible());
    const ModDB::StyleBoxData row = storedRow(2);
    EXPECT_EQ(row.Box[0], "1.5 in");
    EXPECT_EQ(row.Box[1], "2.5 sq.in");
    EXPECT_EQ(row.Box[2], "3.25 in");
    EXPECT_EQ(row.Box[6], "7");
    // The other styles are written back as they were.
    EXPECT_EQ(storedRow(9).Box[0], "2.125 in");
}

TEST_F(StyleBoxDlgTest, TheStylePictureComesFromTheSupportPathScaledElseFromTheProgram) {
    FixedScaleUi ui(1.5, 2.0);
    m_host->setUi(&ui);
    CStyleBoxDlg& dialog = open();
    const QImage style1(BuildPath(QStringLiteral("sample/style1h.bmp")));
    ASSERT_FALSE(style1.isNull());
    EXPECT_EQ(dialog.Picture().size(), QSize(243, 230));
    EXPECT_EQ(dialog.Picture().image(),
              style1.scaled(243, 230).convertToFormat(dialog.Picture().image().format()));
    m_dialog.reset();

    // Without the pictures on the path, the program's own.
    startHost({m_dir.path()});
    CStyleBoxDlg& bare = open();
    ClickRadio(bare, CStyleBoxDlg::kIdStyleFirst + 4);
    const QImage missing(SourcePath(QStringLiteral("src/resources/bitmaps/201.bmp")));
    EXPECT_EQ(bare.Picture().image(), missing.convertToFormat(bare.Picture().image().format()));

    // Help from its button and from the key.
    QTest::mouseClick(FindControl<QPushButton>(&bare, CStyleBoxDlg::kIdHelp), Qt::LeftButton);
    QTest::keyClick(&bare, Qt::Key_F1);
    EXPECT_EQ(m_reports.filter(QStringLiteral("Help topic: plc_style_bound")).size(), 2);
}

TEST_F(StyleBoxDlgTest, AStoreThatDoesNotOpenEndsTheDialogWithAMessageInsteadOfEmptyRows) {
    // Regression: without rows the start-up read style 1 from an empty list and crashed.
    const QString junk = m_dir.filePath(QStringLiteral("junk.mdb"));
    QFile file(junk);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a database at all, only text that goes on for a while");
    file.close();
    CStyleBoxDlg dialog;
    dialog.SetDbPath(junk);
    QueuedModalScript script;
    script.push([](QDialog& d) {
        QCoreApplication::processEvents();
        EXPECT_FALSE(d.isVisible());
        return 0;
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
    ASSERT_EQ(m_messages.shown.size(), 1u);
    EXPECT_EQ(m_messages.shown[0].number, 5003);
    EXPECT_TRUE(m_messages.shown[0].text.contains(junk));

    // Headless, a save to a store that is not there says so and writes nothing.
    StyleBoxTable table;
    ASSERT_TRUE(table.Load(databasePath()));
    EXPECT_FALSE(table.Save(m_dir.filePath(QStringLiteral("gone/ZEL_PLC.MDB"))));
    EXPECT_FALSE(table.LastFailure().isEmpty());
}

}  // namespace
