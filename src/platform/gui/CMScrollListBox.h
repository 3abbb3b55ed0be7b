#pragma once

#include <QListWidget>

// A list that tells its owner when the user scrolls it, so that another list can
// follow it line for line.
class CMScrollListBox : public QListWidget {
    Q_OBJECT

public:
    explicit CMScrollListBox(QWidget* parent = nullptr);
    // The row at the top of the visible part; -1 for an empty list.
    int TopIndex() const;

signals:
    void scrolled(int topIndex);
};
