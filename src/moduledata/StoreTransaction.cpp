#include "StoreTransaction.h"

#include "StoreDb.h"

StoreTransaction::StoreTransaction(StoreDb& db) : m_db(db), m_active(db.beginTransaction()) {}

StoreTransaction::~StoreTransaction() {
    if (m_active) {
        m_db.rollbackTransaction();
    }
}

bool StoreTransaction::commit() {
    if (!m_active) {
        return false;
    }
    m_active = false;
    return m_db.commitTransaction();
}
