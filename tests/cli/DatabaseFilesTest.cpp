#include "CKVModuleDB.h"
#include "PlcdbProcess.h"
#include "SqliteDb.h"
#include "ZelPlcDbIO.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>

#include <functional>

#include <gtest/gtest.h>

namespace {

QString Replace(QString text, const QString& path) {
    return text.replace(QStringLiteral("FILE"), path);
}

bool WriteBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray ReadBytes(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool Exec(const QString& path, const QString& sql) {
    SqliteDb db;
    return db.open(path, SqliteOpenMode::Create) && db.exec(sql);
}

// A database with the module C1 of ACME / S1 / T1 and every connection to it closed.
bool MakeDatabase(const QString& path) {
    if (!ZelPlcDbIO::CreateDatabase(path)) {
        return false;
    }
    ZelPlcDbIO store;
    ZelPlcDbIO::SetInstance(&store);
    CKVModuleDB db;
    const int handle = db.Open(path) ? db.NewModule("ACME", "S1", "T1", "C1") : -1;
    const bool saved = handle > 0 && db.SaveModule(handle);
    ZelPlcDbIO::SetInstance(nullptr);
    return saved;
}

// Overwrites the first page of a table with bytes that no page starts with.
bool DamageTable(const QString& path, const QString& table) {
    int page = 0;
    int pageSize = 0;
    {
        SqliteDb db;
        if (!db.open(path, SqliteOpenMode::ReadWrite)) {
            return false;
        }
        SqliteStatement root = db.prepare("SELECT rootpage FROM sqlite_master WHERE name = ?1");
        SqliteStatement size = db.prepare("PRAGMA page_size");
        if (!root.bind(1, table).next() || !size.next()) {
            return false;
        }
        page = root.toInt(0);
        pageSize = size.toInt(0);
    }
    QFile file(path);
    return page > 1 && file.open(QIODevice::ReadWrite) && file.seek(qint64(page - 1) * pageSize) &&
           file.write(QByteArray(pageSize, '\x5a')) == pageSize;
}

struct BadFile {
    const char* name;
    std::function<bool(const QString&)> make;
    QStringList args;  // behind --db FILE
    const char* error;
};

// Every file that could not be used gave "cannot open the database ... (code 27)", and a
// damaged page read as a missing catalog: the cause was never named.
TEST(DatabaseFiles, EachCommandNamesWhyTheFileCannotBeUsed) {
    QTemporaryDir dir;
    const BadFile cases[] = {
        {"empty.mdb",
         [](const QString& p) { return WriteBytes(p, {}); },
         {"list"},
         "plcdb list: cannot open the database FILE: not a plcdb database (code 27)"},
        {"text.mdb",
         [](const QString& p) { return WriteBytes(p, "ACME;S1;T1\nC1;C2\n"); },
         {"list"},
         "plcdb list: cannot open the database FILE: not a plcdb database (code 27)"},
        {"random.mdb",
         [](const QString& p) {
             QByteArray noise(8192, '\0');
             QRandomGenerator random(7);
             random.fillRange(reinterpret_cast<quint32*>(noise.data()), noise.size() / 4);
             return WriteBytes(p, noise);
         },
         {"export"},
         "plcdb export: cannot open the database FILE: not a plcdb database (code 27)"},
        {"truncated.mdb",
         [](const QString& p) { return MakeDatabase(p) && QFile::resize(p, 4096); },
         {"list"},
         "plcdb list: cannot open the database FILE: the file is damaged: run `sqlite3 FILE "
         "'pragma integrity_check'` (code 27)"},
        {"other.mdb",
         [](const QString& p) { return Exec(p, "CREATE TABLE parts (code TEXT)"); },
         {"list"},
         "plcdb list: cannot open the database FILE: not a plcdb database (code 27)"},
        {"dropped.mdb",
         [](const QString& p) { return MakeDatabase(p) && Exec(p, "DROP TABLE plc_term"); },
         {"list"},
         "plcdb list: cannot open the database FILE: the file is damaged: its table plc_term "
         "is missing (code 27)"},
        {"folder.mdb",
         [&](const QString& p) { return QDir(dir.path()).mkdir(QFileInfo(p).fileName()); },
         {"list"},
         "plcdb list: cannot open the database FILE: a folder, not a database file (code 27)"},
        {"page.mdb",
         [](const QString& p) { return MakeDatabase(p) && DamageTable(p, "plc_spec"); },
         {"list"},
         "plcdb list: cannot read the database FILE: the file is damaged: run `sqlite3 FILE "
         "'pragma integrity_check'`"},
        {"page2.mdb",
         [](const QString& p) { return MakeDatabase(p) && DamageTable(p, "plc_spec"); },
         {"select", "--manufacturer", "ACME", "--series", "S1", "--type", "T1", "--catalog", "C1"},
         "plcdb select: cannot read the database FILE: the file is damaged: run `sqlite3 FILE "
         "'pragma integrity_check'`"},
        {"newer.mdb",
         [](const QString& p) { return MakeDatabase(p) && Exec(p, "PRAGMA user_version = 99"); },
         {"import", "-"},
         "plcdb import: cannot write to the database FILE: made by a newer plcdb"},
    };
    for (const BadFile& c : cases) {
        const QString path = dir.filePath(c.name);
        ASSERT_TRUE(c.make(path)) << c.name;
        const PlcdbRun run =
            RunPlcdb(QStringList{"--db", path} + c.args, R"({"format":"plcdb","version":1})");
        EXPECT_EQ(run.status, 1) << c.name;
        EXPECT_EQ(run.err, Replace(c.error, path) + u'\n') << c.name;
    }
}

// The files of a folder and the bytes of one of them.
struct Snapshot {
    QStringList files;
    QByteArray bytes;
};

Snapshot Take(const QString& path) {
    const QDir folder = QFileInfo(path).dir();
    return {folder.entryList(QDir::Files | QDir::Hidden), ReadBytes(path)};
}

struct ReadCase {
    const char* name;
    std::function<bool(const QString&)> make;
    QStringList args;  // behind --db FILE
    int status;
};

// A read turned a rollback-journal file into WAL, and a refused or write-protected file
// kept an empty log and a shared-memory file beside it.
TEST(DatabaseFiles, ReadingCommandsLeaveTheFileAndItsFolderAsTheyWere) {
    QTemporaryDir dir;
    const auto rollback = [](const QString& p) {
        return MakeDatabase(p) && Exec(p, "PRAGMA journal_mode = DELETE");
    };
    const auto writeProtected = [](const QString& p) {
        return MakeDatabase(p) && QFile::setPermissions(p, QFile::ReadOwner | QFile::ReadGroup);
    };
    const auto newer = [](const QString& p) {
        return MakeDatabase(p) && Exec(p, "PRAGMA journal_mode = DELETE; PRAGMA user_version = 99");
    };
    const auto foreign = [](const QString& p) {
        return Exec(p, "PRAGMA journal_mode = WAL; CREATE TABLE parts (code TEXT)");
    };
    const QStringList select{"select", "--manufacturer", "ACME", "--series", "S1", "--type",
                             "T1",     "--catalog",      "C1"};
    const ReadCase cases[] = {
        {"rollback", rollback, {"list"}, 0},
        {"rollback", rollback, {"export"}, 0},
        {"rollback", rollback, select, 0},
        {"protected", writeProtected, {"list"}, 0},
        {"protected", writeProtected, select, 0},
        {"protected", writeProtected, {"import", "-"}, 1},
        {"newer", newer, {"list"}, 0},
        {"newer", newer, {"import", "-"}, 1},
        {"foreign", foreign, {"list"}, 1},
        {"rollback", rollback, {"check"}, 0},
        {"protected", writeProtected, {"check"}, 0},
        {"newer", newer, {"check"}, 0},
        {"foreign", foreign, {"check"}, 2},
    };
    int number = 0;
    for (const ReadCase& c : cases) {
        const QString folder = dir.filePath(QString::number(++number));
        ASSERT_TRUE(QDir().mkdir(folder));
        const QString path = folder + "/ZEL_PLC.MDB";
        ASSERT_TRUE(c.make(path)) << c.name;
        const Snapshot before = Take(path);
        ASSERT_EQ(before.files.join(u' '), "ZEL_PLC.MDB") << c.name;
        const PlcdbRun run =
            RunPlcdb(QStringList{"--db", path} + c.args, R"({"format":"plcdb","version":1})");
        const QString what = c.name + (u' ' + c.args.join(u' '));
        EXPECT_EQ(run.status, c.status) << qPrintable(what) << ": " << qPrintable(run.err);
        const Snapshot after = Take(path);
        EXPECT_EQ(after.files.join(u' '), before.files.join(u' ')) << qPrintable(what);
        EXPECT_TRUE(after.bytes == before.bytes) << qPrintable(what);
    }
}

}  // namespace
