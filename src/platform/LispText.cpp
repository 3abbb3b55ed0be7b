#include "LispText.h"

#include "ZelUtils.h"

#include <QLocale>

#include <cmath>
#include <limits>

namespace {

// Deep enough for any real argument, shallow enough that recursion cannot exhaust the stack.
constexpr int kMaxDepth = 1000;

QString PrintString(const QString& text) {
    QString out = QStringLiteral("\"");
    for (const QChar c : text) {
        if (c == u'"' || c == u'\\') {
            out += u'\\';
            out += c;
        } else if (c == u'\n') {
            out += QStringLiteral("\\n");
        } else if (c == u'\t') {
            out += QStringLiteral("\\t");
        } else {
            out += c;
        }
    }
    out += u'"';
    return out;
}

// Lisp has no text for an infinity or NaN: an infinity prints as the largest finite real of
// its sign and NaN as 0.0, so that every printed list reads back.
QString PrintReal(double value) {
    if (std::isnan(value)) {
        value = 0.0;
    } else if (std::isinf(value)) {
        value =
            value < 0.0 ? -std::numeric_limits<double>::max() : std::numeric_limits<double>::max();
    }
    QString out = QString::number(value, 'g', 15);
    bool ok = false;
    QLocale::c().toDouble(out, &ok);
    if (!ok) {
        // Fifteen digits round the largest reals up past the largest finite one;
        // seventeen read back as the value itself.
        out = QString::number(value, 'g', 17);
    }
    // Keep reals recognisable as reals when read back.
    if (!out.contains(u'.') && !out.contains(u'e')) {
        out += QStringLiteral(".0");
    }
    return out;
}

// Text of an atom cell; empty for codes that have no printed form.
QString PrintAtom(const HostCell& cell) {
    switch (cell.type) {
        case kHostReal:
            return PrintReal(cell.real);
        case kHostShort:
            return QString::number(cell.integer);
        case kHostString:
            return PrintString(cell.text);
        case kHostNil:
            return QStringLiteral("nil");
        case kHostTrue:
            return QStringLiteral("T");
        default:
            return {};
    }
}

enum class NumberKind { None, Integer, Real };

int CountDigits(const QString& token, qsizetype& pos) {
    int count = 0;
    while (pos < token.size() && token[pos].isDigit() && token[pos].unicode() < 128) {
        ++pos;
        ++count;
    }
    return count;
}

// Decides by shape alone: [+-] digits [. digits] [e [+-] digits], with at least one digit
// in the mantissa.
NumberKind ClassifyNumber(const QString& token) {
    qsizetype pos = 0;
    if (pos < token.size() && (token[pos] == u'+' || token[pos] == u'-')) {
        ++pos;
    }
    int digits = CountDigits(token, pos);
    bool real = false;
    if (pos < token.size() && token[pos] == u'.') {
        ++pos;
        digits += CountDigits(token, pos);
        real = true;
    }
    if (digits == 0) {
        return NumberKind::None;
    }
    if (pos < token.size() && (token[pos] == u'e' || token[pos] == u'E')) {
        ++pos;
        if (pos < token.size() && (token[pos] == u'+' || token[pos] == u'-')) {
            ++pos;
        }
        if (CountDigits(token, pos) == 0) {
            return NumberKind::None;
        }
        real = true;
    }
    if (pos != token.size()) {
        return NumberKind::None;
    }
    return real ? NumberKind::Real : NumberKind::Integer;
}

bool IsDelimiter(QChar c) {
    return c.isSpace() || c == u'(' || c == u')' || c == u'"' || c == u'\'';
}

// A reader over one text; reports the first problem with its 1-based position.
class Reader {
public:
    explicit Reader(const QString& text) : m_text(text) {}

    bool readDatum(HostValue& out, int depth);
    bool readForm(HostValue& out, int depth);
    bool readCallName(QString& name);
    bool readCallArgs(HostValue& out);
    bool expectEnd();
    bool expectOpen();

    const QString& error() const { return m_error; }

private:
    void skipBlanks();
    bool atEnd() const { return m_pos >= m_text.size(); }
    QChar peek() const { return m_text[m_pos]; }
    QString position(qsizetype pos) const { return QString::number(pos + 1); }
    bool fail(const QString& message);
    bool checkDepth(int depth);
    QString readToken();
    bool readString(HostValue& out);
    bool readAtom(HostValue& out);
    bool readNumber(const QString& token, qsizetype start, HostValue& out);
    bool readDataList(HostValue& out, int depth);
    bool readListCall(HostValue& out, int depth, qsizetype open);
    bool readMembers(HostValue& out, int depth, qsizetype open, bool evaluate);

    const QString& m_text;
    qsizetype m_pos = 0;
    QString m_error;
};

void Reader::skipBlanks() {
    while (!atEnd() && peek().isSpace()) {
        ++m_pos;
    }
}

bool Reader::fail(const QString& message) {
    if (m_error.isEmpty()) {
        m_error = message;
    }
    return false;
}

bool Reader::checkDepth(int depth) {
    if (depth < kMaxDepth) {
        return true;
    }
    return fail(QStringLiteral("lists nested deeper than %1 levels at position %2")
                    .arg(kMaxDepth)
                    .arg(position(m_pos)));
}

QString Reader::readToken() {
    const qsizetype start = m_pos;
    while (!atEnd() && !IsDelimiter(peek())) {
        ++m_pos;
    }
    return m_text.mid(start, m_pos - start);
}

bool Reader::readString(HostValue& out) {
    const qsizetype start = m_pos++;
    QString text;
    while (!atEnd()) {
        QChar c = m_text[m_pos++];
        if (c == u'"') {
            out.string(text);
            return true;
        }
        if (c == u'\\') {
            if (atEnd()) {
                break;
            }
            c = m_text[m_pos++];
            // An unknown escape stands for the character itself.
            c = c == u'n' ? QChar(u'\n') : c == u't' ? QChar(u'\t') : c;
        }
        text += c;
    }
    return fail(QStringLiteral("unterminated string starting at position %1").arg(position(start)));
}

bool Reader::readNumber(const QString& token, qsizetype start, HostValue& out) {
    bool ok = false;
    if (ClassifyNumber(token) == NumberKind::Integer) {
        const qlonglong value = (token.startsWith(u'+') ? token.mid(1) : token).toLongLong(&ok);
        if (!ok || value < std::numeric_limits<short>::min() ||
            value > std::numeric_limits<short>::max()) {
            return fail(QStringLiteral("integer %1 at position %2 is outside -32768..32767")
                            .arg(TextExcerpt(token), position(start)));
        }
        out.shortInt(static_cast<short>(value));
        return true;
    }
    const double value = QLocale::c().toDouble(token, &ok);
    if (!ok) {
        return fail(QStringLiteral("real %1 at position %2 is out of range")
                        .arg(TextExcerpt(token), position(start)));
    }
    out.real(value);
    return true;
}

bool Reader::readAtom(HostValue& out) {
    const qsizetype start = m_pos;
    const QString token = readToken();
    if (ClassifyNumber(token) != NumberKind::None) {
        return readNumber(token, start, out);
    }
    if (token.compare(QStringLiteral("nil"), Qt::CaseInsensitive) == 0) {
        out.nil();
        return true;
    }
    if (token.compare(QStringLiteral("t"), Qt::CaseInsensitive) == 0) {
        out.t();
        return true;
    }
    return fail(QStringLiteral("unknown symbol '%1' at position %2")
                    .arg(TextExcerpt(token), position(start)));
}

// Members go straight into out: collecting each list apart and copying it into its parent
// would copy every cell once per level it is nested in. On failure the caller drops out.
bool Reader::readMembers(HostValue& out, int depth, qsizetype open, bool evaluate) {
    skipBlanks();
    const bool empty = !atEnd() && peek() == u')';
    if (!empty) {
        out.begin();
    }
    for (; !atEnd() && peek() != u')'; skipBlanks()) {
        const bool ok = evaluate ? readForm(out, depth + 1) : readDatum(out, depth + 1);
        if (!ok) {
            return false;
        }
    }
    if (atEnd()) {
        return fail(
            QStringLiteral("missing ')' for the list opened at position %1").arg(position(open)));
    }
    ++m_pos;
    if (empty) {
        out.nil();
    } else {
        out.end();
    }
    return true;
}

bool Reader::readDataList(HostValue& out, int depth) {
    const qsizetype open = m_pos++;
    return readMembers(out, depth, open, false);
}

bool Reader::readDatum(HostValue& out, int depth) {
    if (!checkDepth(depth)) {
        return false;
    }
    skipBlanks();
    if (atEnd()) {
        return fail(QStringLiteral("expected a value at the end of the text"));
    }
    const QChar c = peek();
    if (c == u'\'') {
        // A quote changes nothing in data: the datum is a constant anyway.
        ++m_pos;
        return readDatum(out, depth + 1);
    }
    if (c == u'(') {
        return readDataList(out, depth);
    }
    if (c == u')') {
        return fail(QStringLiteral("unexpected ')' at position %1").arg(position(m_pos)));
    }
    if (c == u'"') {
        return readString(out);
    }
    return readAtom(out);
}

bool Reader::readListCall(HostValue& out, int depth, qsizetype open) {
    skipBlanks();
    if (!atEnd() && peek() == u')') {
        ++m_pos;
        out.nil();
        return true;
    }
    const QString head = readToken();
    if (head.isEmpty()) {
        return fail(QStringLiteral("cannot evaluate the list at position %1").arg(position(open)));
    }
    if (head.compare(QStringLiteral("list"), Qt::CaseInsensitive) != 0) {
        return fail(QStringLiteral("cannot evaluate (%1 ...) at position %2")
                        .arg(TextExcerpt(head), position(open)));
    }
    return readMembers(out, depth, open, true);
}

bool Reader::readForm(HostValue& out, int depth) {
    if (!checkDepth(depth)) {
        return false;
    }
    skipBlanks();
    if (atEnd()) {
        return fail(QStringLiteral("expected a value at the end of the text"));
    }
    const QChar c = peek();
    if (c == u'\'') {
        ++m_pos;
        return readDatum(out, depth + 1);
    }
    if (c == u'(') {
        const qsizetype open = m_pos++;
        return readListCall(out, depth, open);
    }
    return readDatum(out, depth);
}

bool Reader::expectOpen() {
    skipBlanks();
    if (atEnd() || peek() != u'(') {
        return fail(QStringLiteral("expected '(' at position %1").arg(position(m_pos)));
    }
    ++m_pos;
    return true;
}

bool Reader::readCallName(QString& name) {
    skipBlanks();
    const qsizetype start = m_pos;
    name = readToken();
    if (name.isEmpty() || ClassifyNumber(name) != NumberKind::None) {
        return fail(QStringLiteral("expected a function name at position %1").arg(position(start)));
    }
    return true;
}

bool Reader::readCallArgs(HostValue& out) {
    for (skipBlanks(); !atEnd() && peek() != u')'; skipBlanks()) {
        if (!readForm(out, 1)) {
            return false;
        }
    }
    if (atEnd()) {
        return fail(QStringLiteral("missing ')' at the end of the call"));
    }
    ++m_pos;
    return true;
}

bool Reader::expectEnd() {
    skipBlanks();
    if (!atEnd()) {
        return fail(QStringLiteral("unexpected text at position %1").arg(position(m_pos)));
    }
    return true;
}

bool Report(const Reader& reader, QString* error) {
    if (error) {
        *error = reader.error();
    }
    return false;
}

// Closes the innermost list; a list with nothing printed in it is nil, as the reader
// gives it back, even when it holds cells without a printed form.
void CloseList(QString& out) {
    if (out.endsWith(u'(')) {
        out.chop(1);
        out += QStringLiteral("nil");
    } else {
        out += u')';
    }
}

}  // namespace

QString LispText::Print(const HostValue& value) {
    QString out;
    int depth = 0;
    bool separate = false;
    for (const HostCell& cell : value.cells()) {
        if (cell.type == kHostListEnd) {
            // An end without a begin is noise from a broken list; dropping it keeps the text
            // balanced.
            if (depth > 0) {
                CloseList(out);
                --depth;
                separate = true;
            }
            continue;
        }
        const QString atom = PrintAtom(cell);
        if (cell.type != kHostListBegin && atom.isEmpty()) {
            continue;
        }
        if (separate) {
            out += u' ';
        }
        if (cell.type == kHostListBegin) {
            out += u'(';
            ++depth;
            separate = false;
        } else {
            out += atom;
            separate = true;
        }
    }
    for (; depth > 0; --depth) {
        CloseList(out);
    }
    return out;
}

bool LispText::Read(const QString& text, HostValue& value, QString* error) {
    Reader reader(text);
    HostValue result;
    if (!reader.readDatum(result, 0) || !reader.expectEnd()) {
        return Report(reader, error);
    }
    value = std::move(result);
    return true;
}

bool LispText::ReadCall(const QString& text, QString& name, HostValue& args, QString* error) {
    Reader reader(text);
    QString callName;
    HostValue result;
    if (!reader.expectOpen() || !reader.readCallName(callName) || !reader.readCallArgs(result) ||
        !reader.expectEnd()) {
        return Report(reader, error);
    }
    name = callName;
    args = std::move(result);
    return true;
}
