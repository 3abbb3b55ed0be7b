#pragma once

#include "HostServices.h"

#include <QString>

// What the standalone host shows on a screen, where it has one: file questions, help
// pages and the monitor's scale. Without it the host answers headless.
class HostUi {
public:
    virtual ~HostUi() = default;
    // The file the user chose; false when the question was cancelled.
    virtual bool chooseFile(const QString& title, const QString& defaultPath, const QString& filter,
                            QString& chosen) = 0;
    virtual void showHelp(const QString& topic) = 0;
    virtual HostScale scale() const = 0;
};
