#include "HostServices.h"

#include "ZelUtils.h"

namespace {
HostServices* g_host = nullptr;
}

HostServices* CurrentHost() {
    return g_host;
}
void SetCurrentHost(HostServices* host) {
    g_host = host;
}

int HostDefun(const QString& name, int code) {
    return g_host ? g_host->defun(name, code) : kHostErrorResult;
}

int HostRegFunc(HostFunction function, int code) {
    return g_host ? g_host->regFunc(function, code) : kHostErrorResult;
}

int HostGetFunCode() {
    return g_host ? g_host->funCode() : -1;
}

HostValue HostGetArgs() {
    return g_host ? g_host->args() : HostValue();
}

int HostRetList(const HostValue& chain) {
    return g_host ? g_host->retList(chain) : kHostErrorResult;
}

int HostRetNil() {
    return g_host ? g_host->retNil() : kHostErrorResult;
}

int HostRetVoid() {
    return g_host ? g_host->retVoid() : kHostErrorResult;
}

int HostInvoke(const HostValue& call, HostValue* result) {
    return g_host ? g_host->invoke(call, result) : kHostErrorResult;
}

int HostFindFile(const QString& name, QString& found) {
    return g_host ? g_host->findFile(name, found) : kHostErrorResult;
}

int HostGetFileD(const QString& title, const QString& defaultPath, const QString& ext, int flags,
                 HostValue& result) {
    return g_host ? g_host->getFileD(title, defaultPath, ext, flags, result) : kHostErrorResult;
}

int HostGetFileNavDialog(const QString& title, const QString& defaultName, const QString& filter,
                         int flags, QString& chosen) {
    return g_host ? g_host->getFileNavDialog(title, defaultName, filter, flags, chosen)
                  : kHostErrorResult;
}

void HostHelp(const QString& file, const QString& topic, int command) {
    if (g_host) {
        g_host->help(file, topic, command);
    }
}

QString HostRealToString(double value, int mode, int precision) {
    if (!g_host) {
        return QString::number(value, 'f', precision < 0 ? 4 : precision);
    }
    return g_host->realToString(value, mode, precision);
}

HostScale HostHiDpi() {
    return g_host ? g_host->hiDpi() : HostScale();
}

int HostSendCommand(const QString& text, bool activate, bool wrapUpInactive, bool echo) {
    return g_host ? g_host->sendCommand(text, activate, wrapUpInactive, echo) : kHostErrorResult;
}

QString HostProgramDir() {
    const QString folder = g_host ? g_host->programDir() : QString();
    return folder.isEmpty() ? GenerateProgramDir() : folder;
}
