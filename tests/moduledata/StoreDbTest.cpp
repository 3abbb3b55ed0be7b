#include "PgDb.h"
#include "SqliteDb.h"
#include "StoreDb.h"
#include "StoreFailure.h"
#include "StoreTestSupport.h"
#include "StoreTransaction.h"
#include "TestServer.h"
#include "ZelDbMigrate.h"
#include "ZelPlcDbIO.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>

namespace {

int CountRows(StoreDb& db) {
    StoreStatement statement = db.query(QStringLiteral("SELECT count(*) FROM t"));
    return statement.next() ? statement.toInt(0) : -1;
}

// A store held open by m_store, and two connections of the test's own to it that share a
// table t.
class StoreDbFixture : public StoreFileTest {
protected:
    void SetUp() override {
        CreateWithModules({});
        if (HasFatalFailure() || IsSkipped()) {
            return;
        }
        m_writer = OpenRaw();
        m_reader = OpenRaw();
        ASSERT_TRUE(m_writer->exec("CREATE TABLE t (x INTEGER UNIQUE)"));
    }
    void TearDown() override {
        m_reader.reset();
        m_writer.reset();
        StoreFileTest::TearDown();
    }

    std::unique_ptr<StoreDb> m_writer;
    std::unique_ptr<StoreDb> m_reader;
};

using StoreDbTest = OnEachBackend<StoreDbFixture>;
PLCDB_ON_EACH_BACKEND(StoreDbTest);

// What only a server does: refuse the rest of a failed transaction, lose its connection.
class ServerDbTest : public StoreDbFixture {
protected:
    Backend backend() const override { return Backend::Server; }
};

TEST_P(StoreDbTest, GuardRollsBackUnlessCommittedAndInnerGuardsJoinTheOuterOne) {
    StoreDb& db = *m_writer;
    {
        StoreTransaction outer(db);
        EXPECT_TRUE(db.exec("INSERT INTO t VALUES (1)"));
        {
            StoreTransaction committed(db);
            EXPECT_TRUE(db.exec("INSERT INTO t VALUES (2)"));
            EXPECT_TRUE(committed.commit());
        }
        {
            StoreTransaction abandoned(db);
            EXPECT_TRUE(db.exec("INSERT INTO t VALUES (3)"));
        }
        EXPECT_EQ(CountRows(db), 2);
        // An inner commit writes nothing before the outer one.
        EXPECT_EQ(CountRows(*m_reader), 0);
        EXPECT_TRUE(outer.commit());
    }
    EXPECT_EQ(CountRows(*m_reader), 2);
    EXPECT_EQ(db.transactionDepth(), 0);
    EXPECT_FALSE(db.commitTransaction());
}

TEST_P(StoreDbTest, OnlyNumberedQuestionMarksOutsideQuotesAreParameters) {
    const std::pair<const char*, const char*> cases[] = {
        {"SELECT 'a?b' || ?1 || ?2", "a?bxy"},
        {"SELECT 'it''s ?1' || ?1 || ?2", "it's ?1xy"},
        {"SELECT \"?1\" || ?2 FROM (SELECT ?1 AS \"?1\") s", "xy"},
        // The server refused a statement that leaves a parameter unused (an update's code).
        {"SELECT ?2", "y"},
    };
    for (const auto& [sql, found] : cases) {
        StoreStatement statement = m_writer->query(QString::fromUtf8(sql));
        ASSERT_TRUE(statement.bind(1, QStringLiteral("x")).bind(2, QStringLiteral("y")).next())
            << sql << ": " << m_writer->lastError().toStdString();
        EXPECT_EQ(statement.text(0), QString::fromUtf8(found)) << sql;
    }
}

TEST_F(ServerDbTest, AFailedStatementFailsItsWholeTransactionWithItsOwnCause) {
    StoreDb& db = *m_writer;
    ASSERT_TRUE(db.beginTransaction());
    EXPECT_TRUE(db.exec("INSERT INTO t VALUES (1)"));
    {
        // A failed inner part is undone alone and the outer one goes on.
        StoreTransaction inner(db);
        EXPECT_FALSE(db.exec("INSERT INTO t VALUES (1)"));
    }
    EXPECT_TRUE(db.exec("INSERT INTO t VALUES (2)"));
    EXPECT_FALSE(db.exec("INSERT INTO t VALUES (2)"));
    const QString cause = db.lastError();
    EXPECT_TRUE(cause.contains("duplicate key")) << cause.toStdString();
    // Later statements and the commit were reported as "current transaction is aborted".
    EXPECT_FALSE(db.exec("INSERT INTO t VALUES (3)"));
    EXPECT_EQ(db.lastError(), cause);
    // The server answers the commit with a rollback.
    EXPECT_FALSE(db.commitTransaction());
    EXPECT_EQ(db.lastError(), cause);
    EXPECT_EQ(db.transactionDepth(), 0);
    EXPECT_EQ(CountRows(*m_reader), 0);
    EXPECT_EQ(CountRows(db), 0);
}

TEST_F(ServerDbTest, AReadOnlyConnectionRefusesWritesInTheReadOnlyWords) {
    PgDb db;
    ASSERT_TRUE(db.open(m_path) && db.setReadOnly());
    for (const char* sql : {"INSERT INTO t VALUES (1)", "BEGIN; DELETE FROM t"}) {
        EXPECT_FALSE(db.exec(sql)) << sql;
        EXPECT_EQ(db.failureText(), "the database is open for reading only") << sql;
    }
    ZelPlcDbIO store;
    ASSERT_TRUE(store.PutConnectionString("Data Source=" + m_path + ";Mode=Read"));
    EXPECT_FALSE(store.AddPromptRow({"P", "Q"}));
    EXPECT_EQ(store.m_strLastError, "the database is open for reading only");
}

// A text with a NUL character was cut at it on a server, silently.
TEST_F(ServerDbTest, ATextWithANulCharacterIsRefusedNotCut) {
    const QString text = QStringLiteral("P") + QChar(0) + QStringLiteral("Q");
    EXPECT_FALSE(m_store.AddPromptRow({text, text}));
    EXPECT_EQ(m_store.m_strLastError, "a text holds a NUL character, which a server can't store");
    QList<ModDB::PromptData> rows;
    EXPECT_TRUE(m_store.GetPromptRows(rows));
    EXPECT_TRUE(rows.isEmpty());
}

TEST_F(ServerDbTest, ALostConnectionFailsEveryOperationWithTheReason) {
    ASSERT_TRUE(m_store.BeginTransaction());
    ASSERT_TRUE(m_store.AddIndexData("M", "S", "T"));
    // The server ends the store's connection, as when it stops.
    StoreStatement end = m_reader->query(
        QStringLiteral("SELECT count(pg_terminate_backend(pid, 10000)) FROM pg_stat_activity "
                       "WHERE datname = current_database() AND pid <> pg_backend_pid()"));
    ASSERT_TRUE(end.next()) << m_reader->lastError().toStdString();
    ASSERT_EQ(end.toInt(0), 2);
    QList<ModDB::IndexData> rows;
    QList<ModDB::ModuleMatch> matches;
    const std::function<bool()> operations[] = {
        [&] { return m_store.CommitTransaction(); },
        [&] { return m_store.GetArrayOfAllIndexData(rows); },
        [&] { return m_store.AddIndexData("N", QString(), QString()); },
        [&] { return m_store.FindModules("x", 5, matches); },
        [&] { return m_store.BeginTransaction(); },
    };
    for (size_t i = 0; i < std::size(operations); ++i) {
        EXPECT_FALSE(operations[i]()) << "operation " << i;
        EXPECT_TRUE(m_store.m_strLastError.startsWith("the connection to the server was lost: "))
            << m_store.m_strLastError.toStdString();
    }
    // Opening the store again kept the broken connection.
    m_db.Close();
    ASSERT_TRUE(m_db.Open(m_path));
    // The broken transaction wrote nothing, so the type is new again.
    EXPECT_TRUE(m_store.AddIndexData("M", "S", "T")) << m_store.m_strLastError.toStdString();
}

TEST(ServerCatalogTest, ADatabaseIsACatalogOnlyWithAllTheStoresTables) {
    PLCDB_NEED_TEST_SERVER();
    const QString uri = TestServer::NewDatabase();
    const auto open = [&] {
        ZelPlcDbIO store;
        return store.PutConnectionString("Data Source=" + uri) ? "opened" : store.m_strLastError;
    };
    const auto create = [&] {
        QString error;
        return ZelPlcDbIO::CreateDatabase(uri, &error) ? "created" : error;
    };
    const auto drop = [&] {
        PgDb db;
        return db.open(uri) && db.exec("DROP TABLE plc_term") ? "dropped" : db.lastError();
    };
    const std::pair<std::function<QString()>, QString> steps[] = {
        {open, "not a plcdb database"},
        {create, "created"},
        // The upgrade check read a server as a file: the editor took every type for old.
        {[&] { return QString(TableNeedsMigration(uri, "T1") ? "old" : "current"); }, "current"},
        {create, uri + " holds a catalog already"},
        {drop, "dropped"},
        {open, "the database is damaged: its table plc_term is missing"},
    };
    for (size_t i = 0; i < std::size(steps); ++i) {
        EXPECT_EQ(steps[i].first(), steps[i].second) << "step " << i;
    }
}

TEST(ServerCatalogTest, AFailedConnectionNamesItsCauseAndNeverThePassword) {
    const char* const locations[] = {
        "postgresql://plcdb:s3cret@/x?host=/nonexistent",
        // The shown location kept a password given as a parameter of the URI.
        "postgresql:///x?host=/nonexistent&password=s3cret",
        "host=/nonexistent dbname=x password=s3cret",
        "host=/nonexistent dbname=x password='s3cret too'",
    };
    for (const char* location : locations) {
        ZelPlcDbIO store;
        QString opening;
        EXPECT_FALSE(store.PutConnectionString(QStringLiteral("Data Source=") + location));
        EXPECT_FALSE(ZelPlcDbIO::CreateDatabase(location, &opening));
        for (const QString& error : {store.m_strLastError, opening}) {
            EXPECT_TRUE(error.contains("/nonexistent/.s.PGSQL.5432") &&
                        error.contains("No such file or directory"))
                << error.toStdString();
            EXPECT_FALSE(error.contains("s3cret")) << error.toStdString();
        }
    }
}

TEST(SqliteDbTest, FailuresAreResultsWithAText) {
    QTemporaryDir dir;
    SqliteDb db;
    ASSERT_TRUE(db.open(dir.filePath("t.db"), SqliteOpenMode::Create));
    ASSERT_TRUE(db.exec("CREATE TABLE t (x INTEGER UNIQUE)"));
    EXPECT_FALSE(db.prepare("SELECT nothing FROM nowhere").isValid());

    SqliteStatement insert = db.prepare("INSERT INTO t VALUES (?1)");
    EXPECT_TRUE(insert.bind(1, 5).run());
    // The same text while the first statement is still lent out, and a clash.
    SqliteStatement again = db.prepare("INSERT INTO t VALUES (?1)");
    EXPECT_FALSE(again.bind(1, 5).run());
    EXPECT_TRUE(db.lastError().contains("UNIQUE"));
    SqliteStatement outOfRange = db.prepare("INSERT INTO t VALUES (?1)");
    EXPECT_FALSE(outOfRange.bind(2, 6).run());
    EXPECT_EQ(CountRows(db), 1);
}

}  // namespace
