#pragma once

#include "HelpDialog.h"

#include <QSize>
#include <QStringList>

class CBlockDescEx;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;

// The terminal picker: a terminal block chosen by category from its pictures or from
// the six most recently chosen, and the show, re-prompt, break and spacing values. It
// hands back values and changes nothing but the recent list, which it writes as soon
// as a block is selected.
class CPickTerm : public HelpDialog {
    Q_OBJECT

public:
    enum Control {
        kIdOk = 1,
        kIdCancel = 2,
        kIdHelp = 203,
        kIdSpacing = 240,
        kIdCategories = 1061,
        kIdBlockCaption = 1062,
        kIdShowCaption = 1097,
        kIdShow = 1098,
        kIdBlocks = 1099,
        kIdRecent = 1100,
        kIdRePromptCaption = 1101,
        kIdRePrompt = 1102,
        kIdBreak = 1103,
        kIdTermCaption = 1104,
        kIdRecentCaption = 1105,
        kIdSpacingCaption = 1106,
    };
    static constexpr int kMaxRecent = 6;

    explicit CPickTerm(QWidget* parent = nullptr);
    ~CPickTerm() override;

    // Before the dialog runs.
    void SetBlockDesc(CBlockDescEx* blocks) { m_pBlockDesc = blocks; }
    void SetTermText(const QString& description) { m_strInitialTerm = description; }
    void SetShow(int show) { m_nInitialShow = show; }
    void SetRePrompt(int rePrompt) { m_nInitialRePrompt = rePrompt; }
    void SetBreak(bool bBreak) { m_bBreak = bBreak ? 1 : 0; }
    void SetSpacing(const QString& spacing) { m_strSpacing = spacing; }
    void DisableTerm(bool bDisable) { m_bDisableTerm = bDisable; }
    void DisableShow(bool bDisable) { m_bDisableShow = bDisable; }
    void DisableRePrompt(bool bDisable) { m_bDisableRePrompt = bDisable; }
    void DisableBreak(bool bDisable) { m_bDisableBreak = bDisable; }
    void DisableSpacing(bool bDisable) { m_bDisableSpacing = bDisable; }

    // After OK. The block index counts from 1; 0 when none was chosen.
    int GetTermIndex() const { return m_nTermIndex; }
    int GetShow() const { return m_nShow; }
    int GetRePrompt() const { return m_nRePrompt; }
    bool GetBreak() const { return m_bBreak == 1; }
    QString GetSpacing() const { return m_strSpacing; }

    // The picture sizes of the block list and of the recent list.
    QSize TermImageSize() const { return m_sizeTermImage; }
    QSize RecentImageSize() const { return m_sizeRecentImage; }

    // The recent list of the user's settings, newest first; false when there is none.
    static bool GetRecentTerms(QStringList& list);
    static void SaveRecentTerms(const QStringList& list);

    void accept() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void BuildControls();
    void OnInitDialog();
    void ApplyDisabled();
    void DoDataExchange();
    void OnCategoryChanged();
    void OnTermSelected();
    void OnRecentSelected();
    void FillTermList();
    void FillRecentList();
    void SelectInitialTerm();
    // The sample picture of a block, found on the support path; empty when it has none.
    static QString SamplePath(const QString& sampleFile);
    // One picture per path, all fitted to one size, resource 146 standing in for a
    // missing one; answers that size.
    static QSize FillImages(QListWidget& list, const QStringList& paths);
    static QSize FitImageSize(const QStringList& paths);

    QListWidget* m_lstCategories;
    QLabel* m_stcBlockCaption;
    QListWidget* m_lstTerms;
    QListWidget* m_lstRecent;
    QLabel* m_stcTermCaption;
    QLabel* m_stcRecentCaption;
    QComboBox* m_cboShow;
    QLabel* m_stcShowCaption;
    QComboBox* m_cboRePrompt;
    QLabel* m_stcRePromptCaption;
    QCheckBox* m_chkBreak;
    QLineEdit* m_edtSpacing;
    QLabel* m_stcSpacingCaption;

    QString m_strCategory;
    int m_nRePrompt = -1;
    int m_nShow = -1;
    int m_bBreak = 0;
    QString m_strSpacing;
    CBlockDescEx* m_pBlockDesc = nullptr;
    QString m_strInitialTerm;
    int m_nInitialShow = 0;
    int m_nInitialRePrompt = 0;
    bool m_bDisableTerm = false;
    bool m_bDisableShow = false;
    bool m_bDisableRePrompt = false;
    bool m_bDisableBreak = false;
    bool m_bDisableSpacing = false;
    int m_nTermIndex = 0;
    QString m_strTermText;
    QStringList m_lstCategoryNames;
    QSize m_sizeTermImage;
    QSize m_sizeRecentImage;
    bool m_bInited = false;
};
