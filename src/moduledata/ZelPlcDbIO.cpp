#include "ZelPlcDbIO.h"

namespace {
ZelPlcDbIO* g_store = nullptr;
}

ZelPlcDbIO* ZelPlcDbIO::Instance() {
    return g_store;
}

void ZelPlcDbIO::SetInstance(ZelPlcDbIO* store) {
    g_store = store;
}
