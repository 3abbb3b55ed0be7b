#include "CatalogLookup.h"

#include "CKVModuleDB.h"

namespace {

bool SameName(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool FindInType(CKVModuleDB& db, const QString& table, const QString& catalog, QString& found) {
    QList<_idandcatalognum> catalogs;
    db.GetCatalogs(table, catalogs);
    for (const _idandcatalognum& entry : catalogs) {
        if (SameName(entry.strCatalog, catalog)) {
            found = entry.strCatalog;
            return true;
        }
    }
    return false;
}

}  // namespace

bool FindCatalog(CKVModuleDB& db, const QString& manufacturer, const QString& series,
                 const QString& type, const QString& catalog, CatalogPath& found) {
    QList<_manfams> hierarchy;
    if (!db.GetHierarchy(hierarchy)) {
        return false;
    }
    for (const _manfams& m : hierarchy) {
        if (!SameName(m.strManufacturer, manufacturer)) {
            continue;
        }
        for (const _familytypes& s : m.families) {
            if (!SameName(s.strSeries, series)) {
                continue;
            }
            for (const _typetname& t : s.types) {
                if (SameName(t.strType, type) &&
                    FindInType(db, t.strTableName, catalog, found.catalog)) {
                    found.manufacturer = m.strManufacturer;
                    found.series = s.strSeries;
                    found.type = t.strType;
                    found.table = t.strTableName;
                    return true;
                }
            }
        }
    }
    return false;
}
