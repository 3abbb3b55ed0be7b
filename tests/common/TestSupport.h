#pragma once

#include "HostUi.h"
#include "MessageSink.h"
#include "ResourceLibrary.h"

#include <QString>
#include <QStringList>

#include <memory>
#include <optional>
#include <ostream>
#include <vector>

// Path of a file in the build folder (the programs and libraries) or in the sources.
QString BuildPath(const QString& name);
QString SourcePath(const QString& name);

// The module list that the selection answers for NV-1408 of the sample catalog, whose
// places 2, 4 and 6 fall back on the style row: the style's text of place 2 and the
// numbers of places 3 and 6 as the host's precision prints them.
QString SampleNv1408List(const char* style2, const char* number32, const char* number6);

// The program's message texts, from the resource library of the build, current while
// the object lives. A test asserts loaded() before it relies on them.
class ProgramTexts {
public:
    ProgramTexts();
    bool loaded() const { return m_library != nullptr; }
    const QString& error() const { return m_error; }

private:
    QString m_error;
    std::unique_ptr<ResourceLibrary> m_library;
    std::optional<ResourceScope> m_scope;
};

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

// A screen of a fixed scale that asks no questions and shows no help.
class FixedScaleUi : public HostUi {
public:
    FixedScaleUi(double x, double y) : m_scale{x, y} {}
    bool chooseFile(const QString&, const QString&, const QString&, QString&) override {
        return false;
    }
    void showHelp(const QString&) override {}
    HostScale scale() const override { return m_scale; }

private:
    HostScale m_scale;
};

// Readable QString values in test failures.
void PrintTo(const QString& text, std::ostream* os);
