#pragma once

#include "DxfReader.h"

#include <QString>
#include <QTransform>
#include <QWidget>

class QPainter;

// Shows a drawing file: all its entities fitted into the widget with a margin, the
// y axis up, dark on white.
class SheetPreview : public QWidget {
    Q_OBJECT
public:
    explicit SheetPreview(QWidget* parent = nullptr);

    // False, and an empty preview, when the file cannot be read; errorString says why.
    bool SetFile(const QString& path);
    void SetDrawing(const DxfDrawing& drawing);
    const DxfDrawing& drawing() const { return m_drawing; }
    QString errorString() const { return m_error; }

    static constexpr int kMargin = 8;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QTransform fitting() const;
    void paintShapes(QPainter& painter, const QTransform& toWidget) const;
    void paintTexts(QPainter& painter, const QTransform& toWidget) const;
    void paintText(QPainter& painter, const QTransform& toWidget, const DxfText& text) const;

    DxfDrawing m_drawing;
    QString m_error;
};
