#include "ZelStdioFileEx.h"

#include "ZelUtils.h"

namespace {

constexpr qint64 kChunkSize = qint64(64) * 1024;

struct TextEncoding {
    QStringConverter::Encoding encoding = QStringConverter::Utf8;
    QByteArray bom;  // empty when the file has none
};

TextEncoding EncodingOf(const QByteArray& head) {
    static const QByteArray utf8Bom("\xEF\xBB\xBF", 3);
    static const QByteArray utf16LeBom("\xFF\xFE", 2);
    static const QByteArray utf16BeBom("\xFE\xFF", 2);
    if (head.startsWith(utf8Bom)) {
        return {QStringConverter::Utf8, utf8Bom};
    }
    if (head.startsWith(utf16LeBom)) {
        return {QStringConverter::Utf16LE, utf16LeBom};
    }
    if (head.startsWith(utf16BeBom)) {
        return {QStringConverter::Utf16BE, utf16BeBom};
    }
    return {};
}

// The number of bytes at the end of data that begin a UTF-8 sequence which data
// doesn't complete.
qsizetype IncompleteUtf8Tail(const QByteArray& data) {
    const qsizetype size = data.size();
    for (qsizetype back = 1; back <= 3 && back <= size; ++back) {
        const auto byte = static_cast<unsigned char>(data[size - back]);
        if ((byte & 0xC0) == 0x80) {
            continue;
        }
        if (byte < 0xC0) {
            return 0;
        }
        const qsizetype length = byte >= 0xF0 ? 4 : (byte >= 0xE0 ? 3 : 2);
        return length > back ? back : 0;
    }
    return 0;
}

// The number of bytes at the end of whole UTF-16 data that a high surrogate takes, whose
// low half the next chunk brings.
qsizetype OpenUtf16Pair(QByteArrayView data, QStringConverter::Encoding encoding) {
    if (data.size() < 2) {
        return 0;
    }
    const auto first = static_cast<unsigned char>(data[data.size() - 2]);
    const auto second = static_cast<unsigned char>(data[data.size() - 1]);
    const char16_t unit = encoding == QStringConverter::Utf16LE ? char16_t(first | second << 8)
                                                                : char16_t(first << 8 | second);
    return QChar::isHighSurrogate(unit) ? 2 : 0;
}

// The UTF-16 decoder passes surrogates without their partner through; they are no
// characters, so they read as replacement characters like any other invalid input.
void ReplaceLoneSurrogates(QString& text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            ++i;
        } else if (text[i].isSurrogate()) {
            text[i] = QChar::ReplacementCharacter;
        }
    }
}

// The length of a line cut to at most limit units, never between the halves of a pair.
qsizetype CutLength(const QString& text, qsizetype limit) {
    return limit > 0 && text[limit - 1].isHighSurrogate() ? limit - 1 : limit;
}

}  // namespace

ZelStdioFileEx::ZelStdioFileEx() = default;

ZelStdioFileEx::~ZelStdioFileEx() {
    Close();
}

bool ZelStdioFileEx::Open(const QString& path, unsigned flags) {
    Close();
    if (path.isEmpty()) {
        return false;
    }
    m_file.setFileName(NativePath(path));
    const bool readWrite = (flags & modeReadWrite) != 0;
    const bool write = (flags & modeWrite) != 0;
    const bool create = (flags & modeCreate) != 0;
    const bool truncate = create && (flags & modeNoTruncate) == 0;

    // The encoding is that of the content before opening empties it.
    TextEncoding text;
    if (truncate) {
        QFile old(m_file.fileName());
        if (old.open(QIODevice::ReadOnly)) {
            text = EncodingOf(old.read(3));
        }
    }

    QIODevice::OpenMode mode = QIODevice::ReadOnly;
    if (readWrite || (write && !truncate)) {
        // Write access alone would empty the file.
        mode = QIODevice::ReadWrite;
    } else if (write) {
        mode = QIODevice::WriteOnly;
    }
    if (truncate) {
        mode |= QIODevice::Truncate;
    }
    if (!create) {
        mode |= QIODevice::ExistingOnly;
    }
    if (!m_file.open(mode)) {
        return false;
    }

    if (!truncate) {
        text = EncodingOf(m_file.peek(3));
        m_file.read(text.bom.size());
    } else if (!text.bom.isEmpty()) {
        m_file.write(text.bom);
    }
    m_flags = flags;
    m_encoding = text.encoding;
    // Chunks are cut at whole characters by FillBuffer, so each one decodes on its own
    // and a character split between two chunks is never taken for an invalid one. A
    // mark behind the one already skipped is content.
    m_decoder = QStringDecoder(
        m_encoding, QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    m_encoder = QStringEncoder(m_encoding);
    return true;
}

bool ZelStdioFileEx::FillBuffer() {
    if (m_atEnd) {
        return false;
    }
    // No larger read than the file has left: a short file costs no buffer of a whole
    // chunk. A file that does not tell its size is read in whole chunks.
    const qint64 available = m_file.bytesAvailable();
    QByteArray bytes = m_file.read(available > 0 ? qMin(available, kChunkSize) : kChunkSize);
    if (bytes.isEmpty()) {
        m_atEnd = true;
        if (m_carry.isEmpty()) {
            return false;
        }
        // An incomplete character at the end reads as replacement characters.
        m_buffer += DecodeRest();
        m_carry.clear();
        return true;
    }
    bytes.prepend(m_carry);
    qsizetype tail = 0;
    if (m_encoding == QStringConverter::Utf8) {
        tail = IncompleteUtf8Tail(bytes);
    } else {
        tail = bytes.size() % 2;
        tail += OpenUtf16Pair(QByteArrayView(bytes).chopped(tail), m_encoding);
    }
    m_carry = bytes.right(tail);
    bytes.chop(tail);
    QString text = m_decoder.decode(bytes);
    ReplaceLoneSurrogates(text);
    m_buffer += text;
    return true;
}

QString ZelStdioFileEx::DecodeRest() {
    if (m_encoding == QStringConverter::Utf8) {
        const QString rest = m_decoder.decode(m_carry);
        return rest.isEmpty() ? QString(QChar::ReplacementCharacter) : rest;
    }
    // A high surrogate without its low half, then half a code unit.
    QString rest = m_decoder.decode(m_carry.left(m_carry.size() & ~qsizetype(1)));
    ReplaceLoneSurrogates(rest);
    if (m_carry.size() % 2 != 0) {
        rest += QChar::ReplacementCharacter;
    }
    return rest;
}

void ZelStdioFileEx::SkipRestOfLine() {
    for (;;) {
        const qsizetype end = m_buffer.indexOf(u'\n', m_readPos);
        if (end >= 0) {
            m_readPos = end + 1;
            return;
        }
        m_buffer.clear();
        m_readPos = 0;
        if (!FillBuffer()) {
            return;
        }
    }
}

bool ZelStdioFileEx::ReadString(QString& line) {
    line.clear();
    if (!m_file.isOpen() || !m_file.isReadable()) {
        return false;
    }
    m_buffer.remove(0, m_readPos);
    m_readPos = 0;

    // Enough text to tell whether the line is longer than the limit: the limit and a
    // "\r" of the line end.
    const qsizetype enough = kMaxLineLength + 2;
    qsizetype end = -1;
    qsizetype searched = 0;
    while ((end = m_buffer.indexOf(u'\n', searched)) < 0 && m_buffer.size() < enough) {
        searched = m_buffer.size();
        if (!FillBuffer()) {
            break;
        }
    }
    if (end < 0 && m_buffer.isEmpty()) {
        return false;
    }
    // The last line of a file may lack its line end.
    qsizetype length = end < 0 ? m_buffer.size() : end;
    if (end > 0 && m_buffer[end - 1] == u'\r') {
        --length;
    }
    m_readPos = end < 0 ? m_buffer.size() : end + 1;
    if (length <= kMaxLineLength) {
        line = m_buffer.left(length);
        return true;
    }
    line = m_buffer.left(CutLength(m_buffer, kMaxLineLength));
    if (end < 0) {
        SkipRestOfLine();
    }
    return true;
}

bool ZelStdioFileEx::WriteString(const QString& text) {
    if (!m_file.isOpen() || !m_file.isWritable()) {
        return false;
    }
    QByteArray bytes;
#if defined(Q_OS_WIN)
    if ((m_flags & typeText) != 0) {
        QString lines = text;
        lines.replace(u'\n', QStringLiteral("\r\n"));
        bytes = m_encoder.encode(lines);
    } else
#endif
    {
        bytes = m_encoder.encode(text);
    }
    // Text that starts with U+FEFF would read back as a mark and lose that character,
    // so a file without a mark gets one in front of it.
    if (m_encoding == QStringConverter::Utf8 && m_file.pos() == 0 &&
        text.startsWith(QChar(QChar::ByteOrderMark))) {
        bytes.prepend("\xEF\xBB\xBF");
    }
    if (m_file.write(bytes) != bytes.size()) {
        m_writeFailed = true;
    }
    return !m_writeFailed;
}

void ZelStdioFileEx::SeekToEnd() {
    if (m_file.isOpen()) {
        m_file.seek(m_file.size());
        m_buffer.clear();
        m_readPos = 0;
        m_carry.clear();
        m_atEnd = true;
    }
}

bool ZelStdioFileEx::Flush() {
    if (!m_file.isOpen()) {
        return false;
    }
    const bool flushed = m_file.flush();
    return flushed && !m_writeFailed;
}

void ZelStdioFileEx::Close() {
    m_file.close();
    m_flags = 0;
    m_encoding = QStringConverter::Utf8;
    m_carry.clear();
    m_buffer.clear();
    m_readPos = 0;
    m_atEnd = false;
    m_writeFailed = false;
}
