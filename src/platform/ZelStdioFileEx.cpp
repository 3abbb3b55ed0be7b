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
    QByteArray bytes = m_file.read(kChunkSize);
    if (bytes.isEmpty()) {
        m_atEnd = true;
        if (m_carry.isEmpty()) {
            return false;
        }
        // An incomplete character at the end reads as replacement characters.
        const QString rest = m_decoder.decode(m_carry);
        m_buffer += rest.isEmpty() ? QString(QChar::ReplacementCharacter) : rest;
        m_carry.clear();
        return true;
    }
    bytes.prepend(m_carry);
    const qsizetype tail =
        m_encoding == QStringConverter::Utf8 ? IncompleteUtf8Tail(bytes) : bytes.size() % 2;
    m_carry = bytes.right(tail);
    bytes.chop(tail);
    m_buffer += m_decoder.decode(bytes);
    return true;
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

    qsizetype end = -1;
    qsizetype searched = 0;
    while ((end = m_buffer.indexOf(u'\n', searched)) < 0) {
        searched = m_buffer.size();
        if (searched > kMaxLineLength) {
            line = m_buffer.left(kMaxLineLength);
            SkipRestOfLine();
            return true;
        }
        if (!FillBuffer()) {
            break;
        }
    }
    if (end < 0) {
        // The last line of a file that doesn't end with a line end.
        if (m_buffer.isEmpty()) {
            return false;
        }
        line = m_buffer;
        m_readPos = m_buffer.size();
        return true;
    }
    m_readPos = end + 1;
    if (end > 0 && m_buffer[end - 1] == u'\r') {
        --end;
    }
    line = m_buffer.left(end);
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
