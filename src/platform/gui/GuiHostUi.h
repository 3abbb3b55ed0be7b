#pragma once

#include "HostUi.h"

#include <QString>

// The standalone host's screen: a file dialog, the bundled help pages in a help window
// of its own and the primary screen's scale.
class GuiHostUi : public HostUi {
public:
    // Help pages are looked up in helpFolder: by default the folder "help" beside the
    // program.
    explicit GuiHostUi(QString helpFolder = DefaultHelpFolder());

    bool chooseFile(const QString& title, const QString& defaultPath, const QString& filter,
                    QString& chosen) override;
    void showHelp(const QString& topic) override;
    HostScale scale() const override;

    // A bare extension ("MDB", "*.sht", "dxf;sht") becomes a file dialog filter that
    // matches it in either case; a filter with a "(" passes as it is.
    static QString FileFilter(const QString& filter);
    static QString DefaultHelpFolder();
    // TOPIC.html in the help folder.
    QString HelpPath(const QString& topic) const;
    // The object name of the help window, which shows one page at a time.
    static constexpr const char* kHelpWindowName = "plcdbHelpWindow";

private:
    QString m_helpFolder;
};
