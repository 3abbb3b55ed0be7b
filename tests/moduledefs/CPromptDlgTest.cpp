#include "BoxDialogFixture.h"
#include "CMScrollListBox.h"
#include "CModBoxInfoDlg.h"
#include "CPromptDlg.h"
#include "ModalRunner.h"
#include "ViewInput.h"

#include <QScrollBar>

using PromptDialog = BoxDialogFixture;

namespace {

CMScrollListBox* List(QDialog& dialog, int id) {
    return FindControl<CMScrollListBox>(&dialog, id);
}

QStringList Items(const QListWidget* list) {
    QStringList texts;
    for (int i = 0; i < list->count(); ++i) {
        texts << list->item(i)->text();
    }
    return texts;
}

QStringList Numbered(int count) {
    QStringList prompts;
    for (int i = 1; i <= count; ++i) {
        prompts << QStringLiteral("Prompt %1").arg(i);
    }
    return prompts;
}

}  // namespace

TEST_F(PromptDialog, SetAndClearReplaceTheChosenPromptAndOkTakesTheLists) {
    CPromptDlg dialog;
    dialog.SetPrompts(Numbered(9));
    QueuedModalScript script;
    script.push([](QDialog& d) {
        CMScrollListBox* labels = List(d, CPromptDlg::kIdLabels);
        CMScrollListBox* prompts = List(d, CPromptDlg::kIdPrompts);
        auto* entry = FindControl<QLineEdit>(&d, CPromptDlg::kIdEntry);
        EXPECT_EQ(Items(labels),
                  (QStringList{"%%1", "%%2", "%%3", "%%4", "%%5", "%%6", "%%7", "%%8", "%%9"}));
        Type(&d, CPromptDlg::kIdEntry, QStringLiteral("Slot"));
        Click(&d, CPromptDlg::kIdSet);  // nothing chosen: the entry stays
        EXPECT_EQ(entry->text(), QStringLiteral("Slot"));
        ClickItem(*labels, 2);
        EXPECT_EQ(prompts->currentRow(), 2);
        Click(&d, CPromptDlg::kIdSet);
        EXPECT_EQ(entry->text(), QString());

        // Clear leaves the entry; text left in it that was not set is dropped on OK.
        ClickItem(*prompts, 6);
        EXPECT_EQ(labels->currentRow(), 6);
        Type(&d, CPromptDlg::kIdEntry, QStringLiteral("Rack"));
        Click(&d, CPromptDlg::kIdClear);
        EXPECT_EQ(entry->text(), QStringLiteral("Rack"));
        Click(&d, CPromptDlg::kIdOk);
        return 0;
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdOk);
    QStringList expected = Numbered(9);
    expected[2] = QStringLiteral("Slot");
    expected[6] = QString();
    QStringList result{QStringLiteral("stale")};
    dialog.GetPrompts(result);
    EXPECT_EQ(result, expected);
}

TEST_F(PromptDialog, ScrollingEitherListScrollsTheOtherAndCancelReturnsNothing) {
    CPromptDlg dialog;
    dialog.SetPrompts(Numbered(60));
    QueuedModalScript script;
    script.push([](QDialog& d) {
        CMScrollListBox* labels = List(d, CPromptDlg::kIdLabels);
        CMScrollListBox* prompts = List(d, CPromptDlg::kIdPrompts);
        // The lists lay out their rows once the events of the start are handled.
        EXPECT_TRUE(QTest::qWaitFor([&] { return prompts->verticalScrollBar()->maximum() > 12; }));
        prompts->verticalScrollBar()->setValue(12);
        EXPECT_EQ(labels->TopIndex(), 12);
        labels->verticalScrollBar()->setValue(3);
        EXPECT_EQ(prompts->TopIndex(), 3);
        ClickItem(*prompts, 4);
        Click(&d, CPromptDlg::kIdClear);
        EXPECT_EQ(prompts->item(4)->text(), QString());
        return int(kIdCancel);
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
    QStringList result;
    dialog.GetPrompts(result);
    EXPECT_EQ(result, Numbered(60));
}

TEST_F(PromptDialog, BothDialogsOpenTheirHelpFromTheButtonAndTheKey) {
    CPromptDlg prompts;
    CModBoxInfoDlg box;
    QueuedModalScript script;
    for (QDialog* dialog : std::initializer_list<QDialog*>{&prompts, &box}) {
        script.push([](QDialog& d) {
            Click(&d, CPromptDlg::kIdHelp);
            QTest::keyClick(&d, Qt::Key_F1);
            return int(kIdCancel);
        });
        ModalRunner::Run(*dialog);
    }
    EXPECT_EQ(m_reports,
              (QStringList{"Help topic: plc_mod_prompts", "Help topic: plc_mod_prompts",
                           "Help topic: plc_modbox_dims", "Help topic: plc_modbox_dims"}));
}
