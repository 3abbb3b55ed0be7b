#include "CPickTerm.h"
#include "DialogControls.h"
#include "ModalRunner.h"
#include "PickerFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

namespace {

QListWidget* Blocks(QDialog& d) {
    return FindControl<QListWidget>(&d, CPickTerm::kIdBlocks);
}
QListWidget* Recent(QDialog& d) {
    return FindControl<QListWidget>(&d, CPickTerm::kIdRecent);
}
QStringList Texts(const QListWidget& list) {
    QStringList texts;
    for (int i = 0; i < list.count(); ++i) {
        texts.append(list.item(i)->text());
    }
    return texts;
}
QImage Picture(const QListWidget& list, int row) {
    const QIcon icon = list.item(row)->icon();
    const QList<QSize> sizes = icon.availableSizes();
    return sizes.isEmpty() ? QImage() : icon.pixmap(sizes.first()).toImage();
}

}  // namespace

using CPickTermTest = PickerFixture;

TEST_F(CPickTermTest, ShowsTheFirstCategoryWithItsCaptionAndChangesListOnAClick) {
    CPickTerm picker;
    picker.SetBlockDesc(&m_blocks);
    QueuedModalScript script;
    script.push([this](QDialog& d) {
        EXPECT_EQ(Texts(*FindControl<QListWidget>(&d, CPickTerm::kIdCategories)),
                  (QStringList{"Terminals", "Power", "Pairs", "Spares"}));
        EXPECT_EQ(Texts(*Blocks(d)), (QStringList{"Terminal", "Fuse", "Ground"}));
        EXPECT_EQ(FindControl<QLabel>(&d, CPickTerm::kIdBlockCaption)->text(),
                  QStringLiteral("Terminal blocks of category \"Terminals\":"));
        clickCategory(d, QStringLiteral("Power"));
        EXPECT_EQ(Texts(*Blocks(d)), (QStringList{"Supply", "Relay"}));
        EXPECT_TRUE(Blocks(d)->selectedItems().isEmpty());
        EXPECT_EQ(FindControl<QLabel>(&d, CPickTerm::kIdBlockCaption)->text(),
                  QStringLiteral("Terminal blocks of category \"Power\":"));
        EXPECT_EQ(FindControl<QComboBox>(&d, CPickTerm::kIdShow)->count(), 4);
        EXPECT_EQ(FindControl<QComboBox>(&d, CPickTerm::kIdRePrompt)->itemText(3),
                  QStringLiteral("Input and output address"));
        return int(kIdCancel);
    });
    EXPECT_EQ(ModalRunner::Run(picker), kIdCancel);
    EXPECT_TRUE(StoredRecent().isEmpty());
}

TEST_F(CPickTermTest, PicturesAreBroughtToTheSmallestSampleOrShowResource146At32By32) {
    const QImage resource(QStringLiteral(":/zel_mbres/bitmaps/146.bmp"));
    ASSERT_EQ(resource.size(), QSize(32, 32));
    CPickTerm picker;
    picker.SetBlockDesc(&m_blocks);
    QueuedModalScript script;
    script.push([&](QDialog& d) {
        // 40 x 20 and 24 x 36 give 24 x 20; the missing sample takes resource 146.
        for (int row = 0; row < 3; ++row) {
            EXPECT_EQ(Picture(*Blocks(d), row).size(), QSize(24, 20)) << row;
        }
        const QColor red = Picture(*Blocks(d), 0).pixelColor(12, 10);
        const QColor blue = Picture(*Blocks(d), 1).pixelColor(12, 10);
        EXPECT_TRUE(red.red() >= 250 && red.blue() == 0) << qPrintable(red.name());
        EXPECT_TRUE(blue.blue() >= 250 && blue.red() == 0) << qPrintable(blue.name());
        clickCategory(d, QStringLiteral("Power"));
        for (int row = 0; row < 2; ++row) {
            EXPECT_EQ(Picture(*Blocks(d), row).convertToFormat(QImage::Format_RGB32),
                      resource.convertToFormat(QImage::Format_RGB32))
                << row;
        }
        return int(kIdCancel);
    });
    ModalRunner::Run(picker);
    EXPECT_EQ(picker.TermImageSize(), QSize(32, 32));
}

TEST_F(CPickTermTest, ASeventhRecentTerminalPushesTheOldestOutAndReChoosingOneKeepsTheOrder) {
    const std::pair<const char*, int> picks[] = {
        {"Spares", 0},    {"Spares", 1},    {"Spares", 2},   {"Spares", 3},
        {"Terminals", 0}, {"Terminals", 1}, {"Terminals", 2}};
    for (const auto& [category, row] : picks) {
        CPickTerm picker;
        picker.SetBlockDesc(&m_blocks);
        ASSERT_EQ(pickBlock(picker, QString::fromLatin1(category), row), kIdOk);
    }
    CPickTerm again;
    again.SetBlockDesc(&m_blocks);
    QueuedModalScript script;
    script.push([](QDialog& d) {
        EXPECT_EQ(Texts(*Recent(d)),
                  (QStringList{"Ground", "Fuse", "Terminal", "Spare 4", "Spare 3", "Spare 2"}));
        ClickItem(*Blocks(d), 0);
        clickCategory(d, QStringLiteral("Power"));
        ClickItem(*Blocks(d), 1);
        return int(kIdCancel);
    });
    EXPECT_EQ(ModalRunner::Run(again), kIdCancel);
    // Written at selection: the cancelled pick of Relay stays.
    EXPECT_EQ(StoredRecent(),
              (QStringList{"Relay", "Ground", "Fuse", "Terminal", "Spare 4", "Spare 3"}));
}

TEST_F(CPickTermTest, TwoBlocksOfOneDescriptionArePickedByPositionButRecentGivesTheFirst) {
    CPickTerm second;
    second.SetBlockDesc(&m_blocks);
    ASSERT_EQ(pickBlock(second, QStringLiteral("Pairs"), 1), kIdOk);
    EXPECT_EQ(second.GetTermIndex(), 7);

    CPickTerm fromRecent;
    fromRecent.SetBlockDesc(&m_blocks);
    QueuedModalScript script;
    script.push([](QDialog& d) {
        ClickItem(*Recent(d), 0);
        EXPECT_TRUE(Blocks(d)->selectedItems().isEmpty());
        return int(kIdOk);
    });
    ASSERT_EQ(ModalRunner::Run(fromRecent), kIdOk);
    EXPECT_EQ(fromRecent.GetTermIndex(), 6);
}

TEST_F(CPickTermTest, APresetTerminalIsSelectedInItsCategoryAndCountsAsChosen) {
    CPickTerm picker;
    picker.SetBlockDesc(&m_blocks);
    picker.SetTermText(QStringLiteral("relay"));
    QueuedModalScript script;
    script.push([](QDialog& d) {
        EXPECT_EQ(FindControl<QListWidget>(&d, CPickTerm::kIdCategories)->currentItem()->text(),
                  QStringLiteral("Power"));
        const QList<QListWidgetItem*> selected = Blocks(d)->selectedItems();
        EXPECT_EQ(selected.size(), 1);
        EXPECT_EQ(Blocks(d)->row(selected.value(0)), 1);
        return int(kIdCancel);
    });
    ModalRunner::Run(picker);
    EXPECT_EQ(StoredRecent(), QStringList{"Relay"});
}

TEST_F(CPickTermTest, DoubleClickTakesTheValuesAndPresetsAndSwitchesShow) {
    CPickTerm picker;
    picker.SetBlockDesc(&m_blocks);
    picker.SetShow(2);
    picker.SetRePrompt(3);
    picker.SetBreak(true);
    picker.SetSpacing(QStringLiteral("1.5000"));
    picker.DisableRePrompt(true);
    QueuedModalScript script;
    script.push([](QDialog& d) {
        auto* show = FindControl<QComboBox>(&d, CPickTerm::kIdShow);
        auto* rePrompt = FindControl<QComboBox>(&d, CPickTerm::kIdRePrompt);
        auto* spacing = FindControl<QLineEdit>(&d, CPickTerm::kIdSpacing);
        EXPECT_EQ(show->currentIndex(), 2);
        // A disabled combo box keeps no preset.
        EXPECT_FALSE(rePrompt->isEnabled());
        EXPECT_FALSE(FindControl<QLabel>(&d, CPickTerm::kIdRePromptCaption)->isEnabled());
        EXPECT_EQ(rePrompt->currentIndex(), -1);
        EXPECT_TRUE(FindControl<QCheckBox>(&d, CPickTerm::kIdBreak)->isChecked());
        EXPECT_EQ(spacing->text(), QStringLiteral("1.5000"));
        QTest::keyClick(show, Qt::Key_Down);
        QTest::mouseClick(FindControl<QCheckBox>(&d, CPickTerm::kIdBreak), Qt::LeftButton);
        spacing->selectAll();
        QTest::keyClicks(spacing, QStringLiteral("2"));
        DoubleClickItem(*Blocks(d), 1);
        // Ended by the double click; the script's answer changes nothing.
        return 0;
    });
    ASSERT_EQ(ModalRunner::Run(picker), kIdOk);
    EXPECT_EQ(picker.GetTermIndex(), 2);
    EXPECT_EQ(picker.GetShow(), 3);
    EXPECT_EQ(picker.GetRePrompt(), -1);
    EXPECT_FALSE(picker.GetBreak());
    EXPECT_EQ(picker.GetSpacing(), QStringLiteral("2"));
}

TEST_F(CPickTermTest, TermDisabledGreysTheListsAndHelpOpensItsTopic) {
    CPickTerm picker;
    picker.SetBlockDesc(&m_blocks);
    picker.DisableTerm(true);
    QueuedModalScript script;
    script.push([](QDialog& d) {
        for (const int id :
             {CPickTerm::kIdCategories, CPickTerm::kIdBlocks, CPickTerm::kIdRecent,
              CPickTerm::kIdTermCaption, CPickTerm::kIdRecentCaption, CPickTerm::kIdBlockCaption}) {
            EXPECT_FALSE(FindControl<QWidget>(&d, id)->isEnabled()) << id;
        }
        EXPECT_TRUE(FindControl<QWidget>(&d, CPickTerm::kIdShow)->isEnabled());
        QTest::mouseClick(FindControl<QPushButton>(&d, CPickTerm::kIdHelp), Qt::LeftButton);
        return int(kIdOk);
    });
    ASSERT_EQ(ModalRunner::Run(picker), kIdOk);
    EXPECT_EQ(picker.GetTermIndex(), 0);
    EXPECT_TRUE(m_reports.contains(QStringLiteral("Help topic: select_term_info")));
}
