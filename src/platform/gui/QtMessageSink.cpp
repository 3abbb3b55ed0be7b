#include "QtMessageSink.h"

#include <QApplication>

int QtMessageSink::answer(const MessageRequest& request) {
    const QString caption =
        request.caption.isEmpty() ? QCoreApplication::applicationName() : request.caption;
    QMessageBox box(IconOf(request.icon), caption, request.text, ButtonsOf(request.buttons),
                    QApplication::activeWindow());
    box.setEscapeButton(EscapeOf(request.buttons));
    const auto pressed = static_cast<QMessageBox::StandardButton>(box.exec());
    return AnswerOf(pressed, request.buttons);
}

QMessageBox::StandardButtons QtMessageSink::ButtonsOf(MsgButtons buttons) {
    switch (buttons) {
        case MsgButtons::Ok:
            return QMessageBox::Ok;
        case MsgButtons::OkCancel:
            return QMessageBox::Ok | QMessageBox::Cancel;
        case MsgButtons::YesNo:
            return QMessageBox::Yes | QMessageBox::No;
        case MsgButtons::YesNoCancel:
            return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
    }
    return QMessageBox::Ok;
}

QMessageBox::StandardButton QtMessageSink::EscapeOf(MsgButtons buttons) {
    switch (buttons) {
        case MsgButtons::Ok:
            return QMessageBox::Ok;
        case MsgButtons::YesNo:
            return QMessageBox::No;
        case MsgButtons::OkCancel:
        case MsgButtons::YesNoCancel:
            return QMessageBox::Cancel;
    }
    return QMessageBox::Cancel;
}

QMessageBox::Icon QtMessageSink::IconOf(MsgIcon icon) {
    switch (icon) {
        case MsgIcon::None:
            return QMessageBox::NoIcon;
        case MsgIcon::Information:
            return QMessageBox::Information;
        case MsgIcon::Warning:
            return QMessageBox::Warning;
        case MsgIcon::Error:
            return QMessageBox::Critical;
        case MsgIcon::Question:
            return QMessageBox::Question;
    }
    return QMessageBox::NoIcon;
}

int QtMessageSink::AnswerOf(QMessageBox::StandardButton button, MsgButtons buttons) {
    switch (button) {
        case QMessageBox::Ok:
            return kIdOk;
        case QMessageBox::Cancel:
            return kIdCancel;
        case QMessageBox::Yes:
            return kIdYes;
        case QMessageBox::No:
            return kIdNo;
        default:
            return AnswerOf(EscapeOf(buttons), buttons);
    }
}
