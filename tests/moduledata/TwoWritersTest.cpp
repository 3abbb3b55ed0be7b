#include "CKVModuleDB.h"
#include "StoreSchema.h"
#include "StoreTestSupport.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

constexpr int kWritesPerWriter = 500;

// What one writer reported: its successful writes by kind, and its failures.
struct WriterReport {
    QStringList imports;
    QString lastSave;
    int renames = 0;
    QStringList failures;
};

// Reads the lines of store_child's write mode; a failure counts when it gave up
// before the busy timeout, as it then did not wait for the other writer's lock.
WriterReport ReadReport(const QByteArray& output) {
    WriterReport report;
    for (const QByteArray& raw : output.split('\n')) {
        const QStringList words = QString::fromUtf8(raw).split(u' ');
        if (words.size() >= 3 && words[0] == QStringLiteral("ok")) {
            if (words[1] == QStringLiteral("import")) {
                report.imports << words[2];
            } else if (words[1] == QStringLiteral("save")) {
                report.lastSave = words[2];
            } else {
                ++report.renames;
            }
        } else if (words.size() >= 4 && words[0] == QStringLiteral("fail") &&
                   words[3].toInt() < StoreSchema::kBusyTimeoutMs) {
            report.failures << QString::fromUtf8(raw);
        }
    }
    return report;
}

class TwoWritersTest : public StoreFileTest {
protected:
    void SetUp() override { CreateWithModules({"W1-SAVE", "W2-SAVE", "W1-NAME-0", "W2-NAME-0"}); }
};

TEST_F(TwoWritersTest, InterleavedImportsSavesAndRenamesAllLandAndNoneGivesUpEarly) {
    QProcess writers[2];
    for (int w = 0; w < 2; ++w) {
        writers[w].start(BuildPath("store_child"), {"write", m_path, QString::number(w + 1),
                                                    QString::number(kWritesPerWriter)});
        ASSERT_TRUE(writers[w].waitForStarted());
    }
    for (QProcess& writer : writers) {
        while (!writer.canReadLine()) {
            ASSERT_TRUE(writer.waitForReadyRead()) << writer.readAllStandardError().toStdString();
        }
        ASSERT_EQ(writer.readLine().trimmed(), "ready");
    }
    for (QProcess& writer : writers) {
        writer.write("go\n");
        ASSERT_TRUE(writer.waitForBytesWritten());
    }
    for (QProcess& writer : writers) {
        ASSERT_TRUE(writer.waitForFinished(300000));
        ASSERT_EQ(writer.exitCode(), 0) << writer.readAllStandardError().toStdString();
    }
    ASSERT_EQ(IntegrityCheck(m_path), "ok");
    for (int w = 0; w < 2; ++w) {
        const QString writer = QString::number(w + 1);
        const WriterReport report = ReadReport(writers[w].readAllStandardOutput());
        EXPECT_EQ(report.failures, QStringList()) << "writer " << w + 1;
        // Every third write is an import, save or rename; each that said ok is there.
        EXPECT_EQ(report.imports.size(), kWritesPerWriter / 3) << "writer " << w + 1;
        for (const QString& catalog : report.imports) {
            EXPECT_TRUE(m_db.ModuleExists(m_table, catalog)) << catalog.toStdString();
        }
        EXPECT_EQ(LoadRowTexts(m_db, m_table, QStringLiteral("W%1-SAVE").arg(writer)),
                  QStringList{report.lastSave});
        const QString renamed = QStringLiteral("W%1-NAME-%2").arg(writer).arg(report.renames);
        EXPECT_TRUE(m_db.ModuleExists(m_table, renamed)) << renamed.toStdString();
        EXPECT_EQ(report.renames, (kWritesPerWriter + 1) / 3) << "writer " << w + 1;
    }
}

}  // namespace
