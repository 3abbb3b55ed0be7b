#pragma once

#include "PluginLoader.h"
#include "StandaloneHost.h"

#include <memory>

struct CliOptions;

// The standalone host with the plug-in loaded and a document open, configured from
// the settings file, the environment and the command line, in rising precedence.
class HostSession {
public:
    // The host alone, made current, with a document open. False and a reason when the
    // settings cannot be read.
    bool startHost(const CliOptions& options, QString* error);
    // The host and the plug-in. False and a reason when the plug-in cannot start.
    bool start(const CliOptions& options, QString* error);
    StandaloneHost& host() { return *m_host; }

    static StandaloneHostConfig DefaultConfig();

private:
    bool configure(const CliOptions& options, StandaloneHostConfig& config, QString* error);

    std::unique_ptr<StandaloneHost> m_host;
    std::unique_ptr<PluginLoader> m_plugin;
};
