#include "MenuChooser.h"

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QTest>
#include <QTimer>

bool ChooseMenuEntry(const QString& entry, const std::function<void()>& openMenu) {
    bool clicked = false;
    // The menu runs its own loop, so the click comes from a timer inside that loop.
    QTimer waitForMenu;
    waitForMenu.setInterval(0);
    QObject::connect(&waitForMenu, &QTimer::timeout, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!menu) {
            return;
        }
        waitForMenu.stop();
        for (QAction* action : menu->actions()) {
            if (action->text() == entry && action->isEnabled()) {
                QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(action).center());
                clicked = true;
                return;
            }
        }
        menu->close();
    });
    waitForMenu.start();
    openMenu();
    waitForMenu.stop();
    return clicked;
}
