// Speed of the editor's grids, offscreen. Showing a module of 10,000 terminal rows in
// the terminal grid, its load from the store included, is measured against that load
// alone; moving the current row of such a grid, which makes the attribute grid save
// and show a row, is measured on its own.

#include "BenchStore.h"
#include "CAttribGridWnd.h"
#include "CBlockDescEx.h"
#include "CKVModuleDB.h"
#include "CTermGridWnd.h"
#include "RatioReporter.h"
#include "ResourceLibrary.h"
#include "ZelPlcDbIO.h"

#include <QApplication>
#include <QFile>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr int kRows = 10000;
// A list of the size a plant's settings file has, the used block in its middle.
constexpr int kBlocks = 40;
constexpr int kUsedBlock = 20;

const QString kCatalog = QStringLiteral("BIG-1");

CBlockDescEx& Blocks() {
    static CBlockDescEx blocks;
    if (blocks.GetCount() == 0) {
        TermBlockList list;
        for (int i = 1; i <= kBlocks; ++i) {
            _termblock block;
            block.strBlockFile = QStringLiteral("HP1B%1").arg(i);
            block.strCategory = QStringLiteral("Terminals");
            block.strDescription = QStringLiteral("Block %1").arg(i);
            for (const char* tag : {"DESC", "RATING", "TERM_", "WIRE"}) {
                _attrinfo attrib;
                attrib.strTag = QString::fromLatin1(tag);
                attrib.strPrompt = attrib.strTag;
                block.lstAttribs.append(attrib);
            }
            list.append(block);
        }
        blocks.SetBlocks(list);
    }
    return blocks;
}

// A saved module of kRows rows of the used block, each with flags, a spacing and
// attribute values.
struct SavedModule {
    CKVModuleDB db;
    QString table;

    SavedModule() {
        Store();
        const QString path = Folder().filePath(QStringLiteral("grid.db"));
        QFile::remove(path);
        ZelPlcDbIO::CreateDatabase(path);
        db.Open(path);
        const int handle = db.NewModule("Bench", "Series", "Type", kCatalog);
        db.GetTypeTableName("Bench", "Series", "Type", table);
        CKVModule& module = db.GetModule(handle);
        for (int row = 1; row <= kRows; ++row) {
            module.SetTermRow(row,
                              QStringLiteral("HP?B%1;\\SPECIAL=ADDR_IN;\\SPECIAL=SPACINGFACTOR="
                                             "1.25;TERM_=%2;DESC=Channel %2;RATING=2A")
                                  .arg(kUsedBlock)
                                  .arg(row));
        }
        db.SaveModule(handle);
        db.ReleaseModule(handle);
    }
    int load() { return db.LoadModule(table, kCatalog, false); }
};

SavedModule& Saved() {
    static SavedModule saved;
    return saved;
}

// The two grids as the editor holds them, shown offscreen.
struct Grids {
    QWidget window;
    CTermGridWnd* term;
    CAttribGridWnd* attrib;
    int handle = -1;

    Grids() : term(new CTermGridWnd(&window)), attrib(new CAttribGridWnd(&window)) {
        const auto source = [this]() -> CKVModule* {
            bool found = false;
            CKVModule& module = Saved().db.GetModule(handle, &found);
            return found ? &module : nullptr;
        };
        term->SetBlockDesc(&Blocks());
        term->SetModuleSource(source);
        term->Initialize();
        attrib->SetModuleSource(source);
        attrib->SetBlockDesc(&Blocks());
        attrib->Initialize();
        QObject::connect(term, &CTermGridWnd::termRowChange,
                         [this](int blockIndex, const _rowchange& change) {
                             attrib->SetModuleHandle(handle);
                             attrib->OnTermRowChange(blockIndex, &change);
                         });
        term->setGeometry(0, 0, 800, 500);
        attrib->setGeometry(0, 500, 800, 100);
        window.resize(800, 600);
        window.show();
    }
};

void BM_StoreLoadModule(benchmark::State& state) {
    SavedModule& saved = Saved();
    for (auto _ : state) {
        const int handle = saved.load();
        if (saved.db.GetModule(handle).GetTermCount() != kRows) {
            state.SkipWithError("the module did not come back whole");
            break;
        }
        saved.db.ReleaseModule(handle);
    }
}
BENCHMARK(BM_StoreLoadModule)->Unit(benchmark::kMillisecond);

void BM_TermGridShowModule(benchmark::State& state) {
    SavedModule& saved = Saved();
    Grids grids;
    for (auto _ : state) {
        grids.handle = saved.load();
        grids.term->LoadModule(grids.handle);
        grids.term->repaint();
        grids.attrib->repaint();
        if (grids.term->model()->rowCount() != kRows) {
            state.SkipWithError("the grid does not show every row");
            break;
        }
        grids.term->LoadModule(-1);
        saved.db.ReleaseModule(grids.handle);
    }
}
BENCHMARK(BM_TermGridShowModule)->Unit(benchmark::kMillisecond);

void BM_AttribGridFollowsRowMove(benchmark::State& state) {
    SavedModule& saved = Saved();
    Grids grids;
    grids.handle = saved.load();
    grids.term->LoadModule(grids.handle);
    int row = kRows / 2;
    for (auto _ : state) {
        row = row == kRows / 2 ? kRows / 2 + 1 : kRows / 2;
        grids.term->SetCurrentCell(row, CTermGridWnd::ColumnSpacing);
        if (grids.attrib->model()->columnCount() != 4) {
            state.SkipWithError("the attribute grid does not show the row's block");
            break;
        }
    }
    grids.term->LoadModule(-1);
    saved.db.ReleaseModule(grids.handle);
}
BENCHMARK(BM_AttribGridFollowsRowMove)->Unit(benchmark::kMicrosecond);

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // Header texts and choices as the program shows them; the bench runs without them too.
    std::unique_ptr<ResourceLibrary> resources = ResourceLibrary::Load(
        QCoreApplication::applicationDirPath(), QStringLiteral("zel_mbres"), nullptr);
    SetCurrentResources(resources.get());
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    reporter.printRatio("showing 10,000 terminal rows, grid with load / load alone",
                        "BM_TermGridShowModule", "BM_StoreLoadModule", "at most 3");
    benchmark::Shutdown();
    SetCurrentResources(nullptr);
    return 0;
}
