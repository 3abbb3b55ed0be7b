#include "HostBridge.h"
#include "HostServices.h"
#include "LispText.h"
#include "StandaloneHost.h"
#include "TestSupport.h"
#include "ZelUtils.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

TEST(StandaloneHostConfig, SettingsFileThenEnvironment) {
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("host.ini"));
    QFile ini(file);
    ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
    ini.write(
        "[host]\n"
        "support_path=\"/data/plc; /data/common\"\n"
        "kv_lib=\"/blocks;/more\"\n"
        "linear_precision=2\n"
        "[variables]\n"
        "my_var=value, with comma\n"
        "[messages]\n"
        "SLOT=Steckplatz\n");
    ini.close();

    StandaloneHostConfig config;
    ASSERT_TRUE(config.load(file));
    EXPECT_EQ(config.supportPath,
              QStringList({NativePath("/data/plc"), NativePath("/data/common")}));
    EXPECT_EQ(config.variable(QStringLiteral("GBL_kv_lib")), QStringLiteral("/blocks;/more"));
    EXPECT_EQ(config.variable(QStringLiteral("MY_VAR")), QStringLiteral("value, with comma"));
    EXPECT_TRUE(config.variable(QStringLiteral("NOTHING")).isNull());
    EXPECT_EQ(config.linearPrecision, 2);
    EXPECT_EQ(config.messages.value(QStringLiteral("SLOT")), QStringLiteral("Steckplatz"));

    qputenv("PLCDB_PRECISION", "6");
    qputenv("PLCDB_KV_LIB", "/env");
    config.applyEnvironment();
    qunsetenv("PLCDB_PRECISION");
    qunsetenv("PLCDB_KV_LIB");
    EXPECT_EQ(config.linearPrecision, 6);
    EXPECT_EQ(config.kvLib, QStringLiteral("/env"));

    StandaloneHostConfig missing;
    EXPECT_TRUE(missing.load(dir.filePath(QStringLiteral("none.ini"))));
    QString error;
    EXPECT_FALSE(missing.load(dir.path(), &error));
    EXPECT_FALSE(error.isEmpty());
}

TEST(StandaloneHost, ExternalCallsAnswerWhatTheFunctionReturns) {
    StandaloneHost host;
    static StandaloneHost* current = nullptr;
    current = &host;
    ASSERT_EQ(host.defun(QStringLiteral("c:Demo"), 7), kHostOk);
    host.regFunc(
        [] {
            HostValue chain;
            chain.string(QStringLiteral("a")).begin().real(1.0).end();
            current->retList(chain);
            return 1;
        },
        7);
    EXPECT_TRUE(host.isExternal(QStringLiteral("C:DEMO")));
    const StandaloneHost::CallResult result = host.callExternal(QStringLiteral("c:demo"), {});
    EXPECT_EQ(result.handled, 1);
    EXPECT_EQ(LispText::Print(result.value), QStringLiteral("(\"a\" (1.0))"));
    EXPECT_FALSE(host.callExternal(QStringLiteral("other"), {}).known);
    EXPECT_EQ(host.defun(QStringLiteral(" "), 8), kHostErrorResult);
}

TEST(StandaloneHost, FileQuestionsTakeTheGivenAnswerElseTheDefault) {
    StandaloneHostConfig config;
    StandaloneHost plain(config);
    HostValue answer;
    EXPECT_EQ(plain.getFileD(QString(), QStringLiteral("/db/ZEL_PLC.MDB"), QString(), 0, answer),
              kHostOk);
    EXPECT_EQ(answer.at(0)->text, NativePath("/db/ZEL_PLC.MDB"));
    EXPECT_EQ(plain.getFileD(QString(), QString(), QString(), 0, answer), kHostCancel);

    config.fileAnswer = QStringLiteral("/other/OLD.MDB");
    StandaloneHost answering(config);
    QString chosen;
    EXPECT_EQ(answering.getFileNavDialog(QString(), QStringLiteral("x"), QString(), 0, chosen),
              kHostOk);
    EXPECT_EQ(chosen, NativePath("/other/OLD.MDB"));
}

TEST(StandaloneHost, AGivenDatabaseAnswersItsLookupAndNoOtherFileStandsInForIt) {
    QTemporaryDir dir;
    for (const char* name : {"ZEL_PLC.MDB", "given.mdb", "kvmbblks.bsf"}) {
        QFile file(dir.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    }
    const auto lookup = [&dir](const QString& databaseFile, const QString& name) {
        StandaloneHostConfig config;
        config.supportPath = {dir.path()};
        config.databaseFile = databaseFile;
        StandaloneHost host(config);
        host.setReporter([](const QString&) {});
        host.openDocument();
        SetCurrentHost(&host);
        DeclareLispFunction(QStringLiteral("kv_fio_does_file_exist"));
        DeclareLispFunction(QStringLiteral("kv_fio_does_file_exist_error"));
        QString found;
        const bool lisp = FindSupportFile(name, found, true);
        QString searched;
        const bool direct = host.findFile(name, searched) == kHostOk;
        SetCurrentHost(nullptr);
        EXPECT_EQ(lisp, direct);
        EXPECT_EQ(found, searched);
        return lisp ? found : QStringLiteral("<none>");
    };
    const QString given = dir.filePath(QStringLiteral("given.mdb"));
    EXPECT_EQ(lookup(QString(), QStringLiteral("ZEL_PLC.MDB")),
              QDir::toNativeSeparators(dir.filePath(QStringLiteral("ZEL_PLC.MDB"))));
    EXPECT_EQ(lookup(given, QStringLiteral("zel_plc.mdb")), QDir::toNativeSeparators(given));
    EXPECT_EQ(lookup(given, QStringLiteral("kvmbblks.bsf")),
              QDir::toNativeSeparators(dir.filePath(QStringLiteral("kvmbblks.bsf"))));
    EXPECT_EQ(lookup(dir.filePath(QStringLiteral("missing.mdb")), QStringLiteral("ZEL_PLC.MDB")),
              QStringLiteral("<none>"));
}
