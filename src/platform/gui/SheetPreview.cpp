#include "SheetPreview.h"

#include <QPainter>
#include <QPolygonF>
#include <QtMath>

#include <cmath>

namespace {
// Segments of a full circle; arcs take their share.
constexpr int kCircleSegments = 72;

QPolygonF ArcPoints(const QPointF& center, double radius, double start, double sweep) {
    const int segments = qMax(2, qCeil(kCircleSegments * std::abs(sweep) / 360.0));
    QPolygonF points;
    for (int i = 0; i <= segments; ++i) {
        const double radians = qDegreesToRadians(start + sweep * i / segments);
        points.append(center + QPointF(radius * std::cos(radians), radius * std::sin(radians)));
    }
    return points;
}

double Sweep(const DxfArc& arc) {
    double sweep = std::fmod(arc.endAngle - arc.startAngle, 360.0);
    return sweep <= 0.0 ? sweep + 360.0 : sweep;
}
}  // namespace

SheetPreview::SheetPreview(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

bool SheetPreview::SetFile(const QString& path) {
    DxfDrawing drawing;
    const bool read = DxfReader::ReadFile(path, drawing, &m_error);
    SetDrawing(read ? drawing : DxfDrawing());
    return read;
}

void SheetPreview::SetDrawing(const DxfDrawing& drawing) {
    m_drawing = drawing;
    update();
}

void SheetPreview::paintEvent(QPaintEvent* event) {
    Q_UNUSED(event);
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    if (m_drawing.isEmpty()) {
        return;
    }
    const QTransform toWidget = fitting();
    // Thin lines stay crisp one-pixel lines, as on a drawing sheet; texts are smoothed.
    painter.setPen(QPen(QColor(32, 32, 32), 0));
    paintShapes(painter, toWidget);
    painter.setRenderHint(QPainter::TextAntialiasing);
    paintTexts(painter, toWidget);
}

// Drawing units to widget pixels: centred, y flipped, the larger extent filling the
// widget less its margins. A drawing without extent (one point) is shown at scale 1.
QTransform SheetPreview::fitting() const {
    const QRectF bounds = m_drawing.bounds();
    const double width = qMax(1.0, double(this->width() - 2 * kMargin));
    const double height = qMax(1.0, double(this->height() - 2 * kMargin));
    double scale = 1.0;
    if (bounds.width() > 0.0 || bounds.height() > 0.0) {
        scale = qMin(bounds.width() > 0.0 ? width / bounds.width() : HUGE_VAL,
                     bounds.height() > 0.0 ? height / bounds.height() : HUGE_VAL);
    }
    if (!std::isfinite(scale) || scale <= 0.0) {
        scale = 1.0;
    }
    QTransform transform;
    transform.translate(this->width() / 2.0, this->height() / 2.0);
    transform.scale(scale, -scale);
    transform.translate(-bounds.center().x(), -bounds.center().y());
    return transform;
}

void SheetPreview::paintShapes(QPainter& painter, const QTransform& toWidget) const {
    for (const DxfLine& line : m_drawing.lines) {
        painter.drawLine(toWidget.map(QLineF(line.start, line.end)));
    }
    for (const DxfArc& arc : m_drawing.arcs) {
        painter.drawPolyline(
            toWidget.map(ArcPoints(arc.center, arc.radius, arc.startAngle, Sweep(arc))));
    }
    for (const DxfCircle& circle : m_drawing.circles) {
        painter.drawPolygon(toWidget.map(ArcPoints(circle.center, circle.radius, 0.0, 360.0)));
    }
    for (const DxfPolyline& polyline : m_drawing.polylines) {
        const QPolygonF points = toWidget.map(QPolygonF(polyline.points));
        if (polyline.closed) {
            painter.drawPolygon(points);
        } else {
            painter.drawPolyline(points);
        }
    }
}

void SheetPreview::paintTexts(QPainter& painter, const QTransform& toWidget) const {
    for (const DxfText& text : m_drawing.texts) {
        paintText(painter, toWidget, text);
    }
    // An attribute definition shows its tag, as it does in the drawing.
    for (const DxfAttributeDefinition& attribute : m_drawing.attributes) {
        paintText(painter, toWidget,
                  DxfText{attribute.position, attribute.height, attribute.rotation, attribute.tag,
                          false});
    }
}

void SheetPreview::paintText(QPainter& painter, const QTransform& toWidget,
                             const DxfText& text) const {
    const double pixels = text.height * toWidget.m11();
    if (text.text.isEmpty() || !(pixels >= 1.0) || pixels > 4 * (width() + height())) {
        return;  // too small to read or larger than any widget
    }
    QFont font = painter.font();
    font.setPixelSize(qMax(1, qRound(pixels)));
    painter.save();
    painter.setFont(font);
    painter.translate(toWidget.map(text.position));
    painter.rotate(-text.rotation);
    const QStringList lines = text.text.split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        // A paragraph hangs below its position; a single line stands on it.
        const double baseline = text.paragraph ? pixels * (i + 1) : pixels * i;
        painter.drawText(QPointF(0.0, baseline), lines[i]);
    }
    painter.restore();
}
