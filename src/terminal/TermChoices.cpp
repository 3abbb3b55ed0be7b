#include "TermChoices.h"

#include "ResourceLibrary.h"

QStringList TermChoices::Lines(int number) {
    QStringList lines = LoadResString(number).split(QStringLiteral("\r\n"));
    if (!lines.isEmpty() && lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}
