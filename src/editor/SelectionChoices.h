#pragma once

#include "HostValue.h"

#include <QString>

// The user's choices of a selection, kept by the rules of the selection dialog so that
// the dialog and the command line answer alike: a style is taken only from 1 to 9 (else
// the style stays), and the scale is kept as the host's text of the number and read back
// from that text, so it carries the host's precision.
class SelectionChoices {
public:
    static constexpr int kStyleCount = 9;

    // 1 to 9; other values leave the style as it is (1 at first).
    void SetStyle(int style);
    int Style() const { return m_nStyle; }
    // The host's linear text of the number, at the host's precision.
    void SetScale(double scale);
    void SetScaleText(const QString& text) { m_strScale = text; }
    const QString& ScaleText() const { return m_strScale; }
    // The scale text read as a number; a text that is no number reads 0.0.
    double Scale() const;
    void SetHorizontal(bool bHorizontal) { m_bHorizontal = bHorizontal; }
    bool IsHorizontal() const { return m_bHorizontal; }
    void SetExtra(bool bExtra) { m_bExtra = bExtra; }
    bool HasExtra() const { return m_bExtra; }

    // The choice list: (STYLE "H"|"V" SCALE 1|nil).
    void AppendTo(HostValue& list) const;

private:
    int m_nStyle = 1;
    QString m_strScale = QStringLiteral("1.0");
    bool m_bHorizontal = false;
    bool m_bExtra = false;
};
