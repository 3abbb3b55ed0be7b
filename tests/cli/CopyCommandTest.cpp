#include "PlcdbProcess.h"
#include "SqliteDb.h"
#include "TestServer.h"
#include "TestSupport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QUrl>
#include <QUrlQuery>

#include <gtest/gtest.h>

namespace {

const QString kSample = BuildPath(QStringLiteral("sample/ZEL_PLC.MDB"));
const QStringList kSelectNv1408 = {"select",       "--manufacturer", "Norvale Controls",
                                   "--series",     "NV-100",         "--type",
                                   "Analog Input", "--catalog",      "NV-1408"};

const QByteArray kOneModule = R"({"format":"plcdb","version":1,
    "modules":[{"manufacturer":"M","series":"S","type":"T","spec":{"Code":"C1"}}]})";

QJsonObject Export(const QString& database) {
    const PlcdbRun run = RunPlcdb({"--db", database, "export"});
    EXPECT_EQ(run.status, 0) << qPrintable(run.err);
    return QJsonDocument::fromJson(run.out.toUtf8()).object();
}

PlcdbRun Copy(const QString& from, const QString& to) {
    return RunPlcdb({"copy", "--from", from, "--to", to});
}

// A new file in dir and, where the test server runs, a new server database.
QStringList NewStores(const QTemporaryDir& dir) {
    return QStringList{dir.filePath("new.mdb")} + (TestServer::Available(nullptr)
                                                       ? QStringList{TestServer::NewDatabase()}
                                                       : QStringList{});
}

// New stores, each made by init and holding one module that the sample lacks.
QStringList CatalogsWithOneModule(const QTemporaryDir& dir) {
    const QStringList stores = NewStores(dir);
    for (const QString& store : stores) {
        EXPECT_EQ(RunPlcdb({"init", store}).status, 0);
        EXPECT_EQ(RunPlcdb({"--db", store, "import", "-"}, kOneModule).status, 0);
    }
    return stores;
}

}  // namespace

TEST(CopyCommand, TheSampleCopiedToAServerAndBackExportsTheSameDocument) {
    PLCDB_NEED_TEST_SERVER();
    const QString server = TestServer::NewDatabase();
    QTemporaryDir dir;
    const PlcdbRun there = Copy(kSample, server);
    ASSERT_EQ(there.status, 0) << qPrintable(there.err);
    const QJsonObject sample = Export(kSample);
    EXPECT_TRUE(there.out.startsWith(
        QStringLiteral("copied %1 modules").arg(sample["modules"].toArray().size())))
        << qPrintable(there.out);
    const PlcdbRun home = Copy(server, dir.filePath("back.mdb"));
    ASSERT_EQ(home.status, 0) << qPrintable(home.err);
    EXPECT_EQ(Export(dir.filePath("back.mdb")), sample);
}

TEST(CopyCommand, ADestinationThatHoldsACatalogIsRefusedAndLeftAsItWas) {
    QTemporaryDir dir;
    for (const QString& store : CatalogsWithOneModule(dir)) {
        const QJsonObject before = Export(store);
        const PlcdbRun run = Copy(kSample, store);
        EXPECT_EQ(run.status, 1) << qPrintable(store);
        EXPECT_TRUE(run.err.contains("the destination " + store) &&
                    run.err.contains("holds a catalog (1 module, 3 index rows)"))
            << qPrintable(run.err);
        EXPECT_EQ(Export(store), before) << qPrintable(store);
    }
}

TEST(CopyCommand, ACopyThatFailsHalfwayLeavesNoNewCatalogBehind) {
    // A prompt without a name is refused by the destination after all modules were written.
    QTemporaryDir dir;
    const QString source = dir.filePath("damaged.mdb");
    ASSERT_TRUE(QFile::copy(kSample, source));
    SqliteDb damage;
    ASSERT_TRUE(damage.open(source, SqliteOpenMode::ReadWrite) &&
                damage.exec("INSERT INTO plc_prompt (prompt, localized) VALUES ('', 'x')"));
    damage.close();
    for (const QString& target : NewStores(dir)) {
        const PlcdbRun run = Copy(source, target);
        EXPECT_EQ(run.status, 1) << qPrintable(target);
        EXPECT_TRUE(run.err.contains("has no prompt; nothing was copied")) << qPrintable(run.err);
        // The server database is again without a catalog, so init can make one.
        EXPECT_FALSE(QFile::exists(target));
        EXPECT_EQ(RunPlcdb({"init", target}).status, 0) << qPrintable(target);
    }
}

TEST(CopyCommand, ServerCommandsAnswerAsOnTheFileHoweverNamedAndNeverPrintThePassword) {
    PLCDB_NEED_TEST_SERVER();
    const QString server = TestServer::NewDatabase();
    ASSERT_EQ(Copy(kSample, server).status, 0);
    const QString secret = QStringLiteral("s3cret-pw");
    const QString inQuery = server + "&password=" + secret;
    const QString inUserInfo =
        QString(server).replace("postgresql://", "postgresql://plcdb:" + secret + "@");
    const QString missing =
        "postgresql:///missing?" + server.section(u'?', 1) + "&password=" + secret;
    // Regression: a key=value text without a "/" was refused as a path without a folder.
    qputenv("PGHOST", QUrlQuery(QUrl(server)).queryItemValue("host").toUtf8());
    const QString keyValue =
        QStringLiteral("dbname=%1 user=plcdb password=%2").arg(QUrl(server).path().mid(1), secret);
    // The file's report, naming the server as messages show it.
    const QString fileCheck =
        RunPlcdb({"--db", kSample, "check"}).out.replace(kSample, server + "&password=***");
    const QString fileSelect = RunPlcdb(QStringList{"--db", kSample} + kSelectNv1408).out;
    QTemporaryDir dir;
    const struct {
        QStringList args;
        int status;
        QString out;  // the start of standard output
    } cases[] = {
        {{"--db", inQuery, "check"}, 0, fileCheck},
        {QStringList{"--db", inUserInfo} + kSelectNv1408, 0, fileSelect},
        {QStringList{"--db", keyValue} + kSelectNv1408, 0, fileSelect},
        {{"copy", "--from", inQuery, "--to", dir.filePath("a.mdb")}, 0, "copied "},
        {{"copy", "--from", kSample, "--to", inUserInfo}, 1, ""},
        {{"--db", missing, "list"}, 1, ""},
    };
    for (const auto& c : cases) {
        const PlcdbRun run = RunPlcdb(c.args);
        EXPECT_EQ(run.status, c.status) << qPrintable(c.args.join(u' ')) << qPrintable(run.err);
        EXPECT_EQ(run.out.left(c.out.size()), c.out);
        EXPECT_FALSE((run.out + run.err).contains(secret)) << qPrintable(run.out + run.err);
    }
    qunsetenv("PGHOST");
    // The host's settings file and its environment name the server as --db does.
    QFile ini(dir.filePath("host.ini"));
    ASSERT_TRUE(ini.open(QIODevice::WriteOnly));
    ini.write(("[host]\ndatabase=" + server + "\n").toUtf8());
    ini.close();
    const PlcdbRun fromSettings =
        RunPlcdb(QStringList{"--host-config", ini.fileName()} + kSelectNv1408);
    qputenv("PLCDB_DB", server.toUtf8());
    const PlcdbRun fromEnvironment = RunPlcdb(kSelectNv1408);
    qunsetenv("PLCDB_DB");
    for (const PlcdbRun& run : {fromSettings, fromEnvironment}) {
        EXPECT_EQ(run.status, 0) << qPrintable(run.err);
        EXPECT_EQ(run.out, fileSelect);
    }
}
