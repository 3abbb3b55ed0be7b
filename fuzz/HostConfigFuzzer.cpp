// The host's settings file on any bytes: a file that exists and can be read always
// loads and the precision stays in its range.

#include "FuzzSupport.h"
#include "StandaloneHostConfig.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString path = FuzzPath(QStringLiteral("host.ini"));
    FuzzWriteFile(path, FuzzBytes(data, size));
    StandaloneHostConfig config;
    QString error;
    FuzzCheck(config.load(path, &error), "a readable settings file loads", error);
    FuzzCheck(config.linearPrecision >= 0 && config.linearPrecision <= 8,
              "the precision stays from 0 to 8");
    for (const QString& name : config.variables.keys()) {
        config.variable(name);
    }
    config.variable(QStringLiteral("GBL_kv_lib"));
    StandaloneHostConfig::SplitPathList(config.kvLib);
    return 0;
}
