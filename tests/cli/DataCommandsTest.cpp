#include "PlcdbProcess.h"
#include "TestSupport.h"
#include "ZelDbMigrate.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QString SampleDatabase() {
    return BuildPath(QStringLiteral("sample/ZEL_PLC.MDB"));
}

QJsonObject Export(const QString& database) {
    const PlcdbRun run = RunPlcdb({QStringLiteral("--db"), database, QStringLiteral("export")});
    EXPECT_EQ(run.status, 0) << qPrintable(run.err);
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(run.out.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << qPrintable(error.errorString());
    return json.object();
}

QString NewDatabase(const QTemporaryDir& dir, const QString& name) {
    const QString path = dir.filePath(name);
    EXPECT_EQ(RunPlcdb({QStringLiteral("init"), path}).status, 0);
    return path;
}

}  // namespace

TEST(DataCommands, SampleExportIsADocumentThatSurvivesARoundTrip) {
    const QJsonObject first = Export(SampleDatabase());
    EXPECT_EQ(first.value("format").toString(), QStringLiteral("plcdb"));
    EXPECT_EQ(first.value("version").toInt(), 1);
    EXPECT_GE(first.value("modules").toArray().size(), 10);
    EXPECT_EQ(first.value("styles").toArray().size(), 9);

    QTemporaryDir dir;
    const QString document = dir.filePath(QStringLiteral("catalog.json"));
    ASSERT_EQ(
        RunPlcdb({QStringLiteral("--db"), SampleDatabase(), QStringLiteral("export"), document})
            .status,
        0);
    const QString copy = NewDatabase(dir, QStringLiteral("copy.db"));
    const PlcdbRun import =
        RunPlcdb({QStringLiteral("--db"), copy, QStringLiteral("import"), document});
    ASSERT_EQ(import.status, 0) << qPrintable(import.err);
    EXPECT_EQ(Export(copy), first);
}

TEST(DataCommands, ADuplicateCatalogWritesNothing) {
    QTemporaryDir dir;
    const QString database = NewDatabase(dir, QStringLiteral("dup.db"));
    const QByteArray one = R"({"format":"plcdb","version":1,"modules":[
        {"manufacturer":"M","series":"S","type":"T","spec":{"Code":"C1"},"terminals":[]}]})";
    ASSERT_EQ(RunPlcdb({"--db", database, "import", "-"}, one).status, 0);
    const QJsonObject before = Export(database);

    // A new manufacturer and prompt first, then a code that exists (in another case).
    const QByteArray clash = R"({"format":"plcdb","version":1,
        "index":[{"manufacturer":"Other","series":"","type":""}],
        "prompts":[{"prompt":"SLOT","localized":"SLOT"}],
        "modules":[{"manufacturer":"M","series":"S","type":"T","spec":{"Code":"c1"}}]})";
    const PlcdbRun run = RunPlcdb({"--db", database, "import", "-"}, clash);
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("c1"))) << qPrintable(run.err);
    EXPECT_EQ(Export(database), before);
}

TEST(DataCommands, ImportRefusesTheReservedField) {
    QTemporaryDir dir;
    const QString database = NewDatabase(dir, QStringLiteral("reserved.db"));
    const QJsonObject before = Export(database);
    const QByteArray reserved = R"({"format":"plcdb","version":1,"modules":[
        {"manufacturer":"M","series":"S","type":"T","spec":{"Code":"C1","Reserved":"x"}}]})";
    const PlcdbRun run = RunPlcdb({"--db", database, "import", "-"}, reserved);
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral(R"(unknown field "Reserved")")))
        << qPrintable(run.err);
    EXPECT_EQ(Export(database), before);
}

TEST(DataCommands, ListShowsTheTreeWithItsCatalogs) {
    const PlcdbRun run = RunPlcdb({"--db", SampleDatabase(), "list"});
    ASSERT_EQ(run.status, 0) << qPrintable(run.err);
    EXPECT_TRUE(run.out.contains(QStringLiteral("Norvale Controls\n  NV-100\n")));
    EXPECT_TRUE(run.out.contains(QStringLiteral("\n      NV-1108\n")));
}

TEST(DataCommands, BadCallsFailClearly) {
    QTemporaryDir dir;
    const QString database = NewDatabase(dir, QStringLiteral("x.db"));
    EXPECT_EQ(RunPlcdb({"init", database}).status, 1);  // exists already
    EXPECT_EQ(RunPlcdb({"--db", dir.filePath("none.db"), "list"}).status, 1);
    EXPECT_EQ(RunPlcdb({"list"}).status, 1);  // no ZEL_PLC.MDB on the search path
    const PlcdbRun notJson = RunPlcdb({"--db", database, "import", "-"}, "{\"format\":");
    EXPECT_EQ(notJson.status, 1);
    EXPECT_TRUE(notJson.err.contains(QStringLiteral("JSON")));
    QFile garbage(dir.filePath("garbage.db"));
    ASSERT_TRUE(garbage.open(QIODevice::WriteOnly));
    garbage.write(QByteArray(4096, '\x5a'));
    garbage.close();
    EXPECT_EQ(RunPlcdb({"--db", garbage.fileName(), "export"}).status, 1);
}

TEST(DataCommands, FileNamesWithoutAFolderAreTakenFromTheCurrentFolder) {
    // Regression: --db new.mdb was refused as a path without a folder (code 3).
    QTemporaryDir dir;
    ASSERT_EQ(RunPlcdb({"--db", SampleDatabase(), "export", dir.filePath("catalog.json")}).status,
              0);
    ASSERT_EQ(RunPlcdbIn(dir.path(), {"init", "new.mdb"}).status, 0);
    const PlcdbRun import = RunPlcdbIn(dir.path(), {"--db", "new.mdb", "import", "catalog.json"});
    EXPECT_EQ(import.status, 0) << qPrintable(import.err);
    EXPECT_EQ(import.err, QString());
    const PlcdbRun list = RunPlcdbIn(dir.path(), {"--db", "new.mdb", "list"});
    EXPECT_TRUE(list.out.startsWith(QStringLiteral("Brightwater Industrial\n  Legacy\n")))
        << qPrintable(list.out);

    // Messages name the file as it was typed.
    const PlcdbRun missing = RunPlcdbIn(dir.path(), {"--db", "none.mdb", "list"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.err, QStringLiteral("plcdb list: the database none.mdb does not exist\n"));
}

// Regression: "[]" was refused with "no error occurred at offset 0" and a missing version
// with "version  of the document".
TEST(DataCommands, ImportSaysWhatIsWrongWithTheDocument) {
    QTemporaryDir dir;
    const QString database = NewDatabase(dir, QStringLiteral("x.db"));
    const QString list = dir.filePath(QStringLiteral("list.json"));
    QFile file(list);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[]");
    file.close();
    const PlcdbRun array = RunPlcdb({"--db", database, "import", list});
    EXPECT_EQ(array.status, 1);
    EXPECT_EQ(array.err, "plcdb import: " + list +
                             ": the document is a JSON list, not the object of a catalog\n");
    const PlcdbRun noVersion = RunPlcdb({"--db", database, "import", "-"}, R"({"format":"plcdb"})");
    EXPECT_EQ(noVersion.status, 1);
    EXPECT_EQ(
        noVersion.err,
        "plcdb import: standard input: the document has no \"version\"; nothing was imported\n");
    const PlcdbRun broken = RunPlcdb({"--db", database, "import", "-"}, "{\"format\":");
    EXPECT_EQ(
        broken.err,
        "plcdb import: standard input is no JSON document: unterminated object at offset 10\n");
}

TEST(DataCommands, MigrationCommandUpgradesTheFileItIsGiven) {
    QTemporaryDir dir;
    const QString old = dir.filePath(QStringLiteral("OLD.MDB"));
    ASSERT_TRUE(CreateVersion1Database(old));
    bool required = false;
    CheckForMigration(old, required, false, QString());
    ASSERT_TRUE(required);

    const PlcdbRun run = RunPlcdb({"--file", old, "call", "(c:ZLPLCMIGRATE)"});
    EXPECT_EQ(run.status, 0) << qPrintable(run.err);
    EXPECT_EQ(run.out, QString());
    required = true;
    CheckForMigration(old, required, false, QString());
    EXPECT_FALSE(required);
    EXPECT_EQ(QDir(dir.path()).entryList({QStringLiteral("OLD.MDB*.bak")}).size(), 1);
}
