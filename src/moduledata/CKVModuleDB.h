#pragma once

#include "CKVModule.h"
#include "ModDB.h"

class ZelPlcDbIO;

#include <QList>
#include <QString>

#include <memory>
#include <vector>

// The hierarchy of the index and one entry of a type's catalog list.
struct _typetname {
    QString strType;
    QString strTableName;
};
struct _familytypes {
    QString strSeries;
    QList<_typetname> types;
};
struct _manfams {
    QString strManufacturer;
    QList<_familytypes> families;
};
struct _idandcatalognum {
    QString strId;
    QString strCatalog;
};

// The facade over the store: opens the database file, hands out modules held in
// memory by handle, and converts between modules and store records. Failures answer
// false or -1 and leave a code for GetLastError.
class CKVModuleDB {
public:
    enum Error : int {
        kErrAlreadyOpen = 1,
        kErrNoPath = 2,
        kErrBadPath = 3,
        kErrNotOpen = 16,
        kErrCatalogExists = 17,
        kErrNoTableOrCatalog = 18,
        kErrNoSpecRow = 19,
        kErrNoHandle = 21,
        kErrModuleVanished = 22,
        kErrReadOnly = 26,
        kErrCannotOpen = 27,
        kErrNoTableName = 29,
        kErrIndexNotAdded = 30,
    };

    CKVModuleDB();
    virtual ~CKVModuleDB();
    CKVModuleDB(const CKVModuleDB&) = delete;
    CKVModuleDB& operator=(const CKVModuleDB&) = delete;

    // With bReadOnly the file is only ever read: no connection that could write it is
    // tried, and the code is 26 after a successful open, as after a restricted one.
    bool Open(const QString& path, bool bReadOnly = false);
    bool Close();
    bool IsOpen() const { return m_bOpen; }
    int GetLastError() const { return m_nError; }
    // Why the last operation failed, in the user's words ("not a plcdb database", "made by
    // a newer plcdb", ...); empty when the store reported nothing. After an Open with code
    // 26 it tells why the file opened for reading only. GetCatalogs, which answers true
    // when the store fails, leaves the text here too.
    QString GetLastFailure() const;
    const QString& GetPath() const { return m_strPath; }

    // Modules by handle.
    int NewModule(const QString& manufacturer, const QString& series, const QString& type,
                  const QString& catalog);
    int LoadModule(const QString& table, const QString& catalog, bool bSkipTerms);
    CKVModule& GetModule(int handle, bool* found = nullptr);
    bool SaveModule(int handle);
    bool ReleaseModule(int handle);
    bool ModuleExists(const QString& table, const QString& catalog);
    bool CopyModule(const QString& sourceCatalog, const QString& sourceTable,
                    const QString& newCatalog, const QString& targetTable);
    bool RenameModule(const QString& table, const QString& oldCatalog, const QString& newCatalog);
    bool RemoveEntry(const QString& manufacturer, const QString& series, const QString& type,
                     const QString& catalog);

    // The edit lock of a module, as ZelPlcDbIO::LockModule gives it: granted when this
    // program holds it, else holder names who does and since when.
    bool LockModule(const QString& table, const QString& catalog, bool& granted,
                    ModDB::ModuleLock& holder);
    bool UnlockModule(const QString& table, const QString& catalog);

    // Index, type tables, style boxes, prompts.
    bool GetHierarchy(QList<_manfams>& hierarchy);
    bool GetTypeTableName(const QString& manufacturer, const QString& series, const QString& type,
                          QString& table);
    bool GetCatalogs(const QString& table, QList<_idandcatalognum>& catalogs);
    // The modules that a search fragment finds, as ZelPlcDbIO::FindModules.
    bool FindModules(const QString& fragment, int limit, QList<ModDB::ModuleMatch>& matches);
    bool AddIndex(const QString& manufacturer, const QString& series, const QString& type);
    bool RenameIndex(const QString& manufacturer, const QString& series, const QString& type,
                     const QString& newName);
    bool IndexExists(const QString& manufacturer, const QString& series, const QString& type);
    bool GetStyleBox(int number, ModDB::StyleBoxData& record);
    void UpdateStyleBox(int number, const ModDB::StyleBoxData& record);
    bool LoadPrompts();
    // The prompt census of one module, appended to the lists (a maintenance report).
    bool CollectPrompts(CKVModule& module, QStringList& aPrompts, QList<int>& aCounts,
                        QStringList& aFiles, QStringList& aFilePrompts, const QString& file);

    // The raw texts of the store, for export and import: rows exactly as stored.
    bool GetIndexRows(QList<ModDB::IndexData>& rows);
    bool ReadRawModule(const QString& table, const QString& catalog, ModDB::ModSpecData& spec,
                       QList<ModDB::ModTermData>& rows);
    bool WriteRawModule(const QString& table, const ModDB::ModSpecData& spec,
                        const QList<ModDB::ModTermData>& rows);
    // Replaces all terminal rows of an existing module with these, numbered as they come,
    // in one transaction; false and nothing changed when the module or a step fails.
    bool ReplaceRawRows(const QString& table, const QString& catalog,
                        const QList<ModDB::ModTermData>& rows);
    bool GetPromptRows(QList<ModDB::PromptData>& rows);
    bool AddPromptRow(const ModDB::PromptData& row);
    // One transaction around several of the operations above.
    bool BeginTransaction();
    bool CommitTransaction();
    void RollbackTransaction();

    // The texts of a box value field: "%f" or "%f %s", empty for an unset value; and
    // back, where an unreadable number is 0.0 and an empty field is unset.
    static QString FormatValueField(double value, const QString& unit);
    static void ParseValueField(const QString& field, double& value, QString& unit);

private:
    struct _handleindex {
        int nHandle = -1;
        int nIndex = -1;
        QString strTable;
    };

    int AddHandle(int index, const QString& table);
    int FindHandle(int handle, QString* table = nullptr) const;
    bool ReadModule(const QString& table, const QString& catalog, CKVModule& module,
                    bool bSkipTerms);
    // Rewrites the module's data row and all its terminal rows in one transaction; false
    // (and nothing changed) when the store refused a step.
    bool WriteModule(CKVModule& module, const QString& table);
    bool WriteModuleSteps(ZelPlcDbIO& store, const CKVModule& module, const QString& table);
    bool RemoveModuleRows(ZelPlcDbIO& store, const QString& table, const QString& catalog);
    // The store when this object is open; otherwise null and code 16. Clears the failure
    // text.
    ZelPlcDbIO* Store();
    // The terminal table that belongs to a type's spec table.
    static QString TermTable(const QString& table);

    int m_nLastHandle = 0;
    QList<_handleindex> m_listHandles;
    int m_nError = 0;
    // The failure text of Open; the store holds that of later operations.
    QString m_strFailure;
    bool m_bOpen = false;
    // Held by pointer: a module's copy and assignment deliberately drop or keep some
    // members, so the modules must never be copied when the list grows or shrinks.
    std::vector<std::unique_ptr<CKVModule>> m_aModules;
    QString m_strDirectory;
    QString m_strFileName;
    QString m_strPath;
};
