#include "CKVModuleDB.h"
#include "PlcdbProcess.h"
#include "SqliteDb.h"
#include "TestSupport.h"
#include "ZelDbMigrate.h"
#include "ZelPlcDbIO.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

namespace {

const QStringList kNames = {"--manufacturer", "Maker", "--series", "S", "--type", "T"};

bool WriteFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray ReadBytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QJsonObject ParseObject(const QString& text) {
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(text.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << qPrintable(text);
    return json.object();
}

QString NewDatabase(const QTemporaryDir& dir, const QString& name) {
    const QString path = dir.filePath(name);
    EXPECT_EQ(RunPlcdb({"init", path}).status, 0);
    return path;
}

PlcdbRun New(const QString& database, const QStringList& args) {
    return RunPlcdb(QStringList{"--db", database, "new"} + args);
}

// A version 1 file that already has the type Maker / S / T.
bool MakeVersion1Type(const QString& path) {
    if (!CreateVersion1Database(path)) {
        return false;
    }
    ZelPlcDbIO store;
    ZelPlcDbIO::SetInstance(&store);
    CKVModuleDB db;
    const bool added = db.Open(path) && db.AddIndex("Maker", "S", "T");
    db.Close();
    ZelPlcDbIO::SetInstance(nullptr);
    return added;
}

TEST(NewCommand, TakesTheDefaultsOfItsProgramFolderAndPrintsWhatExportThenShows) {
    QTemporaryDir dir;
    const QString database = NewDatabase(dir, "new.mdb");
    ASSERT_TRUE(QDir(dir.path()).mkdir("program"));
    const QString program = dir.filePath("program");
    // Data lines: address base, column text 2, info number, 3 terminals, 12 reserved,
    // spec note and tail.
    ASSERT_TRUE(WriteFile(program + "/KVDEFINF.DAT", "Defaults\n;Octal\n;24V DC\n;0\n;3\n" +
                                                         QByteArray(";\n").repeated(12) +
                                                         ";note.sht\n;tail.sht\n"));
    ASSERT_TRUE(WriteFile(program + "/KVDEFPMT.DAT", "RACK\nSLOT\n"));
    const QString settings = dir.filePath("host.ini");
    ASSERT_TRUE(WriteFile(settings, "[host]\nprogram_dir=" + program.toUtf8() + "\n"));

    const PlcdbRun run =
        RunPlcdb(QStringList{"--host-config", settings, "--db", database, "new"} + kNames +
                 QStringList{"--catalog", "C1", "--description", "Eight in", "--direction", "both",
                             "--box", "B2=1.5 in", "--box", "a1=.5mm"});
    ASSERT_EQ(run.status, 0) << qPrintable(run.err);
    const QJsonObject module = ParseObject(run.out);
    const QJsonObject spec = module["spec"].toObject();
    EXPECT_EQ(spec, QJsonObject({{"Code", "C1"},
                                 {"Description", "Eight in"},
                                 {"ColText2", "24V DC"},
                                 {"SpecNote", "note.sht"},
                                 {"SpecTail", "tail.sht"},
                                 {"DirFlags", "3"},
                                 {"BoxA1", "0.500000 mm"},
                                 {"BoxB2", "1.500000 in"}}));
    const QJsonArray rows = module["terminals"].toArray();
    ASSERT_EQ(rows.size(), 3);
    EXPECT_TRUE(rows[0]["special"].toString().contains(
        "%%1PROMPT=RACK;%%2PROMPT=SLOT;TERM_=1;MFG=Maker;CAT=C1;DESC=Eight in;"));
    EXPECT_EQ(rows[2]["special"].toString(), "TERM_=3");

    const PlcdbRun exported = RunPlcdb({"--db", database, "export"});
    ASSERT_EQ(exported.status, 0);
    EXPECT_EQ(ParseObject(exported.out)["modules"].toArray(), QJsonArray{module});
}

struct Refusal {
    const char* what;
    std::function<bool(const QString&)> make;
    const char* catalog;
    const char* error;
    const char* infoDefaults = nullptr;  // KVDEFINF.DAT of the program folder, when given
};

TEST(NewCommand, RefusesWithStatusOneAndLeavesTheFileAsItWas) {
    QTemporaryDir dir;
    const auto withC1 = [](const QString& p) {
        return RunPlcdb({"init", p}).status == 0 &&
               New(p, kNames + QStringList{"--catalog", "C1"}).status == 0;
    };
    const Refusal cases[] = {
        {"an existing catalog", withC1, "c1",
         "plcdb new: The catalog number \"c1\" already exists in this type.\n"},
        {"a newer file",
         [&](const QString& p) {
             SqliteDb db;
             return withC1(p) && db.open(p, SqliteOpenMode::ReadWrite) &&
                    db.exec("PRAGMA user_version = 99");
         },
         "C2", "plcdb new: cannot write to the database FILE: made by a newer plcdb\n"},
        {"an old file", MakeVersion1Type, "C2", "c:ZLPLCMIGRATE"},
        // A default count that the dialog's range check refuses made 99999 rows here.
        {"a default count past the limit", withC1, "C2", "asks for 99999 terminals",
         "\n;\n;\n;\n;99999\n"},
    };
    int number = 0;
    for (const Refusal& c : cases) {
        SCOPED_TRACE(c.what);
        const QString path = dir.filePath(QString::number(++number) + ".mdb");
        ASSERT_TRUE(c.make(path));
        const QByteArray before = ReadBytes(path);
        if (c.infoDefaults) {
            ASSERT_TRUE(WriteFile(dir.filePath("KVDEFINF.DAT"), c.infoDefaults));
            qputenv("PLCDB_PROGRAM_DIR", dir.path().toUtf8());
        }
        const PlcdbRun run = New(path, kNames + QStringList{"--catalog", c.catalog});
        qunsetenv("PLCDB_PROGRAM_DIR");
        EXPECT_EQ(run.status, 1);
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(c.error).replace("FILE", path)))
            << qPrintable(run.err);
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_EQ(ReadBytes(path), before);
    }
}

TEST(NewCommand, AWrongCallEndsWithStatusTwoBeforeTheDatabaseIsTouched) {
    QTemporaryDir dir;
    const QString database = NewDatabase(dir, "calls.mdb");
    const QByteArray before = ReadBytes(database);
    const struct {
        QStringList args;
        const char* error;
    } cases[] = {
        {{"--catalog", "  "}, "give --catalog"},
        {{"--catalog", "C", "--terminals", "0"}, "--terminals takes a whole number"},
        {{"--catalog", "C", "--series", QString(25, u's')}, "--series takes at most 24"},
        {{"--catalog", "C", "--direction", "up"}, "--direction takes"},
        {{"--catalog", "C", "--box", "C1=2"}, "--box takes NAME=VALUE"},
        {{"--catalog", "C", "--box", "A1=-2"}, "not a valid number"},
        {{"--catalog", "C", "--box", "B5=3"}, "--box group B: The values of dimensions"},
        {{"--catalog", "C", "--box", "A1=1", "--box", "A6=mm"}, "--box A6: A unit is given"},
    };
    for (const auto& c : cases) {
        const PlcdbRun run = New(database, kNames + c.args);
        EXPECT_EQ(run.status, 2) << qPrintable(c.args.join(u' '));
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(c.error))) << qPrintable(run.err);
    }
    EXPECT_EQ(ReadBytes(database), before);
}

}  // namespace
