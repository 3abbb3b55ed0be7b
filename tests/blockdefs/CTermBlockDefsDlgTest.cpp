#include "CBlocksGrid.h"
#include "CTermBlockDefsDlg.h"
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
    QStringList lines = QString::fromUtf8(text).remove(u'\r').split(u'\n');
    if (lines.last().isEmpty()) {
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
    QByteArray bsf() const {
        QFile file(bsfPath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<none>");
    }
    // Writes the settings file and opens the dialog on it.
    void open(const QByteArray& text) {
        QFile file(bsfPath());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(text);
        file.close();
        m_dialog = std::make_unique<Dlg>();
        m_dialog->SetDirectory(folder());
        m_dialog->resize(900, 500);
        ASSERT_TRUE(ShowActive(*m_dialog));
    }
    template <class T = QPushButton>
    T* control(int id) {
        return FindControl<T>(m_dialog.get(), id);
    }
    void click(int id) { QTest::mouseClick(control<QAbstractButton>(id), Qt::LeftButton); }
    bool checked(int id) { return control<QRadioButton>(id)->isChecked(); }
    CBlocksGrid& grid() { return m_dialog->Grid(); }
    QString cell(int row, int col) { return grid().GetCellValue(row, col); }
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

TEST_F(BlockDefsDialog, StartsAtTheFirstBlocksStyleAndItsButtonsRenameTheBlocksAndSamples) {
    open("* only a comment\n");
    EXPECT_TRUE(checked(Dlg::kIdVertical) && checked(1117));
    EXPECT_EQ(m_dialog->PictureFile(), QStringLiteral("style1v.bmp"));
    open(":HP2RELAY;Relay;Contact;VP2X\n:TB1;Other;Terminal;tb.bmp\n");
    EXPECT_TRUE(checked(Dlg::kIdHorizontal) && checked(1118));
    EXPECT_EQ(m_dialog->PictureFile(), QStringLiteral("style2h.bmp"));
    EXPECT_FALSE(m_dialog->Picture().image().isNull());

    click(1121);
    EXPECT_EQ(m_dialog->PictureFile(), QStringLiteral("style5h.bmp"));
    EXPECT_EQ(QStringList({cell(1, 1), cell(1, 4), cell(2, 1)}),
              QStringList({"HP5RELAY", "HP5X", "TB1"}));
    click(Dlg::kIdVertical);
    EXPECT_EQ(m_dialog->PictureFile(), QStringLiteral("style5v.bmp"));
    EXPECT_EQ(QStringList({cell(1, 1), cell(1, 4)}), QStringList({"VP5RELAY", "VP5X"}));
    // A click on the orientation already checked renames what was typed since.
    TypeIntoCell(grid(), 2, 1, QStringLiteral("HP3NEW"));
    click(Dlg::kIdVertical);
    EXPECT_EQ(cell(2, 1), QStringLiteral("VP5NEW"));
}

TEST_F(BlockDefsDialog, AnEmptyListStartsWithAFreeRowForTheFirstBlock) {
    // Regression: a list without blocks gave no cell to type the first block into.
    open("* only a comment\n");
    TypeIntoCell(grid(), 1, 1, QStringLiteral("HP1DI"));
    TypeIntoCell(grid(), 1, 2, QStringLiteral("Digital"));
    TypeIntoCell(grid(), 1, 3, QStringLiteral("Input"));
    click(Dlg::kIdOk);
    EXPECT_FALSE(m_dialog->isVisible());
    EXPECT_EQ(Lines(bsf()), QStringList{QStringLiteral(":HP1DI;Digital;Input;")});
}

TEST_F(BlockDefsDialog, BrowseInTheBlockAndSampleColumnsWritesTheFileChosen) {
    open(":HP2RELAY;Relay;Contact;vp2x\n");
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
    open(":HP1DI;Digital;Input;hpdi.bmp\n:HP1BLANK;Spacers;Blank;\n:NOSUCH;Other;Gone;\n");
    QueuedModalScript script;
    script.pushAnswer(kIdOk);
    script.pushAnswer(kIdOk);
    ClickCell(grid(), 1, 3);
    click(Dlg::kIdShowBlock);
    click(Dlg::kIdShowSample);
    EXPECT_EQ(script.seen, (QStringList{"CModPreviewDlg", "CTermSamp"}));

    // An empty sample is named by its row; a drawing that is not found opens nothing.
    ClickCell(grid(), 2, 1);
    click(Dlg::kIdShowSample);
    ClickCell(grid(), 3, 1);
    click(Dlg::kIdShowBlock);
    ASSERT_EQ(shownNumbers(), (QList<int>{10043}));
    EXPECT_EQ(m_messages.shown[0].text, QStringLiteral("Row 2 has no sample file to show."));
    EXPECT_EQ(script.seen.size(), 2);
}

TEST_F(BlockDefsDialog, OkRefusesARowThatFailsItsChecksOnItsCellAndKeepsTheFileAsItWas) {
    const QByteArray text = ":HP1DI;Digital;Input;\n:HP1DO;Digital;INPUT;\n";
    open(text);
    click(Dlg::kIdOk);
    EXPECT_TRUE(m_dialog->isVisible());
    EXPECT_EQ(shownNumbers(), (QList<int>{10048}));
    EXPECT_EQ(grid().CurrentRow(), 2);
    EXPECT_EQ(grid().CurrentCol(), 3);
    EXPECT_EQ(bsf(), text);
}

TEST_F(BlockDefsDialog, OkKeepsAFileNotFoundWhenTheUserSaysSoAndWritesTheRows) {
    m_messages.fallback = kIdYes;
    open("* comment\n:HP9NONE;Digital;  None ;\n");
    TypeIntoCell(grid(), 2, 1, QStringLiteral("HP1DO"));
    TypeIntoCell(grid(), 2, 2, QStringLiteral("Digital"));
    TypeIntoCell(grid(), 2, 3, QStringLiteral("Output"));
    // Regression: Return in a cell's editor pressed OK on a half-typed row.
    EXPECT_TRUE(m_dialog->isVisible());
    EXPECT_TRUE(m_messages.shown.empty());
    click(Dlg::kIdOk);
    EXPECT_FALSE(m_dialog->isVisible());
    EXPECT_EQ(shownNumbers(), (QList<int>{10047}));
    EXPECT_EQ(Lines(bsf()), (QStringList{":HP9NONE;Digital;None;", ":HP1DO;Digital;Output;"}));
}

TEST_F(BlockDefsDialog, AListThatCannotBeWrittenIsReportedAndTheDialogStaysOpen) {
    open(":HP1DI;Digital;Input;\n");
    ASSERT_TRUE(QDir(folder()).removeRecursively());
    click(Dlg::kIdOk);
    EXPECT_TRUE(m_dialog->isVisible());
    ASSERT_EQ(shownNumbers(), (QList<int>{10054}));
    EXPECT_TRUE(m_messages.shown[0].text.contains(folder()))
        << qPrintable(m_messages.shown[0].text);
}

TEST_F(BlockDefsDialog, ARoundTripWithNoChangeKeepsEveryBlockLineAndDropsTheComments) {
    QFile sample(SourcePath(QStringLiteral("data/sample/blocks/kvmbblks.bsf")));
    ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
    const QByteArray original = sample.readAll();
    const QString paths = m_dir.filePath(QStringLiteral("set/blkplist.txt"));
    const QByteArray pathLines = ":" + QDir::toNativeSeparators(m_dir.path()).toUtf8() +
                                 QDir::separator().toLatin1() + "\n<GBL_kv_lib>\n";
    {
        QFile list(paths);
        ASSERT_TRUE(list.open(QIODevice::WriteOnly));
        list.write(pathLines);
    }
    open(original);
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

// Adding through the real selection is the editor's test; here the selection is cancelled.
TEST_F(BlockDefsDialog, AddFromModuleCancelledAddsNothing) {
    open(":HP1SPACE;Spacers;Header;\n:HP1PWR;Power;Feed;\n");
    QueuedModalScript script;
    script.pushAnswer(kIdCancel);
    click(Dlg::kIdAddFromModule);
    EXPECT_EQ(script.seen, QStringList{"CABSelDlg"});
    EXPECT_EQ(m_dialog->Table().RowCount(), 2);
    EXPECT_TRUE(m_messages.shown.empty());
}
