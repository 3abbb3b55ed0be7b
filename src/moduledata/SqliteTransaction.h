#pragma once

class SqliteDb;

// Begins a transaction on construction and rolls it back on destruction unless it was
// committed. Inside another transaction it becomes a part of that one.
class SqliteTransaction {
public:
    explicit SqliteTransaction(SqliteDb& db);
    ~SqliteTransaction();
    SqliteTransaction(const SqliteTransaction&) = delete;
    SqliteTransaction& operator=(const SqliteTransaction&) = delete;

    // False when the transaction could not begin; nothing should be written then.
    bool isActive() const { return m_active; }
    bool commit();

private:
    SqliteDb& m_db;
    bool m_active = false;
};
