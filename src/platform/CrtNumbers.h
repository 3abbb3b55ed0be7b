#pragma once

#include <QString>

// Lenient number readers in the manner of the C runtime: leading blanks are skipped,
// the longest leading number is read, the rest is ignored, and 0 comes back when the
// text does not start with a number. The decimal separator is always ".".
// A real too small to represent reads as 0; one too large reads as the largest finite
// double of its sign, so that no reader hands on an infinite value.
namespace crt {

double wtof(const QString& text);
int wtoi(const QString& text);
long wtol(const QString& text);

}  // namespace crt
