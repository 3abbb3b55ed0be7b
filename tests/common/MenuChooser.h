#pragma once

#include <QString>

#include <functional>

// Runs openMenu, which makes a context menu pop up, and clicks the enabled entry of
// that text in it as a user would; a menu without it is closed. True when the entry
// was clicked.
bool ChooseMenuEntry(const QString& entry, const std::function<void()>& openMenu);
