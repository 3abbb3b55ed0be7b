#pragma once

#include "HostUi.h"

#include <QString>

// The standalone host's screen: a file dialog, help pages in the desktop's browser and
// the primary screen's scale.
class GuiHostUi : public HostUi {
public:
    bool chooseFile(const QString& title, const QString& defaultPath, const QString& filter,
                    QString& chosen) override;
    void showHelp(const QString& topic) override;
    HostScale scale() const override;

    // A bare extension ("MDB", "*.sht", "dxf;sht") becomes a file dialog filter that
    // matches it in either case; a filter with a "(" passes as it is.
    static QString FileFilter(const QString& filter);
    // help/TOPIC.html beside the program.
    static QString HelpPath(const QString& topic);
};
