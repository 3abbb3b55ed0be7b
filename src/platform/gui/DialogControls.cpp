#include "DialogControls.h"

#include "HostServices.h"

#include <QButtonGroup>
#include <QPushButton>
#include <QRadioButton>
#include <QVariant>
#include <QtMath>

namespace {
constexpr const char* kIdProperty = "controlId";
}

void SetControlId(QWidget* control, int id) {
    if (!control) {
        return;
    }
    control->setProperty(kIdProperty, id);
    control->setObjectName(ControlName(id));
}

int ControlId(const QWidget* control) {
    bool ok = false;
    const int id = control ? control->property(kIdProperty).toInt(&ok) : -1;
    return ok ? id : -1;
}

QString ControlName(int id) {
    return QStringLiteral("ctl_%1").arg(id);
}

QPushButton* MakeButton(QWidget* parent, const QString& text, int id) {
    auto* button = new QPushButton(text, parent);
    SetControlId(button, id);
    button->setAutoDefault(false);
    return button;
}

QRadioButton* MakeRadio(QWidget* parent, const QString& text, int id, QButtonGroup* group,
                        int index) {
    auto* radio = new QRadioButton(text, parent);
    SetControlId(radio, id);
    if (group) {
        group->addButton(radio, index);
    }
    return radio;
}

int ScaledX(int size) {
    return qRound(size * HostHiDpi().x);
}

int ScaledY(int size) {
    return qRound(size * HostHiDpi().y);
}
