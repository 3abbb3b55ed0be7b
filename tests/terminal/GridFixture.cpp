#include "GridFixture.h"

#include "CRegistryKey.h"
#include "ViewInput.h"

#include <QTest>
#include <QVBoxLayout>

namespace {

_attrinfo Attribute(const char* tag) {
    _attrinfo info;
    info.strTag = QString::fromLatin1(tag);
    info.strPrompt = info.strTag;
    return info;
}

_termblock Block(const char* file, const char* description, QList<_attrinfo> attribs) {
    _termblock block;
    block.strBlockFile = QString::fromLatin1(file);
    block.strCategory = QStringLiteral("Terminals");
    block.strDescription = QString::fromLatin1(description);
    block.lstAttribs = std::move(attribs);
    return block;
}

}  // namespace

void GridFixture::SetUp() {
    ASSERT_TRUE(m_texts.loaded()) << qPrintable(m_texts.error());
    m_blocks.SetBlocks({Block("HP1TERM", "Terminal", {Attribute("DESC"), Attribute("TERM_")}),
                        Block("VP2FUSE", "Fuse", {Attribute("FUSE_"), Attribute("RATING")}),
                        Block("XP2SPACE", "Spacer", {})});
    m_module.SetTermRow(1, QStringLiteral("HP?TERM;TERM_=1;DESC=Input A"));
    m_module.SetTermRow(
        2, QStringLiteral("hp?fuse;\\SPECIAL=EXCLUDE;\\SPECIAL=ADDR_OUT;FUSE_=F1;RATING=2A"));
    m_module.SetTermRow(3, QStringLiteral("XP2SPACE;\\SPECIAL=BREAK;\\SPECIAL=SPACINGFACTOR=1.5"));
}

void GridFixture::TearDown() {
    m_window.reset();
}

void GridFixture::makeGrids() {
    m_window = std::make_unique<QWidget>();
    auto* layout = new QVBoxLayout(m_window.get());
    m_term = new CTermGridWnd;
    m_attrib = new CAttribGridWnd;
    layout->addWidget(m_term);
    layout->addWidget(m_attrib);
    const auto source = [this]() -> CKVModule* { return &m_module; };
    m_term->SetBlockDesc(&m_blocks);
    m_term->SetModuleSource(source);
    m_term->Initialize();
    m_attrib->SetModuleSource(source);
    m_attrib->Initialize();
    // As the editor forwards the row change: handle and list first.
    QObject::connect(m_term, &CTermGridWnd::termRowChange,
                     [this](int blockIndex, const _rowchange& change) {
                         m_changes.push_back({blockIndex, change});
                         m_attrib->SetModuleHandle(m_term->ModuleHandle());
                         m_attrib->SetBlockDesc(&m_blocks);
                         m_attrib->OnTermRowChange(blockIndex, &change);
                     });
    m_window->resize(800, 600);
    ASSERT_TRUE(ShowActive(*m_window));
    m_term->setFocus();
}

void GridFixture::pressKey(GridCore& grid, int key, Qt::KeyboardModifiers modifiers) {
    // A context menu may have left no window active; shortcuts need one.
    ASSERT_TRUE(Activate(*m_window));
    grid.setFocus();
    QTest::keyClick(&grid, Qt::Key(key), modifiers);
}

quint32 GridFixture::storedLayout(const char* grid, const char* name) {
    CRegistryKey registry;
    quint32 value = 0;
    EXPECT_TRUE(registry.Open(QStringLiteral("Settings\\") + QString::fromLatin1(grid)));
    EXPECT_TRUE(registry.GetValue(QString::fromLatin1(name), value)) << name;
    return value;
}

QStringList GridFixture::toldChanges() const {
    QStringList told;
    for (const SeenRowChange& seen : m_changes) {
        told.append(QStringLiteral("block %1, row %2 to %3%4")
                        .arg(seen.blockIndex)
                        .arg(seen.change.nPrevRow)
                        .arg(seen.change.nNewRow)
                        .arg(seen.change.bSave ? QStringLiteral(", saving") : QString()));
    }
    return told;
}

QStringList GridFixture::moduleRows() const {
    QStringList rows;
    for (int row = 1; row <= m_module.GetTermCount(); ++row) {
        rows.append(m_module.GetTermText(row) + u';' + m_module.GetTermSpecial(row));
    }
    return rows;
}
