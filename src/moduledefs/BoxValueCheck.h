#pragma once

#include <QString>
#include <QStringList>

// The checks of box dimension texts that the module's and the style table's dialogs
// share. "twelve" is one group: value,unit per screen place (BoxTextOrder).
class BoxValueCheck {
public:
    // Empty is good; else only digits and separators ("." and the locale's), and not
    // only separators. No further syntax: "1.2.3" and ".5" are good.
    static bool IsGoodValue(const QString& text);
    // Screen place (1-6) of the LAST bad value among the six values of twelve; 0 if none.
    static int LastBadPlace(const QStringList& twelve);
    // True when some text of the group is non-empty and values of fields 1,2,3,4 are
    // ALL empty (the module dialog's rule: one of the four is enough).
    static bool LacksAllMainValues(const QStringList& twelve);
    // True when some text is non-empty and ANY of values 1-4 is empty (style rule).
    static bool LacksAnyMainValue(const QStringList& twelve);
    // Screen place of the first field, in screen order, with an empty value and a
    // non-empty unit; 0 if none.
    static int FirstUnitWithoutValue(const QStringList& twelve);
    // "." -> locale separator (when that is non-empty and not "."), and back.
    static QString ToLocaleSeparator(const QString& text);
    static QString ToPointSeparator(const QString& text);
};
