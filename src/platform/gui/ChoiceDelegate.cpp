#include "ChoiceDelegate.h"

#include "GridModel.h"

#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>

ChoiceDelegate::ChoiceDelegate(QObject* parent) : QStyledItemDelegate(parent) {}

ChoiceDelegate::~ChoiceDelegate() = default;

const GridModel* ChoiceDelegate::Grid(const QModelIndex& index) {
    return qobject_cast<const GridModel*>(index.model());
}

bool ChoiceDelegate::IsChoice(const QModelIndex& index) {
    const GridModel* grid = Grid(index);
    if (!grid) {
        return false;
    }
    const GridModel::ColumnKind kind = grid->Kind(index.column() + 1);
    return kind == GridModel::ColumnKind::ChoiceFrom0 || kind == GridModel::ColumnKind::ChoiceFrom1;
}

bool ChoiceDelegate::IsCheck(const QModelIndex& index) {
    const GridModel* grid = Grid(index);
    return grid && grid->Kind(index.column() + 1) == GridModel::ColumnKind::Check;
}

bool ChoiceDelegate::IsCombo(const QModelIndex& index) {
    const GridModel* grid = Grid(index);
    return grid && grid->Kind(index.column() + 1) == GridModel::ColumnKind::Combo;
}

bool ChoiceDelegate::EditorValue(const QModelIndex& index, QString& value) const {
    if (m_editor.isNull() || !index.isValid() || m_editorIndex != index) {
        return false;
    }
    auto* combo = qobject_cast<QComboBox*>(m_editor.data());
    if (combo && combo->isEditable()) {
        value = combo->currentText();
        return true;
    }
    if (combo) {
        const GridModel* grid = Grid(index);
        value = grid && combo->currentIndex() >= 0
                    ? grid->ChoiceValue(index.column() + 1, combo->currentIndex())
                    : QString();
        return true;
    }
    if (auto* line = qobject_cast<QLineEdit*>(m_editor.data())) {
        value = line->text();
        return true;
    }
    return false;
}

QWidget* ChoiceDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                      const QModelIndex& index) const {
    QWidget* editor = nullptr;
    if (IsChoice(index)) {
        auto* combo = new QComboBox(parent);
        combo->addItems(Grid(index)->Choices(index.column() + 1));
        // A line picked from the open list is the user's answer at once.
        auto* self = const_cast<ChoiceDelegate*>(this);
        connect(combo, &QComboBox::activated, self, [self, combo] {
            emit self->commitData(combo);
            emit self->closeEditor(combo);
        });
        editor = combo;
    } else if (IsCombo(index)) {
        auto* combo = new QComboBox(parent);
        combo->setEditable(true);
        // Typed text is the value; it is not added to the choices.
        combo->setInsertPolicy(QComboBox::NoInsert);
        // No completion: a typed text that begins a choice, or differs from one only in
        // case, is a value of its own.
        combo->setCompleter(nullptr);
        combo->addItems(Grid(index)->CellChoices(index.row() + 1, index.column() + 1));
        auto* self = const_cast<ChoiceDelegate*>(this);
        // Return on a text that is one of the choices activates it as well, after the
        // key has already stored and closed the editor; so the store waits, and only an
        // editor still open is stored.
        connect(
            combo, &QComboBox::activated, self,
            [self, combo = QPointer<QComboBox>(combo)] {
                if (combo && self->m_editor == combo.data()) {
                    emit self->commitData(combo);
                    emit self->closeEditor(combo);
                }
            },
            Qt::QueuedConnection);
        editor = combo;
    } else {
        editor = QStyledItemDelegate::createEditor(parent, option, index);
    }
    m_editor = editor;
    m_editorIndex = index;
    return editor;
}

void ChoiceDelegate::destroyEditor(QWidget* editor, const QModelIndex& index) const {
    if (m_editor == editor) {
        m_editor.clear();
        m_editorIndex = QPersistentModelIndex();
    }
    QStyledItemDelegate::destroyEditor(editor, index);
}

void ChoiceDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
    if (auto* combo = qobject_cast<QComboBox*>(editor); combo && IsChoice(index)) {
        const int col = index.column() + 1;
        const GridModel* grid = Grid(index);
        combo->setCurrentIndex(grid->ChoicePosition(col, grid->CellValue(index.row() + 1, col)));
        return;
    }
    if (auto* combo = qobject_cast<QComboBox*>(editor); combo && IsCombo(index)) {
        // The value as it stands, untrimmed, even when it is none of the choices.
        const QString value = Grid(index)->CellValue(index.row() + 1, index.column() + 1);
        combo->setCurrentIndex(
            combo->findText(value, Qt::MatchFixedString | Qt::MatchCaseSensitive));
        combo->setEditText(value);
        return;
    }
    QStyledItemDelegate::setEditorData(editor, index);
}

void ChoiceDelegate::setModelData(QWidget* editor, QAbstractItemModel* model,
                                  const QModelIndex& index) const {
    if (auto* combo = qobject_cast<QComboBox*>(editor); combo && IsChoice(index)) {
        const int position = combo->currentIndex();
        const QString value =
            position < 0 ? QString() : Grid(index)->ChoiceValue(index.column() + 1, position);
        model->setData(index, value, Qt::EditRole);
        return;
    }
    if (auto* combo = qobject_cast<QComboBox*>(editor); combo && IsCombo(index)) {
        model->setData(index, combo->currentText(), Qt::EditRole);
        return;
    }
    QStyledItemDelegate::setModelData(editor, model, index);
}

QRect ChoiceDelegate::CheckRect(const QStyleOptionViewItem& option, const QWidget* widget) {
    const QStyle* style = widget ? widget->style() : QApplication::style();
    QStyleOptionButton box;
    const QRect indicator = style->subElementRect(QStyle::SE_CheckBoxIndicator, &box, widget);
    QRect rect(QPoint(), indicator.size());
    rect.moveCenter(option.rect.center());
    return rect;
}

void ChoiceDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                           const QModelIndex& index) const {
    if (!IsCheck(index)) {
        QStyledItemDelegate::paint(painter, option, index);
        return;
    }
    // The background and focus as any cell, then the box alone in the middle.
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    cell.features &= ~QStyleOptionViewItem::HasCheckIndicator;
    cell.text.clear();
    const QWidget* widget = option.widget;
    const QStyle* style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ItemViewItem, &cell, painter, widget);
    QStyleOptionViewItem box = option;
    box.rect = CheckRect(option, widget);
    box.state &= ~QStyle::State_HasFocus;
    box.state |= index.data(Qt::CheckStateRole).toInt() == Qt::Checked ? QStyle::State_On
                                                                       : QStyle::State_Off;
    style->drawPrimitive(QStyle::PE_IndicatorItemViewItemCheck, &box, painter, widget);
}

bool ChoiceDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
                                 const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (!IsCheck(index) || !(index.flags() & Qt::ItemIsUserCheckable)) {
        return QStyledItemDelegate::editorEvent(event, model, option, index);
    }
    bool toggle = false;
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            // Swallowed on the box, so that a double click does not open an editor.
            return mouse->button() == Qt::LeftButton &&
                   CheckRect(option, option.widget).contains(mouse->position().toPoint());
        }
        case QEvent::MouseButtonRelease: {
            const auto* mouse = static_cast<QMouseEvent*>(event);
            toggle = mouse->button() == Qt::LeftButton &&
                     CheckRect(option, option.widget).contains(mouse->position().toPoint());
            break;
        }
        case QEvent::KeyPress: {
            const int key = static_cast<QKeyEvent*>(event)->key();
            toggle = key == Qt::Key_Space || key == Qt::Key_Select;
            break;
        }
        default:
            break;
    }
    if (!toggle) {
        return false;
    }
    const bool checked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    return model->setData(index, checked ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}
