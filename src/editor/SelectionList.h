#pragma once

#include "HostValue.h"

#include <QString>

class CKVModule;
class CKVModuleDB;
class SelectionChoices;

// The answer of a module selection, built without widgets so that the selection dialog
// and the command line give the Lisp side the same list.

// One terminal row entry: (TEXT ((NAME VALUE) ...)) and, when the row carries extra
// catalog items, a third member with them.
void AppendTermRow(const CKVModule& module, int row, HostValue& list);

// The text of a box value: the host's linear form of the number, a blank and the unit.
QString FormatDimension(double value, const QString& unit);

// A dimension entry cut at blanks: "" gives ("0.0"), "a" gives (a), "a b c" (a (b c)).
void AppendDimension(const QString& text, HostValue& list);

// Places the prompts and builds the module list, list A, list B and the break flag of a
// module loaded with its rows into out. Unset box values fall back on the row of the
// style in db; with no open db and an unset value of places 1 to 4 the answer stops
// after the module's five leading strings. False when nothing can be answered.
bool BuildSelectionList(CKVModule& module, CKVModuleDB* db, int style, bool bGroupB,
                        HostValue& out);

// The five elements of a selection's answer for the user's choices, chained into out;
// the host wraps them into one list when it answers.
bool BuildSelectionAnswer(CKVModule& module, CKVModuleDB* db, const SelectionChoices& choices,
                          bool bGroupB, HostValue& out);
