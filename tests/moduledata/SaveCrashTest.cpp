#include "CKVModuleDB.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

namespace {

// The row sets that the child program alternates between.
QStringList RowTexts(QChar prefix, int count) {
    QStringList texts;
    for (int row = 1; row <= count; ++row) {
        texts.append(QStringLiteral("%1%2").arg(prefix).arg(row));
    }
    return texts;
}

QStringList LoadRowTexts(CKVModuleDB& db, const QString& table, const QString& catalog) {
    const int handle = db.LoadModule(table, catalog, false);
    QStringList texts;
    const CKVModule& module = db.GetModule(handle);
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        texts.append(module.GetTermText(row));
    }
    db.ReleaseModule(handle);
    return texts;
}

class SaveCrashTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        m_path = m_dir.filePath("ZEL_PLC.MDB");
        ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(m_path));
        ZelPlcDbIO::SetInstance(&m_store);
        ASSERT_TRUE(m_db.Open(m_path));
        const int handle = m_db.NewModule("ACME", "S1", "T1", "CAT-1");
        ASSERT_GT(handle, 0);
        ASSERT_TRUE(m_db.GetTypeTableName("ACME", "S1", "T1", m_table));
        ASSERT_TRUE(m_db.SaveModule(handle));
    }

    void TearDown() override {
        m_db.Close();
        ZelPlcDbIO::SetInstance(nullptr);
    }

    // Starts the child, lets it pass its first save, and kills it a moment later.
    void RunAndKillChild() {
        QProcess child;
        child.start(BuildPath("save_child"), {m_path, m_table, "CAT-1"});
        ASSERT_TRUE(child.waitForStarted());
        while (!child.canReadLine()) {
            ASSERT_TRUE(child.waitForReadyRead()) << child.readAllStandardError().toStdString();
        }
        ASSERT_EQ(child.readLine().trimmed(), "ready");
        // Not a wait for anything: it only spreads the kill over the save's steps.
        QThread::usleep(QRandomGenerator::global()->bounded(20000));
        ASSERT_EQ(child.state(), QProcess::Running) << child.readAllStandardError().toStdString();
        child.kill();
        ASSERT_TRUE(child.waitForFinished());
    }

    QTemporaryDir m_dir;
    QString m_path;
    QString m_table;
    ZelPlcDbIO m_store;
    CKVModuleDB m_db;
};

TEST_F(SaveCrashTest, AKilledSaveLeavesTheOldOrTheNewRowsNeverAMixOrNone) {
    const QStringList setA = RowTexts(u'A', 2000);
    const QStringList setB = RowTexts(u'B', 1500);
    for (int run = 0; run < 20; ++run) {
        RunAndKillChild();
        if (HasFatalFailure()) {
            return;
        }
        const QStringList rows = LoadRowTexts(m_db, m_table, "CAT-1");
        ASSERT_TRUE(rows == setA || rows == setB)
            << "run " << run << ": " << rows.size() << " rows, first "
            << rows.value(0).toStdString() << ", last "
            << rows.value(rows.size() - 1).toStdString();
    }
}

}  // namespace
