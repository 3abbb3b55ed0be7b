#pragma once

#include "MessageSink.h"

#include <QMessageBox>

// Shows each message in a message box over the active window. The program installs
// it with Messages::SetSink when it has a display.
class QtMessageSink : public MessageSink {
public:
    int answer(const MessageRequest& request) override;

    static QMessageBox::StandardButtons ButtonsOf(MsgButtons buttons);
    // The button that Escape and closing the box press.
    static QMessageBox::StandardButton EscapeOf(MsgButtons buttons);
    static QMessageBox::Icon IconOf(MsgIcon icon);
    static int AnswerOf(QMessageBox::StandardButton button, MsgButtons buttons);
};
