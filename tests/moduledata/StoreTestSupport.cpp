#include "StoreTestSupport.h"

#include "CKVModuleDB.h"
#include "PgDb.h"
#include "SqliteDb.h"
#include "SqliteStatement.h"
#include "TestServer.h"
#include "TestSupport.h"

QString IntegrityCheck(const QString& path) {
    SqliteDb db;
    if (!db.open(path, SqliteOpenMode::ReadWrite)) {
        return db.lastError();
    }
    SqliteStatement statement = db.prepare(QStringLiteral("PRAGMA integrity_check"));
    return statement.next() ? statement.text(0) : db.lastError();
}

QStringList LoadRowTexts(CKVModuleDB& db, const QString& table, const QString& catalog) {
    const int handle = db.LoadModule(table, catalog, false);
    QStringList texts;
    const CKVModule& module = db.GetModule(handle);
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        texts << module.GetTermText(row);
    }
    db.ReleaseModule(handle);
    return texts;
}

StoreChild::StoreChild(const QStringList& args) {
    process.start(BuildPath("store_child"), args);
    EXPECT_TRUE(process.waitForStarted());
}

StoreChild::~StoreChild() {
    finish();
}

int StoreChild::finish(int timeoutMs) {
    process.closeWriteChannel();
    return process.waitForFinished(timeoutMs) || process.state() == QProcess::NotRunning
               ? process.exitCode()
               : -1;
}

QString StoreChild::readLine() {
    while (!process.canReadLine()) {
        if (!process.waitForReadyRead()) {
            return QString();
        }
    }
    return QString::fromUtf8(process.readLine()).trimmed();
}

QString StoreChild::command(const QString& line) {
    process.write((line + u'\n').toUtf8());
    return readLine();
}

std::string BackendName(const testing::TestParamInfo<Backend>& info) {
    return info.param == Backend::Server ? "Server" : "File";
}

void PrintTo(Backend backend, std::ostream* out) {
    *out << BackendName(testing::TestParamInfo<Backend>(backend, 0));
}

void StoreFileTest::CreateStore() {
    if (OnServer()) {
        PLCDB_NEED_TEST_SERVER();
        m_path = TestServer::NewDatabase();
        ASSERT_FALSE(m_path.isEmpty());
    } else {
        ASSERT_TRUE(m_dir.isValid());
        m_path = m_dir.filePath("ZEL_PLC.MDB");
    }
    QString error;
    ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(m_path, &error)) << error.toStdString();
}

void StoreFileTest::CreateWithModules(std::initializer_list<const char*> catalogs) {
    CreateStore();
    if (HasFatalFailure() || IsSkipped()) {
        return;
    }
    ZelPlcDbIO::SetInstance(&m_store);
    ASSERT_TRUE(m_db.Open(m_path));
    for (const char* catalog : catalogs) {
        const int handle = m_db.NewModule("M", "S", "T", catalog);
        ASSERT_GT(handle, 0);
        ASSERT_TRUE(m_db.SaveModule(handle));
    }
    ASSERT_EQ(m_db.GetTypeTableName("M", "S", "T", m_table), catalogs.size() > 0);
}

std::unique_ptr<StoreDb> StoreFileTest::OpenRaw() const {
    if (OnServer()) {
        auto server = std::make_unique<PgDb>();
        EXPECT_TRUE(server->open(m_path)) << server->lastError().toStdString();
        return server;
    }
    auto file = std::make_unique<SqliteDb>();
    EXPECT_TRUE(file->open(m_path, SqliteOpenMode::ReadWrite));
    return file;
}

void StoreFileTest::TearDown() {
    m_db.Close();
    ZelPlcDbIO::SetInstance(nullptr);
}
