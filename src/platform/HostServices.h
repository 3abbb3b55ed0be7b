#pragma once

#include "HostValue.h"

#include <QString>

// A function the host calls for a registered external name. Answers 1 when the
// call was handled, 0 when not.
using HostFunction = int (*)();

// The monitor's scale per direction.
struct HostScale {
    double x = 1.0;
    double y = 1.0;
};

// What the host drawing application offers a plug-in. The plug-in reaches it through
// the Host... functions below, which fail quietly while no host is set.
class HostServices {
public:
    virtual ~HostServices() = default;

    virtual int defun(const QString& name, int code) = 0;
    virtual int regFunc(HostFunction function, int code) = 0;
    virtual int funCode() const = 0;
    virtual HostValue args() const = 0;
    virtual int retList(const HostValue& chain) = 0;
    virtual int retNil() = 0;
    virtual int retVoid() = 0;

    virtual int invoke(const HostValue& call, HostValue* result) = 0;
    virtual int findFile(const QString& name, QString& found) = 0;
    virtual int getFileD(const QString& title, const QString& defaultPath, const QString& ext,
                         int flags, HostValue& result) = 0;
    virtual int getFileNavDialog(const QString& title, const QString& defaultName,
                                 const QString& filter, int flags, QString& chosen) = 0;
    virtual void help(const QString& file, const QString& topic, int command) = 0;
    virtual QString realToString(double value, int mode, int precision) = 0;
    virtual HostScale hiDpi() const = 0;
    virtual int sendCommand(const QString& text, bool activate, bool wrapUpInactive, bool echo) = 0;
    // The folder the host keeps the program's own files in, when it names one; empty
    // means the folder of the program itself.
    virtual QString programDir() const { return {}; }
};

// The host this module talks to; null until the host hands itself over.
HostServices* CurrentHost();
void SetCurrentHost(HostServices* host);

int HostDefun(const QString& name, int code);
int HostRegFunc(HostFunction function, int code);
int HostGetFunCode();
HostValue HostGetArgs();
int HostRetList(const HostValue& chain);
int HostRetNil();
int HostRetVoid();
int HostInvoke(const HostValue& call, HostValue* result);
int HostFindFile(const QString& name, QString& found);
int HostGetFileD(const QString& title, const QString& defaultPath, const QString& ext, int flags,
                 HostValue& result);
int HostGetFileNavDialog(const QString& title, const QString& defaultName, const QString& filter,
                         int flags, QString& chosen);
void HostHelp(const QString& file, const QString& topic, int command);
QString HostRealToString(double value, int mode, int precision);
HostScale HostHiDpi();
int HostSendCommand(const QString& text, bool activate, bool wrapUpInactive, bool echo);
// The folder of the program's own files: the host's, when it names one, else the folder
// of the program (GenerateProgramDir).
QString HostProgramDir();
