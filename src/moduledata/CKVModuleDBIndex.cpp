#include "CKVModuleDB.h"

#include "CrtNumbers.h"
#include "ZelPlcDbIO.h"
#include "ZelUtils.h"

#include <QFile>

namespace {

const QString kCatalogId = QStringLiteral("1");
const QString kTokenDelimiter = QStringLiteral(";");
const QString kTermdataLog = QStringLiteral("Termdata_List.txt");

bool SameName(const QString& a, const QString& b) {
    return QString::compare(a, b, Qt::CaseInsensitive) == 0;
}

// The census follows these prompts by the file they were found in.
bool IsFilePrompt(const QString& text) {
    static const QStringList followed{QStringLiteral("SLOT NO."), QStringLiteral("MODULE NO."),
                                      QStringLiteral("BASE NUMBER")};
    return followed.contains(text, Qt::CaseInsensitive);
}

void AppendToTermdataLog(const QString& token) {
    QFile file(kTermdataLog);
    if (file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        file.write((token + u'\n').toUtf8());
    }
}

void SetModulePrompt(CKVModule& module, int number, const QString& text) {
    QStringList prompts;
    module.GetPrompts(prompts);
    if (prompts.size() < CKVModule::kPromptCount) {
        prompts.resize(CKVModule::kPromptCount);
    }
    prompts[number - 1] = text;
    module.SetPrompts(prompts);
}

// Builds the hierarchy from index rows that arrive grouped by manufacturer and series.
class HierarchyBuilder {
public:
    explicit HierarchyBuilder(QList<_manfams>& result) : m_result(result) {}

    void Add(const ModDB::IndexData& row) {
        if (!m_bManufacturer || !SameName(row.Manufacturer, m_manufacturer.strManufacturer)) {
            CloseManufacturer();
            m_manufacturer = {row.Manufacturer, {}};
            m_bManufacturer = true;
        }
        if (!SameName(row.Series, m_series.strSeries)) {
            CloseSeries();
            m_series = {row.Series, {}};
            m_bSeries = !row.Series.isEmpty();
        }
        // A type below an empty series has nowhere to go.
        if (m_bSeries && !row.Type.isEmpty() && !row.TableName.isEmpty()) {
            m_series.types.append({row.Type, row.TableName});
        }
    }

    void CloseManufacturer() {
        CloseSeries();
        if (m_bManufacturer) {
            m_result.append(m_manufacturer);
        }
        m_bManufacturer = false;
        m_manufacturer = {};
    }

private:
    void CloseSeries() {
        if (m_bSeries) {
            m_manufacturer.families.append(m_series);
        }
        m_bSeries = false;
        m_series = {};
    }

    QList<_manfams>& m_result;
    _manfams m_manufacturer;
    _familytypes m_series;
    bool m_bManufacturer = false;
    bool m_bSeries = false;
};

}  // namespace

bool CKVModuleDB::GetHierarchy(QList<_manfams>& hierarchy) {
    hierarchy.clear();
    ZelPlcDbIO* store = Store();
    if (store == nullptr) {
        return false;
    }
    // Built while the rows are read, without a list of them all.
    HierarchyBuilder builder(hierarchy);
    if (!store->VisitAllIndexData([&builder](const ModDB::IndexData& row) { builder.Add(row); })) {
        hierarchy.clear();
        return false;
    }
    builder.CloseManufacturer();
    return true;
}

bool CKVModuleDB::GetTypeTableName(const QString& manufacturer, const QString& series,
                                   const QString& type, QString& table) {
    ZelPlcDbIO* store = Store();
    if (store == nullptr || manufacturer.isNull() || series.isNull() || type.isNull()) {
        return false;
    }
    return store->GetTypeTableName(manufacturer, series, type, table);
}

bool CKVModuleDB::GetCatalogs(const QString& table, QList<_idandcatalognum>& catalogs) {
    catalogs.clear();
    ZelPlcDbIO* store = Store();
    if (store == nullptr || table.isNull()) {
        return false;
    }
    // A failing store reads as a type without modules.
    QStringList codes;
    if (store->GetArrayOfModSpecCodes(table, codes)) {
        for (const QString& code : codes) {
            catalogs.append({kCatalogId, code});
        }
    }
    return true;
}

bool CKVModuleDB::FindModules(const QString& fragment, int limit,
                              QList<ModDB::ModuleMatch>& matches) {
    matches.clear();
    ZelPlcDbIO* store = Store();
    return store != nullptr && store->FindModules(fragment, limit, matches);
}

bool CKVModuleDB::AddIndex(const QString& manufacturer, const QString& series,
                           const QString& type) {
    ZelPlcDbIO* store = Store();
    if (store == nullptr || manufacturer.isNull()) {
        return false;
    }
    // The first null name chooses the level.
    return series.isNull() ? store->AddIndexData(manufacturer, QString(), QString())
                           : store->AddIndexData(manufacturer, series, type);
}

bool CKVModuleDB::RenameIndex(const QString& manufacturer, const QString& series,
                              const QString& type, const QString& newName) {
    ZelPlcDbIO* store = Store();
    if (store == nullptr || manufacturer.isNull() || newName.isNull()) {
        return false;
    }
    return series.isNull() ? store->RenameIndexData(manufacturer, QString(), QString(), newName)
                           : store->RenameIndexData(manufacturer, series, type, newName);
}

bool CKVModuleDB::IndexExists(const QString& manufacturer, const QString& series,
                              const QString& type) {
    ZelPlcDbIO* store = Store();
    if (store == nullptr || manufacturer.isNull()) {
        return false;
    }
    bool exists = false;
    const QString level3 = series.isNull() ? QString() : type;
    return store->DoesIndexDataExist(manufacturer, series, level3, exists) && exists;
}

bool CKVModuleDB::GetStyleBox(int number, ModDB::StyleBoxData& record) {
    ZelPlcDbIO* store = Store();
    return store != nullptr && store->GetStyleBoxData(number, record);
}

void CKVModuleDB::UpdateStyleBox(int number, const ModDB::StyleBoxData& record) {
    if (ZelPlcDbIO* store = Store()) {
        store->UpdateStyleBoxData(number, record);
    }
}

bool CKVModuleDB::LoadPrompts() {
    ZelPlcDbIO* store = Store();
    return store != nullptr && store->CreateHashtableofPrompts();
}

bool CKVModuleDB::CollectPrompts(CKVModule& module, QStringList& aPrompts, QList<int>& aCounts,
                                 QStringList& aFiles, QStringList& aFilePrompts,
                                 const QString& file) {
    if (module.GetTermCount() == 0) {
        return false;
    }
    QString rest = module.GetTermSpecial(1);
    QString token;
    bool bFound = false;
    bool bLast = false;
    while (!bLast) {
        if (GetToken(rest, token, kTokenDelimiter)) {
            token = CKVModule::PairForm(token);
            AppendToTermdataLog(token);
        } else {
            // The rest behind the last ";" counts as a token but is not logged.
            bLast = true;
            if (rest.isEmpty()) {
                break;
            }
            token = CKVModule::PairForm(rest);
        }
        const int number = CKVModule::PromptNumber(token);
        if (number == 0) {
            continue;
        }
        const QString text = token.mid(CKVModule::kPromptTextStart);
        SetModulePrompt(module, number, text);
        bFound = true;
        if (aPrompts.isEmpty()) {
            if (text.isEmpty()) {
                return false;
            }
            aPrompts.append(text);
            aCounts.append(1);
        } else if (!text.isEmpty()) {
            const qsizetype known = aPrompts.indexOf(text);
            if (known >= 0 && known < aCounts.size()) {
                ++aCounts[known];
            } else {
                aPrompts.append(text);
                aCounts.append(1);
            }
        }
        if (IsFilePrompt(text)) {
            aFiles.append(file);
            aFilePrompts.append(text);
        }
    }
    return bFound;
}

bool CKVModuleDB::GetIndexRows(QList<ModDB::IndexData>& rows) {
    rows.clear();
    ZelPlcDbIO* store = Store();
    return store != nullptr && store->GetArrayOfAllIndexData(rows);
}

bool CKVModuleDB::ReadRawModule(const QString& table, const QString& catalog,
                                ModDB::ModSpecData& spec, QList<ModDB::ModTermData>& rows) {
    rows.clear();
    ZelPlcDbIO* store = Store();
    if (store == nullptr) {
        return false;
    }
    const bool haveSpec = store->GetModSpecData(table, catalog, spec, false) ||
                          store->GetModSpecData(table, catalog, spec, true);
    return haveSpec && store->GetModTermData(TermTable(table), catalog, rows);
}

bool CKVModuleDB::WriteRawModule(const QString& table, const ModDB::ModSpecData& spec,
                                 const QList<ModDB::ModTermData>& rows) {
    ZelPlcDbIO* store = Store();
    if (store == nullptr || spec.Code.isEmpty()) {
        return false;
    }
    bool exists = false;
    if (!store->DoesSpecDataExist(table, spec.Code, exists) || exists) {
        if (exists) {
            m_nError = kErrCatalogExists;
        }
        return false;
    }
    if (!store->BeginTransaction()) {
        return false;
    }
    const QString termTable = TermTable(table);
    // Rows left behind under this code by an older program must not mix with the new.
    const bool written =
        (store->AddModSpecData(table, spec, false) || store->AddModSpecData(table, spec, true)) &&
        store->RemoveModTermData(termTable, spec.Code, -1, -1) &&
        (rows.isEmpty() || store->AddModTermData(termTable, rows));
    if (!written || !store->CommitTransaction()) {
        store->RollbackTransaction();
        return false;
    }
    return true;
}

bool CKVModuleDB::ReplaceRawRows(const QString& table, const QString& catalog,
                                 const QList<ModDB::ModTermData>& rows) {
    ZelPlcDbIO* store = Store();
    bool exists = false;
    if (store == nullptr || !store->DoesSpecDataExist(table, catalog, exists) || !exists) {
        if (store != nullptr && !exists) {
            m_nError = kErrNoTableOrCatalog;
        }
        return false;
    }
    QList<ModDB::ModTermData> numbered = rows;
    for (qsizetype i = 0; i < numbered.size(); ++i) {
        numbered[i].Code = catalog;
        numbered[i].Number = qint32(i + 1);
    }
    if (!store->BeginTransaction()) {
        return false;
    }
    const QString termTable = TermTable(table);
    const bool written = store->RemoveModTermData(termTable, catalog, -1, -1) &&
                         (numbered.isEmpty() || store->AddModTermData(termTable, numbered));
    if (!written || !store->CommitTransaction()) {
        store->RollbackTransaction();
        return false;
    }
    return true;
}

bool CKVModuleDB::GetPromptRows(QList<ModDB::PromptData>& rows) {
    rows.clear();
    ZelPlcDbIO* store = Store();
    return store != nullptr && store->GetPromptRows(rows);
}

bool CKVModuleDB::AddPromptRow(const ModDB::PromptData& row) {
    ZelPlcDbIO* store = Store();
    return store != nullptr && store->AddPromptRow(row);
}

bool CKVModuleDB::BeginTransaction() {
    ZelPlcDbIO* store = Store();
    return store != nullptr && store->BeginTransaction();
}

bool CKVModuleDB::CommitTransaction() {
    ZelPlcDbIO* store = Store();
    return store != nullptr && store->CommitTransaction();
}

void CKVModuleDB::RollbackTransaction() {
    if (ZelPlcDbIO* store = Store()) {
        store->RollbackTransaction();
    }
}
