#pragma once

#include <QLabel>

// A label that shows a file path shortened in the middle to the width it is given, so a
// long path never widens its dialog; the full path is its tooltip.
class CPathLabel : public QLabel {
    Q_OBJECT

public:
    explicit CPathLabel(QWidget* parent = nullptr);

    void SetPath(const QString& path);
    const QString& Path() const { return m_strPath; }

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void ShowFitted();

    QString m_strPath;
};
