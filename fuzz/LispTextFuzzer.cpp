// Lisp text as the command line reads it: one datum, and a call. Whatever reads prints
// as text that reads again to the same print, and a refusal names its cause in a
// message of bounded size. Then the same bytes as a list of typed cells, as the host's
// answers are: every balanced list prints as one datum that reads back.

#include "FuzzSupport.h"
#include "HostValue.h"
#include "LispText.h"

#include <cstring>

namespace {

constexpr qsizetype kMaxMessage = 400;
// The reader refuses lists nested deeper than 1000 levels, to keep its stack; cell lists
// stay below that.
constexpr int kMaxDepth = 900;

void CheckReadsBack(const HostValue& value, const char* what) {
    const QString printed = LispText::Print(HostValue().begin().append(value).end());
    HostValue back;
    QString error;
    FuzzCheck(LispText::Read(printed, back, &error), what, printed + u'\n' + error);
    FuzzCheck(LispText::Print(back) == printed, "a printed value reads back to the same print",
              printed + u'\n' + LispText::Print(back));
}

void CheckRefusal(const QString& error) {
    FuzzCheck(!error.isEmpty(), "a refused text has a reason");
    FuzzCheck(error.size() <= kMaxMessage, "a reason quotes only an excerpt", error);
}

// Cells from bytes: a type byte, then the payload the type needs.
HostValue CellsFrom(const uint8_t* data, size_t size) {
    HostValue value;
    int depth = 0;
    size_t pos = 0;
    while (pos < size) {
        const uint8_t kind = data[pos++] % 8;
        if (kind == 0 && pos + sizeof(double) <= size) {
            double real = 0.0;
            std::memcpy(&real, data + pos, sizeof real);
            pos += sizeof real;
            value.real(real);
        } else if (kind == 1 && pos + 2 <= size) {
            value.shortInt(short(data[pos] | data[pos + 1] << 8));
            pos += 2;
        } else if (kind == 2 && pos < size) {
            const size_t wanted = data[pos++] % 16;
            const size_t length = qMin<size_t>(wanted, (size - pos) / 2);
            QString text;
            for (size_t i = 0; i < length; ++i, pos += 2) {
                text += QChar(char16_t(data[pos] | data[pos + 1] << 8));
            }
            value.string(text);
        } else if (kind == 3) {
            value.nil();
        } else if (kind == 4) {
            value.t();
        } else if (kind == 5 && depth < kMaxDepth) {
            value.begin();
            ++depth;
        } else if (kind == 6 && depth > 0) {
            value.end();
            --depth;
        } else if (kind == 7 && pos < size) {
            value.append(HostCell::Marker(short(data[pos++])));  // no printed form
        }
    }
    for (; depth > 0; --depth) {
        value.end();
    }
    return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString text = FuzzText(data, size);
    HostValue value;
    QString error;
    if (LispText::Read(text, value, &error)) {
        CheckReadsBack(value, "a datum that reads prints as text that reads");
    } else {
        CheckRefusal(error);
    }
    QString name;
    HostValue args;
    error.clear();
    if (LispText::ReadCall(text, name, args, &error)) {
        FuzzCheck(!name.isEmpty(), "a call that reads has a name");
        CheckReadsBack(args, "the arguments of a call print as text that reads");
    } else {
        CheckRefusal(error);
    }
    CheckReadsBack(CellsFrom(data, size), "every balanced cell list prints as text that reads");
    return 0;
}
