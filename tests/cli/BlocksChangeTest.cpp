#include "PlcdbProcess.h"
#include "TestSupport.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QByteArray ReadFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
}

void WriteFile(const QString& path, const QByteArray& text) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text);
}

// A drawing whose model space holds one attribute definition with this tag.
QByteArray DrawingWithTag(const char* tag) {
    return QByteArray("0\nSECTION\n2\nENTITIES\n0\nATTDEF\n10\n0\n20\n0\n30\n0\n40\n2\n1\n\n2\n") +
           tag + "\n3\nPrompt\n0\nENDSEC\n0\nEOF\n";
}

QJsonArray Blocks(const PlcdbRun& run) {
    return QJsonDocument::fromJson(run.out.toUtf8()).object()[QLatin1String("blocks")].toArray();
}

QStringList Column(const PlcdbRun& run, const char* key) {
    QStringList values;
    for (const QJsonValue& block : Blocks(run)) {
        values << block.toObject()[QLatin1String(key)].toString();
    }
    return values;
}

// A settings folder ("set") and a block folder ("lib") of their own, with the sample's
// drawings and pictures behind them on the host's paths.
class BlocksChange : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(QDir(m_dir.path()).mkpath(QStringLiteral("set")));
        ASSERT_TRUE(QDir(m_dir.path()).mkpath(QStringLiteral("lib")));
        WriteFile(settings(), ReadFile(BuildPath(QStringLiteral("sample/kvmbblks.bsf"))));
    }
    QString path(const QString& name) const { return m_dir.filePath(name); }
    QString settings() const { return path(QStringLiteral("set/kvmbblks.bsf")); }
    PlcdbRun blocks(const QStringList& args) const {
        const QString sample = BuildPath(QStringLiteral("sample"));
        const QStringList host{
            "--support-path",
            QDir::toNativeSeparators(path("set") + u';' + sample),
            "--kv-lib",
            QDir::toNativeSeparators(path("lib") + u';' + sample + QStringLiteral("/blocks")),
            "blocks",
            "--dir",
            QDir::toNativeSeparators(path("set"))};
        return RunPlcdb(host + args);
    }

    QTemporaryDir m_dir;
};

}  // namespace

TEST_F(BlocksChange, AnAddedBlockIsListedWithItsDrawingsAttributesAndEveryOldLineIsKept) {
    QByteArray sampleLines;  // the sample's block lines, without its comments
    for (const QByteArray& line :
         ReadFile(SourcePath(QStringLiteral("data/sample/blocks/kvmbblks.bsf"))).split('\n')) {
        sampleLines += line.startsWith(':') ? line.trimmed() + '\n' : QByteArray();
    }
    WriteFile(path("lib/HP1NEW.SHT"), DrawingWithTag("NEWTAG"));
    const PlcdbRun run = blocks({"add", "HP1NEW", "--category", "Test", "--description",
                                 "New block", "--sample", "hpdi.bmp"});
    ASSERT_EQ(run.status, 0) << qPrintable(run.err);
    EXPECT_EQ(ReadFile(settings()), sampleLines + ":HP1NEW;Test;New block;hpdi.bmp\n");
    ASSERT_EQ(Blocks(run).size(), 14);
    const QJsonObject added = Blocks(run).last().toObject();
    EXPECT_EQ(added["index"].toInt(), 14);
    EXPECT_EQ(added["description"].toString(), QStringLiteral("New block"));
    EXPECT_EQ(added["attributes"].toArray().first().toObject()["tag"].toString(),
              QStringLiteral("NEWTAG"));

    const PlcdbRun removed = blocks({"remove", "14"});
    ASSERT_EQ(removed.status, 0) << qPrintable(removed.err);
    EXPECT_EQ(ReadFile(settings()), sampleLines);
}

TEST_F(BlocksChange, StyleOrientationAndMergeRewriteAllRowsAsTheDialogWould) {
    WriteFile(settings(), ":HP1A;C;A;\n:vp1b;C;B;vp1b.bmp\n:TB1;C;T;\n");
    for (const char* name :
         {"HP1A", "vp1b", "TB1", "HP3A", "Hp3b", "VP3A", "Vp3b", "VP1NEW", "TX5"}) {
        WriteFile(path(QStringLiteral("lib/%1.SHT").arg(QLatin1String(name))), DrawingWithTag("T"));
    }
    for (const char* name : {"vp1b.bmp", "Hp3b.bmp", "Vp3b.bmp"}) {
        WriteFile(path(QStringLiteral("set/") + QLatin1String(name)), {});
    }
    PlcdbRun run = blocks({"set-style", "3"});  // row 1 is horizontal: all become so
    EXPECT_EQ(run.status, 0) << qPrintable(run.err);
    EXPECT_EQ(Column(run, "file"), (QStringList{"HP3A", "Hp3b", "TB1"}));
    EXPECT_EQ(Column(run, "sample"), (QStringList{"", "Hp3b.bmp", ""}));
    run = blocks({"set-orientation", "v"});  // keeps style 3 of row 1
    EXPECT_EQ(run.status, 0) << qPrintable(run.err);
    EXPECT_EQ(Column(run, "file"), (QStringList{"VP3A", "Vp3b", "TB1"}));

    // Names compare ignoring case; the new name's letter is the opposite of row 1's
    // orientation, its digit that of the last row compared.
    const QString database = path("new.mdb");
    ASSERT_EQ(RunPlcdb({"init", database}).status, 0);
    WriteFile(path("doc.json"),
              R"({"format":"plcdb","version":1,"index":[{"manufacturer":"M","series":"S",)"
              R"("type":"T"}],"modules":[{"manufacturer":"M","series":"S","type":"T","spec":)"
              R"({"Code":"C1"},"terminals":[{"text":"HP?A","special":""},{"text":"HP?NEW",)"
              R"("special":""},{"text":"TX5","special":""}]}],"styles":[],"prompts":[]})");
    ASSERT_EQ(RunPlcdb({"--db", database, "import", path("doc.json")}).status, 0);
    WriteFile(settings(), ":HP1A;C;A;\n:TB1;C;T;\n");
    run = blocks({"--db", database, "merge", "--manufacturer", "m", "--series", "S", "--type", "t",
                  "--catalog", "c1", "--category", "New"});
    EXPECT_EQ(run.status, 0) << qPrintable(run.err);
    EXPECT_EQ(ReadFile(settings()), ":HP1A;C;A;\n:TB1;C;T;\n:VP1NEW;New;VP1NEW;\n:TX5;New;TX5;\n");
}

TEST_F(BlocksChange, ARefusedChangeSaysWhyAndLeavesTheFileAsItWas) {
    const QByteArray original = ReadFile(settings());
    const QString database = path("ZEL_PLC.MDB");
    ASSERT_TRUE(QFile::copy(BuildPath(QStringLiteral("sample/ZEL_PLC.MDB")), database));
    const struct {
        QStringList args;
        int status;
        const char* reason;
    } cases[] = {
        {{"add", "HP9GONE", "--category", "C", "--description", "D"}, 1, "\"HP9GONE.SHT\""},
        {{"remove", "14"}, 1, "no block 14"},
        {{"set-style", "2"}, 1, "\"HP2SPACE.SHT\" in row 1"},
        {{"set-orientation", "v"}, 1, "\"VP1SPACE.SHT\" in row 1"},
        {{"merge", "--manufacturer", "X", "--series", "S", "--type", "T", "--catalog", "C"},
         1,
         "no catalog C under X / S / T"},
        {{"add", "HP1NEW", "--category", "C"}, 2, "needs --description"},
        {{"remove", "0"}, 2, "index"},
        {{"set-style", "10"}, 2, "1 to 9"},
        {{"set-style", "1", "--category", "C"}, 2, "--category does not go with set-style"},
        {{"set-orientation", "X"}, 2, "H or V"},
        {{"merge", "--catalog", "C"}, 2, "needs --manufacturer"},
        {{"--category", "C"}, 2, "goes with an action"},
    };
    for (const auto& c : cases) {
        const PlcdbRun run = blocks(QStringList{"--db", database} + c.args);
        const QString call = c.args.join(u' ');
        EXPECT_EQ(run.status, c.status) << qPrintable(call);
        EXPECT_TRUE(run.err.contains(QLatin1String(c.reason))) << qPrintable(call) << "\n"
                                                               << qPrintable(run.err);
        EXPECT_TRUE(run.out.isEmpty()) << qPrintable(call);
        EXPECT_EQ(ReadFile(settings()), original) << qPrintable(call);
    }
}
