#include "CDib.h"
#include "DialogControls.h"
#include "GuiHostUi.h"
#include "ModalRunner.h"
#include "QtMessageSink.h"
#include "SheetPreview.h"
#include "StandaloneHost.h"

#include "TestSupport.h"

#include <QDialog>
#include <QFile>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QVBoxLayout>

#include <gtest/gtest.h>

namespace {

class OuterDialog : public QDialog {
    Q_OBJECT
};

class InnerDialog : public QDialog {
    Q_OBJECT
};

// Ends itself while it starts up, as a dialog does whose data cannot be shown.
class RefusingDialog : public QDialog {
    Q_OBJECT
protected:
    void showEvent(QShowEvent* event) override {
        QDialog::showEvent(event);
        reject();
    }
};

// Keeps itself open on OK, as a dialog does whose check fails.
class CheckingDialog : public QDialog {
    Q_OBJECT
public:
    void accept() override { ++refused; }
    int refused = 0;
};

TEST(ModalRunnerTest, ScriptAnswersNestedDialogsInTurn) {
    QueuedModalScript script;
    int innerAnswer = 0;
    script.push([&](QDialog& outer) {
        EXPECT_TRUE(outer.isVisible());  // started up as for a user
        InnerDialog inner;
        innerAnswer = ModalRunner::Run(inner);
        return int(kIdOk);
    });
    script.pushAnswer(kIdCancel);

    OuterDialog outer;
    EXPECT_EQ(ModalRunner::Run(outer), kIdOk);
    EXPECT_EQ(innerAnswer, kIdCancel);
    EXPECT_FALSE(outer.isVisible());
    EXPECT_TRUE(script.done());
    EXPECT_EQ(script.seen, (QStringList{"OuterDialog", "InnerDialog"}));
    EXPECT_EQ(script.unexpected, 0);
}

TEST(ModalRunnerTest, EndsDialogsTheScriptLeavesOpen) {
    QueuedModalScript script;
    script.pushAnswer(kIdOk);
    script.pushAnswer(0);

    CheckingDialog checking;
    EXPECT_EQ(ModalRunner::Run(checking), kIdCancel);
    EXPECT_EQ(checking.refused, 1);
    EXPECT_FALSE(checking.isVisible());

    QDialog untouched;
    EXPECT_EQ(ModalRunner::Run(untouched), kIdCancel);
    QDialog unscripted;
    EXPECT_EQ(ModalRunner::Run(unscripted), kIdCancel);
    EXPECT_EQ(script.unexpected, 1);
}

TEST(ModalRunnerTest, DialogThatEndsAtStartUpReturnsAtOnce) {
    RefusingDialog unscripted;  // would wait forever in QDialog::exec()
    EXPECT_EQ(ModalRunner::Run(unscripted), kIdCancel);

    QueuedModalScript script;
    script.pushAnswer(kIdOk);
    RefusingDialog scripted;
    EXPECT_EQ(ModalRunner::Run(scripted), kIdCancel);
    EXPECT_FALSE(script.done());  // the user never saw it
}

TEST(ModalRunnerTest, RunsTheEventLoopWithoutScript) {
    QDialog dialog;
    QMetaObject::invokeMethod(&dialog, &QDialog::accept, Qt::QueuedConnection);
    EXPECT_EQ(ModalRunner::Run(dialog), kIdOk);
}

TEST(QtMessageSinkTest, MapsButtonsAndAnswers) {
    struct Case {
        MsgButtons buttons;
        QMessageBox::StandardButtons shown;
        int escapeAnswer;
    };
    const Case cases[] = {
        {MsgButtons::Ok, QMessageBox::Ok, kIdOk},
        {MsgButtons::OkCancel, QMessageBox::Ok | QMessageBox::Cancel, kIdCancel},
        {MsgButtons::YesNo, QMessageBox::Yes | QMessageBox::No, kIdNo},
        {MsgButtons::YesNoCancel, QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel,
         kIdCancel},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(QtMessageSink::ButtonsOf(c.buttons), c.shown);
        EXPECT_EQ(QtMessageSink::AnswerOf(QMessageBox::NoButton, c.buttons), c.escapeAnswer);
    }
    EXPECT_EQ(QtMessageSink::AnswerOf(QMessageBox::Yes, MsgButtons::YesNo), kIdYes);
    EXPECT_EQ(QtMessageSink::AnswerOf(QMessageBox::Ok, MsgButtons::OkCancel), kIdOk);
    EXPECT_EQ(QtMessageSink::IconOf(MsgIcon::Error), QMessageBox::Critical);
}

TEST(DialogControlsTest, FindsControlsByNumber) {
    QDialog dialog;
    auto* group = new QGroupBox(&dialog);
    auto* edit = new QLineEdit(group);
    SetControlId(edit, 241);
    SetControlId(new QPushButton(&dialog), 1);

    EXPECT_EQ(FindControl<QLineEdit>(&dialog, 241), edit);
    EXPECT_EQ(FindControl<QPushButton>(&dialog, 241), nullptr);
    EXPECT_NE(FindControl<QPushButton>(&dialog, 1), nullptr);
    EXPECT_EQ(FindControl<QWidget>(&dialog, 242), nullptr);
    EXPECT_EQ(ControlId(edit), 241);
    EXPECT_EQ(ControlId(group), -1);
}

TEST(DialogControlsTest, ScalesByTheMonitorOfEachDirection) {
    EXPECT_EQ(ScaledX(162), 162);  // no host: scale 1
    FixedScaleUi ui(1.5, 1.25);
    StandaloneHost host;
    host.setUi(&ui);
    SetCurrentHost(&host);
    EXPECT_EQ(ScaledX(162), 243);
    EXPECT_EQ(ScaledY(115), 144);  // 143.75 rounded
    SetCurrentHost(nullptr);
}

TEST(CDibTest, LoadsAttachesAndKeepsWhatItHadOnFailure) {
    const ProgramTexts texts;
    ASSERT_TRUE(texts.loaded()) << qPrintable(texts.error());

    CDib dib;
    EXPECT_TRUE(dib.IsEmpty());
    EXPECT_FALSE(dib.Attach(QImage()));
    EXPECT_FALSE(dib.Load(99999));
    EXPECT_TRUE(dib.IsEmpty());
    ASSERT_TRUE(dib.Load(201));
    EXPECT_FALSE(dib.pixmap().isNull());

    QTemporaryDir dir;
    const QString picture = dir.filePath(QStringLiteral("style3v.bmp"));
    QImage red(20, 10, QImage::Format_RGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(red.save(picture, "BMP"));
    ASSERT_TRUE(dib.LoadFile(picture, QSize(243, 144)));
    EXPECT_EQ(dib.size(), QSize(243, 144));
    EXPECT_FALSE(dib.LoadFile(dir.filePath(QStringLiteral("missing.bmp")), QSize(243, 144)));
    EXPECT_FALSE(dib.LoadFile(BuildPath(QStringLiteral("CMakeCache.txt")), QSize(10, 10)));
    EXPECT_EQ(dib.size(), QSize(243, 144));
    EXPECT_TRUE(dib.LoadFile(picture, QSize()));
    EXPECT_EQ(dib.size(), QSize(20, 10));
}

QByteArray Drawing(const QByteArray& entities) {
    return "0\nSECTION\n2\nENTITIES\n" + entities + "0\nENDSEC\n0\nEOF\n";
}

// Darkest grey within a pixel of the point.
int Darkest(const QImage& image, int x, int y) {
    int darkest = 255;
    for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
            darkest = qMin(darkest, qGray(image.pixel(x + dx, y + dy)));
        }
    }
    return darkest;
}

TEST(SheetPreviewTest, DrawsTheDrawingFittedWithTheYAxisUp) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("block.sht"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    // An L: along the x axis, then up the y axis.
    file.write(
        Drawing("0\nLINE\n10\n0\n20\n0\n11\n100\n21\n0\n"
                "0\nLINE\n10\n0\n20\n0\n11\n0\n21\n50\n"));
    file.close();

    SheetPreview preview;
    preview.resize(200, 120);
    ASSERT_TRUE(preview.SetFile(path)) << preview.errorString().toStdString();
    const QImage image = preview.grab().toImage();
    // Scale 1.84 around the widget's centre (100, 60): y 0 lands at 106, x 0 at 8.
    EXPECT_LT(Darkest(image, 100, 106), 128);
    EXPECT_LT(Darkest(image, 8, 60), 128);
    EXPECT_EQ(Darkest(image, 100, 60), 255);
    EXPECT_EQ(Darkest(image, 100, 14), 255);  // where the x axis would be, y pointing down
    EXPECT_EQ(Darkest(image, 190, 60), 255);

    EXPECT_FALSE(preview.SetFile(dir.filePath(QStringLiteral("missing.sht"))));
    EXPECT_TRUE(preview.drawing().isEmpty());
    EXPECT_EQ(Darkest(preview.grab().toImage(), 100, 106), 255);
}

TEST(GuiHostUiTest, TurnsExtensionsIntoFilters) {
    const std::pair<QString, QString> cases[] = {
        {"MDB", "MDB files (*.MDB *.mdb);;All files (*)"},
        {"*.sht", "SHT files (*.SHT *.sht);;All files (*)"},
        {"Dxf;sht", "DXF/SHT files (*.DXF *.dxf *.Dxf *.SHT *.sht);;All files (*)"},
        {"", "All files (*)"},
        {"Drawings (*.sht)", "Drawings (*.sht)"},
    };
    for (const auto& [filter, expected] : cases) {
        EXPECT_EQ(GuiHostUi::FileFilter(filter), expected);
    }
}

TEST(GuiHostUiTest, MissingHelpPageNamesTheTopic) {
    ScriptedMessages messages;
    GuiHostUi ui;
    ui.showHelp(QStringLiteral("no_such_topic"));
    ASSERT_EQ(messages.shown.size(), 1u);
    EXPECT_TRUE(messages.shown[0].text.contains(QStringLiteral("no_such_topic")));
}

}  // namespace

#include "GuiFoundationTest.moc"
