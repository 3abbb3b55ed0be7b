#include "BlockNames.h"

#include "ZelUtils.h"

namespace {

// The character at a character position (surrogate pairs count as one), empty past the end.
QString CharAt(const QString& text, int position) {
    return GetStringAtCharCount(text, position + 1)
        .mid(GetStringAtCharCount(text, position).size());
}

// The text from a character position on.
QString RestFrom(const QString& text, int position) {
    return text.mid(GetStringAtCharCount(text, position).size());
}

bool IsDigit(const QString& character) {
    return character.size() == 1 && character[0] >= u'0' && character[0] <= u'9';
}

}  // namespace

QString BlockNames::ModuleForm(const QString& blockFile) {
    if (GetCharCount(blockFile) <= 2 || !IsDigit(CharAt(blockFile, 2))) {
        return blockFile;
    }
    const QString prefix = blockFile.left(2).toUpper();
    if (prefix != QLatin1String("HP") && prefix != QLatin1String("VP")) {
        return blockFile;
    }
    const QString first = prefix == QLatin1String("VP") ? QStringLiteral("H") : blockFile.left(1);
    return first + blockFile.mid(1, 1) + u'?' + RestFrom(blockFile, 3);
}

QString BlockNames::SearchForm(const QString& blockFile) {
    if (GetCharCount(blockFile) <= 2) {
        return blockFile;
    }
    const QString third = CharAt(blockFile, 2);
    const QString first = CharAt(blockFile, 0);
    const bool styled = IsDigit(third) || third == QLatin1String("?");
    const bool family = first == QLatin1String("H") || first == QLatin1String("V") ||
                        first == QLatin1String("h") || first == QLatin1String("v");
    if (!styled || !family) {
        return blockFile;
    }
    return QStringLiteral("H") + CharAt(blockFile, 1) + u'?' + RestFrom(blockFile, 3);
}
