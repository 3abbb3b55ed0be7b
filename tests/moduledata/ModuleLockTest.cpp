#include "StoreTestSupport.h"
#include "TestServer.h"
#include "ZelPlcDbIO.h"

#include <QDateTime>
#include <QDeadlineTimer>
#include <QSysInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <string>

namespace {

enum class LetGo { Unlock, Exit, Kill };

struct LockCase {
    bool server;
    LetGo letGo;
};

// store_child holding the catalog, run by the user of that name.
std::unique_ptr<StoreChild> StartAs(const char* user, const QString& location) {
    const QByteArray own = qgetenv("USER");
    qputenv("USER", user);
    auto child = std::make_unique<StoreChild>(QStringList{"hold", location});
    qputenv("USER", own);
    return child;
}

std::string CaseName(const testing::TestParamInfo<LockCase>& info) {
    const char* const endings[] = {"Unlocks", "Exits", "IsKilled"};
    return std::string(info.param.server ? "Server" : "File") + "HolderThen" +
           endings[int(info.param.letGo)];
}

class ModuleLockTest : public testing::TestWithParam<LockCase> {};

}  // namespace

TEST_P(ModuleLockTest, ASecondProgramIsToldTheHolderUntilTheFirstLetsGoOrDies) {
    if (GetParam().server) {
        PLCDB_NEED_TEST_SERVER();
    }
    QTemporaryDir dir;
    const QString location =
        GetParam().server ? TestServer::NewDatabase() : dir.filePath("ZEL_PLC.MDB");
    ASSERT_TRUE(ZelPlcDbIO::CreateDatabase(location));
    // The time is kept to the second.
    const QDateTime before = QDateTime::currentDateTimeUtc().addMSecs(-1000);
    std::unique_ptr<StoreChild> first = StartAs("anna", location);
    std::unique_ptr<StoreChild> second = StartAs("bert", location);

    ASSERT_EQ(first->command("lock T1 NV-1108"), "ok");
    // The code's case does not make another module.
    const QString refusal = second->command("lock T1 nv-1108");
    const QString named = "held by anna on " + QSysInfo::machineHostName() + " since ";
    ASSERT_TRUE(refusal.startsWith(named)) << refusal.toStdString();
    const QDateTime since = QDateTime::fromString(refusal.mid(named.size()), Qt::ISODate);
    EXPECT_TRUE(since >= before && since <= QDateTime::currentDateTimeUtc())
        << refusal.toStdString();
    // Another module is free, and the first program is refused it in turn.
    EXPECT_EQ(second->command("lock T1 NV-1109"), "ok");
    EXPECT_TRUE(first->command("lock T1 NV-1109").startsWith("held by bert on "));

    switch (GetParam().letGo) {
        case LetGo::Unlock:
            ASSERT_EQ(first->command("unlock T1 NV-1108"), "ok");
            break;
        case LetGo::Exit:
            ASSERT_EQ(first->finish(), 0);
            break;
        case LetGo::Kill:
            first->process.kill();
            ASSERT_TRUE(first->process.waitForFinished());
            break;
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
                         testing::Values(LockCase{false, LetGo::Unlock},
                                         LockCase{false, LetGo::Exit}, LockCase{false, LetGo::Kill},
                                         LockCase{true, LetGo::Unlock}, LockCase{true, LetGo::Exit},
                                         LockCase{true, LetGo::Kill}),
                         CaseName);
