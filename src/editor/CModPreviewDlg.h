#pragma once

#include "HelpDialog.h"

class SheetPreview;
class QPushButton;

// Shows a drawing file in a preview. It cancels itself when the file cannot be shown.
class CModPreviewDlg : public HelpDialog {
    Q_OBJECT

public:
    enum Control { kIdOk = 1, kIdPreview = 200 };

    explicit CModPreviewDlg(QWidget* parent = nullptr);

    // A null text leaves the member as it is.
    void SetTitle(const QString& title);
    void SetFile(const QString& file);

    // Start-up: false when the file cannot be shown.
    bool OnInitDialog();

protected:
    void showEvent(QShowEvent* event) override;

private:
    QString m_strTitle;
    QString m_strFile;
    SheetPreview* m_preview;
    QPushButton* m_btnOK;
    bool m_bInited = false;
};
