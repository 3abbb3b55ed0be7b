#pragma once

#include <QString>

// Lenient number readers in the manner of the C runtime: leading blanks are skipped,
// the longest leading number is read, the rest is ignored, and 0 comes back when the
// text does not start with a number. The decimal separator is always ".".
namespace crt {

double wtof(const QString& text);
int wtoi(const QString& text);
long wtol(const QString& text);

}  // namespace crt
