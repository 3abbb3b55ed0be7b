#pragma once

#include "ModDB.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

class SqliteDb;
class StoreDb;
class StoreStatement;

// The one process-wide store: a module database file over SQLite. Every operation
// answers true on success and never throws. A null QString stands for an absent
// name (a level of the index that is not meant); an empty one is a name.
//
// Logical table names (of types and their "_Data" terminal tables) are chosen by the
// store and kept as data; they never become SQL identifiers. Names and catalog codes
// compare without regard to case.
class ZelPlcDbIO {
public:
    // The schema this program writes, kept in the file's user_version.
    static constexpr int kSchemaVersion = 3;

    ZelPlcDbIO();
    virtual ~ZelPlcDbIO();
    ZelPlcDbIO(const ZelPlcDbIO&) = delete;
    ZelPlcDbIO& operator=(const ZelPlcDbIO&) = delete;

    // The object made at init-application; null before and after the application's life.
    static ZelPlcDbIO* Instance();
    static void SetInstance(ZelPlcDbIO* store);

    // Makes a new, empty database file: the nine style rows and an empty prompt table.
    // Fails when the file exists.
    static bool CreateDatabase(const QString& path, QString* error = nullptr);
    // Undoes CreateDatabase after a first fill failed, once every connection to it is
    // closed: removes the file (with SQLite's side files), or the server's tables while
    // they hold no module, index row or prompt.
    static bool RemoveNewDatabase(const QString& path, QString* error = nullptr);

    // Connection: "...;Data Source=PATH;Mode=MODE;..." with the modes "Share Deny None"
    // (read and write), "Read" and "Read|Share Deny Read|Share Deny Write" (read only,
    // exclusive). True when the file can be used in that mode. The connection is kept
    // while the same text comes again.
    bool PutConnectionString(const QString& connection);

    // Index.
    bool GetArrayOfAllIndexData(QList<ModDB::IndexData>& rows);
    // The same rows in the same order, each handed to visit as it is read, without a
    // list of them all. When this fails the rows handed so far are void.
    bool VisitAllIndexData(const std::function<void(const ModDB::IndexData&)>& visit);
    bool DoesIndexDataExist(const QString& manufacturer, const QString& series, const QString& type,
                            bool& exists);
    bool AddIndexData(const QString& manufacturer, const QString& series, const QString& type);
    bool RemoveIndexData(const QString& manufacturer, const QString& series, const QString& type);
    bool RenameIndexData(const QString& manufacturer, const QString& series, const QString& type,
                         const QString& newName);
    bool GetTypeTableName(const QString& manufacturer, const QString& series, const QString& type,
                          QString& table);

    // Spec rows of a type's table.
    bool DoesSpecDataExist(const QString& table, const QString& code, bool& exists);
    bool GetArrayOfModSpecCodes(const QString& table, QStringList& codes);
    bool GetModSpecData(const QString& table, const QString& code, ModDB::ModSpecData& record,
                        bool bFallback);
    bool AddModSpecData(const QString& table, const ModDB::ModSpecData& record, bool bFallback);
    bool UpdateModSpecData(const QString& table, const QString& code,
                           const ModDB::ModSpecData& record, bool bFallback);
    bool RemoveModSpecData(const QString& table, const QString& code);
    bool RenameModSpecData(const QString& table, const QString& oldCode, const QString& newCode);
    // Every table that holds a module, named by a type row of the index or not, in order.
    bool GetModuleTableNames(QStringList& tables);

    // Terminal rows; table is the type's table name with "_Data" behind it.
    bool GetModTermData(const QString& table, const QString& code, QList<ModDB::ModTermData>& rows);
    bool DoesTermDataExist(const QString& table, const QString& code, int row, bool& exists);
    bool AddModTermData(const QString& table, const QList<ModDB::ModTermData>& rows);
    bool RemoveModTermData(const QString& table, const QString& code, int firstRow, int lastRow);
    bool RenameModTermData(const QString& table, const QString& oldCode, const QString& newCode);

    // Modules whose catalog, description or one of the three column texts holds
    // fragment, case ignored (Unicode case folding), in the order of manufacturer,
    // series, type and catalog; at most limit of them. Modules without a type row in the
    // index are not found. An empty fragment finds nothing. A fragment of three characters
    // or more is sought through the file's search index where it has one.
    bool FindModules(const QString& fragment, int limit, QList<ModDB::ModuleMatch>& matches);

    // Style boxes 1 to 9 and the prompt table.
    bool GetStyleBoxData(int number, ModDB::StyleBoxData& record);
    bool UpdateStyleBoxData(int number, const ModDB::StyleBoxData& record);
    // The numbers of the style rows the file holds, in order.
    bool GetStyleBoxNumbers(QList<int>& numbers);
    bool CreateHashtableofPrompts();
    // Virtual so that tests can stand in a prompt table of their own.
    virtual QString ReturnLocalizedPrompt(const QString& prompt);
    bool GetPromptRows(QList<ModDB::PromptData>& rows);
    bool AddPromptRow(const ModDB::PromptData& row);

    // One transaction of writes around several operations; nested calls join the outer one.
    bool BeginTransaction();
    bool CommitTransaction();
    void RollbackTransaction();

    // Lets another writer change the file at path (a schema upgrade): closes the
    // connection when it is to that file. The next operation opens it again with the
    // same connection text and so sees what the writer did.
    void ReleaseFile(const QString& path);

    // Whether the last failure was another program's lock that outlasted the wait, so
    // that opening the file again in another mode would only wait once more.
    bool LastFailureWasLock() const;

    // The text of the last failure, in the user's words ("not a plcdb database", ...).
    QString m_strLastError;

    // Edit locks: one connection at a time holds the lock of a module, by table and code
    // (case ignored). A lock goes with this connection: UnlockModule, the connection's
    // close and the program's end free it. granted tells whether this connection holds it
    // now; when another does, holder names who and since when. False, with the reason,
    // when no lock can be had: a store open for reading only, a file of an older version,
    // another program's write that outlasted the wait.
    bool LockModule(const QString& table, const QString& code, bool& granted,
                    ModDB::ModuleLock& holder);
    bool UnlockModule(const QString& table, const QString& code);

private:
    struct IndexLevel;

    // The open connection, opened again after ReleaseFile; null with an error text when
    // there is none. The writable one is also null on a read-only connection.
    StoreDb* Connection();
    StoreDb* WritableConnection();
    void CloseConnection();
    void ChooseLog(SqliteDb& db);
    bool Fail(const QString& message, bool lock = false);
    bool FailDb();
    QString SpecSelectList() const;
    bool WriteSpec(const QString& sql, const QString& table, const QString& code,
                   const ModDB::ModSpecData& record, bool& changed);
    static void BindLevel(StoreStatement& statement, const IndexLevel& level);
    bool FindIndexRows(const IndexLevel& level, bool& exists);
    bool IndexNameTaken(const IndexLevel& level, const QString& newName, bool& taken);
    bool InsertIndexRow(StoreDb& db, const IndexLevel& level);
    bool SeekModules(SqliteDb& db, const QString& fragment, int limit,
                     QList<ModDB::ModuleMatch>& matches);
    bool CollectMatches(StoreStatement& statement, const QString& fragment, int limit,
                        QList<ModDB::ModuleMatch>& matches);
    bool MakeLockTable(StoreDb& db);
    bool WriteLockRow(StoreDb& db, const QString& table, const QString& key);
    bool ReadLockRow(StoreDb& db, const QString& table, const QString& key, bool& found,
                     ModDB::ModuleLock& holder, QString& machine, qint64& process, QString& owner);
    bool LockInFile(StoreDb& db, const QString& table, const QString& key, bool& granted,
                    ModDB::ModuleLock& holder);
    bool LockOnServer(StoreDb& db, const QString& table, const QString& key, bool& granted,
                      ModDB::ModuleLock& holder);
    // Frees every lock of this connection before it closes.
    void ReleaseLocks();

    std::unique_ptr<StoreDb> m_db;
    // The same connection when the store is a file, for what only a file has.
    SqliteDb* m_file = nullptr;
    // The file's path or the server's connection text.
    QString m_location;
    QString m_connection;
    int m_schemaVersion = 0;
    bool m_released = false;
    // Whether this connection's first write chose the file's journal.
    bool m_logChosen = false;
    bool m_lockFailure = false;
    QHash<QString, QString> m_prompts;
    bool m_promptsLoaded = false;
    // The mark of this object's lock rows, and the modules it holds ("table/key").
    QString m_lockOwner;
    QSet<QString> m_locks;
};
