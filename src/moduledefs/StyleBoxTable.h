#pragma once

#include "ModDB.h"

#include <QList>
#include <QString>
#include <QStringList>

// What the check of a group's twelve texts found: the message to show (0 when the texts
// pass), its caption, and the screen place (1 to 6) whose value edit takes the focus, 0
// when none does; a bad number is selected there as well.
struct StyleFieldCheck {
    int nMessage = 0;
    int nCaption = 0;
    int nPlace = 0;
    bool bSelectText = false;
    bool IsGood() const { return nMessage == 0; }
};

// The bounds of the nine symbol styles as their dialog edits them: the nine style rows of
// the store, held with the locale's decimal separator, and the texts of the style being
// edited, split into its two groups. A group is twelve texts, the value and the unit of
// each screen place (BoxTextOrder).
class StyleBoxTable {
public:
    static constexpr int kStyleCount = 9;
    static constexpr int kGroupTextCount = 12;

    StyleBoxTable();

    // Reads the nine rows through a connection of its own. False, with no rows, when the
    // store does not open; LastFailure says why.
    bool Load(const QString& dbPath);
    // Keeps the groups in the current style's row, then writes all nine rows, "." again
    // the separator, in one transaction. False, with nothing written, when there are no
    // rows or the store does not open or refuses the rows; LastFailure says why.
    bool Save(const QString& dbPath);
    const QString& LastFailure() const { return m_strFailure; }

    bool IsLoaded() const { return m_aStyles.size() == kStyleCount; }
    // The row of style 1 to 9 as held; an empty row for any other number.
    const ModDB::StyleBoxData& Row(int style) const;
    // The style whose texts are in the groups; -1 before the first.
    int CurrentStyle() const { return m_nCurStyle; }

    // Keeps the groups in the current style's row, then takes the texts of this style into
    // the groups. Does nothing for a style outside 1 to 9 or before the rows are loaded.
    void SelectStyle(int style);
    const QStringList& Group(bool bGroupB) const { return bGroupB ? m_aGroupB : m_aGroupA; }
    // Checks the twelve shown texts of a group; when they pass they become the group's.
    StyleFieldCheck StoreGroup(bool bGroupB, const QStringList& shown);

    // The style dialog's checks, stricter than the module's: a group with any text needs
    // all of values 1 to 4.
    static StyleFieldCheck CheckFields(const QStringList& twelve);
    // Splits a row's texts of one group into twelve. A text without a blank is all value;
    // an empty side of a text with a blank keeps what twelve held there.
    static void SplitGroup(const ModDB::StyleBoxData& row, bool bGroupB, QStringList& twelve);
    // Joins twelve into the row's texts of one group: a value alone, value and unit with
    // one blank between, or nothing when the value is empty.
    static void JoinGroup(const QStringList& twelve, bool bGroupB, ModDB::StyleBoxData& row);

private:
    void KeepGroups();

    QList<ModDB::StyleBoxData> m_aStyles;
    QStringList m_aGroupA;
    QStringList m_aGroupB;
    int m_nCurStyle = -1;
    QString m_strFailure;
};
