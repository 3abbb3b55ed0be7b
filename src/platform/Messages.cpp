#include "Messages.h"

#include "ResourceLibrary.h"

namespace {
MessageSink* g_sink = nullptr;
}

int Messages::Show(int number, const QStringList& args, MsgButtons buttons, MsgIcon icon,
                   int captionNumber) {
    MessageRequest request;
    request.number = number;
    request.text = Format(number, args);
    request.caption = captionNumber > 0 ? LoadResString(captionNumber) : QString();
    request.buttons = buttons;
    request.icon = icon;
    return Sink().answer(request);
}

int Messages::ShowText(const QString& text, const QString& caption, MsgButtons buttons,
                       MsgIcon icon) {
    MessageRequest request;
    request.text = text;
    request.caption = caption;
    request.buttons = buttons;
    request.icon = icon;
    return Sink().answer(request);
}

QString Messages::Format(int number, const QStringList& args) {
    // One pass, so that an argument holding "%1" is never filled again.
    const QString pattern = LoadResString(number);
    QString text;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const bool placeholder =
            pattern[i] == u'%' && i + 1 < pattern.size() && pattern[i + 1].isDigit();
        if (!placeholder) {
            text += pattern[i];
            continue;
        }
        const qsizetype index = pattern[i + 1].digitValue() - 1;
        text += (index >= 0 && index < args.size()) ? args[index] : QString();
        ++i;
    }
    return text;
}

void Messages::SetSink(MessageSink* sink) {
    g_sink = sink;
}

MessageSink& Messages::Sink() {
    static StderrMessageSink fallback;
    return g_sink ? *g_sink : fallback;
}
