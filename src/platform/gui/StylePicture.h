#pragma once

#include "CDib.h"

#include <QString>

// The picture of a symbol style as the dialogs show it: "style<n><suffix>.bmp" looked up
// on the host's support path (the plain name when it is not there), a bitmap stretched to
// 162 by 115 at the monitor's scale; the program's bitmap 201 when no picture loads.
class StylePicture {
public:
    static constexpr int kWidth = 162;
    static constexpr int kHeight = 115;
    static constexpr int kMissingBitmap = 201;

    // suffix is "h", "v" or empty.
    static QString FileName(int style, const QString& suffix);
    static CDib Load(int style, const QString& suffix);
};
