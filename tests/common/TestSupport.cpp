#include "TestSupport.h"

#include "Messages.h"

#include <QDir>

QString BuildPath(const QString& name) {
    return QDir(QStringLiteral(PLCDB_BUILD_DIR)).filePath(name);
}

QString SourcePath(const QString& name) {
    return QDir(QStringLiteral(PLCDB_SOURCE_DIR)).filePath(name);
}

ScriptedMessages::ScriptedMessages() {
    Messages::SetSink(this);
}

ScriptedMessages::~ScriptedMessages() {
    Messages::SetSink(nullptr);
}

int ScriptedMessages::answer(const MessageRequest& request) {
    shown.push_back(request);
    if (answers.empty()) {
        return fallback;
    }
    const int next = answers.front();
    answers.erase(answers.begin());
    return next;
}

void PrintTo(const QString& text, std::ostream* os) {
    *os << '"' << text.toStdString() << '"';
}
