#pragma once

#include "ZelPlcDbIO.h"

#include <QTemporaryDir>

// The folder of a bench's database files, removed when the bench ends.
inline QTemporaryDir& Folder() {
    static QTemporaryDir folder;
    return folder;
}

// The bench's store, made the process-wide one.
inline ZelPlcDbIO& Store() {
    static ZelPlcDbIO store;
    ZelPlcDbIO::SetInstance(&store);
    return store;
}
