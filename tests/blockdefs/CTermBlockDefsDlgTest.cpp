#include "CBlocksGrid.h"
#include "CModuleTree.h"
#include "CTermBlockDefsDlg.h"
#include "CTermSamp.h"
#include "DialogControls.h"
#include "EditorFixture.h"
#include "ModalRunner.h"
#include "ViewInput.h"

#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QTest>

#include <algorithm>

namespace {

using Dlg = CTermBlockDefsDlg;

// The user's answers to the host's file questions, with what they were asked.
class ChooserUi : public FixedScaleUi {
public:
    ChooserUi() : FixedScaleUi(1.0, 1.0) {}
    bool chooseFile(const QString&, const QString& defaultPath, const QString& filter,
                    QString& chosen) override {
        asked << defaultPath + u'|' + filter;
        chosen = answer;
        return !answer.isEmpty();
    }
    QStringList asked;
    QString answer;
};

// The lines of a text, whatever their ends.
QStringList Lines(const QByteArray& text) {
    QStringList lines = QString::fromUtf8(text).split(u'\n');
    for (QString& line : lines) {
        line.remove(u'\r');
    }
    if (lines.value(lines.size() - 1).isEmpty()) {
        lines.removeLast();
    }
    return lines;
}

}  // namespace

// The definitions dialog on a settings file of each test's own, in the folder "set".
class BlockDefsDialog : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        ASSERT_TRUE(QDir(m_dir.path()).mkdir(QStringLiteral("set")));
        m_host->setUi(&m_ui);
    }
    void TearDown() override {
        m_dialog.reset();
        m_host->setUi(nullptr);
        EditorFixture::TearDown();
    }
    QString folder() const {
        return QDir::toNativeSeparators(m_dir.filePath(QStringLiteral("set")));
    }
    QString bsfPath() const { return m_dir.filePath(QStringLiteral("set/kvmbblks.bsf")); }
    void writeBsf(const QByteArray& text) {
        QFile file(bsfPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
    }
    QByteArray bsf() const {
        QFile file(bsfPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<none>");
    }
    void open() {
        m_dialog = std::make_unique<Dlg>();
        m_dialog->SetDirectory(folder());
        m_dialog->resize(900, 500);
        m_dialog->show();
        m_dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog.get()));
    }
    template <class T = QPushButton>
    T* control(int id) {
        return FindControl<T>(m_dialog.get(), id);
    }
    void click(int id) { QTest::mouseClick(control<QAbstractButton>(id), Qt::LeftButton); }
    CBlocksGrid& grid() { return m_dialog->Grid(); }
    QString cell(int row, int col) { return grid().GetCellValue(row, col); }
    // The number of the checked style button and of the checked orientation button.
    int checkedStyle() {
        int checked = 0;
        for (int id = Dlg::kIdStyleFirst; id <= Dlg::kIdStyleLast; ++id) {
            checked = control<QRadioButton>(id)->isChecked() ? id : checked;
        }
        return checked;
    }
    int checkedOrientation() {
        return control<QRadioButton>(Dlg::kIdHorizontal)->isChecked() ? Dlg::kIdHorizontal
               : control<QRadioButton>(Dlg::kIdVertical)->isChecked() ? Dlg::kIdVertical
                                                                      : 0;
    }
    QList<int> shownNumbers() const {
        QList<int> numbers;
        for (const MessageRequest& request : m_messages.shown) {
            numbers << request.number;
        }
        return numbers;
    }

    ChooserUi m_ui;
    std::unique_ptr<Dlg> m_dialog;
};

TEST_F(BlockDefsDialog, StartsWithTheStyleAndOrientationOfTheFirstBlock) {
    struct Case {
        const char* bsf;
        int orientation;
        int style;
        const char* picture;
    };
    const Case cases[] = {
        {":HP5RELAY;Relay;Contact;\n:VP2X;Relay;Other;\n", Dlg::kIdHorizontal, 1121, "style5h.bmp"},
        {":hv3X;Relay;Contact;\n", Dlg::kIdHorizontal, 1119, "style3h.bmp"},
        // A third character of 0 is no style.
        {":VP0X;Relay;Contact;\n", Dlg::kIdVertical, 1117, "style1v.bmp"},
        {":TB1;Other;Terminal;\n", Dlg::kIdVertical, 1117, "style1v.bmp"},
        // No rows: the first cell is empty.
        {"* only a comment\n", Dlg::kIdVertical, 1117, "style1v.bmp"},
    };
    for (const Case& c : cases) {
        writeBsf(c.bsf);
        open();
        EXPECT_EQ(checkedOrientation(), c.orientation) << c.bsf;
        EXPECT_EQ(checkedStyle(), c.style) << c.bsf;
        EXPECT_EQ(m_dialog->PictureFile(), QLatin1String(c.picture)) << c.bsf;
        EXPECT_FALSE(m_dialog->Picture().image().isNull()) << c.bsf;
        // The first cell is current: browsing applies there, when there is one.
        EXPECT_EQ(control(Dlg::kIdBrowse)->isEnabled(), c.bsf[0] == ':') << c.bsf;
    }
}

TEST_F(BlockDefsDialog, StyleAndOrientationButtonsRenameTheBlocksAndSamplesOfEveryRow) {
    writeBsf(
        ":HP2RELAY;Relay;Contact;VP2X\n:TB1;Other;Terminal;tb.bmp\n"
        ":HP?SPACE;Spacers;Space;\n:vp7low;Relay;Lower;\n");
    open();
    click(1121);
    EXPECT_EQ(m_dialog->PictureFile(), QStringLiteral("style5h.bmp"));
    const QStringList style5{cell(1, 1), cell(1, 4), cell(2, 1),
                             cell(2, 4), cell(3, 1), cell(4, 1)};
    EXPECT_EQ(style5, (QStringList{"HP5RELAY", "HP5X", "TB1", "tb.bmp", "HP?SPACE", "Hp5low"}));

    click(Dlg::kIdVertical);
    EXPECT_EQ(m_dialog->PictureFile(), QStringLiteral("style5v.bmp"));
    EXPECT_EQ(cell(1, 1), QStringLiteral("VP5RELAY"));
    EXPECT_EQ(cell(1, 4), QStringLiteral("VP5X"));
    EXPECT_EQ(cell(4, 1), QStringLiteral("Vp5low"));
    // A click on the orientation already checked renames what was typed since.
    TypeIntoCell(grid(), 2, 1, QStringLiteral("HP3NEW"));
    click(Dlg::kIdVertical);
    EXPECT_EQ(cell(2, 1), QStringLiteral("VP5NEW"));
}

TEST_F(BlockDefsDialog, BrowseInTheBlockAndSampleColumnsWritesTheFileChosen) {
    writeBsf(":HP2RELAY;Relay;Contact;vp2x\n");
    open();
    const QString chosen = QDir::toNativeSeparators(m_dir.filePath(QStringLiteral("NEW.SHT")));
    m_ui.answer = chosen;
    ClickCell(grid(), 1, 2);
    EXPECT_FALSE(control(Dlg::kIdBrowse)->isEnabled());
    // A double click where browsing makes no sense asks nothing.
    QTest::mouseDClick(grid().viewport(), Qt::LeftButton, {}, CellCentre(grid(), 1, 2));
    EXPECT_TRUE(m_ui.asked.isEmpty());

    ClickCell(grid(), 1, 1);
    ASSERT_TRUE(control(Dlg::kIdBrowse)->isEnabled());
    QTest::mouseDClick(grid().viewport(), Qt::LeftButton, {}, CellCentre(grid(), 1, 1));
    EXPECT_EQ(m_ui.asked, (QStringList{"HP2RELAY.SHT|Drawing files (*.SHT *.sht)"}));
    EXPECT_EQ(cell(1, 1), chosen);

    ClickCell(grid(), 1, 4);
    m_ui.answer.clear();
    click(Dlg::kIdBrowse);
    EXPECT_EQ(m_ui.asked.value(1), QStringLiteral("vp2x.BMP|Bitmap files (*.BMP *.bmp)"));
    EXPECT_EQ(cell(1, 4), QStringLiteral("vp2x"));
    // The chosen file is the user's edit: it can be undone.
    grid().setFocus();
    QTest::keyClick(&grid(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(cell(1, 1), QStringLiteral("HP2RELAY"));
}

TEST_F(BlockDefsDialog, ShowBlockAndShowSampleOpenTheFoundFileOrSayWhatIsMissing) {
    writeBsf(":HP1DI;Digital;Input;hpdi.bmp\n:HP1BLANK;Spacers;Blank;\n:NOSUCH;Other;Gone;\n");
    open();
    QueuedModalScript script;
    QString title;
    script.push([&title](QDialog& d) {
        title = d.windowTitle();
        return int(kIdOk);
    });
    QSize picture;
    script.push([&picture](QDialog& d) {
        picture = static_cast<CTermSamp&>(d).Picture().image().size();
        return int(kIdOk);
    });
    ClickCell(grid(), 1, 3);
    click(Dlg::kIdShowBlock);
    click(Dlg::kIdShowSample);
    EXPECT_EQ(script.seen, (QStringList{"CModPreviewDlg", "CTermSamp"}));
    EXPECT_EQ(title, QStringLiteral("Terminal Block Preview"));
    EXPECT_EQ(picture, QSize(100, 100));

    // An empty sample is named by its row; a drawing that is not found opens nothing.
    ClickCell(grid(), 2, 1);
    click(Dlg::kIdShowSample);
    ClickCell(grid(), 3, 1);
    click(Dlg::kIdShowBlock);
    ASSERT_EQ(shownNumbers(), (QList<int>{10043}));
    EXPECT_EQ(m_messages.shown[0].text, QStringLiteral("Row 2 has no sample file to show."));
    EXPECT_EQ(m_messages.shown[0].caption, QStringLiteral("Nothing to Show"));
    EXPECT_EQ(script.unexpected, 0);
    EXPECT_EQ(script.seen.size(), 2);
}

TEST_F(BlockDefsDialog, OkRefusesARowThatFailsItsChecksAndKeepsTheFileAsItWas) {
    struct Case {
        const char* name;
        QByteArray bsf;
        int answer;  // to the question about a missing file
        int message;
        int row, col;
    };
    const Case cases[] = {
        {"descriptions differing in case", ":HP1DI;Digital;Input;\n:HP1DO;Digital;INPUT;\n", kIdOk,
         10048, 2, 3},
        {"a drawing not found, not kept", ":HP1DI;Digital;Input;\n:HP9NONE;Digital;None;\n", kIdNo,
         10047, 2, 1},
        {"a picture not found, not kept", ":HP1DI;Digital;Input;nothere.bmp\n", kIdNo, 10047, 1, 4},
    };
    for (const Case& c : cases) {
        writeBsf(c.bsf);
        m_messages.shown.clear();
        m_messages.fallback = c.answer;
        open();
        click(Dlg::kIdOk);
        EXPECT_TRUE(m_dialog->isVisible()) << c.name;
        EXPECT_EQ(shownNumbers(), (QList<int>{c.message})) << c.name;
        EXPECT_EQ(grid().CurrentRow(), c.row) << c.name;
        EXPECT_EQ(grid().CurrentCol(), c.col) << c.name;
        EXPECT_EQ(bsf(), c.bsf) << c.name;
    }
    // A block without a category, as the user leaves it, once the picture is kept.
    m_messages.shown.clear();
    m_messages.fallback = kIdYes;
    TypeIntoCell(grid(), 1, 2, QString());
    click(Dlg::kIdOk);
    EXPECT_EQ(shownNumbers(), (QList<int>{10047, 10051}));
    EXPECT_EQ(grid().CurrentCol(), 2);
    EXPECT_TRUE(m_dialog->isVisible());
}

TEST_F(BlockDefsDialog, OkKeepsAFileNotFoundWhenTheUserSaysSoAndWritesTheRows) {
    writeBsf("* comment\n:HP9NONE;Digital;  None ;\n");
    m_messages.fallback = kIdYes;
    open();
    TypeIntoCell(grid(), 2, 1, QStringLiteral("HP1DO"));
    TypeIntoCell(grid(), 2, 2, QStringLiteral("Digital"));
    TypeIntoCell(grid(), 2, 3, QStringLiteral("Output"));
    // Return ended each edit without pressing OK on half a row.
    EXPECT_TRUE(m_dialog->isVisible());
    EXPECT_TRUE(m_messages.shown.empty());
    click(Dlg::kIdOk);
    EXPECT_FALSE(m_dialog->isVisible());
    EXPECT_EQ(shownNumbers(), (QList<int>{10047}));
    EXPECT_EQ(Lines(bsf()), (QStringList{":HP9NONE;Digital;None;", ":HP1DO;Digital;Output;"}));
}

TEST_F(BlockDefsDialog, OkWithNoRowsWritesAnEmptySettingsFile) {
    writeBsf("* nothing but a comment\n");
    open();
    click(Dlg::kIdOk);
    EXPECT_FALSE(m_dialog->isVisible());
    EXPECT_EQ(bsf(), QByteArray(""));
}

TEST_F(BlockDefsDialog, AListThatCannotBeWrittenIsReportedAndTheDialogStaysOpen) {
    writeBsf(":HP1DI;Digital;Input;\n");
    open();
    ASSERT_TRUE(QDir(folder()).removeRecursively());
    click(Dlg::kIdOk);
    EXPECT_TRUE(m_dialog->isVisible());
    ASSERT_EQ(shownNumbers(), (QList<int>{10054}));
    EXPECT_TRUE(m_messages.shown[0].text.contains(folder()))
        << qPrintable(m_messages.shown[0].text);
    EXPECT_EQ(cell(1, 3), QStringLiteral("Input"));
}

TEST_F(BlockDefsDialog, ARoundTripWithNoChangeKeepsEveryBlockLineAndDropsTheComments) {
    QFile sample(SourcePath(QStringLiteral("data/sample/blocks/kvmbblks.bsf")));
    ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
    const QByteArray original = sample.readAll();
    writeBsf(original);
    const QString paths = m_dir.filePath(QStringLiteral("set/blkplist.txt"));
    const QByteArray pathLines = ":" + QDir::toNativeSeparators(m_dir.path()).toUtf8() +
                                 QDir::separator().toLatin1() + "\n<GBL_kv_lib>\n";
    {
        QFile list(paths);
        ASSERT_TRUE(list.open(QIODevice::WriteOnly));
        list.write(pathLines);
    }
    open();
    click(Dlg::kIdOk);
    EXPECT_FALSE(m_dialog->isVisible());
    EXPECT_TRUE(m_messages.shown.empty());

    const QStringList blockLines = Lines(original).filter(QRegularExpression(QStringLiteral("^:")));
    ASSERT_EQ(blockLines.size(), 13);
    EXPECT_EQ(Lines(bsf()), blockLines);
    QFile list(paths);
    ASSERT_TRUE(list.open(QIODevice::ReadOnly));
    EXPECT_EQ(Lines(list.readAll()), Lines(pathLines));
}

TEST_F(BlockDefsDialog, AddFromModuleAppendsTheBlocksTheListLacksAndCancelAddsNothing) {
    writeBsf(":HP1SPACE;Spacers;Header;\n:HP1PWR;Power;Feed;\n:HP1AI;Analog;Input;\n");
    open();
    QueuedModalScript script;
    script.pushAnswer(kIdCancel);
    for (int i = 0; i < 2; ++i) {
        script.push([](QDialog& d) {
            auto* tree = FindControl<CModuleTree>(&d, 200);
            tree->setCurrentItem(
                tree->FindItem(QStringLiteral("Norvale Controls"), QStringLiteral("NV-100"),
                               QStringLiteral("Analog Input"), QStringLiteral("NV-1404")));
            return int(kIdOk);
        });
    }
    click(Dlg::kIdAddFromModule);
    EXPECT_EQ(m_dialog->Table().RowCount(), 3);
    click(Dlg::kIdAddFromModule);
    // Under H the new name begins with V, and the style is 1: as the dialog always did.
    ASSERT_EQ(m_dialog->Table().RowCount(), 4);
    EXPECT_EQ(cell(4, 1), QStringLiteral("VP1SHLD"));
    EXPECT_EQ(cell(4, 2) + cell(4, 3) + cell(4, 4), QString());
    // The second time the module's blocks are all in the list.
    click(Dlg::kIdAddFromModule);
    EXPECT_EQ(m_dialog->Table().RowCount(), 4);
    EXPECT_TRUE(script.done());
    EXPECT_EQ(script.unexpected, 0);
}
