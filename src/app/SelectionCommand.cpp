#include "SelectionCommand.h"

#include "CMSelDlg.h"
#include "Messages.h"
#include "ModalRunner.h"

#include <QApplication>

bool RunSelectionDialog(const SelectionArgs& args, HostValue& result) {
    if (!qobject_cast<QApplication*>(QCoreApplication::instance())) {
        Messages::ShowText(
            QStringLiteral("The module selection needs a display; without one, "
                           "plcdb select --catalog gives the same list."));
        return false;
    }
    CMSelDlg dialog;
    dialog.SetDbPath(args.strPath);
    dialog.SetExtraFlag(args.bExtraFlag);
    dialog.SetOrientation(args.nOrientation);
    dialog.SetScale(args.dScale);
    dialog.SetStyle(args.nStyle);
    dialog.SetLockStyle(args.bSetupFlag);
    dialog.SetBoxGroupB(args.bGroupB);
    if (ModalRunner::Run(dialog) != kIdOk || !dialog.HasResult()) {
        return false;
    }
    result = dialog.GetResult();
    return true;
}
