#pragma once

// The twelve box dimensions of a module as the definition dialogs hold them: 24 texts,
// the value and the unit of each field of group A in screen order, then those of group
// B. The screen shows the six fields of a group in the order 3, 4, 2, 1, 5, 6.
namespace BoxTextOrder {

constexpr int kFieldCount = 6;
constexpr int kTextCount = 24;

// The field (1 to 6) shown at a screen place (1 to 6); 0 outside.
int FieldAt(int screenPlace);
// The screen place (1 to 6) of a field (1 to 6); 0 outside.
int ScreenPlaceOf(int field);
// Where the value and the unit of a field (1 to 6) of group A or B lie among the 24
// texts; -1 for a field outside 1 to 6.
int ValueIndex(bool bGroupB, int field);
int UnitIndex(bool bGroupB, int field);

}  // namespace BoxTextOrder
