#include "BlockNames.h"
#include "CBlockDescEx.h"
#include "HostBridge.h"
#include "StandaloneHost.h"
#include "TestSupport.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

#include <gtest/gtest.h>

namespace {

// The block names the sample catalog's terminal rows store, read from its document.
QSet<QString> CatalogBlockNames() {
    QFile file(SourcePath(QStringLiteral("data/sample/catalog.json")));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QSet<QString> names;
    const QJsonArray modules =
        QJsonDocument::fromJson(file.readAll()).object()["modules"].toArray();
    for (const QJsonValue& module : modules) {
        for (const QJsonValue& row : module.toObject()["terminals"].toArray()) {
            names.insert(row.toObject()["text"].toString());
        }
    }
    return names;
}

}  // namespace

TEST(SampleBlocks, EveryTerminalRowOfTheSampleCatalogHasABlockWithAttributes) {
    StandaloneHostConfig config;
    config.kvLib = BuildPath(QStringLiteral("sample/blocks"));
    StandaloneHost host(config);
    host.openDocument();
    SetCurrentHost(&host);
    DeclareLispFunction(QStringLiteral("kv_fio_does_block_exist_disk"));

    CBlockDescEx blocks;
    blocks.SetDirectory(BuildPath(QStringLiteral("sample")));
    EXPECT_GE(blocks.GetBlockList(false).size(), 12);
    const QSet<QString> names = CatalogBlockNames();
    EXPECT_EQ(names.size(), 8);
    for (const QString& name : names) {
        const int index = blocks.FindBlock(name, 1);
        _termblock block;
        ASSERT_TRUE(blocks.GetBlockAt(index, block)) << qPrintable(name);
        EXPECT_FALSE(block.lstAttribs.isEmpty()) << qPrintable(name);
        // A tag the row grammar keeps for itself ("%%" prompts) is never merged as an
        // attribute, so the editor would append its value to the row again at each move.
        for (const _attrinfo& attribute : block.lstAttribs) {
            EXPECT_FALSE(attribute.strTag.startsWith(QStringLiteral("%%")))
                << qPrintable(name + " " + attribute.strTag);
        }
        // The editor stores the picked block in module form: the same name comes back.
        EXPECT_EQ(BlockNames::ModuleForm(block.strBlockFile), name);
    }
    SetCurrentHost(nullptr);
}
