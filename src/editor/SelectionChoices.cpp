#include "SelectionChoices.h"

#include "CrtNumbers.h"
#include "HostServices.h"

void SelectionChoices::SetStyle(int style) {
    if (style >= 1 && style <= kStyleCount) {
        m_nStyle = style;
    }
}

void SelectionChoices::SetScale(double scale) {
    m_strScale = HostRealToString(scale, 2, -1);
}

double SelectionChoices::Scale() const {
    return crt::wtof(m_strScale);
}

void SelectionChoices::AppendTo(HostValue& list) const {
    list.begin()
        .string(QString::number(m_nStyle))
        .string(m_bHorizontal ? QStringLiteral("H") : QStringLiteral("V"))
        .real(Scale());
    if (m_bExtra) {
        list.shortInt(1);
    } else {
        list.nil();
    }
    list.end();
}
