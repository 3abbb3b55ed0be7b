#include "HostApplet.h"

int HostApplet::invokeExternalFunction(int code) {
    Q_UNUSED(code);
    return 0;
}
