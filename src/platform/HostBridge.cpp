#include "HostBridge.h"

#include "HostServices.h"
#include "Messages.h"
#include "ResourceLibrary.h"
#include "ZelUtils.h"

#include <QFileInfo>

#include <cmath>

namespace {

// Invokes the call and answers its first result cell when that is a string.
bool InvokeForString(const HostValue& call, QString& out) {
    HostValue result;
    if (HostInvoke(call, &result) != kHostOk) {
        return false;
    }
    const HostCell* first = result.at(0);
    if (!first || first->type != kHostString) {
        return false;
    }
    out = first->text;
    return true;
}

bool FileExists(const QString& path) {
    const QFileInfo info(path);
    return info.exists() && info.isFile();
}

}  // namespace

bool FindSupportFile(const QString& name, QString& out, bool bReportError) {
    HostValue call;
    call.string(QStringLiteral("kv_fio_does_file_exist")).shortInt(2).string(name);
    if (InvokeForString(call, out)) {
        return true;
    }
    if (bReportError) {
        HostValue report;
        report.string(QStringLiteral("kv_fio_does_file_exist_error"))
            .shortInt(2)
            .string(QString())
            .string(name);
        HostInvoke(report, nullptr);
    }
    return false;
}

bool FindBlockFile(const QString& name, QString& out, bool bReportError) {
    HostValue call;
    call.string(QStringLiteral("kv_fio_does_block_exist_disk")).string(name);
    if (InvokeForString(call, out)) {
        return true;
    }
    if (bReportError) {
        HostValue report;
        report.string(QStringLiteral("kv_fio_block_path_failed_msg")).string(name);
        HostInvoke(report, nullptr);
    }
    return false;
}

bool GetLispVar(const QString& name, QString& out) {
    HostValue call;
    call.string(QStringLiteral("zel_get_var")).string(name);
    return InvokeForString(call, out);
}

bool TranslateMessage(const QString& key, QString& text) {
    HostValue call;
    call.string(QStringLiteral("c:kv_msg")).string(key).nil().string(text);
    return InvokeForString(call, text);
}

int EvalLisp(const QString& text, HostValue* result) {
    HostValue call;
    call.string(QStringLiteral("qeval-str+")).string(text);
    return HostInvoke(call, result);
}

int DeclareLispFunction(const QString& name) {
    // The host's evaluator takes the text from a buffer of 128 characters.
    const QString text = QStringLiteral("(ql-drafton-defun '%1)").arg(name).left(127);
    return EvalLisp(text);
}

int HostTaskDialog(const QString& source, const QString& name) {
    struct TaskDialog {
        const char* source;
        const char* name;
        int message;
    };
    static const TaskDialog kKnown[] = {
        {"/ZelTaskDialogsRes;component/TaskDialogs.xaml", "ZelPLCDatabase.AdditionalFieldRequired",
         10126},
    };
    constexpr int kCaption = 5000;
    for (const TaskDialog& known : kKnown) {
        if (source == QLatin1String(known.source) && name == QLatin1String(known.name)) {
            return Messages::Show(known.message, {}, MsgButtons::YesNo, MsgIcon::Question,
                                  kCaption);
        }
    }
    return -1;
}

bool FindDatabaseFile(QString& out) {
    return FindSupportFile(QString::fromLatin1(kDatabaseFileName), out, true);
}

bool GetLibraryPaths(QStringList& list) {
    QString value;
    if (!GetLispVar(QStringLiteral("GBL_kv_lib"), value) || value.isEmpty()) {
        return false;
    }
    QString token;
    while (GetToken(value, token, QStringLiteral(";"))) {
        list.append(NativePath(token.trimmed()));
    }
    const QString rest = value.trimmed();
    if (!rest.isEmpty()) {
        list.append(NativePath(rest));
    }
    return true;
}

bool SearchPathList(const QString& name, QString& out, const QStringList& list) {
    if (name.isEmpty()) {
        return false;
    }
    const QString hostPath = LoadResString(6000);
    const QString libraryPath = LoadResString(6001);
    for (const QString& raw : list) {
        const QString entry = raw.trimmed();
        if (!entry.startsWith(u'<')) {
            QString path = entry;
            EnsureEndingBackslash(path);
            path += name;
            if (FileExists(path)) {
                out = path;
                return true;
            }
        } else if (entry.compare(hostPath, Qt::CaseInsensitive) == 0) {
            QString found;
            if (FindSupportFile(name, found, false)) {
                out = NativePath(found);
                return true;
            }
        } else if (entry.compare(libraryPath, Qt::CaseInsensitive) == 0) {
            QStringList folders;
            GetLibraryPaths(folders);
            if (SearchPathList(name, out, folders)) {
                return true;
            }
        }
    }
    return false;
}

bool RealToText(double value, QString& out, int digits) {
    digits = std::max(digits, 0);
    QString fixed = QString::number(std::fabs(value), 'f', digits);
    const qsizetype point = fixed.indexOf(u'.');
    qsizetype position = point < 0 ? fixed.size() : point;  // digits before the point
    fixed.remove(u'.');
    if (value != 0.0) {
        // The runtime's digit string has no leading zeros; the point moves left instead.
        qsizetype zeros = 0;
        while (zeros < fixed.size() && fixed[zeros] == u'0') {
            ++zeros;
        }
        fixed.remove(0, zeros);
        position -= zeros;
    } else {
        fixed = QString(digits, u'0');
        position = 0;
    }
    if (fixed.isEmpty()) {
        out = QStringLiteral("0");
        return true;
    }
    QString text;
    if (value < 0) {
        text += u'-';
    }
    if (position > 0) {
        text += fixed.left(position);
    } else if (position == 0) {
        text += u'0';
    }
    text += u'.';
    text += fixed.mid(std::max<qsizetype>(position, 0));
    out = text;
    return true;
}
