#include "CKVModuleDB.h"
#include "StoreTestSupport.h"
#include "TestSupport.h"
#include "ZelPlcDbIO.h"

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

constexpr int kKillsPerWrite = 100;
constexpr int kImportedModules = 400;

// The row sets that the child program alternates between.
QStringList RowTexts(QChar prefix, int count) {
    QStringList texts;
    for (int row = 1; row <= count; ++row) {
        texts.append(QStringLiteral("%1%2").arg(prefix).arg(row));
    }
    return texts;
}

class SaveCrashTest : public StoreFileTest {
protected:
    void SetUp() override { CreateWithModules({"CAT-1"}); }

    // Starts the child and waits for its "ready". Then, with a delay, kills it up to
    // that many microseconds later; without one, lets it end. True when the child
    // finished its write; elapsedUs is the time from "ready" to the end or the kill.
    bool RunChild(const QStringList& args, int maxDelayUs, qint64* elapsedUs = nullptr) {
        StoreChild child(args);
        if (child.readLine() != "ready") {
            ADD_FAILURE() << child.process.readAllStandardError().toStdString();
            return false;
        }
        QElapsedTimer clock;
        clock.start();
        if (maxDelayUs > 0) {
            // Not a wait for anything: it only spreads the kill over the write's steps.
            QThread::usleep(QRandomGenerator::global()->bounded(maxDelayUs));
            child.process.kill();
        }
        EXPECT_TRUE(child.process.waitForFinished(120000));
        if (elapsedUs) {
            *elapsedUs = clock.nsecsElapsed() / 1000;
        }
        const bool done = child.process.readAllStandardOutput().contains("done");
        EXPECT_TRUE(child.process.exitStatus() == QProcess::CrashExit || done)
            << child.process.readAllStandardError().toStdString();
        return done;
    }

    int CountCatalogs(const QString& prefix) {
        QList<_idandcatalognum> catalogs;
        EXPECT_TRUE(m_db.GetCatalogs(m_table, catalogs));
        return int(std::count_if(catalogs.begin(), catalogs.end(), [&](const auto& catalog) {
            return catalog.strCatalog.startsWith(prefix);
        }));
    }
};

TEST_F(SaveCrashTest, AKilledSaveLeavesTheOldOrTheNewRowsNeverAMixOrNone) {
    const QStringList setA = RowTexts(u'A', 2000);
    const QStringList setB = RowTexts(u'B', 1500);
    for (int run = 0; run < kKillsPerWrite; ++run) {
        RunChild({"save", m_path, m_table, "CAT-1"}, 20000);
        ASSERT_FALSE(HasFailure());
        const QStringList rows = LoadRowTexts(m_db, m_table, "CAT-1");
        ASSERT_TRUE(rows == setA || rows == setB)
            << "run " << run << ": " << rows.size() << " rows, first "
            << rows.value(0).toStdString() << ", last "
            << rows.value(rows.size() - 1).toStdString();
        ASSERT_EQ(IntegrityCheck(m_path), "ok") << "run " << run;
    }
}

TEST_F(SaveCrashTest, AKilledImportLeavesAllOrNothingOfTheDocument) {
    // The first import runs to its end and tells how long a whole import takes here; the
    // kills come within its first half, so that a busy machine still kills most imports
    // while they write.
    qint64 importUs = 0;
    ASSERT_TRUE(RunChild({"import", m_path, "0", QString::number(kImportedModules)}, 0, &importUs));
    ASSERT_GT(importUs, 0);
    int completed = 0;
    for (int run = 1; run <= kKillsPerWrite; ++run) {
        const QString prefix = QStringLiteral("R%1-").arg(run);
        const bool done =
            RunChild({"import", m_path, QString::number(run), QString::number(kImportedModules)},
                     int(qBound(qint64(1), importUs / 2, qint64(1000000))));
        ASSERT_FALSE(HasFailure());
        const int count = CountCatalogs(prefix);
        ASSERT_TRUE(count == 0 || count == kImportedModules) << "run " << run << ": " << count;
        ASSERT_TRUE(!done || count == kImportedModules) << "run " << run;
        ASSERT_EQ(IntegrityCheck(m_path), "ok") << "run " << run;
        completed += count == kImportedModules ? 1 : 0;
    }
    // Enough kills must land inside an import, or the test proves little.
    EXPECT_GE(kKillsPerWrite - completed, kKillsPerWrite / 10)
        << completed << " imports ended before the kill";
}

}  // namespace
