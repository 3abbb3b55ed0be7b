#include "CPickTerm.h"
#include "DialogControls.h"
#include "GridFixture.h"
#include "ModalRunner.h"
#include "PickerFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

namespace {

const QString kEditCells = QStringLiteral("Edit Cells...");

// Which of the picker's parts are enabled: terminal, show, re-prompt, break, spacing.
std::vector<bool> EnabledParts(QDialog& d) {
    std::vector<bool> parts;
    for (const int id : {CPickTerm::kIdBlocks, CPickTerm::kIdShow, CPickTerm::kIdRePrompt,
                         CPickTerm::kIdBreak, CPickTerm::kIdSpacing}) {
        parts.push_back(FindControl<QWidget>(&d, id)->isEnabled());
    }
    return parts;
}

void PressOk(QDialog& d) {
    QTest::mouseClick(FindControl<QPushButton>(&d, CPickTerm::kIdOk), Qt::LeftButton);
}

}  // namespace

class TermGridFillTest : public GridFixture {
protected:
    void SetUp() override {
        GridFixture::SetUp();
        ClearRecent();
        makeGrids();
        loadModule();
    }
    void TearDown() override {
        ClearRecent();
        GridFixture::TearDown();
    }
};

TEST_F(TermGridFillTest, AFillOverSeveralRowsWritesOneColumnNotifiesOnceAndUndoesAsOneStep) {
    const QStringList specialsBefore = {m_module.GetTermSpecial(1), m_module.GetTermSpecial(2),
                                        m_module.GetTermSpecial(3)};
    ClickCell(*m_term, 1, 2);
    ClickCell(*m_term, 3, 2, Qt::ShiftModifier);
    m_changes.clear();
    QueuedModalScript script;
    script.push([](QDialog& d) {
        EXPECT_EQ(EnabledParts(d), (std::vector<bool>{false, true, false, false, false}));
        auto* show = FindControl<QComboBox>(&d, CPickTerm::kIdShow);
        // Several rows preset nothing: the first choice stands.
        EXPECT_EQ(show->currentIndex(), 0);
        QTest::keyClick(show, Qt::Key_Down);
        QTest::keyClick(show, Qt::Key_Down);
        PressOk(d);
        return 0;
    });
    contextCommand(2, 2, kEditCells);
    EXPECT_TRUE(script.done());
    for (int row = 1; row <= 3; ++row) {
        EXPECT_EQ(m_module.GetIncludeExclude(row), 2) << row;
    }
    EXPECT_EQ(m_module.GetAddrFlags(2), 2);
    EXPECT_EQ(m_module.GetBreak(3), 1);
    EXPECT_EQ(m_module.GetTermText(3), QStringLiteral("XP2SPACE"));
    EXPECT_EQ(toldChanges().filter(QStringLiteral(", saving")).size(), 1);
    EXPECT_TRUE(m_term->IsModified());

    // One Ctrl+Z takes back the whole fill, not only its last cell.
    pressKey(*m_term, Qt::Key_Z, Qt::ControlModifier);
    for (int row = 1; row <= 3; ++row) {
        EXPECT_EQ(m_module.GetTermSpecial(row), specialsBefore[row - 1]) << row;
    }
}

TEST_F(TermGridFillTest, ARightClickOutsideTheSelectionClearsItAndEditsTheClickedColumnOnly) {
    // Row 3 of show and re-prompt selected, the current cell ending on (3, 3).
    ClickCell(*m_term, 3, 2);
    ClickCell(*m_term, 3, 3, Qt::ShiftModifier);
    QueuedModalScript script;
    script.push([](QDialog& d) {
        EXPECT_EQ(EnabledParts(d), (std::vector<bool>{false, false, true, false, false}));
        auto* rePrompt = FindControl<QComboBox>(&d, CPickTerm::kIdRePrompt);
        // Preset from the clicked cell, row 2.
        EXPECT_EQ(rePrompt->currentIndex(), 2);
        QTest::keyClick(rePrompt, Qt::Key_Up);
        PressOk(d);
        return 0;
    });
    contextCommand(2, 3, kEditCells);
    EXPECT_TRUE(m_term->selectionModel()->selection().isEmpty());
    // The value goes to the current cell of that column; show is left alone.
    EXPECT_EQ(m_module.GetAddrFlags(3), 1);
    EXPECT_EQ(m_module.GetAddrFlags(2), 2);
    EXPECT_EQ(m_module.GetIncludeExclude(3), 0);

    // A column the current cell is not in changes nothing.
    script.push([](QDialog& d) {
        EXPECT_EQ(EnabledParts(d), (std::vector<bool>{false, false, false, true, false}));
        QTest::mouseClick(FindControl<QCheckBox>(&d, CPickTerm::kIdBreak), Qt::LeftButton);
        PressOk(d);
        return 0;
    });
    contextCommand(1, 4, kEditCells);
    EXPECT_EQ(m_module.GetBreak(1), 0);
    EXPECT_EQ(m_module.GetBreak(3), 1);
}

TEST_F(TermGridFillTest, OpeningOnACellPresetsItsTerminalAndAddsItToTheRecentList) {
    ClickCell(*m_term, 2, 1);
    QueuedModalScript script;
    script.push([](QDialog& d) {
        EXPECT_EQ(EnabledParts(d), (std::vector<bool>{true, false, false, false, false}));
        const QList<QListWidgetItem*> selected =
            FindControl<QListWidget>(&d, CPickTerm::kIdBlocks)->selectedItems();
        EXPECT_EQ(selected.size(), 1);
        EXPECT_EQ(selected.value(0) ? selected.value(0)->text() : QString(), "Fuse");
        return int(kIdCancel);
    });
    contextCommand(2, 1, kEditCells);
    EXPECT_EQ(m_module.GetTermText(2), QStringLiteral("HP?FUSE"));

    script.push([](QDialog& d) {
        ClickItem(*FindControl<QListWidget>(&d, CPickTerm::kIdBlocks), 2);
        PressOk(d);
        return 0;
    });
    contextCommand(2, 1, kEditCells);
    EXPECT_EQ(m_module.GetTermText(2), QStringLiteral("XP2SPACE"));
    // The cancelled opening put Fuse on the list already.
    EXPECT_EQ(StoredRecent(), (QStringList{"Spacer", "Fuse"}));
}

TEST_F(TermGridFillTest, OneSelectedRowPresetsEveryColumnInPlay) {
    ClickCell(*m_term, 3, 2);
    ClickCell(*m_term, 3, 5, Qt::ShiftModifier);
    const QStringList before = moduleRows();
    QueuedModalScript script;
    script.push([](QDialog& d) {
        EXPECT_EQ(EnabledParts(d), (std::vector<bool>{false, true, true, true, true}));
        EXPECT_EQ(FindControl<QComboBox>(&d, CPickTerm::kIdShow)->currentIndex(), 0);
        EXPECT_TRUE(FindControl<QCheckBox>(&d, CPickTerm::kIdBreak)->isChecked());
        EXPECT_EQ(FindControl<QLineEdit>(&d, CPickTerm::kIdSpacing)->text(), "1.5000");
        return int(kIdCancel);
    });
    contextCommand(3, 4, kEditCells);
    EXPECT_TRUE(script.done());
    EXPECT_EQ(moduleRows(), before);
}
