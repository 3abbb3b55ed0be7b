#include "CrtNumbers.h"

#include <QLocale>

#include <cmath>
#include <limits>

namespace crt {
namespace {

bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}

qsizetype skipBlanks(const QString& text) {
    qsizetype i = 0;
    while (i < text.size() && (text[i] == u' ' || text[i] == u'\t' || text[i] == u'\n' ||
                               text[i] == u'\r' || text[i] == u'\v' || text[i] == u'\f')) {
        ++i;
    }
    return i;
}

qsizetype skipDigits(const QString& text, qsizetype i) {
    while (i < text.size() && isDigit(text[i])) {
        ++i;
    }
    return i;
}

// The integer prefix clamped to the range of a 32-bit int, as the runtime does.
qint64 readInteger(const QString& text) {
    qsizetype i = skipBlanks(text);
    bool negative = false;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) {
        negative = text[i] == u'-';
        ++i;
    }
    qint64 value = 0;
    const qint64 limit = qint64(std::numeric_limits<int>::max()) + 1;
    for (; i < text.size() && isDigit(text[i]); ++i) {
        value = value * 10 + (text[i].unicode() - u'0');
        if (value > limit) {
            value = limit;
        }
    }
    value = negative ? -value : value;
    if (value > std::numeric_limits<int>::max()) {
        return std::numeric_limits<int>::max();
    }
    return value;
}

}  // namespace

double wtof(const QString& text) {
    const qsizetype start = skipBlanks(text);
    qsizetype i = start;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) {
        ++i;
    }
    const qsizetype intEnd = skipDigits(text, i);
    qsizetype end = intEnd;
    bool anyDigit = intEnd > i;
    if (end < text.size() && text[end] == u'.') {
        const qsizetype fracEnd = skipDigits(text, end + 1);
        anyDigit = anyDigit || fracEnd > end + 1;
        end = fracEnd;
    }
    if (!anyDigit) {
        return 0.0;
    }
    if (end < text.size() && (text[end] == u'e' || text[end] == u'E')) {
        qsizetype e = end + 1;
        if (e < text.size() && (text[e] == u'+' || text[e] == u'-')) {
            ++e;
        }
        const qsizetype expEnd = skipDigits(text, e);
        if (expEnd > e) {
            end = expEnd;
        }
    }
    QString number = text.mid(start, end - start);
    if (number.endsWith(u'.')) {
        number.chop(1);
    }
    if (number.startsWith(u'.') || number.startsWith(u"-.") || number.startsWith(u"+.")) {
        number.insert(number.indexOf(u'.'), u'0');
    }
    bool ok = false;
    const double value = QLocale::c().toDouble(number, &ok);
    if (ok) {
        return value;
    }
    // Only underflow and overflow are left. An infinite value would travel on into value
    // lists that no Lisp reads, so overflow stops at the largest finite value.
    if (std::isinf(value)) {
        return value < 0.0 ? -std::numeric_limits<double>::max()
                           : std::numeric_limits<double>::max();
    }
    return 0.0;
}

int wtoi(const QString& text) {
    return int(readInteger(text));
}

long wtol(const QString& text) {
    return long(readInteger(text));
}

}  // namespace crt
