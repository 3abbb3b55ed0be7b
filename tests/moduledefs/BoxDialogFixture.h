#pragma once

#include "DialogControls.h"
#include "StandaloneHost.h"
#include "TestSupport.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QLocale>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

// A user whose locale writes decimals with a comma, for as long as the object lives.
struct CommaLocale {
    CommaLocale() { QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany)); }
    ~CommaLocale() { QLocale::setDefault(m_previous); }
    QLocale m_previous;
};

// count empty texts with the given ones set by index.
inline QStringList Texts(int count, std::initializer_list<std::pair<int, const char*>> set) {
    QStringList texts(count);
    for (const auto& [index, text] : set) {
        texts[index] = QString::fromUtf8(text);
    }
    return texts;
}

// Replaces the text of an edit as a user does: a click into it, select all, delete, type.
inline void Type(QWidget* dialog, int id, const QString& text) {
    auto* edit = FindControl<QLineEdit>(dialog, id);
    ASSERT_NE(edit, nullptr) << id;
    QTest::mouseClick(edit, Qt::LeftButton);
    QTest::keyClick(edit, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClick(edit, Qt::Key_Delete);
    QTest::keyClicks(edit, text);
}

// Clicks a button near its left edge, where a radio button has its circle.
inline void Click(QWidget* dialog, int id) {
    auto* button = FindControl<QAbstractButton>(dialog, id);
    ASSERT_NE(button, nullptr) << id;
    QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(6, button->height() / 2));
}

inline QString Shown(QWidget* dialog, int id) {
    return FindControl<QLineEdit>(dialog, id)->text();
}

inline bool Checked(QWidget* dialog, int id) {
    return FindControl<QAbstractButton>(dialog, id)->isChecked();
}

// The program's message texts, a host that reports help topics and a user whose
// messages are scripted; the dialogs are driven with the keyboard and the mouse.
class BoxDialogFixture : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_texts.loaded()) << qPrintable(m_texts.error());
        m_host.setReporter([this](const QString& text) { m_reports << text; });
        SetCurrentHost(&m_host);
    }
    void TearDown() override { SetCurrentHost(nullptr); }
    std::vector<int> ShownNumbers() const {
        std::vector<int> numbers;
        for (const MessageRequest& request : m_messages.shown) {
            numbers.push_back(request.number);
        }
        return numbers;
    }

    ProgramTexts m_texts;
    StandaloneHost m_host;
    QStringList m_reports;
    ScriptedMessages m_messages;
};
