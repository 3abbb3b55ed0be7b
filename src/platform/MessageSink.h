#pragma once

#include <QString>

enum class MsgButtons { Ok, OkCancel, YesNo, YesNoCancel };
enum class MsgIcon { None, Information, Warning, Error, Question };

// Answers of a message, with the numbers of the platform's message box.
enum MsgAnswer : int { kIdOk = 1, kIdCancel = 2, kIdYes = 6, kIdNo = 7 };

struct MessageRequest {
    int number = 0;  // 0 for a text that does not come from the string table
    QString text;
    QString caption;
    MsgButtons buttons = MsgButtons::Ok;
    MsgIcon icon = MsgIcon::None;
};

// Where messages go: a message box in the program, a script in tests, standard
// error without a display.
class MessageSink {
public:
    virtual ~MessageSink() = default;
    virtual int answer(const MessageRequest& request) = 0;
};

// Writes the message to standard error and answers as a cautious user would: OK, or
// No and Cancel where there is a choice, so that nothing is changed unasked.
class StderrMessageSink : public MessageSink {
public:
    int answer(const MessageRequest& request) override;
    static int DefaultAnswer(MsgButtons buttons);
};
