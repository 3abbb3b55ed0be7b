#include "GuiHostUi.h"

#include "DialogControls.h"
#include "Messages.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QRegularExpression>
#include <QScreen>
#include <QTextBrowser>
#include <QUrl>

namespace {
constexpr double kBaseDpi = 96.0;
constexpr int kHelpWidth = 640;
constexpr int kHelpHeight = 480;

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

GuiHostUi::GuiHostUi(QString helpFolder) : m_helpFolder(std::move(helpFolder)) {}

// The page opens in a window of the program's own: a desktop without a browser (or one
// that cannot be started) then still shows it. The window belongs to the dialog that
// asked, so that it takes input while that dialog runs modally, and goes with it.
void GuiHostUi::showHelp(const QString& topic) {
    const QString path = HelpPath(topic);
    if (!QFileInfo::exists(path)) {
        Messages::ShowText(
            QStringLiteral("There is no help page for the topic \"%1\": %2 is missing.")
                .arg(topic, QDir::toNativeSeparators(path)),
            QStringLiteral("Help"), MsgButtons::Ok, MsgIcon::Information);
        return;
    }
    QWidget* owner = QApplication::activeModalWidget();
    if (!owner) {
        owner = QApplication::activeWindow();
    }
    auto* window = owner ? owner->findChild<QTextBrowser*>(QLatin1String(kHelpWindowName),
                                                           Qt::FindDirectChildrenOnly)
                         : nullptr;
    if (!window) {
        window = new QTextBrowser(owner);
        window->setObjectName(QLatin1String(kHelpWindowName));
        window->setWindowFlag(Qt::Window);
        window->setAttribute(Qt::WA_DeleteOnClose);
        window->setOpenExternalLinks(true);
        window->resize(ScaledX(kHelpWidth), ScaledY(kHelpHeight));
    }
    window->setSource(QUrl::fromLocalFile(path));
    const QString title = window->documentTitle();
    window->setWindowTitle(title.isEmpty() ? QStringLiteral("Help") : title);
    window->show();
    window->raise();
    window->activateWindow();
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

QString GuiHostUi::DefaultHelpFolder() {
    return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("help"));
}

QString GuiHostUi::HelpPath(const QString& topic) const {
    return QDir(m_helpFolder).filePath(topic + QStringLiteral(".html"));
}
