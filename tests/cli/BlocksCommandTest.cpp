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

QString Native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

void WriteFile(const QString& path, const QByteArray& text) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(text);
}

QJsonObject Parse(const PlcdbRun& run) {
    EXPECT_EQ(run.status, 0) << qPrintable(run.err);
    QJsonParseError error;
    const QJsonDocument json = QJsonDocument::fromJson(run.out.toUtf8(), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << qPrintable(error.errorString());
    return json.object();
}

QStringList Strings(const QJsonArray& array, const char* key) {
    QStringList values;
    for (const QJsonValue& value : array) {
        values << value.toObject()[QLatin1String(key)].toString();
    }
    return values;
}

}  // namespace

TEST(BlocksCommand, TheSampleListComesInFileOrderWithEachDrawingsAttributesSorted) {
    const QStringList args{QStringLiteral("--support-path"),
                           Native(BuildPath(QStringLiteral("sample"))), QStringLiteral("blocks")};
    const QJsonArray blocks = Parse(RunPlcdb(args))["blocks"].toArray();
    EXPECT_EQ(Strings(blocks, "file"),
              (QStringList{"HP1SPACE", "HP1COM", "HP1PWR", "HP1DI", "HP1DO", "HP1AI", "HP1AO",
                           "HP1SHLD", "HP1RLY", "VP1RLY2", "HP1TC", "VP1RTD", "HP1BLANK"}));
    ASSERT_EQ(blocks.size(), 13);
    // Model space gives TERM_, DESC1, DESC2; paper space ADDR.
    const QJsonArray input = blocks[3].toObject()["attributes"].toArray();
    EXPECT_EQ(Strings(input, "tag"), (QStringList{"ADDR", "DESC1", "DESC2", "TERM_"}));
    EXPECT_EQ(Strings(input, "prompt"),
              (QStringList{"Address", "Device", "Function", "Terminal number"}));
    // Attributes inside the paper space block definition count as well.
    const QJsonArray power = blocks[2].toObject()["attributes"].toArray();
    EXPECT_EQ(Strings(power, "tag"), (QStringList{"CAT1", "CNT1", "MFG1", "PWR", "TERM_"}));
    // A definition without a prompt is asked for by its tag.
    EXPECT_EQ(Strings(blocks[7].toObject()["attributes"].toArray(), "prompt"),
              (QStringList{"CHAN", "Terminal number"}));
    EXPECT_TRUE(blocks[12].toObject()["attributes"].toArray().isEmpty());
}

TEST(BlocksCommand, PrintsEveryFieldOfABlockExactlyAndFindsBlocks) {
    QTemporaryDir dir;
    WriteFile(dir.filePath(QStringLiteral("set/kvmbblks.bsf")),
              "* two blocks\n:VP2X;Cat \"A\";Desc\\1;\n:HP1Y;Cat;Second;y.bmp\n");
    WriteFile(dir.filePath(QStringLiteral("lib/VP2X.SHT")),
              "0\nSECTION\n2\nENTITIES\n0\nATTDEF\n10\n1.5\n20\n-2\n30\n0.25\n40\n0.125\n"
              "41\n0.8\n50\n90\n51\n15\n72\n1\n74\n2\n2\nT\n3\n\n0\nENDSEC\n0\nEOF\n");
    const QStringList host{QStringLiteral("--kv-lib"), Native(dir.filePath(QStringLiteral("lib")))};
    const QString folder = Native(dir.filePath(QStringLiteral("set")));
    const PlcdbRun run = RunPlcdb(host + QStringList{"blocks", "--dir", folder});
    ASSERT_EQ(run.status, 0) << qPrintable(run.err);
    const QString folderJson = QString(folder).replace(u'\\', QStringLiteral("\\\\"));
    EXPECT_EQ(run.out,
              QStringLiteral("{\"format\":\"plcdb-blocks\",\"version\":1,\"directory\":\"") +
                  folderJson +
                  QStringLiteral(
                      "\",\"blocks\":[{\"index\":1,\"file\":\"VP2X\",\"category\":\"Cat "
                      "\\\"A\\\"\",\"description\":\"Desc\\\\1\",\"sample\":\"\",\"attributes\":["
                      "{\"tag\":\"T\",\"prompt\":\"T\",\"x\":1.5,\"y\":-2,\"z\":0.25,\"height\":"
                      "0.125,\"rotation\":90,\"widthFactor\":0.8,\"oblique\":15,"
                      "\"horizontalMode\":1,\"verticalMode\":2}]},{\"index\":2,\"file\":\"HP1Y\","
                      "\"category\":\"Cat\",\"description\":\"Second\",\"sample\":\"y.bmp\","
                      "\"attributes\":[{\"tag\":\"T\",\"prompt\":\"T\",\"x\":1.5,\"y\":-2,\"z\":"
                      "0.25,\"height\":0.125,\"rotation\":90,\"widthFactor\":0.8,\"oblique\":15,"
                      "\"horizontalMode\":1,\"verticalMode\":2}]}]}\n"));

    const struct {
        const char* text;
        const char* mode;
        const char* answer;
    } finds[] = {{"HP?X", "1", "1\n"},
                 {"hp?y", nullptr, "2\n"},
                 {"SECOND", "2", "2\n"},
                 {"HP?Z", "1", "-1\n"},
                 {"VP2X", "1", "-1\n"}};
    for (const auto& find : finds) {
        QStringList args = host + QStringList{"blocks", "--dir", folder, "--find", find.text};
        if (find.mode) {
            args << QStringLiteral("--mode") << QString::fromLatin1(find.mode);
        }
        const PlcdbRun found = RunPlcdb(args);
        EXPECT_EQ(found.status, 0) << find.text;
        EXPECT_EQ(found.out, QString::fromLatin1(find.answer)) << find.text;
    }
}

TEST(BlocksCommand, TheFolderOfTheDocumentSetComesBeforeTheSupportPath) {
    QTemporaryDir dir;
    WriteFile(dir.filePath(QStringLiteral("docset/kvmbblks.bsf")), ":HP1A;C;From doc set\n");
    WriteFile(dir.filePath(QStringLiteral("support/kvmbblks.bsf")), ":HP1B;C;From support\n");
    QDir().mkpath(dir.filePath(QStringLiteral("empty")));
    const QStringList support{QStringLiteral("--support-path"),
                              Native(dir.filePath(QStringLiteral("support")))};
    const struct {
        const char* docSet;
        const char* folder;
        const char* description;
    } cases[] = {{"docset", "docset", "From doc set"},
                 {"empty", "support", "From support"},
                 {nullptr, "support", "From support"}};
    for (const auto& row : cases) {
        QStringList args = support;
        if (row.docSet) {
            args << QStringLiteral("--doc-set-base")
                 << Native(dir.filePath(QString::fromLatin1(row.docSet)));
        }
        const QJsonObject list = Parse(RunPlcdb(args << QStringLiteral("blocks")));
        EXPECT_EQ(list["directory"].toString(),
                  Native(dir.filePath(QString::fromLatin1(row.folder))));
        EXPECT_EQ(Strings(list["blocks"].toArray(), "description"),
                  QStringList{QString::fromLatin1(row.description)});
    }
}

TEST(BlocksCommand, AMissingSettingsFileOrAWrongCallIsRefusedWithItsCause) {
    QTemporaryDir dir;
    const QString empty = Native(dir.path());
    PlcdbRun run = RunPlcdb({QStringLiteral("blocks"), QStringLiteral("--dir"), empty});
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(empty + QStringLiteral(" has no kvmbblks.bsf")))
        << qPrintable(run.err);
    EXPECT_TRUE(run.out.isEmpty());

    run = RunPlcdb({QStringLiteral("blocks")});  // the search path is an empty folder
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("--dir"))) << qPrintable(run.err);

    const QStringList wrong[] = {{"blocks", "--mode", "1"},
                                 {"blocks", "--find", "X", "--mode", "3"},
                                 {"blocks", "--find"},
                                 {"blocks", "extra"}};
    for (const QStringList& args : wrong) {
        run = RunPlcdb(args);
        EXPECT_EQ(run.status, 2) << qPrintable(args.join(u' '));
        EXPECT_TRUE(run.out.isEmpty());
    }
}
