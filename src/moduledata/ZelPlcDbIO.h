#pragma once

// The one process-wide store object through which every module store reaches the
// database file. It holds no connection yet: the SQLite store comes with the module data.
class ZelPlcDbIO {
public:
    ZelPlcDbIO() = default;
    virtual ~ZelPlcDbIO() = default;
    ZelPlcDbIO(const ZelPlcDbIO&) = delete;
    ZelPlcDbIO& operator=(const ZelPlcDbIO&) = delete;

    // The object made at init-application; null before and after the application's life.
    static ZelPlcDbIO* Instance();
    static void SetInstance(ZelPlcDbIO* store);
};
