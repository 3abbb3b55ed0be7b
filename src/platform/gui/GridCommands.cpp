#include "GridCommands.h"

#include "GridModel.h"

GridStepCommand::GridStepCommand(const QString& text) : QUndoCommand(text) {}

GridStepCommand::~GridStepCommand() = default;

void GridStepCommand::redo() {
    if (m_bFirst) {
        m_bFirst = false;
        return;
    }
    Redo();
}

void GridStepCommand::undo() {
    Undo();
}

CellEditCommand::CellEditCommand(GridModel* model, int row, int col, const QString& before,
                                 const QString& after, Applied applied)
    : GridStepCommand(QStringLiteral("Edit Cell")),
      m_model(model),
      m_row(row),
      m_col(col),
      m_before(before),
      m_after(after),
      m_applied(std::move(applied)) {}

CellEditCommand::~CellEditCommand() = default;

void CellEditCommand::Redo() {
    Apply(m_after);
}

void CellEditCommand::Undo() {
    Apply(m_before);
}

void CellEditCommand::Apply(const QString& value) {
    m_model->StoreValue(m_row, m_col, value);
    m_model->CellsChanged(m_row, m_col, m_col);
    if (m_applied) {
        m_applied(m_row, m_col);
    }
}
