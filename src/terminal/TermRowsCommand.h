#pragma once

#include "GridCommands.h"

#include "CKVModule.h"

#include <QList>

class CTermGridWnd;

// One undo step of the terminal grid: the module rows it changed, added and removed,
// each with its whole text and special part, so that undo and redo give back the
// module exactly; and the current cell before and after, which they restore.
class TermRowsCommand : public GridStepCommand {
public:
    TermRowsCommand(CTermGridWnd& grid, const QString& text);
    ~TermRowsCommand() override;

    // The steps in the order they were made.
    void Edited(int row, const _termvalues& before, const _termvalues& after);
    void Inserted(int row, const _termvalues& values);
    void Removed(int row, const _termvalues& values);
    void SetCells(int rowBefore, int colBefore, int rowAfter, int colAfter);
    bool IsEmpty() const { return m_steps.isEmpty(); }

    static bool Same(const _termvalues& a, const _termvalues& b);

protected:
    void Redo() override;
    void Undo() override;

private:
    enum class Kind { Edit, Insert, Remove };
    struct Step {
        Kind kind;
        int row;
        _termvalues before;
        _termvalues after;
    };

    CTermGridWnd& m_grid;
    QList<Step> m_steps;
    int m_rowBefore = -1;
    int m_colBefore = -1;
    int m_rowAfter = -1;
    int m_colAfter = -1;
};
