#include "ZelUtils.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QLocale>

#if defined(Q_OS_UNIX)
#include <dlfcn.h>
#endif

bool GetToken(QString& text, QString& token, const QString& delimiters) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (delimiters.contains(text[i])) {
            token = text.left(i);
            text.remove(0, i + 1);
            return true;
        }
    }
    token.clear();
    return false;
}

int ReplaceStringInString(QString& text, const QString& find, const QString& replace) {
    if (find.isEmpty()) {
        return 0;
    }
    const int count = int(text.count(find));
    if (count > 0) {
        text.replace(find, replace);
    }
    return count;
}

QString NativePath(const QString& path) {
    QString result = path;
    const QChar separator = QDir::separator();
    for (QChar& c : result) {
        if (c == u'/' || c == u'\\') {
            c = separator;
        }
    }
    return result;
}

void EnsureEndingBackslash(QString& path) {
    if (path.isEmpty()) {
        return;
    }
    if (!path.endsWith(u'/') && !path.endsWith(u'\\')) {
        path += QDir::separator();
    }
}

void EnsureExtension(QString& name, const QString& extension) {
    if (name.isEmpty() || extension.isEmpty()) {
        return;
    }
    const QString suffix = u'.' + extension;
    if (!name.endsWith(suffix, Qt::CaseInsensitive)) {
        name += suffix;
    }
}

QString GenerateProgramDir() {
#if defined(Q_OS_UNIX)
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&GenerateProgramDir), &info) != 0 && info.dli_fname) {
        return QFileInfo(QString::fromLocal8Bit(info.dli_fname)).absolutePath();
    }
#endif
    return QCoreApplication::applicationDirPath();
}

void SetStringWithLength(QString& target, const QString& source, int maxChars) {
    target = GetStringAtCharCount(source, maxChars);
}

QString GetLocaleDecimalSep() {
    return QLocale().decimalPoint();
}

int GetCharCount(const QString& text) {
    return int(text.toUcs4().size());
}

int GetByteCount(const QString& text) {
    return int(text.toUtf8().size());
}

QString GetStringAtCharCount(const QString& text, int count) {
    if (count <= 0) {
        return QString();
    }
    qsizetype units = 0;
    for (int chars = 0; chars < count && units < text.size(); ++chars) {
        units += (text[units].isHighSurrogate() && units + 1 < text.size()) ? 2 : 1;
    }
    return text.left(units);
}

QString TextExcerpt(const QString& text, qsizetype maxLength) {
    if (text.size() <= maxLength) {
        return text;
    }
    qsizetype cut = qMax<qsizetype>(maxLength, 1);
    if (text[cut - 1].isHighSurrogate()) {
        --cut;  // a character is shown whole or not at all
    }
    return QStringLiteral("%1... (%2 characters)")
        .arg(text.left(cut), QString::number(text.size()));
}
