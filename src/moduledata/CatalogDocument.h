#pragma once

#include <QJsonObject>
#include <QString>

class CKVModuleDB;

// The whole database as one JSON document, with the store's texts as they stand:
//   {"format":"plcdb","version":1,
//    "index":[{"manufacturer","series","type"}],
//    "modules":[{"manufacturer","series","type","spec":{FIELD:TEXT},
//                "terminals":[{"text","special"}]}],
//    "styles":[{"number":N, "BoxA1":TEXT, ...}],
//    "prompts":[{"prompt","localized"}]}
// Empty texts are left out of "spec" and "styles"; a missing key reads as empty.
class CatalogDocument {
public:
    static constexpr int kVersion = 1;

    // Reads everything of the open database into document.
    static bool Export(CKVModuleDB& db, QJsonObject& document, QString* error);
    // The object of one module as "modules" of Export holds it, the names spelled as the
    // index holds them; the names given are matched as the store matches them.
    static bool ExportModule(CKVModuleDB& db, const QString& manufacturer, const QString& series,
                             const QString& type, const QString& catalog, QJsonObject& module,
                             QString* error);
    // Adds the document to the open database: everything or, on the first error,
    // nothing. A catalog code that exists already in its type is an error.
    static bool Import(CKVModuleDB& db, const QJsonObject& document, QString* error);
};
