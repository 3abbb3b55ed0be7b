#pragma once

#include <QString>

class CKVModuleDB;

// Where a catalog stands in the database, with the names as the store spells them.
struct CatalogPath {
    QString manufacturer;
    QString series;
    QString type;
    QString catalog;
    QString table;
};

// Finds a catalog as the module tree finds it: names compared without regard to case,
// levels walked in the store's order, and a branch that yields nothing passed for the
// next one with the same name.
bool FindCatalog(CKVModuleDB& db, const QString& manufacturer, const QString& series,
                 const QString& type, const QString& catalog, CatalogPath& found);
