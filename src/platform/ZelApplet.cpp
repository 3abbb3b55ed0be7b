#include "ZelApplet.h"

int ZelApplet::invokeExternalFunction(int code) {
    const HostFunction function = m_functions.value(code, nullptr);
    return function ? function() : 0;
}
