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
    // A URI has its password in its user part or as a parameter, a key=value text as a
    // value that may be quoted.
    static const QRegularExpression userPassword(QStringLiteral("^([^:]+://[^/?#@:]*:)[^/?#@]*@"));
    static const QRegularExpression parameter(QStringLiteral("([?&]password=)[^&#]*"),
                                              QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression value(QStringLiteral("(password\\s*=\\s*)('[^']*'|\\S*)"));
    QString shown = location;
    if (IsUri(location)) {
        return shown.replace(userPassword, QStringLiteral("\\1***@"))
            .replace(parameter, QStringLiteral("\\1***"));
    }
    return shown.replace(value, QStringLiteral("\\1***"));
}

}  // namespace StoreLocation
