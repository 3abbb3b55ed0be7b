#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <QStringList>

struct PlcdbRun {
    int status = -1;  // -1 when it did not end normally
    QString out;
    QString err;
};

// Runs a plcdb program headless, with its own empty settings and search path, so that
// the user's host settings and display play no part.
PlcdbRun RunPlcdb(const QString& program, const QStringList& args, const QByteArray& input = {});
// The plcdb of the build.
PlcdbRun RunPlcdb(const QStringList& args, const QByteArray& input = {});
// The plcdb of the build, started in folder, as a user who has changed into it.
PlcdbRun RunPlcdbIn(const QString& folder, const QStringList& args, const QByteArray& input = {});
// The module object of catalog in the document that a plcdb export of database writes;
// empty when there is none.
QJsonObject ExportedModule(const QString& database, const QString& catalog);
