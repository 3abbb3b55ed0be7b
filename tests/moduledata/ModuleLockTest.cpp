#include "StoreTestSupport.h"
#include "TestServer.h"
#include "ZelPlcDbIO.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QSysInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <tuple>

namespace {

// How the first program lets go of its lock.
enum LetGo { kUnlocks, kExits, kIsKilled };

// store_child holding the catalog, run by the user of that name.
std::unique_ptr<StoreChild> StartAs(const char* user, const QString& location) {
    const QByteArray own = qgetenv("USER");
    qputenv("USER", user);
    auto child = std::make_unique<StoreChild>(QStringList{"hold", location});
    qputenv("USER", own);
    return child;
}

class ModuleLockTest : public testing::TestWithParam<std::tuple<bool, LetGo>> {};

}  // namespace

TEST_P(ModuleLockTest, ASecondProgramIsToldTheHolderUntilTheFirstLetsGoOrDies) {
    const auto [server, letGo] = GetParam();
    if (server) {
        PLCDB_NEED_TEST_SERVER();
    }
    QTemporaryDir dir;
    const QString location = server ? TestServer::NewDatabase() : dir.filePath("ZEL_PLC.MDB");
    ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(location));
    // The time is kept to the second.
    const QDateTime before = QDateTime::currentDateTimeUtc().addMSecs(-1000);
    std::unique_ptr<StoreChild> first = StartAs("anna", location);
    std::unique_ptr<StoreChild> second = StartAs("bert", location);

    ASSERT_EQ(first->command("lock T1 NV-1108"), "ok");
    // The code's case does not make another module; another code does.
    const QString refusal = second->command("lock T1 nv-1108");
    EXPECT_EQ(second->command("lock T1 NV-1109"), "ok");
    const QString named = "held by anna on " + QSysInfo::machineHostName() + " since ";
    ASSERT_TRUE(refusal.startsWith(named)) << refusal.toStdString();
    const QDateTime since = QDateTime::fromString(refusal.mid(named.size()), Qt::ISODate);
    EXPECT_TRUE(since >= before && since <= QDateTime::currentDateTimeUtc());

    if (letGo == kUnlocks) {
        ASSERT_EQ(first->command("unlock T1 NV-1108"), "ok");
    } else if (letGo == kExits) {
        ASSERT_EQ(first->finish(), 0);
    } else {
        first->process.kill();
        ASSERT_TRUE(first->process.waitForFinished());
    }
    // The server ends a dead program's session on its own time.
    QDeadlineTimer deadline(10000);
    QString answer;
    do {
        answer = second->command("lock T1 Nv-1108");
    } while (answer != "ok" && !deadline.hasExpired());
    EXPECT_EQ(answer, "ok");
}

INSTANTIATE_TEST_SUITE_P(OnAFileAndOnAServer, ModuleLockTest,
                         testing::Combine(testing::Bool(),
                                          testing::Values(kUnlocks, kExits, kIsKilled)));
