#include "CatalogDocument.h"

#include "CKVModuleDB.h"
#include "ZelUtils.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

constexpr int kStyleCount = 9;

const char* const kManufacturer = "manufacturer";
const char* const kSeries = "series";
const char* const kType = "type";

// A level name as the index takes it: an empty name means the level is absent.
QString Level(const QString& name) {
    return name.isEmpty() ? QString() : name;
}

QJsonObject IndexObject(const QString& manufacturer, const QString& series, const QString& type) {
    return QJsonObject{{QLatin1String(kManufacturer), manufacturer},
                       {QLatin1String(kSeries), series},
                       {QLatin1String(kType), type}};
}

// A value as the document writes it, for a message.
QString JsonText(const QJsonValue& value) {
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return TextExcerpt(QString::fromUtf8(text.mid(1, text.size() - 2)));
}

bool Fail(QString* error, const QString& text) {
    if (error) {
        *error = text;
    }
    return false;
}

// The store's reason for the failure of the last operation on db, behind a colon.
QString Because(const CKVModuleDB& db) {
    const QString reason = db.GetLastFailure();
    return reason.isEmpty() ? QString() : QStringLiteral(": ") + reason;
}

QJsonObject SpecObject(const ModDB::ModSpecData& spec) {
    QJsonObject object;
    for (int place = 0; place < ModDB::ModSpecData::kFieldCount; ++place) {
        if (place != ModDB::ModSpecData::kReservedPlace && !spec.field(place).isEmpty()) {
            object.insert(QLatin1String(ModDB::ModSpecData::FieldName(place)), spec.field(place));
        }
    }
    return object;
}

QJsonArray TerminalArray(const QList<ModDB::ModTermData>& rows) {
    QJsonArray terminals;
    for (const ModDB::ModTermData& row : rows) {
        terminals.append(QJsonObject{{QStringLiteral("text"), row.Text},
                                     {QStringLiteral("special"), row.Special}});
    }
    return terminals;
}

// The module object of one catalog of a type, under the type's names as the index holds
// them.
bool ModuleObject(CKVModuleDB& db, const ModDB::IndexData& type, const QString& catalog,
                  QJsonObject& module, QString* error) {
    ModDB::ModSpecData spec;
    QList<ModDB::ModTermData> rows;
    if (!db.ReadRawModule(type.TableName, catalog, spec, rows)) {
        return Fail(error, QStringLiteral("cannot read module %1").arg(catalog) + Because(db));
    }
    module = IndexObject(type.Manufacturer, type.Series, type.Type);
    module.insert(QStringLiteral("spec"), SpecObject(spec));
    module.insert(QStringLiteral("terminals"), TerminalArray(rows));
    return true;
}

bool ExportModules(CKVModuleDB& db, const ModDB::IndexData& type, QJsonArray& modules,
                   QString* error) {
    QList<_idandcatalognum> catalogs;
    // A failing store reads as a type without modules, but leaves its reason.
    if (!db.GetCatalogs(type.TableName, catalogs) || !db.GetLastFailure().isEmpty()) {
        return Fail(error,
                    QStringLiteral("cannot list the modules of %1").arg(type.Type) + Because(db));
    }
    for (const _idandcatalognum& catalog : catalogs) {
        QJsonObject module;
        if (!ModuleObject(db, type, catalog.strCatalog, module, error)) {
            return false;
        }
        modules.append(module);
    }
    return true;
}

// The index row of a type, found by its table: the names as the index spells them.
bool FindTypeRow(CKVModuleDB& db, const QString& table, ModDB::IndexData& type, QString* error) {
    QList<ModDB::IndexData> rows;
    if (!db.GetIndexRows(rows)) {
        return Fail(error, QStringLiteral("cannot read the index of the database") + Because(db));
    }
    for (const ModDB::IndexData& row : rows) {
        if (!row.Type.isEmpty() && row.TableName.compare(table, Qt::CaseInsensitive) == 0) {
            type = row;
            return true;
        }
    }
    return Fail(error, QStringLiteral("the index has no type with the table %1").arg(table));
}

bool ExportStyles(CKVModuleDB& db, QJsonArray& styles, QString* error) {
    for (int number = 1; number <= kStyleCount; ++number) {
        ModDB::StyleBoxData style;
        if (!db.GetStyleBox(number, style)) {
            return Fail(error,
                        QStringLiteral("cannot read style box %1").arg(number) + Because(db));
        }
        QJsonObject object{{QStringLiteral("number"), number}};
        for (int box = 0; box < ModDB::StyleBoxData::kBoxCount; ++box) {
            if (!style.Box[box].isEmpty()) {
                object.insert(QLatin1String(ModDB::StyleBoxData::BoxName(box)), style.Box[box]);
            }
        }
        styles.append(object);
    }
    return true;
}

bool ExportPrompts(CKVModuleDB& db, QJsonArray& prompts, QString* error) {
    QList<ModDB::PromptData> rows;
    if (!db.GetPromptRows(rows)) {
        return Fail(error, QStringLiteral("cannot read the prompts") + Because(db));
    }
    for (const ModDB::PromptData& row : rows) {
        prompts.append(QJsonObject{{QStringLiteral("prompt"), row.Prompt},
                                   {QStringLiteral("localized"), row.Localized}});
    }
    return true;
}

// Reading a document: every value is checked, and a wrong one names its place.
class DocumentReader {
public:
    DocumentReader(CKVModuleDB& db, QString* error) : m_db(db), m_error(error) {}

    bool read(const QJsonObject& document);

private:
    bool text(const QJsonObject& object, const char* key, const QString& where, QString& out);
    bool array(const QJsonObject& object, const char* key, QJsonArray& out);
    bool object(const QJsonValue& value, const QString& where, QJsonObject& out);
    bool ensureIndex(const QString& manufacturer, const QString& series, const QString& type,
                     const QString& where);
    bool readIndex(const QJsonArray& index);
    bool readModule(const QJsonObject& module, const QString& where);
    bool readSpec(const QJsonObject& spec, const QString& where, ModDB::ModSpecData& out);
    bool readTerminals(const QJsonArray& terminals, const QString& code, const QString& where,
                       QList<ModDB::ModTermData>& rows);
    bool readStyle(const QJsonObject& style, const QString& where);
    bool readPrompt(const QJsonObject& prompt, const QString& where);
    bool fail(const QString& text) { return Fail(m_error, text); }

    CKVModuleDB& m_db;
    QString* m_error;
};

bool DocumentReader::text(const QJsonObject& object, const char* key, const QString& where,
                          QString& out) {
    const QJsonValue value = object.value(QLatin1String(key));
    if (value.isUndefined() || value.isNull()) {
        out = QString();
        return true;
    }
    if (!value.isString()) {
        return fail(QStringLiteral("%1.%2 must be a text").arg(where, QLatin1String(key)));
    }
    out = value.toString();
    return true;
}

bool DocumentReader::array(const QJsonObject& object, const char* key, QJsonArray& out) {
    const QJsonValue value = object.value(QLatin1String(key));
    if (value.isUndefined() || value.isNull()) {
        out = QJsonArray();
        return true;
    }
    if (!value.isArray()) {
        return fail(QStringLiteral("\"%1\" must be a list").arg(QLatin1String(key)));
    }
    out = value.toArray();
    return true;
}

bool DocumentReader::object(const QJsonValue& value, const QString& where, QJsonObject& out) {
    if (!value.isObject()) {
        return fail(QStringLiteral("%1 must be an object").arg(where));
    }
    out = value.toObject();
    return true;
}

bool DocumentReader::ensureIndex(const QString& manufacturer, const QString& series,
                                 const QString& type, const QString& where) {
    if (manufacturer.isEmpty()) {
        return fail(QStringLiteral("%1 has no manufacturer").arg(where));
    }
    if (series.isEmpty() && !type.isEmpty()) {
        return fail(QStringLiteral("%1 has a type but no series").arg(where));
    }
    const QString levels[3] = {manufacturer, Level(series), Level(type)};
    // Each level above must exist before the one below it.
    for (int depth = 0; depth < 3 && !levels[depth].isNull(); ++depth) {
        const QString m = levels[0];
        const QString s = depth >= 1 ? levels[1] : QString();
        const QString t = depth >= 2 ? levels[2] : QString();
        if (!m_db.IndexExists(m, s, t) && !m_db.AddIndex(m, s, t)) {
            return fail(
                QStringLiteral("%1: cannot add %2 / %3 / %4 to the index").arg(where, m, s, t) +
                Because(m_db));
        }
    }
    return true;
}

bool DocumentReader::readIndex(const QJsonArray& index) {
    for (qsizetype i = 0; i < index.size(); ++i) {
        const QString where = QStringLiteral("index[%1]").arg(i);
        QJsonObject row;
        QString manufacturer, series, type;
        if (!object(index[i], where, row) || !text(row, kManufacturer, where, manufacturer) ||
            !text(row, kSeries, where, series) || !text(row, kType, where, type) ||
            !ensureIndex(manufacturer, series, type, where)) {
            return false;
        }
    }
    return true;
}

bool DocumentReader::readSpec(const QJsonObject& spec, const QString& where,
                              ModDB::ModSpecData& out) {
    for (auto it = spec.constBegin(); it != spec.constEnd(); ++it) {
        int place = 0;
        while (place < ModDB::ModSpecData::kFieldCount &&
               (place == ModDB::ModSpecData::kReservedPlace ||
                it.key() != QLatin1String(ModDB::ModSpecData::FieldName(place)))) {
            ++place;
        }
        if (place == ModDB::ModSpecData::kFieldCount) {
            return fail(QStringLiteral("%1.spec has an unknown field \"%2\"").arg(where, it.key()));
        }
        if (!it.value().isString()) {
            return fail(QStringLiteral("%1.spec.%2 must be a text").arg(where, it.key()));
        }
        out.field(place) = it.value().toString();
    }
    if (out.Code.isEmpty()) {
        return fail(QStringLiteral("%1.spec has no Code").arg(where));
    }
    return true;
}

bool DocumentReader::readTerminals(const QJsonArray& terminals, const QString& code,
                                   const QString& where, QList<ModDB::ModTermData>& rows) {
    for (qsizetype i = 0; i < terminals.size(); ++i) {
        const QString place = QStringLiteral("%1.terminals[%2]").arg(where).arg(i);
        QJsonObject terminal;
        ModDB::ModTermData row;
        if (!object(terminals[i], place, terminal) || !text(terminal, "text", place, row.Text) ||
            !text(terminal, "special", place, row.Special)) {
            return false;
        }
        row.Code = code;
        row.Number = qint32(i + 1);
        rows.append(row);
    }
    return true;
}

bool DocumentReader::readModule(const QJsonObject& module, const QString& where) {
    QString manufacturer, series, type;
    if (!text(module, kManufacturer, where, manufacturer) ||
        !text(module, kSeries, where, series) || !text(module, kType, where, type)) {
        return false;
    }
    if (type.isEmpty()) {
        return fail(QStringLiteral("%1 has no type").arg(where));
    }
    QJsonObject spec;
    QJsonArray terminals;
    ModDB::ModSpecData record;
    QList<ModDB::ModTermData> rows;
    if (!ensureIndex(manufacturer, series, type, where) ||
        !object(module.value(QStringLiteral("spec")), where + QStringLiteral(".spec"), spec) ||
        !readSpec(spec, where, record) || !array(module, "terminals", terminals) ||
        !readTerminals(terminals, record.Code, where, rows)) {
        return false;
    }
    QString table;
    if (!m_db.GetTypeTableName(manufacturer, series, type, table)) {
        return fail(QStringLiteral("%1: the type %2 has no table").arg(where, type) +
                    Because(m_db));
    }
    if (m_db.ModuleExists(table, record.Code)) {
        return fail(QStringLiteral("%1: catalog %2 already exists in %3 / %4 / %5")
                        .arg(where, record.Code, manufacturer, series, type));
    }
    if (!m_db.WriteRawModule(table, record, rows)) {
        return fail(QStringLiteral("%1: cannot write catalog %2").arg(where, record.Code) +
                    Because(m_db));
    }
    return true;
}

bool DocumentReader::readStyle(const QJsonObject& style, const QString& where) {
    const int number = style.value(QStringLiteral("number")).toInt(0);
    if (number < 1 || number > kStyleCount) {
        return fail(QStringLiteral("%1.number must be a style number from 1 to 9").arg(where));
    }
    ModDB::StyleBoxData record;
    record.Number = number;
    for (int box = 0; box < ModDB::StyleBoxData::kBoxCount; ++box) {
        if (!text(style, ModDB::StyleBoxData::BoxName(box), where, record.Box[box])) {
            return false;
        }
    }
    // The update answers nothing; its failure leaves the store's reason.
    m_db.UpdateStyleBox(number, record);
    const QString reason = m_db.GetLastFailure();
    return reason.isEmpty() || fail(QStringLiteral("%1: cannot write style box %2: %3")
                                        .arg(where)
                                        .arg(number)
                                        .arg(reason));
}

bool DocumentReader::readPrompt(const QJsonObject& prompt, const QString& where) {
    ModDB::PromptData row;
    if (!text(prompt, "prompt", where, row.Prompt) ||
        !text(prompt, "localized", where, row.Localized)) {
        return false;
    }
    if (row.Prompt.isEmpty()) {
        return fail(QStringLiteral("%1 has no prompt").arg(where));
    }
    if (!m_db.AddPromptRow(row)) {
        return fail(QStringLiteral("%1: cannot add the prompt %2").arg(where, row.Prompt) +
                    Because(m_db));
    }
    return true;
}

bool DocumentReader::read(const QJsonObject& document) {
    if (document.value(QStringLiteral("format")).toString() != QStringLiteral("plcdb")) {
        return fail(QStringLiteral("this is no plcdb document (\"format\" is not \"plcdb\")"));
    }
    const QJsonValue version = document.value(QStringLiteral("version"));
    if (version.isUndefined() || version.isNull()) {
        return fail(QStringLiteral("the document has no \"version\""));
    }
    if (version.toInt(-1) != CatalogDocument::kVersion) {
        return fail(QStringLiteral("version %1 of the document is not known; this program reads "
                                   "version %2")
                        .arg(JsonText(version), QString::number(CatalogDocument::kVersion)));
    }
    QJsonArray index, modules, styles, prompts;
    if (!array(document, "index", index) || !array(document, "modules", modules) ||
        !array(document, "styles", styles) || !array(document, "prompts", prompts) ||
        !readIndex(index)) {
        return false;
    }
    const auto each = [this](const QJsonArray& items, const char* name, auto readOne) {
        for (qsizetype i = 0; i < items.size(); ++i) {
            const QString where = QStringLiteral("%1[%2]").arg(QLatin1String(name)).arg(i);
            QJsonObject item;
            if (!object(items[i], where, item) || !(this->*readOne)(item, where)) {
                return false;
            }
        }
        return true;
    };
    return each(modules, "modules", &DocumentReader::readModule) &&
           each(styles, "styles", &DocumentReader::readStyle) &&
           each(prompts, "prompts", &DocumentReader::readPrompt);
}

}  // namespace

bool CatalogDocument::Export(CKVModuleDB& db, QJsonObject& document, QString* error) {
    QList<ModDB::IndexData> rows;
    if (!db.GetIndexRows(rows)) {
        return Fail(error, QStringLiteral("cannot read the index of the database") + Because(db));
    }
    QJsonArray index, modules, styles, prompts;
    for (const ModDB::IndexData& row : rows) {
        index.append(IndexObject(row.Manufacturer, row.Series, row.Type));
        if (!row.Type.isEmpty() && !ExportModules(db, row, modules, error)) {
            return false;
        }
    }
    if (!ExportStyles(db, styles, error) || !ExportPrompts(db, prompts, error)) {
        return false;
    }
    document = QJsonObject{{QStringLiteral("format"), QStringLiteral("plcdb")},
                           {QStringLiteral("version"), kVersion},
                           {QStringLiteral("index"), index},
                           {QStringLiteral("modules"), modules},
                           {QStringLiteral("styles"), styles},
                           {QStringLiteral("prompts"), prompts}};
    return true;
}

bool CatalogDocument::ExportModule(CKVModuleDB& db, const QString& manufacturer,
                                   const QString& series, const QString& type,
                                   const QString& catalog, QJsonObject& module, QString* error) {
    QString table;
    if (!db.GetTypeTableName(manufacturer, series, type, table) || table.isEmpty()) {
        return Fail(
            error,
            QStringLiteral("the database has no type %1 of %2 %3").arg(type, manufacturer, series) +
                Because(db));
    }
    ModDB::IndexData row;
    return FindTypeRow(db, table, row, error) && ModuleObject(db, row, catalog, module, error);
}

bool CatalogDocument::Import(CKVModuleDB& db, const QJsonObject& document, QString* error) {
    if (!db.BeginTransaction()) {
        return Fail(error,
                    QStringLiteral("cannot start a transaction on the database") + Because(db));
    }
    DocumentReader reader(db, error);
    if (!reader.read(document)) {
        db.RollbackTransaction();
        return false;
    }
    if (!db.CommitTransaction()) {
        const QString reason = Because(db);
        db.RollbackTransaction();
        return Fail(error, QStringLiteral("cannot write the document to the database") + reason);
    }
    return true;
}
