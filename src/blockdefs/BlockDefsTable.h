#pragma once

#include "TermBlock.h"

#include <QList>
#include <QString>
#include <QStringList>

class CKVModule;

// One row of the block definitions: the four texts its grid shows.
struct BlockDefRow {
    QString blockFile;
    QString category;
    QString description;
    QString sampleFile;
};

// The rules of the terminal block definitions without widgets: the rows that the
// dialog's grid shows and edits, read from "kvmbblks.bsf" and written back with
// "blkplist.txt" as it was read; the style and orientation rewrites of block names;
// the merge of a module's block names; and the checks of OK. The dialog, the tests and
// plcdb blocks use this one class.
//
// Block names of the style scheme: the first character is the orientation (H or V),
// the second a letter (P for the names that are rewritten), the third the style digit
// 1 to 9 or "?" for any style, the rest free.
class BlockDefsTable {
public:
    // Columns from 1, as the grid counts them.
    enum Column {
        ColumnBlockFile = 1,
        ColumnCategory,
        ColumnDescription,
        ColumnSampleFile,
        ColumnCount = ColumnSampleFile
    };
    enum Orientation { kHorizontal = 1, kVertical = 2 };

    BlockDefsTable();
    ~BlockDefsTable();

    // The folder of both files; a null text changes nothing.
    void SetDirectory(const QString& folder);
    const QString& Directory() const { return m_strDirectory; }
    // Reads the path list (kept for Write) and the settings file into the rows. False,
    // with no rows, when the settings file can't be read; the table works on then.
    bool Read();
    // OK's write, after Validate: the stored blocks into the settings file, then the
    // path list as it was read. False when the settings file can't be written (the path
    // list is then left alone) or the path list can't.
    bool Write();
    // What Write stores: the rows whose block file, category and description are all
    // filled, the four texts trimmed, without attributes.
    TermBlockList StoredBlocks() const;

    int RowCount() const { return int(m_rows.size()); }
    const QList<BlockDefRow>& Rows() const { return m_rows; }
    void SetRows(const QList<BlockDefRow>& rows) { m_rows = rows; }
    // Rows and columns from 1; an empty text outside the table.
    QString Value(int row, int col) const;
    // False outside the table.
    bool SetValue(int row, int col, const QString& value);
    // Inserts a row so that it becomes row (1 to RowCount() + 1); false outside that.
    bool InsertRow(int row, const BlockDefRow& values = {});
    void AppendRow(const BlockDefRow& values);
    // False outside the table.
    bool RemoveRow(int row);

    // The state the dialog starts in, from the text of cell (1, 1): style 1 to 9 from
    // the third character, else 1; horizontal when the first is H or h, else vertical.
    static int StyleOfName(const QString& name);
    static Orientation OrientationOfName(const QString& name);

    // The name of another style and orientation for a name of the HP or VP family with
    // a digit third (0 included); false, name untouched, for every other name or a
    // style outside 1 to 9. An orientation other than 1 or 2 drops the first letter.
    static bool RewriteBlockName(QString& name, int style, int orientation);
    // Runs RewriteBlockName on the block file and the sample file of every row and
    // answers the rows whose text changed, in order. Nothing for a style outside 1 to 9.
    QList<int> ApplyStyle(int style, int orientation);

    // Appends a row, block file only, for each terminal name of the module that no row
    // holds in any style and orientation; answers the number of rows added. The new
    // name's first letter is V when selected is horizontal, else H, and its style
    // digit comes from the last row compared, not from the selected style: both as
    // the dialog has always done it.
    int MergeModuleTerminals(const CKVModule& module, Orientation selected);
    // Opens the store at dbPath, loads that catalog and merges its terminals; -1 when
    // the store can't be opened or the module not loaded, else the rows added.
    int MergeFromCatalog(const QString& dbPath, const QString& manufacturer, const QString& series,
                         const QString& type, const QString& catalog, Orientation selected);

    // The checks of OK, with their messages and questions through the message seam
    // (a block or sample file that is not found may be kept by answering Yes). True
    // when the rows may be written; else failRow and failCol name the cell to make
    // current.
    bool Validate(int& failRow, int& failCol) const;

private:
    QString m_strDirectory;
    QList<BlockDefRow> m_rows;
    QStringList m_lstPaths;
};
