#include "EditorCommand.h"

#include "CMEditDlg.h"
#include "Messages.h"
#include "ModalRunner.h"

#include <QApplication>

bool RunEditorDialog() {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
        Messages::ShowText(
            QStringLiteral("The database editor needs a display; without one, plcdb export "
                           "and plcdb import change the database as text."));
        return false;
    }
    CMEditDlg dialog;
    return ModalRunner::Run(dialog) == kIdOk && dialog.GetInsertRequested();
}
