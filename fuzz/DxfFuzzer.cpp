// The drawing reader on any bytes: it answers or names a cause in a message of bounded
// size, and what it hands over has a finite extent, since numbers beyond any drawing
// are refused.

#include "DxfReader.h"
#include "FuzzSupport.h"

#include <cmath>

namespace {

bool Finite(const QRectF& box) {
    return std::isfinite(box.left()) && std::isfinite(box.right()) && std::isfinite(box.top()) &&
           std::isfinite(box.bottom());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    DxfDrawing drawing;
    QString error;
    if (!DxfReader::ReadText(FuzzBytes(data, size), drawing, &error)) {
        FuzzCheck(!error.isEmpty(), "a refused drawing has a reason");
        FuzzCheck(error.size() <= 400, "a reason quotes only an excerpt", error);
    }
    FuzzCheck(Finite(drawing.bounds()), "what a drawing holds has a finite extent");
    return 0;
}
