#include "SqliteTransaction.h"

#include "SqliteDb.h"

SqliteTransaction::SqliteTransaction(SqliteDb& db) : m_db(db), m_active(db.beginTransaction()) {}

SqliteTransaction::~SqliteTransaction() {
    if (m_active) {
        m_db.rollbackTransaction();
    }
}

bool SqliteTransaction::commit() {
    if (!m_active) {
        return false;
    }
    m_active = false;
    return m_db.commitTransaction();
}
