#include "CPathLabel.h"

#include "StoreLocation.h"

#include <QDir>

namespace {
// Wide enough for the start and the end of a path around the ellipsis.
constexpr int kMinimumCharacters = 12;
}  // namespace

CPathLabel::CPathLabel(QWidget* parent) : QLabel(parent) {
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    setTextFormat(Qt::PlainText);
}

void CPathLabel::SetPath(const QString& path) {
    // A server is named by its connection text, without its password.
    m_strPath =
        StoreLocation::IsServer(path) ? StoreLocation::Shown(path) : QDir::toNativeSeparators(path);
    setToolTip(m_strPath);
    ShowFitted();
}

QSize CPathLabel::minimumSizeHint() const {
    const QSize base = QLabel::minimumSizeHint();
    return {fontMetrics().averageCharWidth() * kMinimumCharacters, base.height()};
}

QSize CPathLabel::sizeHint() const {
    return minimumSizeHint();
}

void CPathLabel::resizeEvent(QResizeEvent* event) {
    QLabel::resizeEvent(event);
    ShowFitted();
}

void CPathLabel::ShowFitted() {
    const int width = contentsRect().width() - 2 * margin();
    setText(fontMetrics().elidedText(m_strPath, Qt::ElideMiddle, qMax(width, 0)));
}
