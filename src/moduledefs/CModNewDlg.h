#pragma once

#include "CModDataDlgBase.h"

// Makes one module in the store: its names, catalog, texts, terminal rows, prompts
// and box dimensions, with the defaults of the program folder's default files. The
// caller reads the four names after OK and only refreshes its view.
class CModNewDlg : public CModDataDlgBase {
    Q_OBJECT

public:
    explicit CModNewDlg(QWidget* parent = nullptr);

    // Makes the module; the dialog stays open on any failure, the module not made.
    void accept() override;

protected:
    void OnInitDialog() override;
    void RefillSeries(bool bUseSelection) override;
    void RefillTypes(bool bUseSelection) override;
    bool TrimsTexts() const override { return true; }

private:
    void ApplyInfoDefaults(const ModuleInfoDefaults& defaults);

    QString m_strDefaultsFolder;
};
