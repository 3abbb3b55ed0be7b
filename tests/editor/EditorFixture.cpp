#include "EditorFixture.h"

#include "CKVModuleDB.h"
#include "HostBridge.h"

#include <QFile>

void EditorFixture::SetUp() {
    ASSERT_TRUE(QFile::copy(BuildPath(QStringLiteral("sample/ZEL_PLC.MDB")), databasePath()));
    ASSERT_TRUE(m_texts.loaded()) << qPrintable(m_texts.error());
    ZelPlcDbIO::SetInstance(&m_store);
    startHost(4);
}

void EditorFixture::startHost(int precision) {
    StandaloneHostConfig config;
    config.supportPath = {m_dir.path(), BuildPath(QStringLiteral("sample"))};
    config.kvLib = BuildPath(QStringLiteral("sample/blocks"));
    config.linearPrecision = precision;
    // The default files of a new module are the test's own, beside its database.
    config.programDir = m_dir.path();
    m_host = std::make_unique<StandaloneHost>(config);
    m_host->setReporter([](const QString&) {});
    m_host->openDocument();
    SetCurrentHost(m_host.get());
    for (const char* name :
         {"kv_fio_does_file_exist", "kv_fio_does_file_exist_error", "zel_get_var",
          "kv_fio_does_block_exist_disk", "kv_fio_block_path_failed_msg"}) {
        DeclareLispFunction(QString::fromLatin1(name));
    }
}

void EditorFixture::startHostWithoutDatabase() {
    m_host = std::make_unique<StandaloneHost>(StandaloneHostConfig());
    m_host->setReporter([](const QString&) {});
    m_host->openDocument();
    SetCurrentHost(m_host.get());
}

std::optional<CKVModule> EditorFixture::stored(const QString& type, const QString& catalog,
                                               const QString& database) const {
    CKVModuleDB db;
    QString table;
    if (!db.Open(database.isEmpty() ? databasePath() : database) ||
        !db.GetTypeTableName(kNorvale, kSeries, type, table)) {
        return std::nullopt;
    }
    const int handle = db.LoadModule(table, catalog, false);
    return handle == -1 ? std::nullopt : std::optional<CKVModule>(db.GetModule(handle));
}

QString EditorFixture::writeJunk() const {
    const QString path = m_dir.filePath(QStringLiteral("junk.mdb"));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write("not a database, only text") > 0);
    return path;
}

void EditorFixture::TearDown() {
    SetCurrentHost(nullptr);
    ZelPlcDbIO::SetInstance(nullptr);
}
