// The text-file reader on any bytes. The first byte picks a byte order mark to put in
// front and whether to pad, so that the rest of the input lies across the edge between
// two of the reader's 64 KiB reads (the second byte moves it). The lines hold no line
// end, no surrogate without its partner and nothing past the limit, and they are the
// lines of the whole file decoded at once.

#include "FuzzSupport.h"
#include "ZelStdioFileEx.h"

#include <QStringDecoder>
#include <QStringList>

namespace {

constexpr qsizetype kReadSize = 64 * 1024;

QByteArray Arrange(const uint8_t* data, size_t size) {
    if (size < 2) {
        return FuzzBytes(data, size);
    }
    static const QByteArray marks[] = {QByteArray(), QByteArray("\xEF\xBB\xBF"),
                                       QByteArray("\xFF\xFE"), QByteArray("\xFE\xFF")};
    QByteArray bytes = marks[data[0] & 3];
    if (data[0] & 4) {
        bytes += QByteArray(kReadSize - data[1] % 64, 'a');
    }
    return bytes + FuzzBytes(data + 2, size - 2);
}

// The whole file decoded in one go, each surrogate without its partner replaced.
QString DecodeWhole(const QByteArray& file) {
    QStringConverter::Encoding encoding = QStringConverter::Utf8;
    qsizetype start = 0;
    if (file.startsWith("\xEF\xBB\xBF")) {
        start = 3;
    } else if (file.startsWith("\xFF\xFE")) {
        encoding = QStringConverter::Utf16LE;
        start = 2;
    } else if (file.startsWith("\xFE\xFF")) {
        encoding = QStringConverter::Utf16BE;
        start = 2;
    }
    QByteArray body = file.mid(start);
    bool halfUnit = false;
    if (encoding != QStringConverter::Utf8 && body.size() % 2 != 0) {
        body.chop(1);
        halfUnit = true;
    }
    QStringDecoder decoder(
        encoding, QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    QString text = decoder.decode(body);
    QString whole;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool pair =
            text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (pair) {
            whole += text[i];
            whole += text[++i];
        } else {
            whole += text[i].isSurrogate() ? QChar(QChar::ReplacementCharacter) : text[i];
        }
    }
    if (halfUnit) {
        whole += QChar(QChar::ReplacementCharacter);
    }
    return whole;
}

QStringList LinesOf(const QString& whole) {
    QStringList lines = whole.split(u'\n');
    const bool lastEnded = lines.last().isEmpty();
    if (lastEnded) {
        lines.removeLast();
    }
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const bool ended = i + 1 < lines.size() || lastEnded;
        if (ended && lines[i].endsWith(u'\r')) {
            lines[i].chop(1);
        }
    }
    return lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray file = Arrange(data, size);
    const QString path = FuzzPath(QStringLiteral("text.txt"));
    FuzzWriteFile(path, file);
    ZelStdioFileEx reader;
    FuzzCheck(reader.Open(path, ZelStdioFileEx::modeRead | ZelStdioFileEx::typeText),
              "an existing file opens");
    QStringList lines;
    QString line;
    while (reader.ReadString(line)) {
        FuzzCheck(!line.contains(u'\n'), "a line holds no line end", line);
        FuzzCheck(!HasLoneSurrogate(line), "a line holds no surrogate without its partner", line);
        FuzzCheck(line.size() <= ZelStdioFileEx::kMaxLineLength, "a line keeps to the limit");
        lines.append(line);
    }
    FuzzCheck(line.isEmpty(), "the end of the file gives an empty line");
    const QStringList expected = LinesOf(DecodeWhole(file));
    FuzzCheck(lines == expected, "the lines are those of the whole file decoded at once",
              QStringLiteral("%1 lines read, %2 expected").arg(lines.size()).arg(expected.size()));
    return 0;
}
