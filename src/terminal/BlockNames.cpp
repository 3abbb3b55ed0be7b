#include "BlockNames.h"

#include "ZelUtils.h"

namespace {

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
    if (!HasStyleSlot(blockFile)) {
        return blockFile;
    }
    return QStringLiteral("H") + CharAt(blockFile, 1) + u'?' + RestFrom(blockFile, 3);
}

bool BlockNames::HasStyleSlot(const QString& name) {
    if (GetCharCount(name) <= 2) {
        return false;
    }
    const QString third = CharAt(name, 2);
    const QString first = CharAt(name, 0).toUpper();
    return (IsDigit(third) || third == QLatin1String("?")) &&
           (first == QLatin1String("H") || first == QLatin1String("V"));
}

QString BlockNames::CharAt(const QString& text, int position) {
    return GetStringAtCharCount(text, position + 1)
        .mid(GetStringAtCharCount(text, position).size());
}

QString BlockNames::RestFrom(const QString& text, int position) {
    return text.mid(GetStringAtCharCount(text, position).size());
}
