#include "TermRowsCommand.h"

#include "CTermGridWnd.h"
#include "TermGridModel.h"

TermRowsCommand::TermRowsCommand(CTermGridWnd& grid, const QString& text)
    : GridStepCommand(text), m_grid(grid) {}

TermRowsCommand::~TermRowsCommand() = default;

bool TermRowsCommand::Same(const _termvalues& a, const _termvalues& b) {
    return a.strText == b.strText && a.strSpecial == b.strSpecial;
}

void TermRowsCommand::Edited(int row, const _termvalues& before, const _termvalues& after) {
    m_steps.append(Step{Kind::Edit, row, before, after});
}

void TermRowsCommand::Inserted(int row, const _termvalues& values) {
    m_steps.append(Step{Kind::Insert, row, {}, values});
}

void TermRowsCommand::Removed(int row, const _termvalues& values) {
    m_steps.append(Step{Kind::Remove, row, values, {}});
}

void TermRowsCommand::SetCells(int rowBefore, int colBefore, int rowAfter, int colAfter) {
    m_rowBefore = rowBefore;
    m_colBefore = colBefore;
    m_rowAfter = rowAfter;
    m_colAfter = colAfter;
}

void TermRowsCommand::Redo() {
    TermGridModel& model = *m_grid.Model();
    m_grid.BeginQuiet();
    for (const Step& step : m_steps) {
        switch (step.kind) {
            case Kind::Edit:
                model.RestoreRow(step.row, step.after);
                break;
            case Kind::Insert:
                model.InsertRowValues(step.row, step.after);
                break;
            case Kind::Remove:
                model.RemoveRow(step.row);
                break;
        }
    }
    m_grid.EndQuiet(m_rowAfter, m_colAfter);
}

void TermRowsCommand::Undo() {
    TermGridModel& model = *m_grid.Model();
    m_grid.BeginQuiet();
    for (auto step = m_steps.crbegin(); step != m_steps.crend(); ++step) {
        switch (step->kind) {
            case Kind::Edit:
                model.RestoreRow(step->row, step->before);
                break;
            case Kind::Insert:
                model.RemoveRow(step->row);
                break;
            case Kind::Remove:
                model.InsertRowValues(step->row, step->before);
                break;
        }
    }
    m_grid.EndQuiet(m_rowBefore, m_colBefore);
}
