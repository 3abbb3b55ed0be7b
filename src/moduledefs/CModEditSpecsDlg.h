#pragma once

#include "CModDataDlgBase.h"

class CKVModule;

// Edits the data of a module that is loaded: texts, file references, direction,
// address base, prompts and box dimensions. OK writes into the module in memory and
// nothing else; names, catalog and terminal count only show.
class CModEditSpecsDlg : public CModDataDlgBase {
    Q_OBJECT

public:
    // The module is borrowed and must outlive the dialog.
    CModEditSpecsDlg(CKVModule* module, QWidget* parent = nullptr);

    void accept() override;

protected:
    void OnInitDialog() override;
    void RefillSeries(bool bUseSelection) override;
    void RefillTypes(bool bUseSelection) override;
    bool TrimsTexts() const override { return false; }

private:
    void MoveToParentTop();
    // Chooses the entry equal to text, ignoring case, when there is one.
    static void SelectEntry(QComboBox* combo, const QString& text);

    CKVModule* m_pModule;
};
