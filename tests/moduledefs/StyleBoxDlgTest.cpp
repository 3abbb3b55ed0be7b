#include "BoxDialogFixture.h"
#include "CKVModuleDB.h"
#include "CMEditDlg.h"
#include "CStyleBoxDlg.h"
#include "EditorFixture.h"
#include "ModalRunner.h"
#include "PlcdbProcess.h"
#include "RealLisp.h"
#include "ViewInput.h"

#include <QApplication>
#include <QFile>
#include <QPushButton>
#include <QRadioButton>

namespace {

// The edits by field; the screen shows fields 3, 4, 2, 1, 5, 6.
constexpr int kValue1 = 1022, kUnit1 = 1023, kValue2 = 1019, kUnit2 = 1021, kValue3 = 1015;
constexpr int kValue4 = 1017, kUnit4 = 1018, kValue5 = 1026, kUnit5 = 1027, kValue6 = 1029;
constexpr int kUnit6 = 1031, kStyle1 = CStyleBoxDlg::kIdStyleFirst;

// The entries of places 2, 4 and 6 of NV-1408, which all fall back on the style row, as a
// Lisp reads them from plcdb select with style 3; empty without a Lisp.
QString Nv1408FallBacks(const QString& database) {
    const PlcdbRun run = RunPlcdb({"--db", database, "select", "--manufacturer", "Norvale Controls",
                                   "--series", "NV-100", "--type", "Analog Input", "--catalog",
                                   "NV-1408", "--style", "3", "--orient", "H"});
    EXPECT_EQ(run.status, 0) << qPrintable(run.err);
    const RealLispRun lisp = RunRealLisp(
        QStringLiteral("(let ((m (car (read)))) (print (list (nth 5 m) (nth 8 m) (nth 11 m))))"),
        run.out);
    EXPECT_TRUE(lisp.finished || !lisp.found) << qPrintable(run.out);
    return lisp.found ? lisp.output : QString();
}

class StyleBoxDlgTest : public EditorFixture {
protected:
    void TearDown() override {
        m_dialog.reset();
        EditorFixture::TearDown();
    }
    // The dialog on the copy, started and active.
    CStyleBoxDlg& open() {
        m_dialog = std::make_unique<CStyleBoxDlg>();
        m_dialog->SetDbPath(databasePath());
        EXPECT_TRUE(ShowActive(*m_dialog));
        return *m_dialog;
    }
    // A style row of the store, read or written through a connection of its own.
    ModDB::StyleBoxData row(int style, const QStringList& write = {}) {
        CKVModuleDB db;
        ModDB::StyleBoxData record;
        EXPECT_TRUE(db.Open(databasePath()));
        for (int box = 0; box < write.size(); ++box) {
            record.Box[box] = write[box];
        }
        if (!write.isEmpty()) {
            db.UpdateStyleBox(style, record);
        }
        EXPECT_TRUE(db.GetStyleBox(style, record));
        return record;
    }
    int last() const { return m_messages.shown.empty() ? 0 : m_messages.shown.back().number; }

    std::unique_ptr<CStyleBoxDlg> m_dialog;
};

TEST_F(StyleBoxDlgTest, BoundsEditedFromTheEditorChangeTheFallBackValuesOfALaterSelect) {
    const QString before = Nv1408FallBacks(databasePath());
    if (before.isEmpty()) {
        GTEST_SKIP() << "neither sbcl nor clisp is on PATH; the Lisp reader check is skipped";
    }
    EXPECT_EQ(before, R"((("2.75" ("in")) ("0.5" ("in")) ("0.625" ("in"))))");
    CMEditDlg editor;
    editor.SetDbPath(databasePath());
    editor.show();
    QueuedModalScript script;
    script.push([](QDialog& dialog) {
        Click(&dialog, kStyle1 + 2);
        EXPECT_EQ(Shown(&dialog, kValue2), "2.75");
        const std::pair<int, const char*> typed[] = {{kValue2, "4.5"},  {kUnit2, "cm"},
                                                     {kValue4, "0.75"}, {kUnit4, "mm"},
                                                     {kValue6, ""},     {kUnit6, ""}};
        for (const auto& [id, text] : typed) {
            Type(&dialog, id, QString::fromLatin1(text));
        }
        Click(&dialog, CStyleBoxDlg::kIdOk);
        return 0;
    });
    QTest::mouseClick(FindControl<QPushButton>(&editor, CMEditDlg::kIdStyleBox), Qt::LeftButton);
    EXPECT_EQ(script.seen, QStringList{"CStyleBoxDlg"});
    EXPECT_TRUE(m_messages.shown.empty());
    // Place 6 emptied falls back on the style's place 4.
    EXPECT_EQ(Nv1408FallBacks(databasePath()),
              R"((("4.5" ("cm")) ("0.75" ("mm")) ("0.75" ("mm"))))");
}

TEST_F(StyleBoxDlgTest, ARefusedSwitchKeepsTheStyleAndGroupShownAndTheirRadioButtons) {
    row(1, QStringList(12));
    CStyleBoxDlg& dialog = open();
    EXPECT_TRUE(Shown(&dialog, kValue1).isEmpty() && Shown(&dialog, kUnit6).isEmpty());
    Type(&dialog, kValue1, QStringLiteral("1"));
    Click(&dialog, kStyle1 + 1);
    EXPECT_EQ(last(), 5006);
    EXPECT_TRUE(Checked(&dialog, kStyle1) && !Checked(&dialog, kStyle1 + 1));
    Click(&dialog, CStyleBoxDlg::kIdGroupB);
    EXPECT_TRUE(Checked(&dialog, CStyleBoxDlg::kIdGroupA) && m_messages.shown.size() == 2);

    for (int id : {kValue2, kValue3, kValue4}) {
        Type(&dialog, id, QStringLiteral("2"));
    }
    Type(&dialog, kUnit5, QStringLiteral("mm"));
    Click(&dialog, CStyleBoxDlg::kIdGroupB);
    EXPECT_EQ(last(), 5007);
    EXPECT_EQ(QApplication::focusWidget(), FindControl<QLineEdit>(&dialog, kValue5));

    // Of two bad numbers the later one on the screen is selected; OK writes nothing.
    Type(&dialog, kUnit5, QString());
    Type(&dialog, kValue4, QStringLiteral("x"));
    Type(&dialog, kValue6, QStringLiteral("."));
    Click(&dialog, CStyleBoxDlg::kIdOk);
    EXPECT_EQ(last(), 10123);
    EXPECT_EQ(QApplication::focusWidget(), FindControl<QLineEdit>(&dialog, kValue6));
    EXPECT_EQ(FindControl<QLineEdit>(&dialog, kValue6)->selectedText(), ".");
    EXPECT_TRUE(dialog.isVisible() && row(1).Box[0].isEmpty());

    // Put right, the style is left and its texts are there on return.
    Type(&dialog, kValue4, QStringLiteral("4"));
    Type(&dialog, kValue6, QString());
    Click(&dialog, kStyle1 + 1);
    EXPECT_EQ(Shown(&dialog, kValue1), "1.25");
    Click(&dialog, kStyle1);
    EXPECT_EQ(Shown(&dialog, kValue4), "4");
    EXPECT_EQ(m_messages.shown.size(), 4u);
}

TEST_F(StyleBoxDlgTest, UnderACommaLocaleNumbersAndUnitsShowACommaAndAreWrittenWithAPoint) {
    CommaLocale comma;
    row(2, {"1.5 in", "2.5 sq.in", "3 in", "4 in", "", "", "7", "8", "9", "10", "", ""});
    CStyleBoxDlg& dialog = open();
    Click(&dialog, kStyle1 + 1);
    EXPECT_EQ(Shown(&dialog, kValue2) + u' ' + Shown(&dialog, kUnit2), "2,5 sq,in");
    Type(&dialog, kValue3, QStringLiteral("3,25"));
    // A row text without a blank is all value.
    Click(&dialog, CStyleBoxDlg::kIdGroupB);
    EXPECT_EQ(Shown(&dialog, kValue1) + u'|' + Shown(&dialog, kUnit1), "7|");
    Click(&dialog, CStyleBoxDlg::kIdOk);
    EXPECT_FALSE(dialog.isVisible());
    const ModDB::StyleBoxData written = row(2);
    EXPECT_EQ(QStringList(written.Box.begin(), written.Box.begin() + 7),
              QStringList({"1.5 in", "2.5 sq.in", "3.25 in", "4 in", "", "", "7"}));
    // The other styles are written back as they were.
    EXPECT_EQ(row(9).Box[0], "2.125 in");
}

TEST_F(StyleBoxDlgTest, TheStylePictureComesFromTheSupportPathScaledElseFromTheProgram) {
    FixedScaleUi ui(1.5, 2.0);
    m_host->setUi(&ui);
    const QImage shown = open().Picture().image();
    const QImage style1 = QImage(BuildPath(QStringLiteral("sample/style1h.bmp"))).scaled(243, 230);
    EXPECT_EQ(shown, style1.convertToFormat(shown.format()));

    // Without the pictures on the path, the program's own.
    StandaloneHostConfig config;
    config.supportPath = {m_dir.path()};
    m_host = std::make_unique<StandaloneHost>(config);
    SetCurrentHost(m_host.get());
    QStringList reports;
    m_host->setReporter([&reports](const QString& text) { reports << text; });
    CStyleBoxDlg& bare = open();
    Click(&bare, kStyle1 + 4);
    const QImage own(SourcePath(QStringLiteral("src/resources/bitmaps/201.bmp")));
    EXPECT_EQ(bare.Picture().image(), own.convertToFormat(bare.Picture().image().format()));
    Click(&bare, CStyleBoxDlg::kIdHelp);
    QTest::keyClick(&bare, Qt::Key_F1);
    EXPECT_EQ(reports.filter(QStringLiteral("Help topic: plc_style_bound")).size(), 2);
}

TEST_F(StyleBoxDlgTest, AStoreThatDoesNotOpenEndsTheDialogWithAMessageInsteadOfEmptyRows) {
    // Regression: without rows the start-up read style 1 from an empty list and crashed.
    const QString junk = writeJunk();
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
}

}  // namespace
