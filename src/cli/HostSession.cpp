#include "HostSession.h"

#include "CliOptions.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

StandaloneHostConfig HostSession::DefaultConfig() {
    StandaloneHostConfig config;
    // The current folder first, then the sample data that the build puts beside plcdb.
    config.supportPath << QDir::currentPath();
    const QString sample = QDir(QCoreApplication::applicationDirPath()).filePath("sample");
    if (QDir(sample).exists()) {
        config.supportPath << QDir::toNativeSeparators(sample);
    }
    // The sample's terminal block drawings, unless the user names block folders.
    const QString blocks = QDir(sample).filePath(QStringLiteral("blocks"));
    if (QDir(blocks).exists()) {
        config.kvLib = QDir::toNativeSeparators(blocks);
    }
    return config;
}

bool HostSession::configure(const CliOptions& options, StandaloneHostConfig& config,
                            QString* error) {
    QString file = options.hostConfig;
    if (file.isEmpty()) {
        file = qEnvironmentVariable("PLCDB_HOST_CONFIG");
    }
    if (file.isEmpty()) {
        file = QDir(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
                   .filePath(QStringLiteral("plcdb/host.ini"));
    } else if (!QFileInfo::exists(file)) {
        if (error) {
            *error = QStringLiteral("the host settings file %1 does not exist").arg(file);
        }
        return false;
    }
    if (!config.load(file, error)) {
        return false;
    }
    config.applyEnvironment();
    if (!options.supportPath.isEmpty()) {
        config.supportPath = StandaloneHostConfig::SplitPathList(options.supportPath);
    }
    if (!options.kvLib.isEmpty()) {
        config.kvLib = options.kvLib;
    }
    if (!options.docSetBase.isEmpty()) {
        config.docSetBase = options.docSetBase;
    }
    if (!options.precision.isEmpty()) {
        bool ok = false;
        const int precision = options.precision.toInt(&ok);
        if (!ok || precision < 0 || precision > 8) {
            if (error) {
                *error = QStringLiteral("--precision takes a whole number from 0 to 8");
            }
            return false;
        }
        config.linearPrecision = precision;
    }
    config.fileAnswer = CliOptions::FullPath(options.fileAnswer);
    if (!options.database.isEmpty()) {
        config.databaseFile = CliOptions::FullPath(options.database);
    }
    return true;
}

bool HostSession::startHost(const CliOptions& options, QString* error) {
    StandaloneHostConfig config = DefaultConfig();
    if (!configure(options, config, error)) {
        return false;
    }
    m_host = std::make_unique<StandaloneHost>(config);
    m_host->openDocument();
    SetCurrentHost(m_host.get());
    return true;
}

bool HostSession::start(const CliOptions& options, QString* error) {
    if (!startHost(options, error)) {
        return false;
    }
    const QString plugin = options.plugin.isEmpty()
                               ? QDir(QCoreApplication::applicationDirPath()).filePath("zel_mb")
                               : CliOptions::FullPath(options.plugin);
    m_plugin = std::make_unique<PluginLoader>(*m_host);
    return m_plugin->load(plugin, error);
}
