#include "GridFixture.h"

#include "MenuChooser.h"

#include <QApplication>
#include <QMenu>
#include <QTest>
#include <QTimer>
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
    QString error;
    m_resources = ResourceLibrary::Load(BuildPath(QString()), QStringLiteral("zel_mbres"), &error);
    ASSERT_TRUE(m_resources) << qPrintable(error);
    SetCurrentResources(m_resources.get());
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
    SetCurrentResources(nullptr);
}

void GridFixture::makeGrids() {
    m_window = std::make_unique<QWidget>();
    auto* layout = new QVBoxLayout(m_window.get());
    m_term = new CTermGridWnd;
    m_attrib = new CAttribGridWnd;
    layout->addWidget(m_term);
    layout->addWidget(m_attrib);
    const auto source = [this]() -> CKVModule* { return m_bModuleFound ? &m_module : nullptr; };
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
    m_window->show();
    m_window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
    m_term->setFocus();
}

QPoint GridFixture::cellCentre(GridCore& grid, int row, int col) {
    return grid.visualRect(grid.model()->index(row - 1, col - 1)).center();
}

void GridFixture::clickCell(GridCore& grid, int row, int col, Qt::KeyboardModifiers modifiers) {
    QTest::mouseClick(grid.viewport(), Qt::LeftButton, modifiers, cellCentre(grid, row, col));
}

void GridFixture::contextCommand(int row, int col, const QString& entry) {
    // A right click through the window, which makes the context menu event.
    QWindow* window = m_window->windowHandle();
    const QPoint pos = m_term->viewport()->mapTo(m_window.get(), cellCentre(*m_term, row, col));
    EXPECT_TRUE(ChooseMenuEntry(entry, [&] {
        QTest::mouseClick(window, Qt::RightButton, {}, pos);
    })) << qPrintable(entry);
}

void GridFixture::typeIntoCell(GridCore& grid, int row, int col, const QString& text) {
    clickCell(grid, row, col);
    QTest::keyClick(&grid, Qt::Key_F2);
    QWidget* editor = QApplication::focusWidget();
    ASSERT_NE(editor, &grid);
    QTest::keyClick(editor, Qt::Key_A, Qt::ControlModifier);
    if (text.isEmpty()) {
        QTest::keyClick(editor, Qt::Key_Delete);
    } else {
        QTest::keyClicks(editor, text);
    }
    QTest::keyClick(editor, Qt::Key_Return);
    // The delegate commits a Return with a queued call.
    settle();
}

void GridFixture::pressKey(GridCore& grid, int key, Qt::KeyboardModifiers modifiers) {
    // A context menu may have left no window active; shortcuts need one.
    m_window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
    grid.setFocus();
    QTest::keyClick(&grid, Qt::Key(key), modifiers);
}

void GridFixture::settle() {
    QCoreApplication::processEvents();
}

QStringList GridFixture::moduleRows() const {
    QStringList rows;
    for (int row = 1; row <= m_module.GetTermCount(); ++row) {
        rows.append(m_module.GetTermText(row) + u';' + m_module.GetTermSpecial(row));
    }
    return rows;
}
