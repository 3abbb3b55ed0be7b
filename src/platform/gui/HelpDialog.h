#pragma once

#include <QDialog>
#include <QString>

class QKeyEvent;

// A dialog with a help topic: its help button and the help key both open that page. A
// dialog without a page takes the help key and does nothing.
class HelpDialog : public QDialog {
    Q_OBJECT

public:
    HelpDialog(QWidget* parent, const QString& helpTopic);
    void ShowHelp();

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString m_strHelpTopic;
};
