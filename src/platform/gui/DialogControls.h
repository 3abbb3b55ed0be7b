#pragma once

#include <QString>
#include <QWidget>

class QButtonGroup;
class QPushButton;
class QRadioButton;

// Dialogs name their controls by number, as their descriptions do: a control carries
// its number as the property "controlId" and as the object name "ctl_<number>".
void SetControlId(QWidget* control, int id);
// The number of a control, or -1 when it has none.
int ControlId(const QWidget* control);
QString ControlName(int id);

// The control with that number among the dialog's descendants, or null when there is
// none of that type.
template <class T>
T* FindControl(QWidget* dialog, int id) {
    return dialog ? dialog->findChild<T*>(ControlName(id)) : nullptr;
}

// A push button with its number that never becomes the default button, so that Return
// stays with the dialog's own handling.
QPushButton* MakeButton(QWidget* parent, const QString& text, int id);

// A radio button with its number; with a group it joins it under index.
QRadioButton* MakeRadio(QWidget* parent, const QString& text, int id, QButtonGroup* group = nullptr,
                        int index = -1);

// A size given at scale 1, multiplied by the monitor's scale of its direction.
int ScaledX(int size);
int ScaledY(int size);
