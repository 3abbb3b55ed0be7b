#include "CKVModuleDB.h"

#include "CrtNumbers.h"
#include "StoreLocation.h"
#include "ZelPlcDbIO.h"
#include "ZelUtils.h"

#include <algorithm>
#include <new>

namespace {

const QString kConnectionFormat = QStringLiteral(
    "Provider=Microsoft.ACE.OLEDB.12.0;Data Source=%1;Mode=%2;Jet OLEDB:Engine Type=5");

// Shared first; then read-only, and read-only exclusive as the last resort.
const QString kModeShared = QStringLiteral("Share Deny None");
const QString kModeRead = QStringLiteral("Read");
const QString kModeExclusive = QStringLiteral("Read|Share Deny Read|Share Deny Write");

constexpr int kBoxesPerGroup = 6;

int LastSeparator(const QString& path) {
    return qMax(path.lastIndexOf(u'/'), path.lastIndexOf(u'\\'));
}

// The Data Source of the connection text: a file path with the system's separators, or a
// server's connection text as it stands, in double quotes when it holds a ";" that would
// end the value.
QString DataSource(const QString& path) {
    if (!StoreLocation::IsServer(path)) {
        return NativePath(path);
    }
    return path.contains(u';') && !path.contains(u'"') ? u'"' + path + u'"' : path;
}

// The box value fields stand in the record as BoxA1 .. BoxA6, BoxB1 .. BoxB6.
int BoxPlace(bool bGroupB, int place) {
    return ModDB::ModSpecData::kFirstBoxPlace + (bGroupB ? kBoxesPerGroup : 0) + place - 1;
}

void CopySpecToModule(const ModDB::ModSpecData& spec, CKVModule& module) {
    module.SetCatalog(spec.Code);
    module.SetColText2(spec.ColText2);
    module.SetColText1(spec.ColText1);
    module.SetDescription(spec.Description);
    module.SetColText3(spec.ColText3);
    module.SetAddrBase(spec.AddrBase);
    module.SetSpecNote(spec.SpecNote);
    module.SetSpecTail(spec.SpecTail);
    module.SetDirFlags(spec.DirFlags);
    for (const bool bGroupB : {false, true}) {
        for (int place = 1; place <= kBoxesPerGroup; ++place) {
            double value = -1.0;
            QString unit;
            CKVModuleDB::ParseValueField(spec.field(BoxPlace(bGroupB, place)), value, unit);
            module.SetBox(bGroupB, place, value);
            module.SetUnit(bGroupB, place, unit);
        }
    }
}

// Reserved stays empty: nothing in the program fills or reads it.
ModDB::ModSpecData SpecFromModule(const CKVModule& module) {
    ModDB::ModSpecData spec;
    spec.Code = module.GetCatalog();
    spec.ColText2 = module.GetColText2();
    spec.ColText1 = module.GetColText1();
    spec.Description = module.GetDescription();
    spec.ColText3 = module.GetColText3();
    spec.AddrBase = module.GetAddrBase();
    spec.SpecNote = module.GetSpecNote();
    spec.SpecTail = module.GetSpecTail();
    spec.DirFlags = module.GetDirFlags();
    for (const bool bGroupB : {false, true}) {
        for (int place = 1; place <= kBoxesPerGroup; ++place) {
            spec.field(BoxPlace(bGroupB, place)) = CKVModuleDB::FormatValueField(
                module.GetBox(bGroupB, place), module.GetUnit(bGroupB, place));
        }
    }
    return spec;
}

QList<ModDB::ModTermData> TermRowsFromModule(const CKVModule& module) {
    QList<ModDB::ModTermData> rows;
    rows.reserve(module.GetTermCount());
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        rows.append(
            {module.GetCatalog(), row, module.GetTermText(row), module.GetTermSpecial(row)});
    }
    return rows;
}

// The store is asked once in its plain way and, only when that fails, once more in
// its fallback way.
bool GetSpec(ZelPlcDbIO& store, const QString& table, const QString& code,
             ModDB::ModSpecData& spec) {
    return store.GetModSpecData(table, code, spec, false) ||
           store.GetModSpecData(table, code, spec, true);
}

bool AddSpec(ZelPlcDbIO& store, const QString& table, const ModDB::ModSpecData& spec) {
    return store.AddModSpecData(table, spec, false) || store.AddModSpecData(table, spec, true);
}

bool UpdateSpec(ZelPlcDbIO& store, const QString& table, const ModDB::ModSpecData& spec) {
    return store.UpdateModSpecData(table, spec.Code, spec, false) ||
           store.UpdateModSpecData(table, spec.Code, spec, true);
}

bool SpecExists(ZelPlcDbIO& store, const QString& table, const QString& code) {
    bool exists = false;
    return store.DoesSpecDataExist(table, code, exists) && exists;
}

// The module that a bad handle gets: emptied again at every use, since callers may
// have written into it.
CKVModule& EmptyModule() {
    static CKVModule empty;
    empty.Clear(true);
    empty.SetDirFlags(QString());
    empty.SetTableName(QString());
    empty.SetSpare(QString());
    return empty;
}

}  // namespace

CKVModuleDB::CKVModuleDB() = default;

CKVModuleDB::~CKVModuleDB() {
    m_bOpen = false;
}

QString CKVModuleDB::TermTable(const QString& table) {
    return table + QStringLiteral("_Data");
}

ZelPlcDbIO* CKVModuleDB::Store() {
    ZelPlcDbIO* store = m_bOpen ? ZelPlcDbIO::Instance() : nullptr;
    m_strFailure.clear();
    if (store == nullptr) {
        m_nError = kErrNotOpen;
    } else {
        // Each operation starts without a failure, so that the text afterwards is its own.
        store->m_strLastError.clear();
    }
    return store;
}

QString CKVModuleDB::GetLastFailure() const {
    const ZelPlcDbIO* store = ZelPlcDbIO::Instance();
    if (!m_strFailure.isEmpty() || !m_bOpen || store == nullptr) {
        return m_strFailure;
    }
    return store->m_strLastError;
}

bool CKVModuleDB::Open(const QString& path, bool bReadOnly) {
    if (m_bOpen) {
        m_nError = kErrAlreadyOpen;
        return false;
    }
    if (path.isEmpty()) {
        m_nError = kErrNoPath;
        return false;
    }
    m_strPath = path;
    const bool server = StoreLocation::IsServer(path);
    const int cut = LastSeparator(path);
    if (!server && (cut < 0 || cut == path.size() - 1)) {
        m_nError = kErrBadPath;
        return false;
    }
    // A server's connection text has no folder and no file name.
    m_strFileName = server ? QString() : path.mid(cut + 1);
    m_strDirectory = server ? QString() : NativePath(path.left(cut + 1));

    ZelPlcDbIO* store = ZelPlcDbIO::Instance();
    if (store == nullptr) {
        m_nError = kErrCannotOpen;
        m_strFailure = QStringLiteral("the program has no store");
        return false;
    }
    const QString source = DataSource(path);
    const auto connect = [&](const QString& mode) {
        const bool connected = store->PutConnectionString(kConnectionFormat.arg(source, mode));
        m_strFailure = connected ? m_strFailure : store->m_strLastError;
        return connected;
    };
    m_strFailure.clear();
    if (bReadOnly || !connect(kModeShared)) {
        // Stays set after a restricted open: it marks the connection as read-only.
        m_nError = kErrReadOnly;
        // Another program's lock stops a reader as well: the wait is not repeated.
        const QString refusal = m_strFailure;
        if ((!bReadOnly && store->LastFailureWasLock()) ||
            (!connect(kModeRead) && !connect(kModeExclusive))) {
            m_nError = kErrCannotOpen;
            return false;
        }
        m_strFailure = refusal;
    }
    m_bOpen = true;
    return true;
}

bool CKVModuleDB::Close() {
    if (!m_bOpen) {
        m_nError = kErrNotOpen;
        return false;
    }
    m_bOpen = false;
    return true;
}

bool CKVModuleDB::LockModule(const QString& table, const QString& catalog, bool& granted,
                             ModDB::ModuleLock& holder) {
    granted = false;
    ZelPlcDbIO* store = Store();
    return store != nullptr && store->LockModule(table, catalog, granted, holder);
}

bool CKVModuleDB::UnlockModule(const QString& table, const QString& catalog) {
    ZelPlcDbIO* store = Store();
    return store != nullptr && store->UnlockModule(table, catalog);
}

int CKVModuleDB::AddHandle(int index, const QString& table) {
    try {
        m_listHandles.append({m_nLastHandle + 1, index, table});
    } catch (const std::bad_alloc&) {
        return -1;
    }
    return ++m_nLastHandle;
}

int CKVModuleDB::FindHandle(int handle, QString* table) const {
    for (const _handleindex& entry : m_listHandles) {
        if (entry.nHandle == handle) {
            if (table != nullptr) {
                *table = entry.strTable;
            }
            return entry.nIndex;
        }
    }
    return -1;
}

int CKVModuleDB::NewModule(const QString& manufacturer, const QString& series, const QString& type,
                           const QString& catalog) {
    if (manufacturer.isEmpty() || series.isEmpty() || type.isEmpty() || catalog.isEmpty()) {
        return -1;
    }
    ZelPlcDbIO* store = Store();
    if (store == nullptr) {
        return -1;
    }
    bool typeExists = false;
    if (!store->DoesIndexDataExist(manufacturer, series, type, typeExists) || !typeExists) {
        if (!store->AddIndexData(manufacturer, series, type)) {
            m_nError = kErrIndexNotAdded;
            return -1;
        }
    }
    // A damaged index may name no table; modules must not land in a nameless one.
    QString table;
    if (!store->GetTypeTableName(manufacturer, series, type, table) || table.isEmpty()) {
        m_nError = kErrNoTableName;
        return -1;
    }
    if (typeExists && SpecExists(*store, table, catalog)) {
        m_nError = kErrCatalogExists;
        return -1;
    }
    try {
        auto module = std::make_unique<CKVModule>();
        module->SetIsNew(true);
        module->SetCatalog(catalog);
        m_aModules.push_back(std::move(module));
    } catch (const std::bad_alloc&) {
        return -1;
    }
    return AddHandle(int(m_aModules.size()) - 1, table);
}

int CKVModuleDB::LoadModule(const QString& table, const QString& catalog, bool bSkipTerms) {
    ZelPlcDbIO* store = Store();
    if (store == nullptr) {
        return -1;
    }
    if (table.isEmpty() || catalog.isEmpty()) {
        m_nError = kErrNoTableOrCatalog;
        return -1;
    }
    if (!SpecExists(*store, table, catalog)) {
        m_nError = kErrNoSpecRow;
        return -1;
    }
    auto module = std::make_unique<CKVModule>();
    if (!ReadModule(table, catalog, *module, bSkipTerms)) {
        return -1;
    }
    module->SetIsNew(false);
    m_aModules.push_back(std::move(module));
    return AddHandle(int(m_aModules.size()) - 1, table);
}

bool CKVModuleDB::ReadModule(const QString& table, const QString& catalog, CKVModule& module,
                             bool bSkipTerms) {
    ZelPlcDbIO* store = Store();
    ModDB::ModSpecData spec;
    if (store == nullptr || !GetSpec(*store, table, catalog, spec)) {
        return false;
    }
    module.Clear(false);
    CopySpecToModule(spec, module);
    if (bSkipTerms) {
        return true;
    }
    QList<ModDB::ModTermData> rows;
    if (!store->GetModTermData(TermTable(table), catalog, rows)) {
        return false;
    }
    // The stored numbers only order the rows; the module numbers them anew.
    for (const ModDB::ModTermData& row : rows) {
        module.SetTermRow(module.GetTermCount() + 1, row.Text + u';' + row.Special);
    }
    module.ParsePromptsToArray();
    return true;
}

CKVModule& CKVModuleDB::GetModule(int handle, bool* found) {
    const int index = FindHandle(handle);
    const bool ok = index >= 0 && index < int(m_aModules.size());
    if (found != nullptr) {
        *found = ok;
    }
    if (!ok) {
        m_nError = kErrNoHandle;
        return EmptyModule();
    }
    return *m_aModules[size_t(index)];
}

bool CKVModuleDB::SaveModule(int handle) {
    if (Store() == nullptr) {
        return false;
    }
    QString table;
    const int index = FindHandle(handle, &table);
    if (index < 0) {
        m_nError = kErrNoHandle;
        return false;
    }
    if (index >= int(m_aModules.size())) {
        m_nError = kErrModuleVanished;
        return false;
    }
    return WriteModule(*m_aModules[size_t(index)], table);
}

bool CKVModuleDB::WriteModule(CKVModule& module, const QString& table) {
    ZelPlcDbIO* store = Store();
    if (store == nullptr) {
        return false;
    }
    module.ApplyPrompts();
    // One transaction, so that no crash or failure leaves the module without rows.
    if (!store->BeginTransaction()) {
        return false;
    }
    if (!WriteModuleSteps(*store, module, table) || !store->CommitTransaction()) {
        store->RollbackTransaction();
        return false;
    }
    return true;
}

bool CKVModuleDB::WriteModuleSteps(ZelPlcDbIO& store, const CKVModule& module,
                                   const QString& table) {
    const ModDB::ModSpecData spec = SpecFromModule(module);
    const bool written = SpecExists(store, table, spec.Code) ? UpdateSpec(store, table, spec)
                                                             : AddSpec(store, table, spec);
    if (!written || !RemoveModuleRows(store, table, spec.Code)) {
        return false;
    }
    return module.GetTermCount() == 0 ||
           store.AddModTermData(TermTable(table), TermRowsFromModule(module));
}

bool CKVModuleDB::RemoveModuleRows(ZelPlcDbIO& store, const QString& table,
                                   const QString& catalog) {
    bool exists = false;
    if (!store.DoesTermDataExist(TermTable(table), catalog, -1, exists)) {
        return false;
    }
    return !exists || store.RemoveModTermData(TermTable(table), catalog, -1, -1);
}

bool CKVModuleDB::ReleaseModule(int handle) {
    if (Store() == nullptr) {
        return false;
    }
    const auto entry =
        std::find_if(m_listHandles.begin(), m_listHandles.end(),
                     [handle](const _handleindex& e) { return e.nHandle == handle; });
    if (entry == m_listHandles.end()) {
        m_nError = kErrNoHandle;
        return false;
    }
    const int index = entry->nIndex;
    m_listHandles.erase(entry);
    if (index >= 0 && index < int(m_aModules.size())) {
        m_aModules.erase(m_aModules.begin() + index);
    }
    for (_handleindex& other : m_listHandles) {
        if (other.nIndex > index) {
            --other.nIndex;
        }
    }
    return true;
}

bool CKVModuleDB::ModuleExists(const QString& table, const QString& catalog) {
    ZelPlcDbIO* store = Store();
    return store != nullptr && SpecExists(*store, table, catalog);
}

bool CKVModuleDB::CopyModule(const QString& sourceCatalog, const QString& sourceTable,
                             const QString& newCatalog, const QString& targetTable) {
    ZelPlcDbIO* store = Store();
    if (store == nullptr || sourceCatalog.isNull() || sourceTable.isNull() || newCatalog.isNull() ||
        targetTable.isNull()) {
        return false;
    }
    if (SpecExists(*store, targetTable, newCatalog)) {
        return false;
    }
    CKVModule copy;
    if (!ReadModule(sourceTable, sourceCatalog, copy, false)) {
        return false;
    }
    copy.SetCatalog(newCatalog);
    return WriteModule(copy, targetTable);
}

bool CKVModuleDB::RenameModule(const QString& table, const QString& oldCatalog,
                               const QString& newCatalog) {
    ZelPlcDbIO* store = Store();
    if (store == nullptr || newCatalog.isEmpty() || SpecExists(*store, table, newCatalog)) {
        return false;
    }
    if (!store->BeginTransaction()) {
        return false;
    }
    if (!store->RenameModSpecData(table, oldCatalog, newCatalog)) {
        store->RollbackTransaction();
        return false;
    }
    // A module without rows has none to rename; that is no failure.
    store->RenameModTermData(TermTable(table), oldCatalog, newCatalog);
    return store->CommitTransaction();
}

bool CKVModuleDB::RemoveEntry(const QString& manufacturer, const QString& series,
                              const QString& type, const QString& catalog) {
    ZelPlcDbIO* store = Store();
    if (store == nullptr || manufacturer.isNull()) {
        return false;
    }
    if (series.isNull()) {
        return store->RemoveIndexData(manufacturer, QString(), QString());
    }
    if (type.isNull()) {
        return store->RemoveIndexData(manufacturer, series, QString());
    }
    if (catalog.isNull()) {
        return store->RemoveIndexData(manufacturer, series, type);
    }
    // A module goes without touching the index: its rows, then its spec.
    QString table;
    if (!store->GetTypeTableName(manufacturer, series, type, table) || !store->BeginTransaction()) {
        return false;
    }
    if (!store->RemoveModTermData(TermTable(table), catalog, -1, -1) ||
        !store->RemoveModSpecData(table, catalog) || !store->CommitTransaction()) {
        store->RollbackTransaction();
        return false;
    }
    return true;
}

QString CKVModuleDB::FormatValueField(double value, const QString& unit) {
    if (!(value >= 0.0)) {
        return QString();
    }
    // Stored numbers always use "." whatever the user's locale.
    const QString number = QString::number(value, 'f', 6);
    return unit.isEmpty() ? number : number + u' ' + unit;
}

void CKVModuleDB::ParseValueField(const QString& field, double& value, QString& unit) {
    value = -1.0;
    unit.clear();
    const qsizetype blank = field.indexOf(u' ');
    if (blank < 0) {
        if (!field.isEmpty()) {
            value = crt::wtof(field);
        }
        return;
    }
    const QString number = field.left(blank);
    if (!number.isEmpty()) {
        value = crt::wtof(number);
    }
    unit = field.mid(blank + 1);
}
