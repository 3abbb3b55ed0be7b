#pragma once

#include <QtGlobal>

// SQLite's file system for the connections a test opens, over the real one: it can
// refuse every write as a full disk would, and it counts the time that SQLite asks to
// sleep while it waits for a lock, without sleeping. One at a time; every connection
// opened while it lives must be closed before it ends.
class FaultVfs {
public:
    FaultVfs();
    ~FaultVfs();
    FaultVfs(const FaultVfs&) = delete;
    FaultVfs& operator=(const FaultVfs&) = delete;

    void setDiskFull(bool full);
    qint64 sleptMicroseconds() const;
};
