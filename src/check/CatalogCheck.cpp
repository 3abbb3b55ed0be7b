#include "CatalogCheck.h"

#include "BlockLookup.h"
#include "BoxValueCheck.h"
#include "MultiBOMGenerator.h"
#include "ZelDbMigrate.h"

#include <algorithm>
#include <optional>

namespace {

using Severity = CheckFinding::Severity;

constexpr int kStyleCount = 9;
const QString kPromptMark = QStringLiteral("%%");

// The module loader asks the process-wide store for the prompt table, so the store of
// the check stands in for it while the check runs.
class StoreScope {
public:
    explicit StoreScope(ZelPlcDbIO& store) : m_previous(ZelPlcDbIO::Instance()) {
        ZelPlcDbIO::SetInstance(&store);
    }
    ~StoreScope() { ZelPlcDbIO::SetInstance(m_previous); }
    StoreScope(const StoreScope&) = delete;
    StoreScope& operator=(const StoreScope&) = delete;

private:
    ZelPlcDbIO* m_previous;
};

// A number as the box dimension dialogs take it, with "." as the stored separator only.
bool IsNumberText(const QString& text) {
    return !text.isEmpty() && BoxValueCheck::IsGoodValue(text) &&
           BoxValueCheck::ToPointSeparator(text) == text;
}

// A stored box value: empty when unset, else a number and an optional unit, split as
// the style table splits them.
bool IsBoxValue(const QString& text) {
    if (text.isEmpty()) {
        return true;
    }
    QString value;
    QString unit;
    CKVModule::SplitValueUnit(text, value, unit);
    return IsNumberText(value);
}

// The prompt numbers that the attribute values of a row refer to with %%n, which the
// symbol builder fills with the answers to the module's prompts. Prompt tokens define a
// prompt rather than use one.
QList<int> UsedPrompts(QString special) {
    QList<int> numbers;
    QString name;
    QString value;
    while (CKVModule::NextAttrPair(special, name, value)) {
        if (name.startsWith(kPromptMark)) {
            continue;
        }
        for (qsizetype at = value.indexOf(kPromptMark); at >= 0;
             at = value.indexOf(kPromptMark, at + kPromptMark.size())) {
            const int number = CKVModule::PromptNumber(value.mid(at));
            if (number != 0 && !numbers.contains(number)) {
                numbers.append(number);
            }
        }
    }
    return numbers;
}

}  // namespace

bool CatalogCheck::Run(const QString& path, const CBlockDescEx* blocks) {
    m_findings.clear();
    m_failure.clear();
    StoreScope scope(m_store);
    if (!m_db.Open(path, true)) {
        m_failure = m_db.GetLastFailure();
        if (m_failure.isEmpty()) {
            m_failure = QStringLiteral("it cannot be opened (code %1)").arg(m_db.GetLastError());
        }
        return false;
    }
    std::optional<BlockLookup> lookup;
    if (blocks) {
        lookup.emplace().Rebuild(blocks);
    }
    bool bOlder = false;
    CheckForMigration(path, bOlder, false, QString());
    QStringList indexedTables;
    const bool read = CheckIndex(bOlder, lookup ? &*lookup : nullptr, indexedTables) &&
                      CheckUnindexed(indexedTables) && CheckStyles();
    m_db.Close();
    return read;
}

int CatalogCheck::Count(CheckFinding::Severity severity) const {
    return int(std::count_if(m_findings.cbegin(), m_findings.cend(),
                             [severity](const CheckFinding& f) { return f.severity == severity; }));
}

bool CatalogCheck::CheckIndex(bool bOlder, const BlockLookup* blocks, QStringList& indexedTables) {
    QList<_manfams> hierarchy;
    if (!m_db.GetHierarchy(hierarchy)) {
        return ReadFailed();
    }
    for (const _manfams& manufacturer : std::as_const(hierarchy)) {
        for (const _familytypes& series : manufacturer.families) {
            for (const _typetname& type : series.types) {
                Place place{manufacturer.strManufacturer, series.strSeries, type.strType, {}};
                indexedTables.append(type.strTableName);
                if (bOlder) {
                    Add(Severity::Error, QStringLiteral("needs-migration"), place, 0,
                        QStringLiteral("The type's table is of an older plcdb: no module can be "
                                       "added to it until c:ZLPLCMIGRATE upgrades the file."));
                }
                QList<_idandcatalognum> catalogs;
                // A failing store reads as a type without modules, but leaves its reason.
                m_db.GetCatalogs(type.strTableName, catalogs);
                if (!m_db.GetLastFailure().isEmpty()) {
                    return ReadFailed();
                }
                if (catalogs.isEmpty()) {
                    Add(Severity::Warning, QStringLiteral("empty-type"), place, 0,
                        QStringLiteral("The index has this type, but it holds no module."));
                }
                for (const _idandcatalognum& catalog : std::as_const(catalogs)) {
                    place.catalog = catalog.strCatalog;
                    if (!CheckModule(place, type.strTableName, blocks)) {
                        return false;
                    }
                }
            }
        }
    }
    return true;
}

bool CatalogCheck::CheckModule(const Place& place, const QString& table,
                               const BlockLookup* blocks) {
    ModDB::ModSpecData spec;
    QList<ModDB::ModTermData> rows;
    if (!m_db.ReadRawModule(table, place.catalog, spec, rows)) {
        return ReadFailed();
    }
    if (spec.Description.trimmed().isEmpty()) {
        Add(Severity::Warning, QStringLiteral("empty-description"), place, 0,
            QStringLiteral("The module has no description."));
    }
    CheckBoxes(place, spec);
    // The rows as the editor and the selection load them, prompts included.
    const int handle = m_db.LoadModule(table, place.catalog, false);
    if (handle < 0) {
        return ReadFailed();
    }
    CheckRows(place, m_db.GetModule(handle), blocks);
    m_db.ReleaseModule(handle);
    return true;
}

void CatalogCheck::CheckRows(const Place& place, const CKVModule& module,
                             const BlockLookup* blocks) {
    const QStringList& prompts = module.Prompts();
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        const QString block = module.GetTermText(row);
        if (blocks && blocks->Find(block) < 0) {
            Add(Severity::Error, QStringLiteral("unknown-block"), place, row,
                QStringLiteral("The block \"%1\" is not in the terminal block list, so the "
                               "editor cannot show the module's terminals.")
                    .arg(block));
        }
        if (module.GetIncludeExclude(row) == 3) {
            Add(Severity::Error, QStringLiteral("both-show-flags"), place, row,
                QStringLiteral("The row is marked both to include and to exclude."));
        }
        if (module.GetAddrFlags(row) == 3) {
            Add(Severity::Error, QStringLiteral("both-address-flags"), place, row,
                QStringLiteral("The row counts both an input and an output address."));
        }
        for (const int number : UsedPrompts(module.GetTermSpecial(row))) {
            if (prompts.value(number - 1).isEmpty()) {
                Add(Severity::Error, QStringLiteral("missing-prompt"), place, row,
                    QStringLiteral("The row uses %%%1, but the module as loaded has no prompt "
                                   "%1 (row 1 holds none, or its text is not in the prompt "
                                   "table).")
                        .arg(number));
            }
        }
        MultiBOMGenerator extras;
        extras.Parse(module.GetTermSpecial(row));
        for (const MultiBOMGenerator::MultiBOMItem& item : extras.Items()) {
            if (!item.strCnt.isEmpty() && !IsNumberText(item.strCnt.trimmed())) {
                Add(Severity::Error, QStringLiteral("extra-count-not-number"), place, row,
                    QStringLiteral("The count CNT%1 \"%2\" of extra catalog item %1 is no number.")
                        .arg(item.strNumber, item.strCnt));
            }
        }
    }
}

void CatalogCheck::CheckBoxes(const Place& place, const ModDB::ModSpecData& spec) {
    for (int field = ModDB::ModSpecData::kFirstBoxPlace;
         field < ModDB::ModSpecData::kFirstBoxPlace + ModDB::StyleBoxData::kBoxCount; ++field) {
        if (!IsBoxValue(spec.field(field))) {
            Add(Severity::Error, QStringLiteral("box-not-number"), place, 0,
                QStringLiteral("The box value %1 \"%2\" is no number with an optional unit.")
                    .arg(QLatin1String(ModDB::ModSpecData::FieldName(field)), spec.field(field)));
        }
    }
}

bool CatalogCheck::CheckUnindexed(const QStringList& indexedTables) {
    QStringList tables;
    if (!m_store.GetModuleTableNames(tables)) {
        return ReadFailed();
    }
    for (const QString& table : std::as_const(tables)) {
        if (indexedTables.contains(table, Qt::CaseInsensitive)) {
            continue;
        }
        QList<_idandcatalognum> catalogs;
        m_db.GetCatalogs(table, catalogs);
        if (!m_db.GetLastFailure().isEmpty()) {
            return ReadFailed();
        }
        for (const _idandcatalognum& catalog : std::as_const(catalogs)) {
            Add(Severity::Error, QStringLiteral("module-without-index"),
                Place{{}, {}, {}, catalog.strCatalog}, 0,
                QStringLiteral("No type of the index names the module's table \"%1\", so neither "
                               "the editor nor the selection shows the module.")
                    .arg(table));
        }
    }
    return true;
}

bool CatalogCheck::CheckStyles() {
    QList<int> numbers;
    if (!m_store.GetStyleBoxNumbers(numbers)) {
        return ReadFailed();
    }
    QStringList missing;
    for (int number = 1; number <= kStyleCount; ++number) {
        if (!numbers.contains(number)) {
            missing.append(QString::number(number));
            continue;
        }
        ModDB::StyleBoxData style;
        if (!m_db.GetStyleBox(number, style)) {
            return ReadFailed();
        }
        for (int box = 0; box < ModDB::StyleBoxData::kBoxCount; ++box) {
            if (!IsBoxValue(style.Box[box])) {
                Add(Severity::Error, QStringLiteral("box-not-number"), Place{}, 0,
                    QStringLiteral("The box value %1 \"%2\" of style %3 is no number with an "
                                   "optional unit.")
                        .arg(QLatin1String(ModDB::StyleBoxData::BoxName(box)), style.Box[box])
                        .arg(number));
            }
        }
    }
    if (!missing.isEmpty()) {
        Add(Severity::Error, QStringLiteral("missing-style-rows"), Place{}, 0,
            QStringLiteral("The database has no style row for style %1; it needs all nine, "
                           "on which a selection falls back where a module leaves a box value "
                           "unset.")
                .arg(missing.join(QStringLiteral(", "))));
    }
    return true;
}

void CatalogCheck::Add(CheckFinding::Severity severity, const QString& code, const Place& place,
                       int row, const QString& message) {
    m_findings.append({severity, code, place.manufacturer, place.series, place.type, place.catalog,
                       row, message});
}

bool CatalogCheck::ReadFailed() {
    m_failure = m_db.GetLastFailure();
    if (m_failure.isEmpty()) {
        m_failure = QStringLiteral("the store failed (code %1)").arg(m_db.GetLastError());
    }
    return false;
}
