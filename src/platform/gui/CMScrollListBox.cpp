#include "CMScrollListBox.h"

#include <QScrollBar>

CMScrollListBox::CMScrollListBox(QWidget* parent) : QListWidget(parent) {
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, [this] {
        const int top = TopIndex();
        if (top >= 0) {
            emit scrolled(top);
        }
    });
}

int CMScrollListBox::TopIndex() const {
    if (count() == 0) {
        return -1;
    }
    const QModelIndex index = indexAt(QPoint(1, 1));
    return index.isValid() ? index.row() : 0;
}
