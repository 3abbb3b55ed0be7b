#pragma once

#include "CAttribGridWnd.h"
#include "CBlockDescEx.h"
#include "CKVModule.h"
#include "CTermGridWnd.h"
#include "TestSupport.h"
#include "ViewInput.h"

#include <QCoreApplication>
#include <QWidget>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

// A row change as the terminal grid told it.
struct SeenRowChange {
    int blockIndex;
    _rowchange change;
};

// The two grids of the editor in one shown window, wired as the editor wires them:
// the terminal grid's row changes go to the attribute grid. The block list has
//   1 HP1TERM "Terminal"  attributes DESC, TERM_
//   2 VP2FUSE "Fuse"      attributes FUSE_, RATING
//   3 XP2SPACE "Spacer"   no attributes
// and the module, handle 7, has the rows
//   1 HP?TERM  TERM_=1;DESC=Input A
//   2 hp?fuse  \SPECIAL=EXCLUDE;\SPECIAL=ADDR_OUT;FUSE_=F1;RATING=2A
//   3 XP2SPACE \SPECIAL=BREAK;\SPECIAL=SPACINGFACTOR=1.5
class GridFixture : public testing::Test {
protected:
    static constexpr int kHandle = 7;

    void SetUp() override;
    void TearDown() override;

    // Makes both grids, initialised and shown, the terminal grid with the focus.
    void makeGrids();
    void loadModule() { m_term->LoadModule(kHandle); }

    // Right-clicks the cell and chooses entry from the context menu that opens.
    void contextCommand(int row, int col, const QString& entry) {
        ChooseCellMenuEntry(*m_window, *m_term, row, col, entry);
    }
    void pressKey(GridCore& grid, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    // Runs what was posted, such as the modified notices.
    static void settle() { QCoreApplication::processEvents(); }

    // A value of a grid's stored layout, under Settings\grid.
    static quint32 storedLayout(const char* grid, const char* name);
    // The row changes told, as "block B, row P to N" with ", saving" when asked to save.
    QStringList toldChanges() const;
    // All rows of the module as "text;special" lines.
    QStringList moduleRows() const;

    ProgramTexts m_texts;
    ScriptedMessages m_messages;
    CBlockDescEx m_blocks;
    CKVModule m_module;
    std::unique_ptr<QWidget> m_window;
    CTermGridWnd* m_term = nullptr;
    CAttribGridWnd* m_attrib = nullptr;
    std::vector<SeenRowChange> m_changes;
};
