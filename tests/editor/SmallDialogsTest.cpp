#include "CGetStringDlg.h"
#include "CModPreviewDlg.h"
#include "DialogControls.h"
#include "ModalRunner.h"
#include "SheetPreview.h"

#include <QFile>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(SmallDialogs, StringEntryEnablesOkOnlyWithText) {
    CGetStringDlg dialog;
    dialog.SetValue(QStringLiteral("NV-1"));
    dialog.SetValue(QString());  // a null text leaves the value
    QueuedModalScript script;
    script.push([](QDialog& d) {
        auto* edit = FindControl<QLineEdit>(&d, CGetStringDlg::kIdValue);
        auto* ok = FindControl<QPushButton>(&d, CGetStringDlg::kIdOk);
        EXPECT_EQ(edit->text(), QStringLiteral("NV-1"));
        edit->clear();
        EXPECT_FALSE(ok->isEnabled());
        edit->setText(QStringLiteral("NV-2"));
        EXPECT_TRUE(ok->isEnabled());
        return int(kIdOk);
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdOk);
    EXPECT_EQ(dialog.GetValue(), QStringLiteral("NV-2"));
}

TEST(SmallDialogs, PreviewShowsADrawingAndCancelsWithoutOne) {
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("HP1TERM.SHT"));
    QFile dxf(file);
    ASSERT_TRUE(dxf.open(QIODevice::WriteOnly));
    dxf.write(
        "0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n0\n20\n0\n11\n10\n21\n5\n0\nENDSEC\n0\nEOF\n");
    dxf.close();

    QueuedModalScript script;
    CModPreviewDlg shown;
    shown.SetFile(file);
    shown.SetTitle(QStringLiteral("Terminal"));
    script.push([](QDialog& d) {
        EXPECT_EQ(d.windowTitle(), QStringLiteral("Terminal"));
        EXPECT_EQ(FindControl<SheetPreview>(&d, CModPreviewDlg::kIdPreview)->drawing().lines.size(),
                  1);
        return int(kIdOk);
    });
    EXPECT_EQ(ModalRunner::Run(shown), kIdOk);

    CModPreviewDlg missing;
    missing.SetFile(dir.filePath(QStringLiteral("NONE.SHT")));
    script.push([](QDialog&) { return 0; });
    EXPECT_EQ(ModalRunner::Run(missing), kIdCancel);
}
