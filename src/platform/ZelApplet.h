#pragma once

#include "HostApplet.h"
#include "HostServices.h"

#include <QMap>

// The family's applet base: tables of commands and external functions that it
// answers by code. A plug-in may leave them empty and register its functions itself.
class ZelApplet : public HostApplet {
public:
    int unloadDocument() override { return 0; }
    int invokeExternalFunction(int code) override;

protected:
    QMap<int, HostFunction> m_functions;
};
