#include "MessageSink.h"

#include <cstdio>

int StderrMessageSink::answer(const MessageRequest& request) {
    const QString caption = request.caption.isEmpty() ? QStringLiteral("plcdb") : request.caption;
    std::fprintf(stderr, "%s: %s\n", qPrintable(caption), qPrintable(request.text));
    std::fflush(stderr);
    return DefaultAnswer(request.buttons);
}

int StderrMessageSink::DefaultAnswer(MsgButtons buttons) {
    switch (buttons) {
        case MsgButtons::Ok:
            return kIdOk;
        case MsgButtons::OkCancel:
        case MsgButtons::YesNoCancel:
            return kIdCancel;
        case MsgButtons::YesNo:
            return kIdNo;
    }
    return kIdCancel;
}
