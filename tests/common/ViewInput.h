#pragma once

#include <QPoint>
#include <QString>

class QAbstractItemView;
class QListWidget;
class QWidget;

// A user's mouse and keys on item views; rows and columns from 1, as the grids count.
QPoint CellCentre(QAbstractItemView& view, int row, int col);
void ClickCell(QAbstractItemView& view, int row, int col,
               Qt::KeyboardModifiers modifiers = Qt::NoModifier);
// Opens the cell's editor with F2, types text over its value (none clears it) and
// presses Return; the queued commit is run.
void TypeIntoCell(QAbstractItemView& view, int row, int col, const QString& text);
// Right-clicks the cell through window, which makes the context menu event, and
// chooses entry from the menu.
void ChooseCellMenuEntry(QWidget& window, QAbstractItemView& view, int row, int col,
                         const QString& entry);
// Clicks or double-clicks a list's item by its row (from 0).
void ClickItem(QListWidget& list, int row);
void DoubleClickItem(QListWidget& list, int row);
// Makes the window the active one and waits until it is: focus moves, and keys reach
// shortcuts, only in an active window. False when it did not become active.
bool Activate(QWidget& window);
// Shows the window, then Activate.
bool ShowActive(QWidget& window);
