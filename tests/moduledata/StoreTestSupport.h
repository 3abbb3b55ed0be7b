#pragma once

#include <QString>
#include <QStringList>

class CKVModuleDB;

// SQLite's own verdict on the whole file ("ok" when sound), through a connection of its
// own that is closed after.
QString IntegrityCheck(const QString& path);

// The text parts of a module's terminal rows, in order; empty when it can't be loaded.
QStringList LoadRowTexts(CKVModuleDB& db, const QString& table, const QString& catalog);
