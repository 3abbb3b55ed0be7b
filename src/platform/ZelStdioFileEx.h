#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QStringDecoder>
#include <QStringEncoder>

// The family's text file: whole lines of wide text in and out.
//
// Reading recognises a byte order mark (UTF-8, UTF-16 LE or BE) and takes UTF-8 when
// there is none; bytes that are not valid in the encoding, an incomplete character at
// the end and a UTF-16 surrogate without its partner included, read as replacement
// characters. Only the first mark is taken off: a U+FEFF behind it is text and stays
// in the first line. Writing keeps the encoding and the
// mark that the file had when it was opened, even when opening empties it; a new or
// empty file is written as UTF-8 without a mark, unless its text starts with U+FEFF,
// which then gets a mark in front so that it reads back as text.
//
// A file is either read or written between Open and Close, not both.
class ZelStdioFileEx {
public:
    static constexpr unsigned modeRead = 0x0000;
    static constexpr unsigned modeWrite = 0x0001;
    static constexpr unsigned modeReadWrite = 0x0002;
    // Sharing is what other programs may do while the file is open. This platform has
    // no mandatory file locks, so these are accepted and have no effect.
    static constexpr unsigned shareDenyWrite = 0x0020;
    static constexpr unsigned shareDenyNone = 0x0040;
    // Creates a missing file and empties an existing one, unless modeNoTruncate is set.
    static constexpr unsigned modeCreate = 0x1000;
    static constexpr unsigned modeNoTruncate = 0x2000;
    // Lines end with "\n" in memory; on Windows they are written as "\r\n".
    static constexpr unsigned typeText = 0x4000;

    // A longer line is cut to this many UTF-16 units (one less where the cut would split
    // a character) and the rest of it is skipped, so that a binary file without line
    // ends can't take all memory. A line of exactly this length stays whole.
    static constexpr qsizetype kMaxLineLength = 1 << 20;

    ZelStdioFileEx();
    virtual ~ZelStdioFileEx();
    ZelStdioFileEx(const ZelStdioFileEx&) = delete;
    ZelStdioFileEx& operator=(const ZelStdioFileEx&) = delete;

    // Closes a file that is open, then opens path ("/" or "\" between folders).
    // Without modeCreate the file must exist.
    bool Open(const QString& path, unsigned flags);
    bool IsOpen() const { return m_file.isOpen(); }

    // The next line without its line end ("\n" or "\r\n"); false and an empty line at
    // the end of the file or when the file isn't open for reading.
    bool ReadString(QString& line);
    // Writes text as given: the caller adds "\n" where a line ends.
    bool WriteString(const QString& text);
    // Moves to the end of the file, where the next WriteString appends.
    void SeekToEnd();
    // Writes out what is buffered; false when the file didn't take all that was written.
    bool Flush();
    void Close();

private:
    bool FillBuffer();
    QString DecodeRest();
    void SkipRestOfLine();

    QFile m_file;
    unsigned m_flags = 0;
    QStringConverter::Encoding m_encoding = QStringConverter::Utf8;
    QStringDecoder m_decoder;
    QStringEncoder m_encoder;
    QByteArray m_carry;  // bytes of a character that the next chunk completes
    QString m_buffer;    // decoded text not yet handed out, from m_readPos
    qsizetype m_readPos = 0;
    bool m_atEnd = false;
    bool m_writeFailed = false;
};
