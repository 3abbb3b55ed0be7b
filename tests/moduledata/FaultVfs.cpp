#include "FaultVfs.h"

#include <sqlite3.h>

#include <atomic>

namespace {

struct FaultFile {
    sqlite3_file base;
    sqlite3_file* real;
};

sqlite3_vfs* g_real = nullptr;
sqlite3_vfs g_vfs;
std::atomic<bool> g_full{false};
std::atomic<qint64> g_slept{0};

sqlite3_file* Real(sqlite3_file* file) {
    return reinterpret_cast<FaultFile*>(file)->real;
}

// Each method passes the call on to the real file.
template <auto Member, typename... Args>
int Pass(sqlite3_file* file, Args... args) {
    sqlite3_file* real = Real(file);
    return (real->pMethods->*Member)(real, args...);
}

int Write(sqlite3_file* file, const void* data, int amount, sqlite3_int64 offset) {
    return g_full ? SQLITE_FULL : Pass<&sqlite3_io_methods::xWrite>(file, data, amount, offset);
}

void ShmBarrier(sqlite3_file* file) {
    Real(file)->pMethods->xShmBarrier(Real(file));
}

const sqlite3_io_methods kMethods = {
    3,
    &Pass<&sqlite3_io_methods::xClose>,
    &Pass<&sqlite3_io_methods::xRead, void*, int, sqlite3_int64>,
    &Write,
    &Pass<&sqlite3_io_methods::xTruncate, sqlite3_int64>,
    &Pass<&sqlite3_io_methods::xSync, int>,
    &Pass<&sqlite3_io_methods::xFileSize, sqlite3_int64*>,
    &Pass<&sqlite3_io_methods::xLock, int>,
    &Pass<&sqlite3_io_methods::xUnlock, int>,
    &Pass<&sqlite3_io_methods::xCheckReservedLock, int*>,
    &Pass<&sqlite3_io_methods::xFileControl, int, void*>,
    &Pass<&sqlite3_io_methods::xSectorSize>,
    &Pass<&sqlite3_io_methods::xDeviceCharacteristics>,
    &Pass<&sqlite3_io_methods::xShmMap, int, int, int, void volatile**>,
    &Pass<&sqlite3_io_methods::xShmLock, int, int, int>,
    &ShmBarrier,
    &Pass<&sqlite3_io_methods::xShmUnmap, int>,
    &Pass<&sqlite3_io_methods::xFetch, sqlite3_int64, int, void**>,
    &Pass<&sqlite3_io_methods::xUnfetch, sqlite3_int64, void*>,
};

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    auto* fault = reinterpret_cast<FaultFile*>(file);
    fault->real = reinterpret_cast<sqlite3_file*>(fault + 1);
    const int result = g_real->xOpen(g_real, name, fault->real, flags, outFlags);
    fault->base.pMethods = fault->real->pMethods ? &kMethods : nullptr;
    return result;
}

// The calls of the file system that need no change go to the real one.
template <auto Member, typename... Args>
auto PassVfs(sqlite3_vfs*, Args... args) {
    return (g_real->*Member)(g_real, args...);
}

int Sleep(sqlite3_vfs*, int microseconds) {
    g_slept += microseconds;
    return microseconds;
}

}  // namespace

FaultVfs::FaultVfs() {
    g_real = sqlite3_vfs_find(nullptr);
    g_vfs = sqlite3_vfs{};
    g_vfs.iVersion = 2;
    g_vfs.szOsFile = int(sizeof(FaultFile)) + g_real->szOsFile;
    g_vfs.mxPathname = g_real->mxPathname;
    g_vfs.zName = "plcdb-fault";
    g_vfs.xOpen = &Open;
    g_vfs.xDelete = &PassVfs<&sqlite3_vfs::xDelete, const char*, int>;
    g_vfs.xAccess = &PassVfs<&sqlite3_vfs::xAccess, const char*, int, int*>;
    g_vfs.xFullPathname = &PassVfs<&sqlite3_vfs::xFullPathname, const char*, int, char*>;
    g_vfs.xDlOpen = &PassVfs<&sqlite3_vfs::xDlOpen, const char*>;
    g_vfs.xDlError = &PassVfs<&sqlite3_vfs::xDlError, int, char*>;
    g_vfs.xDlSym = &PassVfs<&sqlite3_vfs::xDlSym, void*, const char*>;
    g_vfs.xDlClose = &PassVfs<&sqlite3_vfs::xDlClose, void*>;
    g_vfs.xRandomness = &PassVfs<&sqlite3_vfs::xRandomness, int, char*>;
    g_vfs.xSleep = &Sleep;
    g_vfs.xCurrentTime = &PassVfs<&sqlite3_vfs::xCurrentTime, double*>;
    g_vfs.xGetLastError = &PassVfs<&sqlite3_vfs::xGetLastError, int, char*>;
    g_vfs.xCurrentTimeInt64 = &PassVfs<&sqlite3_vfs::xCurrentTimeInt64, sqlite3_int64*>;
    g_full = false;
    g_slept = 0;
    sqlite3_vfs_register(&g_vfs, 1);
}

FaultVfs::~FaultVfs() {
    sqlite3_vfs_unregister(&g_vfs);
}

void FaultVfs::setDiskFull(bool full) {
    g_full = full;
}

qint64 FaultVfs::sleptMicroseconds() const {
    return g_slept;
}
