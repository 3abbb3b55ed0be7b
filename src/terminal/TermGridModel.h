#pragma once

#include "GridModel.h"

#include "BlockLookup.h"
#include "TermColumns.h"

#include "CKVModule.h"

#include <functional>

class CBlockDescEx;

// The terminal rows of the shown module as grid cells. It keeps no rows of its own:
// every cell is read from the module and every write goes to it at once. Grid row n
// is terminal row n.
class TermGridModel : public GridModel {
    Q_OBJECT
public:
    // Grid columns 1 to 5, as the cells count them.
    enum Column {
        ColumnTerminal = 1,
        ColumnShow,
        ColumnRePrompt,
        ColumnBreak,
        ColumnSpacing,
        ColumnCount = ColumnSpacing
    };
    using ModuleSource = std::function<CKVModule*()>;

    explicit TermGridModel(QObject* parent = nullptr);
    ~TermGridModel() override;

    void SetModuleSource(ModuleSource source) { m_source = std::move(source); }
    // The module as the source gives it now; null when there is none.
    CKVModule* Module() const { return m_source ? m_source() : nullptr; }
    void SetBlockDesc(CBlockDescEx* blocks);
    CBlockDescEx* BlockDesc() const { return m_pBlockDesc; }

    // Header texts, and the lines of the show and re-prompt drop lists.
    void SetTexts(const QStringList& headers, const QStringList& showChoices,
                  const QStringList& rePromptChoices);
    // Reads the block list again: the terminal column's choices are the descriptions of
    // all its blocks, in list order, and stored names are looked up in it.
    void RefreshBlocks();
    const BlockLookup& Blocks() const { return m_lookup; }
    // Shows that many rows of the module (0 empties the grid).
    void ShowRows(int count);

    int RowCount() const override;
    int ColCount() const override { return ColumnCount; }
    QString CellValue(int row, int col) const override;
    bool StoreValue(int row, int col, const QString& value) override;
    ColumnKind Kind(int col) const override;
    QStringList Choices(int col) const override;
    QString ColumnHeader(int col) const override;
    QString DisplayText(int row, int col) const override;

    // The one-based block of a row's stored name, -1 when the list has none.
    int BlockIndexOf(int row) const;
    // Writes the name of the row's block (blockIndex) back in module form. The other
    // columns show what the row holds and are not written back: a spacing keeps the
    // decimals that the cell does not show until the user edits it.
    void WriteBackRow(int row, int blockIndex);

    // Whole rows, for undo: what a row holds, putting it back, and adding and removing
    // module rows together with grid rows.
    _termvalues RowValues(int row) const;
    void RestoreRow(int row, const _termvalues& values);
    bool InsertRow(int row, bool bFromSameRow);
    bool InsertRowValues(int row, const _termvalues& values);
    bool RemoveRow(int row);

private:
    ModuleSource m_source;
    CBlockDescEx* m_pBlockDesc = nullptr;
    BlockLookup m_lookup;
    // How each column is made and read, as the rows' CSV form makes and reads them.
    TermColumns m_columns;
    int m_nRows = 0;
};
