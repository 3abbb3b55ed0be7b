#pragma once

#include "Export.h"

#include <QImage>

// A copy of source at newWidth by newHeight, scaled on 24-bit pixel rows with 12-bit
// fixed-point weights: enlarging blends each target pixel from the source pixel under it
// and the next, shrinking sums every source pixel into the target pixel under it and the
// next. Offered to the family's other plug-ins beside the entry point.
//
// A pair where one side grows and the other shrinks is not served: only the first
// pass's size, newHeight at the old width, is kept, and the other side is then scaled
// from the unscaled rows, from the bottom line up (lines the source lacks read black).
// Callers scale such a pair in two steps. A null source or a size below 1 gives a null
// image.
PLCDB_EXPORT QImage ScaleBitmapInt(const QImage& source, int newWidth, int newHeight);
