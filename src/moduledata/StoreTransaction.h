#pragma once

class StoreDb;

// Begins a transaction on construction and rolls it back on destruction unless it was
// committed. Inside another transaction it becomes a part of that one.
class StoreTransaction {
public:
    explicit StoreTransaction(StoreDb& db);
    ~StoreTransaction();
    StoreTransaction(const StoreTransaction&) = delete;
    StoreTransaction& operator=(const StoreTransaction&) = delete;

    // False when the transaction could not begin; nothing should be written then.
    bool isActive() const { return m_active; }
    bool commit();

private:
    StoreDb& m_db;
    bool m_active = false;
};
