#include "HelpDialog.h"

#include "HostServices.h"

#include <QKeyEvent>

HelpDialog::HelpDialog(QWidget* parent, const QString& helpTopic)
    : QDialog(parent), m_strHelpTopic(helpTopic) {}

void HelpDialog::ShowHelp() {
    if (!m_strHelpTopic.isEmpty()) {
        HostHelp(QString(), m_strHelpTopic, 0);
    }
}

void HelpDialog::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_F1) {
        ShowHelp();
        event->accept();
        return;
    }
    QDialog::keyPressEvent(event);
}
