#pragma once

#include <QPersistentModelIndex>
#include <QPointer>
#include <QStyledItemDelegate>

class GridModel;

// The one delegate of the grids: a drop list fed by the column's choices, whose value
// is the index of the choice; an editable combo box fed by the cell's choices, whose
// value is its text; a check box drawn and toggled in the middle of its cell; a line
// editor for text. It knows the editor that is open, so that a grid can read
// what the user is typing before it is committed.
class ChoiceDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    explicit ChoiceDelegate(QObject* parent = nullptr);
    ~ChoiceDelegate() override;

    // The value the open editor of that cell holds: its text, or for a drop list the
    // value of the chosen line. False when no editor is open on the cell.
    bool EditorValue(const QModelIndex& index, QString& value) const;
    bool HasOpenEditor() const { return !m_editor.isNull(); }

    QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const override;
    void destroyEditor(QWidget* editor, const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

    // Where the check box of a cell is drawn: centred in the cell rectangle.
    static QRect CheckRect(const QStyleOptionViewItem& option, const QWidget* widget);

protected:
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

private:
    static const GridModel* Grid(const QModelIndex& index);
    static bool IsChoice(const QModelIndex& index);
    static bool IsCheck(const QModelIndex& index);
    static bool IsCombo(const QModelIndex& index);

    mutable QPointer<QWidget> m_editor;
    mutable QPersistentModelIndex m_editorIndex;
};
