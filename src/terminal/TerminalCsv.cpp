#include "TerminalCsv.h"

#include "TermColumns.h"

#include <QStringDecoder>

const QString TerminalCsv::kOtherHeader = QStringLiteral("Other tokens (;)");

namespace {

const QString kLineEnd = QStringLiteral("\r\n");
const QString kSeparator = QStringLiteral(";");

// A row's special part as the CSV shows it: the grid's columns read the flag and spacing
// tokens; a NAME=VALUE token with a plain name and a value goes to the column of its name
// (the first of a name in the row; names compared without regard to case); every other
// token but an empty one is kept as it is among the other tokens.
struct RowParts {
    QStringList names;
    QStringList values;
    QStringList other;

    qsizetype Find(const QString& name) const {
        for (qsizetype i = 0; i < names.size(); ++i) {
            if (names[i].compare(name, Qt::CaseInsensitive) == 0) {
                return i;
            }
        }
        return -1;
    }
};

// The name and value of a token that a column can hold; false for any other token.
bool SplitColumnToken(const QString& token, QString& name, QString& value) {
    if (CKVModule::IsFlagToken(token)) {
        return false;
    }
    const QString form = CKVModule::PairForm(token);
    const qsizetype equals = form.indexOf(u'=');
    name = form.left(equals);
    value = form.mid(equals + 1);
    return equals > 0 && name == name.trimmed() && !value.isEmpty();
}

RowParts SplitRow(const QString& special) {
    RowParts parts;
    for (const QString& token : CKVModule::Tokens(special)) {
        QString name;
        QString value;
        if (CKVModule::IsFlagToken(token) || token.isEmpty()) {
            continue;
        }
        if (SplitColumnToken(token, name, value) && parts.Find(name) < 0) {
            parts.names.append(name);
            parts.values.append(value);
        } else {
            parts.other.append(token);
        }
    }
    return parts;
}

bool IsTagColumn(const QString& header) {
    return header != TerminalCsv::kOtherHeader;
}

QString Line(const QStringList& fields) {
    QStringList written;
    for (const QString& field : fields) {
        written.append(TerminalCsv::Field(field));
    }
    return written.join(u',') + kLineEnd;
}

QString CellName(int record, int field, const QStringList& header) {
    const QString column = field < header.size() ? header[field] : QString::number(field + 1);
    return record == 0 ? QStringLiteral("header, column %1").arg(field + 1)
                       : QStringLiteral("row %1, column %2").arg(record).arg(column);
}

}  // namespace

QString TerminalCsv::Field(const QString& text) {
    static const QString special = QStringLiteral(",\"\r\n");
    bool quote = false;
    for (const QChar c : text) {
        quote = quote || special.contains(c);
    }
    if (!quote) {
        return text;
    }
    QString doubled = text;
    doubled.replace(u'"', QStringLiteral("\"\""));
    return u'"' + doubled + u'"';
}

QByteArray TerminalCsv::Write(const CKVModule& module) const {
    QStringList header;
    for (int col = 1; col <= TermColumns::Count; ++col) {
        header.append(m_columns.Header(col));
    }
    const qsizetype firstTag = header.size();
    QList<RowParts> rows;
    bool other = false;
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        rows.append(SplitRow(module.GetTermSpecial(row)));
        for (const QString& name : rows.last().names) {
            bool known = false;
            for (qsizetype col = firstTag; col < header.size(); ++col) {
                known = known || header[col].compare(name, Qt::CaseInsensitive) == 0;
            }
            if (!known) {
                header.append(name);
            }
        }
        other = other || !rows.last().other.isEmpty();
    }
    if (other) {
        header.append(kOtherHeader);
    }
    QString text = Line(header);
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        QStringList cells;
        RowCells(module, row, header, cells);
        text += Line(cells);
    }
    return text.toUtf8();
}

bool TerminalCsv::RowCells(const CKVModule& module, int row, const QStringList& header,
                           QStringList& cells) const {
    cells.clear();
    for (int col = 1; col <= TermColumns::Count; ++col) {
        cells.append(m_columns.Text(module, row, col));
    }
    const RowParts parts = SplitRow(module.GetTermSpecial(row));
    qsizetype placed = 0;
    bool otherPlaced = false;
    for (qsizetype col = TermColumns::Count; col < header.size(); ++col) {
        if (!IsTagColumn(header[col])) {
            cells.append(parts.other.join(kSeparator));
            otherPlaced = true;
            continue;
        }
        const qsizetype entry = parts.Find(header[col]);
        cells.append(entry < 0 ? QString() : parts.values[entry]);
        placed += entry < 0 ? 0 : 1;
    }
    return placed == parts.names.size() && (otherPlaced || parts.other.isEmpty());
}

bool TerminalCsv::SplitRecords(const QString& text, QList<QStringList>& records, int& failRecord,
                               int& failField, QString& error) {
    records.clear();
    QStringList fields;
    QString field;
    bool inQuotes = false;
    bool afterQuote = false;
    const auto fail = [&](const char* why) {
        failRecord = int(records.size());
        failField = int(fields.size());
        error = QString::fromLatin1(why);
        return false;
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        if (inQuotes) {
            if (c != u'"') {
                field += c;
            } else if (i + 1 < text.size() && text[i + 1] == u'"') {
                field += c;
                ++i;
            } else {
                inQuotes = false;
                afterQuote = true;
            }
            continue;
        }
        if (c == u',' || c == u'\r' || c == u'\n') {
            fields.append(field);
            field.clear();
            afterQuote = false;
            if (c != u',') {
                records.append(fields);
                fields.clear();
                i += c == u'\r' && i + 1 < text.size() && text[i + 1] == u'\n' ? 1 : 0;
            }
            continue;
        }
        if (afterQuote) {
            return fail("a quoted field goes on after its closing quote");
        }
        if (c == u'"' && !field.isEmpty()) {
            return fail("a quote stands inside a field that does not begin with one");
        }
        if (c == u'"') {
            inQuotes = true;
        } else {
            field += c;
        }
    }
    if (inQuotes) {
        return fail("a quoted field is not closed");
    }
    if (!field.isEmpty() || !fields.isEmpty() || afterQuote) {
        fields.append(field);
        records.append(fields);
    }
    return true;
}

QStringList TerminalCsv::CheckHeader(const QStringList& header) const {
    QStringList errors;
    for (int col = 1; col <= TermColumns::Count; ++col) {
        const QString expected = m_columns.Header(col);
        if (col > header.size() || header[col - 1].compare(expected, Qt::CaseInsensitive) != 0) {
            errors.append(QStringLiteral("header, column %1: %2 where the column %3 belongs")
                              .arg(col)
                              .arg(col <= header.size() ? u'"' + header[col - 1] + u'"'
                                                        : QStringLiteral("nothing"),
                                   expected));
        }
    }
    for (qsizetype col = TermColumns::Count; col < header.size(); ++col) {
        const QString& name = header[col];
        bool twice = false;
        for (qsizetype before = TermColumns::Count; before < col; ++before) {
            twice = twice || header[before].compare(name, Qt::CaseInsensitive) == 0;
        }
        QString why;
        if (twice) {
            why = QStringLiteral("the column %1 comes twice").arg(name);
        } else if (IsTagColumn(name) && (name.isEmpty() || name != name.trimmed() ||
                                         name.contains(u'=') || name.contains(u';'))) {
            why = QStringLiteral(
                      "\"%1\" is no column: a token's name, without = and ; and "
                      "without blanks at its ends, or \"%2\"")
                      .arg(name, kOtherHeader);
        }
        if (!why.isEmpty()) {
            errors.append(QStringLiteral("header, column %1: %2").arg(col + 1).arg(why));
        }
    }
    return errors;
}

void TerminalCsv::MakeRow(CKVModule& work, const CKVModule& stored, int row,
                          const QStringList& header, const QStringList& cells,
                          const QStringList& knownNames, QStringList& errors) const {
    QStringList tokens;
    RowParts columns;
    QStringList other;
    for (qsizetype col = TermColumns::Count; col < header.size(); ++col) {
        const QString& cell = cells[col];
        if (!IsTagColumn(header[col])) {
            other = cell.split(kSeparator, Qt::SkipEmptyParts);
        } else if (cell.contains(u';')) {
            errors.append(CellName(row, int(col), header) +
                          QStringLiteral(": a value cannot hold \";\", which ends a token"));
        } else if (!cell.isEmpty() && CKVModule::IsFlagToken(header[col] + u'=' + cell)) {
            errors.append(CellName(row, int(col), header) +
                          QStringLiteral(": %1=%2 would read as a flag; the columns %3 to %4 hold "
                                         "those")
                              .arg(header[col], cell, m_columns.Header(TermColumns::Show),
                                   m_columns.Header(TermColumns::Spacing)));
        } else if (!cell.isEmpty()) {
            tokens.append(header[col] + u'=' + cell);
            columns.names.append(header[col]);
        }
    }
    const int otherCol = int(header.indexOf(kOtherHeader));
    for (const QString& token : other) {
        // What the CSV would show elsewhere would not read back as written.
        QString name;
        QString value;
        if (CKVModule::IsFlagToken(token)) {
            errors.append(CellName(row, otherCol, header) +
                          QStringLiteral(": \"%1\" belongs in the columns %2 to %3")
                              .arg(token, m_columns.Header(TermColumns::Show),
                                   m_columns.Header(TermColumns::Spacing)));
        } else if (SplitColumnToken(token, name, value) && columns.Find(name) < 0) {
            errors.append(CellName(row, otherCol, header) +
                          QStringLiteral(": \"%1\" belongs in a column %2").arg(token, name));
        }
    }
    work.SetTermSpecial(row, (tokens + other).join(kSeparator));
    for (int col = 1; col <= TermColumns::Count; ++col) {
        QString error;
        if (!m_columns.ReadText(work, row, col, cells[col - 1], knownNames, error)) {
            errors.append(CellName(row, col - 1, header) + QStringLiteral(": ") + error);
        }
    }
    // As in the grid, a cell left as the stored row at its place shows it keeps what that
    // row holds: the name as it is spelled, the decimals of a spacing that do not show.
    if (row <= stored.GetTermCount() &&
        cells[TermColumns::Terminal - 1] == m_columns.Text(stored, row, TermColumns::Terminal)) {
        work.SetTermText(row, stored.GetTermText(row));
    }
    if (row <= stored.GetTermCount() &&
        cells[TermColumns::Spacing - 1] == m_columns.Text(stored, row, TermColumns::Spacing)) {
        work.SetSpacingFactor(row, stored.GetSpacingFactor(row));
    }
}

bool TerminalCsv::Read(const QByteArray& data, const CKVModule& module, QList<TermCsvRow>& rows,
                       QStringList& errors) const {
    rows.clear();
    errors.clear();
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder(data);
    if (decoder.hasError()) {
        errors.append(QStringLiteral("the file is no UTF-8 text"));
        return false;
    }
    QList<QStringList> records;
    int failRecord = 0;
    int failField = 0;
    QString error;
    if (!SplitRecords(text, records, failRecord, failField, error)) {
        errors.append(CellName(failRecord, failField, records.value(0)) + QStringLiteral(": ") +
                      error);
        return false;
    }
    if (records.isEmpty()) {
        errors.append(QStringLiteral("the file is empty: it needs at least the header row"));
        return false;
    }
    const QStringList header = records.takeFirst();
    errors = CheckHeader(header);
    if (!errors.isEmpty()) {
        return false;
    }
    // A name the list lacks may stand for a block where the module already stores it.
    QStringList knownNames;
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        if (m_columns.Value(module, row, TermColumns::Terminal).isEmpty()) {
            knownNames.append(module.GetTermText(row));
        }
    }
    CKVModule work;
    for (int row = 1; row <= int(records.size()); ++row) {
        const QStringList& cells = records[row - 1];
        work.SetTermText(row, QStringLiteral(""));
        if (cells.size() != header.size()) {
            errors.append(QStringLiteral("row %1: %2 cells where the header has %3")
                              .arg(row)
                              .arg(cells.size())
                              .arg(header.size()));
            continue;
        }
        QStringList stored;
        if (row <= module.GetTermCount() && RowCells(module, row, header, stored) &&
            stored == cells) {
            rows.append({row, {module.GetTermText(row), module.GetTermSpecial(row)}});
            continue;
        }
        MakeRow(work, module, row, header, cells, knownNames, errors);
        rows.append({0, {work.GetTermText(row), work.GetTermSpecial(row)}});
    }
    if (!errors.isEmpty()) {
        rows.clear();
        return false;
    }
    return true;
}
