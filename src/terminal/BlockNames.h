#pragma once

#include <QString>

// The two forms of a terminal block name. The first character is the orientation (H or
// V), the third the style digit, or "?" for any style.
class BlockNames {
public:
    // What a module stores: a name of the HP or VP family with a style digit becomes the
    // horizontal name for any style (VP2ABC -> HP?ABC, vp2abc -> Hp?abc); others stay.
    static QString ModuleForm(const QString& blockFile);
    // What a stored name is looked up by: any name of more than two characters that
    // starts with H or V and has a digit or "?" third becomes "H", its second character,
    // "?" and the rest (VP2ABC, HP1ABC and hp?ABC all give H?-forms of ABC).
    static QString SearchForm(const QString& blockFile);
    // A name whose orientation and style can be read: more than two characters, H or V
    // (either case) first and a digit or "?" third.
    static bool HasStyleSlot(const QString& name);

    // Characters of a name as the user sees them (a surrogate pair counts as one): the
    // one at a position from 0, empty past the end, and the text from a position on.
    static QString CharAt(const QString& text, int position);
    static QString RestFrom(const QString& text, int position);
};
