#pragma once

#include "MessageSink.h"

#include <QStringList>

// The one way the program shows a message: by its number in the string table, with
// the arguments filled into %1, %2, ... in order.
class Messages {
public:
    static int Show(int number, const QStringList& args = {}, MsgButtons buttons = MsgButtons::Ok,
                    MsgIcon icon = MsgIcon::None, int captionNumber = 0);
    // A text that is not in the string table, such as a platform's own message.
    static int ShowText(const QString& text, const QString& caption = {},
                        MsgButtons buttons = MsgButtons::Ok, MsgIcon icon = MsgIcon::None);
    static QString Format(int number, const QStringList& args = {});

    // The sink that answers; null restores the default that writes to standard error.
    static void SetSink(MessageSink* sink);
    static MessageSink& Sink();
};
