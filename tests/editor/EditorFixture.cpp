#include "EditorFixture.h"

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

void EditorFixture::TearDown() {
    SetCurrentHost(nullptr);
    ZelPlcDbIO::SetInstance(nullptr);
}
