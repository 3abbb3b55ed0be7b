// Reading the terminal block settings file with every block's drawing, against reading
// the same files' bytes, in one run. The ratio printed at the end is the figure that
// matters; absolute times vary.

#include "CTermBlockSettings.h"
#include "HostBridge.h"
#include "RatioReporter.h"
#include "StandaloneHost.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr int kBlocks = 500;

// A settings file of kBlocks blocks in one folder and their drawings, copies of the
// sample's, in a block folder that the host searches.
struct BlockFolder {
    QTemporaryDir dir;
    QString settings;
    QStringList files;  // the settings file and every drawing
    std::unique_ptr<StandaloneHost> host;

    BlockFolder() {
        QDir(dir.path()).mkpath(QStringLiteral("lib"));
        const QDir sample(QStringLiteral(PLCDB_SOURCE_DIR "/data/sample/blocks"));
        const QStringList drawings = sample.entryList({QStringLiteral("*.SHT")}, QDir::Files);
        settings = dir.path();
        QFile list(dir.filePath(QString::fromLatin1(CTermBlockSettings::kFileName)));
        list.open(QIODevice::WriteOnly);
        files << list.fileName();
        for (int i = 0; i < kBlocks; ++i) {
            const QString name = QStringLiteral("HP1B%1").arg(i, 4, 10, QLatin1Char('0'));
            const QString path = dir.filePath(QStringLiteral("lib/") + name + ".SHT");
            QFile::copy(sample.filePath(drawings[i % drawings.size()]), path);
            files << path;
            list.write(QStringLiteral(":%1;Category %2;Block %3;%1.bmp\n")
                           .arg(name)
                           .arg(i % 7)
                           .arg(i)
                           .toUtf8());
        }
        list.close();
        StandaloneHostConfig config;
        config.kvLib = dir.filePath(QStringLiteral("lib"));
        host = std::make_unique<StandaloneHost>(config);
        host->openDocument();
        SetCurrentHost(host.get());
        DeclareLispFunction(QStringLiteral("kv_fio_does_block_exist_disk"));
    }
};

BlockFolder& Folder() {
    static BlockFolder folder;
    return folder;
}

void BM_ReadBlockSettings(benchmark::State& state) {
    BlockFolder& folder = Folder();
    CTermBlockSettings settings;
    settings.SetDirectory(folder.settings);
    for (auto _ : state) {
        TermBlockList list;
        if (!settings.Read(list) || list.size() != kBlocks || list.last().lstAttribs.isEmpty()) {
            state.SkipWithError("the list did not come back whole");
            break;
        }
        benchmark::DoNotOptimize(list.data());
    }
}
BENCHMARK(BM_ReadBlockSettings)->Unit(benchmark::kMillisecond);

// The bytes of the same files, each opened, read whole and closed.
void BM_ReadSameFilesBytes(benchmark::State& state) {
    BlockFolder& folder = Folder();
    for (auto _ : state) {
        qint64 total = 0;
        for (const QString& path : folder.files) {
            QFile file(path);
            if (file.open(QIODevice::ReadOnly)) {
                total += file.readAll().size();
            }
        }
        benchmark::DoNotOptimize(total);
    }
}
BENCHMARK(BM_ReadSameFilesBytes)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("settings file of 500 blocks with their drawings, read / file bytes",
                        "BM_ReadBlockSettings", "BM_ReadSameFilesBytes", "at most 3");
    SetCurrentHost(nullptr);
    benchmark::Shutdown();
    return 0;
}
