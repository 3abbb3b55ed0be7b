#include "CMBApplet.h"

#include "CommandDispatcher.h"
#include "HostBridge.h"
#include "HostServices.h"
#include "Messages.h"
#include "ZelPlcDbIO.h"

#include <new>

const CMBApplet::ExternalName CMBApplet::kExternalNames[5] = {
    {"zel_mbsel", kCodeSelectModule}, {"c:zel_plcedit", kCodeEditor}, {"c:ZLPLCDB", kCodeEditorDb},
    {"c:ZLPLCMIGRATE", kCodeMigrate}, {"zel_delay", kCodeDelay},
};

const char* const CMBApplet::kLispFunctions[6] = {
    "kv_fio_does_block_exist_disk",
    "kv_fio_block_path_failed_msg",
    "kv_fio_does_file_exist",
    "kv_fio_does_file_exist_error",
    "kv_plca_plc_xtr",
    "zel_get_var",
};

namespace {

ZelPlcDbIO* MakeStore() {
    return new (std::nothrow) ZelPlcDbIO;
}

CMBApplet::StoreFactory g_makeStore = &MakeStore;

}  // namespace

void CMBApplet::SetStoreFactory(StoreFactory factory) {
    g_makeStore = factory ? factory : &MakeStore;
}

int CMBApplet::initApplication() {
    const int result = ZelApplet::initApplication();
    if (ZelPlcDbIO::Instance()) {
        return result;
    }
    ZelPlcDbIO* store = g_makeStore();
    if (!store) {
        Messages::Show(10111);
        return kStartFailed;
    }
    ZelPlcDbIO::SetInstance(store);
    return result;
}

int CMBApplet::unloadApplication() {
    const int result = ZelApplet::unloadApplication();
    delete ZelPlcDbIO::Instance();
    ZelPlcDbIO::SetInstance(nullptr);
    return result;
}

int CMBApplet::loadDocument() {
    ZelApplet::loadDocument();
    for (const ExternalName& external : kExternalNames) {
        // A name the host refuses stays without a handler; the others go on.
        if (HostDefun(QString::fromLatin1(external.name), external.code) == kHostOk) {
            HostRegFunc(&CommandDispatcher::Dispatch, external.code);
        }
    }
    for (const char* name : kLispFunctions) {
        DeclareLispFunction(QString::fromLatin1(name));
    }
    return 0;
}
