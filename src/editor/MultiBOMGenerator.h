#pragma once

#include "HostValue.h"

#include <QList>
#include <QString>

// The extra bill-of-material lines of one terminal row. A row's special part may carry
// keys made of a prefix and a number (MFG1, CAT1, CNT1 ...); each number is one further
// catalog item of the terminal, and the symbol builder attaches those to it.
class MultiBOMGenerator {
public:
    // One extra catalog line; every field stays text.
    struct MultiBOMItem {
        QString strNumber;  // the digits behind the prefix: the item's identity
        QString strMfg;
        QString strCat;
        QString strAssyCode;
        QString strCnt;
        QString strUm;
        QString strBlockName;
    };

    // Reads the ";"-separated keys of a row's special part; tokens that are not a known
    // prefix followed by digits are passed over.
    void Parse(QString text);
    // Finds the item of the number (compared exactly, so "01" is not "1") or appends one,
    // then sets the field of the prefix name; a later value overwrites an earlier one.
    void SetField(const QString& name, const QString& number, const QString& value);
    // Appends ((ITEM ...) (NUMBER ...)), each ITEM the six strings of one item. With no
    // items nothing is appended, so the row entry keeps two members.
    void AppendTo(HostValue& list) const;
    // The same data as printed Lisp text; both texts are empty when there are no items.
    void ToText(QString& items, QString& numbers) const;

    const QList<MultiBOMItem>& Items() const { return m_aItems; }

private:
    void ParsePart(const QString& part);

    QList<MultiBOMItem> m_aItems;  // in order of each number's first appearance
};
