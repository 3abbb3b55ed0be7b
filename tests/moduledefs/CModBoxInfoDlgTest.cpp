#include "BoxDialogFixture.h"
#include "CModBoxInfoDlg.h"
#include "ModalRunner.h"

using BoxDialog = BoxDialogFixture;
using Dlg = CModBoxInfoDlg;

// The 24 texts are group A's value and unit of fields 3, 4, 2, 1, 5, 6, then group B's.
TEST_F(BoxDialog, UnderACommaLocaleValuesShowWithACommaAndComeBackWithAPoint) {
    const CommaLocale comma;
    Dlg dialog;
    dialog.SetTexts(Texts(24, {{0, "2.5000"}, {1, "mm"}, {18, "1.25"}, {19, "in"}}));
    dialog.SetValueB2(QString());  // a null text does nothing
    QueuedModalScript script;
    script.push([](QDialog& d) {
        EXPECT_EQ(Shown(&d, Dlg::kIdValue1), QStringLiteral("2,5000"));
        Type(&d, Dlg::kIdValue1, QStringLiteral("2,5"));
        Type(&d, Dlg::kIdValue2, QStringLiteral("2.5"));
        Click(&d, Dlg::kIdGroupB);
        EXPECT_EQ(Shown(&d, Dlg::kIdValue1), QString());
        EXPECT_EQ(Shown(&d, Dlg::kIdValue4), QStringLiteral("1,25"));
        Click(&d, Dlg::kIdOk);
        return 0;
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdOk);
    EXPECT_TRUE(m_messages.shown.empty());
    EXPECT_EQ(dialog.GetTexts(),
              Texts(24, {{0, "2.5"}, {1, "mm"}, {2, "2.5"}, {18, "1.25"}, {19, "in"}}));
    EXPECT_EQ(dialog.GetValueA4(), QStringLiteral("2.5"));
    EXPECT_EQ(dialog.GetUnitB1(), QStringLiteral("in"));
}

TEST_F(BoxDialog, ABadValueKeepsTheUserOnTheGroupWithTheLaterBadValueSelected) {
    Dlg dialog;
    dialog.SetValueB1(QStringLiteral("4"));
    QueuedModalScript script;
    script.push([this](QDialog& d) {
        Type(&d, Dlg::kIdValue2, QStringLiteral("1x"));
        Type(&d, Dlg::kIdValue5, QStringLiteral("."));
        FindControl<QLineEdit>(&d, Dlg::kIdValue2)->setFocus();
        Click(&d, Dlg::kIdGroupB);
        EXPECT_EQ(ShownNumbers(), std::vector<int>{10123});
        EXPECT_EQ(m_messages.shown.at(0).caption, QStringLiteral("Invalid Number"));
        EXPECT_TRUE(Checked(&d, Dlg::kIdGroupA));
        EXPECT_FALSE(Checked(&d, Dlg::kIdGroupB));
        EXPECT_EQ(d.focusWidget(), FindControl<QLineEdit>(&d, Dlg::kIdValue5));
        EXPECT_EQ(FindControl<QLineEdit>(&d, Dlg::kIdValue5)->selectedText(), ".");

        Click(&d, Dlg::kIdOk);  // refused the same way
        EXPECT_EQ(ShownNumbers(), (std::vector<int>{10123, 10123}));
        Type(&d, Dlg::kIdValue5, QStringLiteral(".5"));
        Type(&d, Dlg::kIdValue2, QStringLiteral("1.2.3"));
        Click(&d, Dlg::kIdGroupB);
        EXPECT_TRUE(Checked(&d, Dlg::kIdGroupB));
        EXPECT_EQ(Shown(&d, Dlg::kIdValue4), QStringLiteral("4"));
        return 0;
    });
    EXPECT_EQ(ModalRunner::Run(dialog), kIdCancel);
    EXPECT_EQ(m_messages.shown.size(), 2U);
}

TEST_F(BoxDialog, OkChecksTheGroupsInOrderAndShowsTheGroupAtFault) {
    const struct {
        const char* name;
        QStringList texts;
        int message;  // 0: accepted
        int radio;    // of the group shown afterwards
        int focused;  // 0: not looked at
    } cases[] = {
        {"all empty", Texts(24, {}), 0, Dlg::kIdGroupA, 0},
        {"only value 5 of A", Texts(24, {{8, "3"}}), 5006, Dlg::kIdGroupA, 0},
        {"only unit 1 of B", Texts(24, {{19, "mm"}}), 5006, Dlg::kIdGroupB, 0},
        {"value 2 alone", Texts(24, {{4, "2"}, {16, "7"}}), 0, Dlg::kIdGroupA, 0},
        {"B lacks main values, A has a lone unit", Texts(24, {{0, "1"}, {11, "mm"}, {20, "5"}}),
         5006, Dlg::kIdGroupB, 0},
        {"a lone unit at field 6 of B", Texts(24, {{0, "1"}, {18, "2"}, {23, "in"}}), 5007,
         Dlg::kIdGroupB, Dlg::kIdValue6},
        {"lone units at fields 2 and 4 of A", Texts(24, {{5, "mm"}, {3, "mm"}, {6, "1"}}), 5007,
         Dlg::kIdGroupA, Dlg::kIdValue2},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        m_messages.shown.clear();
        Dlg dialog;
        dialog.SetTexts(c.texts);
        QueuedModalScript script;
        script.push([&c](QDialog& d) {
            Click(&d, Dlg::kIdOk);
            EXPECT_TRUE(Checked(&d, c.radio));
            if (c.focused != 0) {
                EXPECT_EQ(d.focusWidget(), FindControl<QLineEdit>(&d, c.focused));
            }
            return 0;
        });
        EXPECT_EQ(ModalRunner::Run(dialog), c.message == 0 ? kIdOk : kIdCancel);
        if (c.message == 0) {
            EXPECT_TRUE(m_messages.shown.empty());
            EXPECT_EQ(dialog.GetTexts(), c.texts);
        } else {
            EXPECT_EQ(ShownNumbers(), std::vector<int>{c.message});
            EXPECT_EQ(m_messages.shown.at(0).caption, QStringLiteral("Box Dimensions"));
        }
    }
}
