#pragma once

#include "HelpDialog.h"

#include <QStringList>

class CMScrollListBox;
class QLineEdit;

// Edits the prompt texts of a module, one per numbered placeholder of its symbol
// ("%%1", "%%2", ...): a list of labels and a list of prompts side by side, kept in
// step, and an entry line whose text the set button puts in place of the chosen prompt.
// Works on its own copy; the caller takes it back after OK. The count is the caller's.
class CPromptDlg : public HelpDialog {
    Q_OBJECT

public:
    enum Control {
        kIdLabels = 1050,
        kIdPrompts = 1051,
        kIdEntry = 1052,
        kIdSet = 1053,
        kIdClear = 1054,
        kIdHelp = 203,
        kIdOk = 1,
        kIdCancel = 2
    };

    explicit CPromptDlg(QWidget* parent = nullptr);

    void SetPrompts(const QStringList& prompts) { m_aPrompts = prompts; }
    void GetPrompts(QStringList& prompts) const { prompts = m_aPrompts; }

    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void OnInitDialog();
    void OnSet();
    void OnClear();
    bool ReplaceSelectedPrompt(const QString& text);
    void FollowSelection(CMScrollListBox* from, CMScrollListBox* to);
    void FollowScroll(int topIndex);

    QStringList m_aPrompts;
    QString m_strEntry;
    bool m_bInited = false;
    CMScrollListBox* m_lstLabels;
    CMScrollListBox* m_lstPrompts;
    QLineEdit* m_edtEntry;
};
