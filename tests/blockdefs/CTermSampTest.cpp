#include "CTermSamp.h"
#include "DialogControls.h"
#include "ModalRunner.h"
#include "TestSupport.h"

#include <QFile>
#include <QLabel>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

// The picture's size as the dialog shows it, taken while it runs.
QSize ShownPictureSize(CTermSamp& dialog) {
    QSize shown(-1, -1);
    QueuedModalScript script;
    script.push([&shown](QDialog& d) {
        const QPixmap picture = FindControl<QLabel>(&d, CTermSamp::kIdPicture)->pixmap();
        shown = picture.isNull() ? QSize() : picture.size();
        return int(kIdOk);
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdOk);
    return shown;
}

}  // namespace

TEST(CTermSamp, ABitmapOfAnyProportionsShowsAtOneHundredSquare) {
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("wide.bmp"));
    QImage wide(300, 40, QImage::Format_RGB32);
    wide.fill(Qt::red);
    ASSERT_TRUE(wide.save(file, "BMP"));

    CTermSamp dialog;
    dialog.SetBitmapFile(file);
    EXPECT_EQ(ShownPictureSize(dialog), QSize(100, 100));
    EXPECT_EQ(dialog.Picture().image().pixel(50, 50), QColor(Qt::red).rgb());
}

TEST(CTermSamp, AFileThatIsNoBitmapGivesAnEmptyPictureAndNoMessage) {
    QTemporaryDir dir;
    // A picture in another format under a bitmap's name, and a text.
    const QString png = dir.filePath(QStringLiteral("sample.bmp"));
    QImage image(20, 20, QImage::Format_RGB32);
    image.fill(Qt::blue);
    ASSERT_TRUE(image.save(png, "PNG"));
    const QString text = dir.filePath(QStringLiteral("notes.bmp"));
    QFile notes(text);
    ASSERT_TRUE(notes.open(QIODevice::WriteOnly));
    notes.write("not a picture\n");
    notes.close();

    ScriptedMessages messages;
    for (const QString& file : {png, text, dir.filePath(QStringLiteral("missing.bmp"))}) {
        CTermSamp dialog;
        dialog.SetBitmapFile(file);
        EXPECT_TRUE(dialog.Picture().IsEmpty()) << qPrintable(file);
        EXPECT_EQ(ShownPictureSize(dialog), QSize()) << qPrintable(file);
    }
    EXPECT_TRUE(messages.shown.empty());
}
