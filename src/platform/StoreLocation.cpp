#include "StoreLocation.h"

#include <QRegularExpression>

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
    // A URI carries a password behind the user's name before the host, or as a parameter
    // of its query; a key=value text as the value of "password".
    static const QRegularExpression uriPassword(QStringLiteral("^([a-z]+://[^/@:]*:)[^@/]*@"),
                                                QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression queryPassword(QStringLiteral("([?&]password=)[^&]*"));
    static const QRegularExpression password(QStringLiteral("(password\\s*=\\s*)('[^']*'|\\S*)"));
    QString shown = location;
    if (IsUri(location)) {
        return shown.replace(uriPassword, QStringLiteral("\\1***@"))
            .replace(queryPassword, QStringLiteral("\\1***"));
    }
    return shown.replace(password, QStringLiteral("\\1***"));
}

}  // namespace StoreLocation
