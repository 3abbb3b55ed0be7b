#include "FuzzSupport.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

QByteArray FuzzBytes(const uint8_t* data, size_t size) {
    return QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
}

QString FuzzText(const uint8_t* data, size_t size) {
    return QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
}

QString FuzzFolder() {
    static QTemporaryDir folder;
    if (!folder.isValid()) {
        FuzzBroken("a scratch folder can be made", folder.errorString());
    }
    return folder.path();
}

QString FuzzPath(const QString& name) {
    return FuzzFolder() + u'/' + name;
}

void FuzzWriteFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(bytes) != bytes.size()) {
        FuzzBroken("the scratch file can be written", path);
    }
}

void FuzzBroken(const char* promise, const QString& detail) {
    std::fprintf(stderr, "broken promise: %s\n%s\n", promise,
                 detail.left(2000).toUtf8().constData());
    std::fflush(stderr);
    std::abort();
}

void FuzzCheck(bool condition, const char* promise, const QString& detail) {
    if (!condition) {
        FuzzBroken(promise, detail);
    }
}

bool HasLoneSurrogate(const QString& text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
        } else if (text[i].isSurrogate()) {
            return true;
        }
    }
    return false;
}
