#pragma once

#include <QString>
#include <QUndoCommand>

#include <functional>

class GridModel;

// An undo step for a change that was already made when it was recorded: the first
// redo, which QUndoStack::push runs, does nothing; later ones call Redo.
class GridStepCommand : public QUndoCommand {
public:
    explicit GridStepCommand(const QString& text);
    ~GridStepCommand() override;

    void redo() final;
    void undo() final;

protected:
    virtual void Redo() = 0;
    virtual void Undo() = 0;

private:
    bool m_bFirst = true;
};

// One cell's value changed from one text to another through GridModel::StoreValue.
// The callback runs after each undo and redo with the cell, so that the grid can tell
// whoever follows it.
class CellEditCommand : public GridStepCommand {
public:
    using Applied = std::function<void(int row, int col)>;

    CellEditCommand(GridModel* model, int row, int col, const QString& before, const QString& after,
                    Applied applied);
    ~CellEditCommand() override;

protected:
    void Redo() override;
    void Undo() override;

private:
    void Apply(const QString& value);

    GridModel* m_model;
    int m_row;
    int m_col;
    QString m_before;
    QString m_after;
    Applied m_applied;
};
