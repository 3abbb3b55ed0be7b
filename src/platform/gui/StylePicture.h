#pragma once

#include "CDib.h"

#include <QString>

class QButtonGroup;
class QGroupBox;
class QLabel;
class QWidget;

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

    // The nine style buttons, three by three in a box titled "Style": style n has the
    // number firstId + n - 1 and the index n - 1 in group.
    static QGroupBox* MakeStyleButtons(QWidget* parent, QButtonGroup* group, int firstId);
    // The framed control a style picture is shown in, of the picture's size.
    static QLabel* MakePictureControl(QWidget* parent, int id);
};
