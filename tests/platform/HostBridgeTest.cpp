#include "HostBridge.h"
#include "ResourceLibrary.h"
#include "StandaloneHost.h"
#include "TestSupport.h"
#include "ZelUtils.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

namespace {

void Touch(const QString& path) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
}

}  // namespace

// A host with a search folder and two library folders, every family function declared,
// and the resource library's placeholder texts current.
class HostBridgeTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        ASSERT_TRUE(m_texts.loaded()) << qPrintable(m_texts.error());

        StandaloneHostConfig config;
        config.supportPath = {path("support")};
        config.kvLib = path("lib1") + QStringLiteral(" ; ") + path("lib2") + u';';
        config.messages.insert(QStringLiteral("PROMPT_SLOT"), QStringLiteral("Steckplatz"));
        m_host = std::make_unique<StandaloneHost>(config);
        m_host->setReporter([this](const QString& text) { m_reports << text; });
        m_host->openDocument();
        SetCurrentHost(m_host.get());
        for (const char* name :
             {"kv_fio_does_file_exist", "kv_fio_does_file_exist_error",
              "kv_fio_does_block_exist_disk", "kv_fio_block_path_failed_msg", "zel_get_var"}) {
            ASSERT_EQ(DeclareLispFunction(QString::fromLatin1(name)), kHostOk);
        }
    }
    void TearDown() override { SetCurrentHost(nullptr); }
    QString path(const QString& name) const {
        return QDir::toNativeSeparators(m_dir.filePath(name));
    }

    QTemporaryDir m_dir;
    ProgramTexts m_texts;
    std::unique_ptr<StandaloneHost> m_host;
    QStringList m_reports;
};

TEST_F(HostBridgeTest, SupportFileFoundOrReportedOnce) {
    Touch(path("support/ZEL_PLC.MDB"));
    QString out = QStringLiteral("before");
    EXPECT_TRUE(FindDatabaseFile(out));
    EXPECT_EQ(out, path("support/ZEL_PLC.MDB"));
    EXPECT_TRUE(m_reports.isEmpty());

    QFile::remove(path("support/ZEL_PLC.MDB"));
    out = QStringLiteral("before");
    EXPECT_FALSE(FindDatabaseFile(out));
    EXPECT_EQ(out, QStringLiteral("before"));
    ASSERT_EQ(m_reports.size(), 1);
    EXPECT_TRUE(m_reports[0].contains(QStringLiteral("ZEL_PLC.MDB")));

    EXPECT_FALSE(FindSupportFile(QStringLiteral("missing.dat"), out, false));
    EXPECT_EQ(m_reports.size(), 1);
}

TEST_F(HostBridgeTest, BlockFilesComeFromTheLibraryFolders) {
    Touch(path("lib2/HP1TERM.SHT"));
    QString out;
    EXPECT_TRUE(FindBlockFile(QStringLiteral("HP1TERM.SHT"), out, true));
    EXPECT_EQ(out, path("lib2/HP1TERM.SHT"));
    EXPECT_FALSE(FindBlockFile(QStringLiteral("NONE.SHT"), out, true));
    ASSERT_EQ(m_reports.size(), 1);
    EXPECT_TRUE(m_reports[0].contains(QStringLiteral("NONE.SHT")));
}

TEST_F(HostBridgeTest, UndeclaredFunctionsAreRefused) {
    StandaloneHost fresh;
    fresh.openDocument();
    SetCurrentHost(&fresh);
    QString out = QStringLiteral("before");
    EXPECT_FALSE(GetLispVar(QStringLiteral("GBL_kv_lib"), out));
    EXPECT_EQ(out, QStringLiteral("before"));
    EXPECT_EQ(EvalLisp(QStringLiteral("(setq a 1)")), kHostErrorResult);

    StandaloneHost noDocument;
    SetCurrentHost(&noDocument);
    EXPECT_EQ(DeclareLispFunction(QStringLiteral("zel_get_var")), kHostFailed);
}

TEST_F(HostBridgeTest, LibraryPathsAreSplitTrimmedAndNative) {
    QStringList list;
    ASSERT_TRUE(GetLibraryPaths(list));
    EXPECT_EQ(list, QStringList({path("lib1"), path("lib2")}));

    for (const QString& kvLib : {QStringLiteral("C:/a; C:/b;"), QString()}) {
        StandaloneHostConfig config;
        config.kvLib = kvLib;
        StandaloneHost host(config);
        host.openDocument();
        SetCurrentHost(&host);
        DeclareLispFunction(QStringLiteral("zel_get_var"));
        list.clear();
        EXPECT_EQ(GetLibraryPaths(list), !kvLib.isEmpty());
        EXPECT_EQ(list, kvLib.isEmpty() ? QStringList()
                                        : QStringList({NativePath("C:/a"), NativePath("C:/b")}));
    }
}

// The host placeholder searches quietly, and a placeholder that finds nothing lets the
// search go on; the first entry that has the file wins.
TEST_F(HostBridgeTest, SearchPathListFollowsFoldersAndBothPlaceholders) {
    for (const char* file :
         {"own/A.SHT", "own/C.SHT", "support/B.SHT", "lib1/C.SHT", "lib2/E.SHT"}) {
        Touch(path(file));
    }
    const QString host = LoadResString(6000);
    const QString library = LoadResString(6001);
    ASSERT_TRUE(host.startsWith(u'<'));
    ASSERT_TRUE(library.startsWith(u'<'));
    const QStringList mixed = {"<other>", path("own"), "  " + host.toUpper(), library.toLower()};
    const struct {
        QStringList list;
        QString name;
        QString found;  // empty: not found, and the path given stays
    } cases[] = {
        {mixed, "A.SHT", path("own/A.SHT")},
        {mixed, "B.SHT", path("support/B.SHT")},
        {mixed, "E.SHT", path("lib2/E.SHT")},
        {mixed, "D.SHT", ""},
        {mixed, "", ""},
        {{library, path("own")}, "A.SHT", path("own/A.SHT")},
        {{host, path("own")}, "A.SHT", path("own/A.SHT")},
        {{library, host, "<other>", path("none"), path("own")}, "A.SHT", path("own/A.SHT")},
        {{library, path("own")}, "C.SHT", path("lib1/C.SHT")},
        {{path("own"), library}, "C.SHT", path("own/C.SHT")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(qPrintable(c.name + u' ' + c.list.join(u'|')));
        QString out = QStringLiteral("before");
        EXPECT_EQ(SearchPathList(c.name, out, c.list), !c.found.isEmpty());
        EXPECT_EQ(out, c.found.isEmpty() ? QStringLiteral("before") : c.found);
    }
    EXPECT_TRUE(m_reports.isEmpty());
}

TEST_F(HostBridgeTest, MessagesAreTranslatedByKey) {
    QString text = QStringLiteral("SLOT");
    EXPECT_TRUE(TranslateMessage(QStringLiteral("PROMPT_SLOT"), text));
    EXPECT_EQ(text, QStringLiteral("Steckplatz"));
    text = QStringLiteral("RACK");
    EXPECT_TRUE(TranslateMessage(QStringLiteral("PROMPT_RACK"), text));
    EXPECT_EQ(text, QStringLiteral("RACK"));
}

TEST_F(HostBridgeTest, HostNumbersUseTheLinearPrecision) {
    EXPECT_EQ(HostRealToString(12.5, 2, -1), QStringLiteral("12.5000"));
    EXPECT_EQ(HostRealToString(12.5, 2, 1), QStringLiteral("12.5"));
    EXPECT_EQ(HostRealToString(-0.0, 2, 2), QStringLiteral("0.00"));
}

struct RealTextCase {
    double value;
    int digits;
    const char* text;
};

class RealToTextTest : public testing::TestWithParam<RealTextCase> {};

TEST_P(RealToTextTest, FormatsLikeTheRuntime) {
    QString out;
    EXPECT_TRUE(RealToText(GetParam().value, out, GetParam().digits));
    EXPECT_EQ(out, QString::fromLatin1(GetParam().text));
}

INSTANTIATE_TEST_SUITE_P(
    Values, RealToTextTest,
    testing::Values(RealTextCase{12.5, 4, "12.5000"}, RealTextCase{0.05, 4, ".500"},
                    RealTextCase{-0.5, 2, "-0.50"}, RealTextCase{0.0, 2, "0.00"},
                    RealTextCase{0.5, 4, "0.5000"}, RealTextCase{0.001, 2, "0"},
                    RealTextCase{-1234.56789, 3, "-1234.568"}, RealTextCase{12.0, 0, "12."}));
