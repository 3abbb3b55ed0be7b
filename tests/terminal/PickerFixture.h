#pragma once

#include "CBlockDescEx.h"
#include "StandaloneHost.h"
#include "TestSupport.h"
#include "ViewInput.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

class CPickTerm;
class QDialog;

// The recent list as the user's settings file holds it, read and cleared without the
// dialog.
QStringList StoredRecent();
void ClearRecent();

// The picker's world: a host whose support path holds the sample pictures, the
// resource library, an empty recent list, and the blocks
//    1 "Terminal"  Terminals  wide.bmp (40 x 20, red)
//    2 "Fuse"      Terminals  tall (24 x 36, blue; the extension is added)
//    3 "Ground"    Terminals  missing.bmp (not on the path)
//    4 "Supply"    Power      none
//    5 "Relay"     Power      none
//    6 "Twin"      Pairs      none
//    7 "Twin"      Pairs      none
//    8..11 "Spare 1".."Spare 4"  Spares  none
class PickerFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Selects the category line of the picker with a click.
    static void clickCategory(QDialog& picker, const QString& category);
    // Runs the picker with one step that picks a block of a category by its row and
    // presses OK; answers what the runner answered.
    int pickBlock(CPickTerm& picker, const QString& category, int row);

    QTemporaryDir m_dir;
    ProgramTexts m_texts;
    std::unique_ptr<StandaloneHost> m_host;
    QStringList m_reports;  // what the host reported, help topics included
    ScriptedMessages m_messages;
    CBlockDescEx m_blocks;
};
