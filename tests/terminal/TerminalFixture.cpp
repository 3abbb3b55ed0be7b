#include "TerminalFixture.h"

#include "HostBridge.h"

#include <QDir>
#include <QFile>

void TerminalFixture::SetUp() {
    ASSERT_TRUE(m_dir.isValid());
    ASSERT_TRUE(QDir(m_dir.path()).mkpath(QStringLiteral("settings")));
    ASSERT_TRUE(QDir(m_dir.path()).mkpath(QStringLiteral("lib")));
    StandaloneHostConfig config;
    config.supportPath = {settingsFolder()};
    config.kvLib = QDir::toNativeSeparators(m_dir.filePath(QStringLiteral("lib")));
    m_host = std::make_unique<StandaloneHost>(config);
    m_host->setReporter([](const QString&) {});
    m_host->openDocument();
    SetCurrentHost(m_host.get());
    for (const char* name : {"kv_fio_does_file_exist", "kv_fio_does_file_exist_error",
                             "kv_fio_does_block_exist_disk", "zel_get_var"}) {
        ASSERT_EQ(DeclareLispFunction(QString::fromLatin1(name)), kHostOk);
    }
}

void TerminalFixture::TearDown() {
    SetCurrentHost(nullptr);
}

QString TerminalFixture::settingsFolder() const {
    return QDir::toNativeSeparators(m_dir.filePath(QStringLiteral("settings")));
}

QString TerminalFixture::settingsPath() const {
    return m_dir.filePath(QStringLiteral("settings/kvmbblks.bsf"));
}

void TerminalFixture::writeSettings(const QByteArray& text) const {
    QFile file(settingsPath());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text);
}

QByteArray TerminalFixture::readSettings() const {
    QFile file(settingsPath());
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

void TerminalFixture::writeDrawing(const QString& name, const QByteArray& text) const {
    QFile file(m_dir.filePath(QStringLiteral("lib/") + name));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text);
}

QByteArray Drawing(const QByteArray& entities, const QByteArray& blocks) {
    return "0\nSECTION\n2\nBLOCKS\n" + blocks + "0\nENDSEC\n0\nSECTION\n2\nENTITIES\n" + entities +
           "0\nLINE\n10\n0\n20\n0\n11\n5\n21\n5\n0\nENDSEC\n0\nEOF\n";
}

QByteArray AttDef(const char* tag, const char* prompt, double x, double y, bool paper) {
    return QByteArray("0\nATTDEF\n") + (paper ? "67\n1\n" : "") + "10\n" + QByteArray::number(x) +
           "\n20\n" + QByteArray::number(y) + "\n30\n0\n40\n2.5\n1\n\n2\n" + tag + "\n3\n" +
           prompt + "\n70\n0\n";
}

QByteArray BlockDef(const char* name, const QByteArray& entities) {
    return QByteArray("0\nBLOCK\n2\n") + name + "\n70\n0\n10\n0\n20\n0\n" + entities +
           "0\nENDBLK\n";
}

QStringList Tags(const QList<_attrinfo>& attribs) {
    QStringList tags;
    for (const _attrinfo& info : attribs) {
        tags << info.strTag;
    }
    return tags;
}
