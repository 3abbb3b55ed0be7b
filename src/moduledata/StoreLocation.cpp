#include "StoreLocation.h"

#include <QRegularExpression>
#include <QUrl>

namespace StoreLocation {
namespace {

// The keywords that may start a libpq key=value text.
const QRegularExpression& KeyValueStart() {
    static const QRegularExpression start(QStringLiteral(
        "^\\s*(host|hostaddr|port|dbname|user|password|passfile|service|options|sslmode|"
        "application_name|connect_timeout|target_session_attrs)\\s*="));
    return start;
}

bool IsUri(const QString& location) {
    return location.startsWith(QLatin1String("postgresql://"), Qt::CaseInsensitive) ||
           location.startsWith(QLatin1String("postgres://"), Qt::CaseInsensitive);
}

}  // namespace

bool IsServer(const QString& location) {
    return IsUri(location) || KeyValueStart().match(location).hasMatch();
}

QString Shown(const QString& location) {
    if (IsUri(location)) {
        QUrl url(location);
        if (url.isValid() && !url.password().isEmpty()) {
            url.setPassword(QStringLiteral("***"));
            return url.toString();
        }
        return location;
    }
    static const QRegularExpression password(QStringLiteral("(password\\s*=\\s*)('[^']*'|\\S*)"));
    QString shown = location;
    return shown.replace(password, QStringLiteral("\\1***"));
}

}  // namespace StoreLocation
