#include "GuiHostUi.h"

#include "Messages.h"

#include <QApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScreen>
#include <QUrl>

namespace {
constexpr double kBaseDpi = 96.0;

QStringList Extensions(const QString& filter) {
    QStringList extensions;
    for (QString part :
         filter.split(QRegularExpression(QStringLiteral("[;,\\s]+")), Qt::SkipEmptyParts)) {
        part.remove(QRegularExpression(QStringLiteral("^\\*?\\.")));
        if (!part.isEmpty() && part != u'*') {
            extensions.append(part);
        }
    }
    return extensions;
}
}  // namespace

bool GuiHostUi::chooseFile(const QString& title, const QString& defaultPath, const QString& filter,
                           QString& chosen) {
    const QString file = QFileDialog::getOpenFileName(QApplication::activeWindow(), title,
                                                      defaultPath, FileFilter(filter));
    if (file.isEmpty()) {
        return false;
    }
    chosen = file;
    return true;
}

void GuiHostUi::showHelp(const QString& topic) {
    const QString path = HelpPath(topic);
    if (QFileInfo::exists(path) && QDesktopServices::openUrl(QUrl::fromLocalFile(path))) {
        return;
    }
    Messages::ShowText(QStringLiteral("There is no help page for the topic \"%1\".").arg(topic),
                       QStringLiteral("Help"), MsgButtons::Ok, MsgIcon::Information);
}

HostScale GuiHostUi::scale() const {
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen) {
        return HostScale();
    }
    return HostScale{screen->logicalDotsPerInchX() / kBaseDpi,
                     screen->logicalDotsPerInchY() / kBaseDpi};
}

QString GuiHostUi::FileFilter(const QString& filter) {
    static const QString kAllFiles = QStringLiteral("All files (*)");
    if (filter.contains(u'(')) {
        return filter;
    }
    const QStringList extensions = Extensions(filter);
    if (extensions.isEmpty()) {
        return kAllFiles;
    }
    QStringList names;
    QStringList patterns;
    for (const QString& extension : extensions) {
        names.append(extension.toUpper());
        for (const QString& form : {extension.toUpper(), extension.toLower(), extension}) {
            const QString pattern = QStringLiteral("*.") + form;
            if (!patterns.contains(pattern)) {
                patterns.append(pattern);
            }
        }
    }
    names.removeDuplicates();
    return QStringLiteral("%1 files (%2);;%3")
        .arg(names.join(u'/'), patterns.join(u' '), kAllFiles);
}

QString GuiHostUi::HelpPath(const QString& topic) {
    return QDir(QCoreApplication::applicationDirPath())
        .filePath(QStringLiteral("help/%1.html").arg(topic));
}
