#pragma once

#include "CDib.h"

#include <QDialog>

class QLabel;

// Shows the sample picture of a terminal block, forced into a square of 100 units.
class CTermSamp : public QDialog {
    Q_OBJECT

public:
    enum Control {
        kIdOk = 1,
        kIdPicture = 1046,
    };
    // The side of the picture's square at scale 1.
    static constexpr int kPictureSize = 100;

    explicit CTermSamp(QWidget* parent = nullptr);
    ~CTermSamp() override;

    // Loads the picture; a file that is no bitmap leaves it empty, quietly. A null text
    // does nothing.
    void SetBitmapFile(const QString& path);
    const CDib& Picture() const { return m_dib; }

protected:
    void showEvent(QShowEvent* event) override;

private:
    QLabel* m_stcPicture;
    CDib m_dib;
    // The picture that stands for a missing sample; kept for the definitions dialog.
    QString m_strNoSampleFile = QStringLiteral("NoSamp.bmp");
};
