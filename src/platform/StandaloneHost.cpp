#include "StandaloneHost.h"

#include "HostBridge.h"
#include "StoreLocation.h"
#include "ZelUtils.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <cstdio>

namespace {

// The string cell at place index of a call's arguments, or null.
const QString* StringArg(const HostValue& args, std::size_t index) {
    const HostCell* cell = args.at(index);
    return (cell && cell->type == kHostString) ? &cell->text : nullptr;
}

HostValue& AnswerPath(HostValue& result, const QString& path) {
    return path.isEmpty() ? result.nil() : result.string(path);
}

}  // namespace

StandaloneHost::StandaloneHost(StandaloneHostConfig config) : m_config(std::move(config)) {
    m_reporter = [](const QString& text) {
        std::fprintf(stderr, "%s\n", qPrintable(text));
        std::fflush(stderr);
    };
    defineFamilyFunctions();
}

StandaloneHost::~StandaloneHost() {
    if (CurrentHost() == this) {
        SetCurrentHost(nullptr);
    }
}

void StandaloneHost::defineLispFunction(const QString& name, LispFunction function) {
    m_lisp.insert(name.toLower(), std::move(function));
}

bool StandaloneHost::isDeclared(const QString& name) const {
    return m_declared.contains(name.toLower());
}

void StandaloneHost::report(const QString& text) const {
    if (m_reporter) {
        m_reporter(text);
    }
}

QString StandaloneHost::searchFolders(const QString& name, const QStringList& folders) const {
    const QString native = NativePath(name);
    if (QFileInfo(native).isAbsolute()) {
        return QFileInfo(native).isFile() ? native : QString();
    }
    for (const QString& folder : folders) {
        const QFileInfo candidate(QDir(folder), native);
        if (candidate.isFile()) {
            return QDir::toNativeSeparators(candidate.absoluteFilePath());
        }
    }
    return QString();
}

QString StandaloneHost::searchSupportPath(const QString& name) const {
    if (!m_config.databaseFile.isEmpty() &&
        QFileInfo(NativePath(name))
                .fileName()
                .compare(QString::fromLatin1(kDatabaseFileName), Qt::CaseInsensitive) == 0) {
        // A server is no file: its connection text is the answer as it stands.
        if (StoreLocation::IsServer(m_config.databaseFile)) {
            return m_config.databaseFile;
        }
        // A given database that is missing is not replaced by another one on the path.
        const QFileInfo given(m_config.databaseFile);
        return given.isFile() ? QDir::toNativeSeparators(given.absoluteFilePath()) : QString();
    }
    return searchFolders(name, m_config.supportPath);
}

void StandaloneHost::defineFamilyFunctions() {
    defineLispFunction(QStringLiteral("kv_fio_does_file_exist"),
                       [this](const HostValue& args, HostValue& result) {
                           const QString* name = StringArg(args, 1);
                           if (!name) {
                               return false;
                           }
                           AnswerPath(result, searchSupportPath(*name));
                           return true;
                       });
    defineLispFunction(QStringLiteral("kv_fio_does_file_exist_error"),
                       [this](const HostValue& args, HostValue& result) {
                           const QString* name = StringArg(args, 2);
                           report(QStringLiteral("The file %1 was not found on the search path.")
                                      .arg(name ? *name : QString()));
                           result.nil();
                           return true;
                       });
    defineLispFunction(QStringLiteral("kv_fio_does_block_exist_disk"), [this](const HostValue& args,
                                                                              HostValue& result) {
        const QString* name = StringArg(args, 0);
        if (!name) {
            return false;
        }
        const QStringList folders = StandaloneHostConfig::SplitPathList(m_config.kvLib);
        AnswerPath(result, searchFolders(*name, folders));
        return true;
    });
    defineLispFunction(QStringLiteral("kv_fio_block_path_failed_msg"),
                       [this](const HostValue& args, HostValue& result) {
                           const QString* name = StringArg(args, 0);
                           report(QStringLiteral("The block file %1 was not found in the "
                                                 "library folders of GBL_kv_lib.")
                                      .arg(name ? *name : QString()));
                           result.nil();
                           return true;
                       });
    defineLispFunction(QStringLiteral("zel_get_var"),
                       [this](const HostValue& args, HostValue& result) {
                           const QString* name = StringArg(args, 0);
                           if (!name) {
                               return false;
                           }
                           const QString value = m_config.variable(*name);
                           value.isNull() ? result.nil() : result.string(value);
                           return true;
                       });
    defineLispFunction(QStringLiteral("c:kv_msg"),
                       [this](const HostValue& args, HostValue& result) {
                           const QString* key = StringArg(args, 0);
                           const QString* text = StringArg(args, 2);
                           if (!text) {
                               result.nil();
                               return true;
                           }
                           result.string(key ? m_config.messages.value(*key, *text) : *text);
                           return true;
                       });
    defineLispFunction(
        QStringLiteral("kv_plca_plc_xtr"), [this](const HostValue&, HostValue& result) {
            report(
                QStringLiteral("kv_plca_plc_xtr: the PLC extraction belongs to the drawing "
                               "program and does nothing here."));
            result.nil();
            return true;
        });
    // The family's Lisp side declares its own message command.
    m_declared.insert(QStringLiteral("c:kv_msg"));
}

bool StandaloneHost::isExternal(const QString& name) const {
    return m_codes.contains(name.toLower());
}

StandaloneHost::CallResult StandaloneHost::callExternal(const QString& name,
                                                        const HostValue& args) {
    CallResult result;
    const auto code = m_codes.constFind(name.toLower());
    if (code == m_codes.constEnd()) {
        return result;
    }
    result.known = true;
    m_code = *code;
    m_args = args;
    m_answer = Answer::None;
    m_value.clear();
    const HostFunction function = m_functions.value(m_code, nullptr);
    result.handled = function ? function() : 0;
    result.answer = m_answer;
    result.value = m_value;
    m_code = -1;
    m_args.clear();
    return result;
}

int StandaloneHost::defun(const QString& name, int code) {
    if (name.trimmed().isEmpty()) {
        return kHostErrorResult;
    }
    m_codes.insert(name.toLower(), code);
    m_names.insert(name.toLower(), name);
    return kHostOk;
}

int StandaloneHost::regFunc(HostFunction function, int code) {
    if (!function) {
        return kHostErrorResult;
    }
    m_functions.insert(code, function);
    return kHostOk;
}

int StandaloneHost::retList(const HostValue& chain) {
    // The Lisp side receives the chain's elements as one list.
    m_value.clear();
    m_value.begin().append(chain).end();
    m_answer = Answer::List;
    return kHostOk;
}

int StandaloneHost::retNil() {
    m_value.clear();
    m_answer = Answer::Nil;
    return kHostOk;
}

int StandaloneHost::retVoid() {
    m_value.clear();
    m_answer = Answer::Void;
    return kHostOk;
}

int StandaloneHost::invoke(const HostValue& call, HostValue* result) {
    const QString* name = StringArg(call, 0);
    if (!name) {
        return kHostErrorResult;
    }
    const HostValue args(std::vector<HostCell>(call.cells().begin() + 1, call.cells().end()));
    if (name->compare(QStringLiteral("qeval-str+"), Qt::CaseInsensitive) == 0) {
        return evaluate(args, result);
    }
    const QString key = name->toLower();
    const auto function = m_lisp.constFind(key);
    if (!m_declared.contains(key) || function == m_lisp.constEnd()) {
        return kHostErrorResult;
    }
    HostValue answer;
    if (!(*function)(args, answer)) {
        return kHostErrorResult;
    }
    if (answer.isEmpty()) {
        answer.nil();
    }
    if (result) {
        *result = answer;
    }
    return kHostOk;
}

int StandaloneHost::evaluate(const HostValue& args, HostValue* result) {
    if (!m_hasDocument) {
        return kHostFailed;
    }
    const QString* text = StringArg(args, 0);
    if (!text) {
        return kHostErrorResult;
    }
    // The only evaluation the plug-in asks for: declaring a function callable.
    static const QRegularExpression declaration(
        QStringLiteral(R"(^\s*\(\s*ql-drafton-defun\s+'([^\s()']+)\s*\)\s*$)"),
        QRegularExpression::CaseInsensitiveOption);
    const QRegularExpressionMatch match = declaration.match(*text);
    if (!match.hasMatch()) {
        return kHostErrorResult;
    }
    m_declared.insert(match.captured(1).toLower());
    if (result) {
        result->clear();
        result->t();
    }
    return kHostOk;
}

int StandaloneHost::findFile(const QString& name, QString& found) {
    const QString path = searchSupportPath(name);
    if (path.isEmpty()) {
        return kHostErrorResult;
    }
    found = path;
    return kHostOk;
}

int StandaloneHost::getFileD(const QString& title, const QString& defaultPath, const QString& ext,
                             int flags, HostValue& result) {
    Q_UNUSED(flags);
    // A given answer first, then the user on a screen, else the default as it stands.
    QString answer = m_config.fileAnswer;
    if (answer.isEmpty() && m_ui) {
        if (!m_ui->chooseFile(title, defaultPath, ext, answer)) {
            return kHostCancel;
        }
    }
    if (answer.isEmpty()) {
        answer = defaultPath;
    }
    if (answer.isEmpty()) {
        return kHostCancel;
    }
    result.clear();
    result.string(NativePath(answer));
    return kHostOk;
}

int StandaloneHost::getFileNavDialog(const QString& title, const QString& defaultName,
                                     const QString& filter, int flags, QString& chosen) {
    HostValue answer;
    const int code = getFileD(title, defaultName, filter, flags, answer);
    if (code == kHostOk) {
        chosen = answer.at(0)->text;
    }
    return code;
}

void StandaloneHost::help(const QString& file, const QString& topic, int command) {
    Q_UNUSED(file);
    Q_UNUSED(command);
    if (m_ui) {
        m_ui->showHelp(topic);
        return;
    }
    report(QStringLiteral("Help topic: %1").arg(topic));
}

QString StandaloneHost::realToString(double value, int mode, int precision) {
    const int decimals = precision < 0 ? m_config.linearPrecision : precision;
    if (value == 0.0) {
        value = 0.0;  // no "-0.0000"
    }
    if (mode == 1) {
        return QString::number(value, 'E', decimals);
    }
    return QString::number(value, 'f', decimals);
}

int StandaloneHost::sendCommand(const QString& text, bool activate, bool wrapUpInactive,
                                bool echo) {
    Q_UNUSED(activate);
    Q_UNUSED(wrapUpInactive);
    Q_UNUSED(echo);
    m_sentCommands.append(text);
    QString shown = text;
    shown.replace(u'\n', QStringLiteral("\\n"));
    report(QStringLiteral("Command line: %1").arg(shown));
    return kHostOk;
}
