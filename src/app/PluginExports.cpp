// The plug-in offers a few functions beside its entry point to the family's other
// plug-ins. They come from static libraries, and the linker takes an object of a static
// library only when something refers to it, so this table refers to each.
#include "ScaleBitmapInt.h"

namespace {
[[gnu::used]] QImage (*const kScaleBitmapInt)(const QImage&, int, int) = &ScaleBitmapInt;
}  // namespace
