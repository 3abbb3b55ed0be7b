#include "TestSupport.h"

#include "Messages.h"

#include <QDir>

QString BuildPath(const QString& name) {
    return QDir(QStringLiteral(PLCDB_BUILD_DIR)).filePath(name);
}

QString SourcePath(const QString& name) {
    return QDir(QStringLiteral(PLCDB_SOURCE_DIR)).filePath(name);
}

QString SampleNv1408List(const char* style2, const char* number32, const char* number6) {
    return QStringLiteral(
               R"(("NV-1408" "Norvale Controls" "8 channel current input" "16 bit" "" )"
               R"(("%1" ("in")) ("%2" ("mm")) ("%3" ("mm")) ("0.5" ("in")) "Decimal" nil )"
               R"(("0.625" ("in")) ("%3") "8 ch" "Isolated channels"))")
        .arg(QString::fromLatin1(style2), QString::fromLatin1(number32),
             QString::fromLatin1(number6));
}

ProgramTexts::ProgramTexts()
    : m_library(
          ResourceLibrary::Load(BuildPath(QString()), QStringLiteral("zel_mbres"), &m_error)) {
    if (m_library) {
        m_scope.emplace(m_library.get());
    }
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
