#pragma once

#include "MessageSink.h"

#include <QString>
#include <QStringList>

#include <ostream>
#include <vector>

// Path of a file in the build folder (the programs and libraries) or in the sources.
QString BuildPath(const QString& name);
QString SourcePath(const QString& name);

// A message sink for tests: records every message and answers from a script,
// falling back on a fixed answer.
class ScriptedMessages : public MessageSink {
public:
    ScriptedMessages();
    ~ScriptedMessages() override;
    int answer(const MessageRequest& request) override;

    std::vector<MessageRequest> shown;
    std::vector<int> answers;  // taken from the front, one per message
    int fallback = kIdOk;
};

// Readable QString values in test failures.
void PrintTo(const QString& text, std::ostream* os);
