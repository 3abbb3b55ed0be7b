#pragma once

#include <QString>
#include <QStringList>

class BlockLookup;
class CKVModule;

// The five columns of a terminal row, made and read in one place for the terminal grid
// and the rows' CSV form. Each column has a value (what a grid cell holds: the block's
// one-based index, the show or re-prompt bit set, "0" or "1", the spacing) and a text
// (what the cell shows: the block's description, the choice line, "0" or "1", the
// spacing). Values are written as the grid writes them, without questions; texts are
// read strictly, and a text that is not one the column makes is refused with a reason.
class TermColumns {
public:
    // Columns 1 to 5, as the grid counts them.
    enum Column { Terminal = 1, Show, RePrompt, Break, Spacing, Count = Spacing };

    // The block list to look names up in, lent; null: no block is known.
    void SetBlocks(const BlockLookup* blocks) { m_blocks = blocks; }
    // Header texts, and the lines of the show and re-prompt choices.
    void SetTexts(const QStringList& headers, const QStringList& showChoices,
                  const QStringList& rePromptChoices);
    // The texts of the string table, as the editor's grid has them.
    void LoadTexts();

    QString Header(int col) const { return m_headers.value(col - 1); }
    const QStringList& Headers() const { return m_headers; }
    // The choices of the show and re-prompt columns (empty for the others).
    QStringList Choices(int col) const;

    // The cell value of a row's column; empty outside the rows.
    QString Value(const CKVModule& module, int row, int col) const;
    // Writes a cell value to the row as the grid's cell does: a block index outside the
    // list and an empty show or re-prompt write nothing (false); a spacing that is no
    // number reads as far as it goes.
    bool StoreValue(CKVModule& module, int row, int col, const QString& value) const;

    // The text the cell shows: the block's description, or the stored name when the list
    // has no block of that name; the choice line of the bit set, or the number when there
    // is no such line; "0" or "1"; the spacing.
    QString Text(const CKVModule& module, int row, int col) const;
    // Reads a text that Text makes into the row. A block description may also be a name
    // that a row of the module stores and the list lacks (knownNames), as Text shows it.
    // False, with a sentence in error, for a text the column cannot take; the row is then
    // unchanged.
    bool ReadText(CKVModule& module, int row, int col, const QString& text,
                  const QStringList& knownNames, QString& error) const;

    // Spacing as a cell shows it: four decimals in the locale's separator, empty unset.
    static QString SpacingText(double value);
    // The other way: the locale's separator read as "."; empty gives -1.0 (unset). False
    // when the text is not one whole number, which is then read as far as it goes.
    static bool SpacingValue(const QString& text, double& value);

private:
    // Below 0.1 a spacing shows as its digits behind the separator without the zeros in
    // front (0.075 shows ".750"); read back, those digits are ten-thousandths. False for
    // any other text.
    static bool ShortSpacingValue(const QString& text, double& value);

    const BlockLookup* m_blocks = nullptr;
    QStringList m_headers;
    QStringList m_showChoices;
    QStringList m_rePromptChoices;
};
