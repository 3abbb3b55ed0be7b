#include "BoxTextOrder.h"

namespace BoxTextOrder {

namespace {
constexpr int kScreenFields[kFieldCount] = {3, 4, 2, 1, 5, 6};
}

int FieldAt(int screenPlace) {
    return screenPlace >= 1 && screenPlace <= kFieldCount ? kScreenFields[screenPlace - 1] : 0;
}

int ScreenPlaceOf(int field) {
    for (int place = 1; place <= kFieldCount; ++place) {
        if (kScreenFields[place - 1] == field) {
            return place;
        }
    }
    return 0;
}

int ValueIndex(bool bGroupB, int field) {
    const int place = ScreenPlaceOf(field);
    if (place == 0) {
        return -1;
    }
    return (bGroupB ? 2 * kFieldCount : 0) + 2 * (place - 1);
}

int UnitIndex(bool bGroupB, int field) {
    const int value = ValueIndex(bGroupB, field);
    return value < 0 ? -1 : value + 1;
}

}  // namespace BoxTextOrder
