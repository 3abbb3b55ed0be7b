#include "MultiBOMGenerator.h"

#include "ZelUtils.h"

#include <array>

namespace {

// Tested in this order; the first prefix that begins the key wins.
const std::array<QString, 6> kPrefixes = {
    QStringLiteral("MFG"), QStringLiteral("CAT"), QStringLiteral("ASSYCODE"),
    QStringLiteral("CNT"), QStringLiteral("UM"),  QStringLiteral("KVBLKNAM"),
};

bool IsNumber(const QString& text) {
    if (text.isEmpty()) {
        return false;
    }
    for (const QChar c : text) {
        if (c < u'0' || c > u'9') {
            return false;
        }
    }
    return true;
}

QString* FieldOf(MultiBOMGenerator::MultiBOMItem& item, const QString& name) {
    if (name == QLatin1String("MFG")) {
        return &item.strMfg;
    }
    if (name == QLatin1String("CAT")) {
        return &item.strCat;
    }
    if (name == QLatin1String("ASSYCODE")) {
        return &item.strAssyCode;
    }
    if (name == QLatin1String("CNT")) {
        return &item.strCnt;
    }
    if (name == QLatin1String("UM")) {
        return &item.strUm;
    }
    if (name == QLatin1String("KVBLKNAM")) {
        return &item.strBlockName;
    }
    return nullptr;
}

QStringList FieldsOf(const MultiBOMGenerator::MultiBOMItem& item) {
    return {item.strMfg, item.strCat, item.strAssyCode, item.strCnt, item.strUm, item.strBlockName};
}

QString Quoted(const QString& text) {
    return u'"' + text + u'"';
}

}  // namespace

void MultiBOMGenerator::Parse(QString text) {
    QString part;
    while (!text.isEmpty()) {
        if (!GetToken(text, part, QStringLiteral(";"))) {
            part = text;
            text.clear();
        }
        ParsePart(part);
    }
}

void MultiBOMGenerator::ParsePart(const QString& part) {
    const qsizetype equals = part.indexOf(u'=');
    if (equals <= 0) {
        return;
    }
    const QString key = part.left(equals);
    for (const QString& prefix : kPrefixes) {
        if (key.startsWith(prefix)) {
            const QString number = key.mid(prefix.size()).trimmed();
            if (IsNumber(number)) {
                SetField(prefix, number, part.mid(equals + 1));
            }
            return;
        }
    }
}

void MultiBOMGenerator::SetField(const QString& name, const QString& number, const QString& value) {
    MultiBOMItem* item = nullptr;
    for (MultiBOMItem& candidate : m_aItems) {
        if (candidate.strNumber == number) {
            item = &candidate;
            break;
        }
    }
    if (!item) {
        m_aItems.append(MultiBOMItem{number, {}, {}, {}, {}, {}, {}});
        item = &m_aItems.last();
    }
    if (QString* field = FieldOf(*item, name)) {
        *field = value;
    }
}

// The first version wrote two nil cells here for a row without items, but the caller's
// list end overwrote the link to them, so they never reached the Lisp side; writing
// nothing gives the same list.
void MultiBOMGenerator::AppendTo(HostValue& list) const {
    if (m_aItems.isEmpty()) {
        return;
    }
    list.begin().begin();
    for (const MultiBOMItem& item : m_aItems) {
        list.begin();
        for (const QString& field : FieldsOf(item)) {
            list.string(field);
        }
        list.end();
    }
    list.end().begin();
    for (const MultiBOMItem& item : m_aItems) {
        list.string(item.strNumber);
    }
    list.end().end();
}

void MultiBOMGenerator::ToText(QString& items, QString& numbers) const {
    items.clear();
    numbers.clear();
    if (m_aItems.isEmpty()) {
        return;
    }
    items = QStringLiteral("(");
    numbers = QStringLiteral("(");
    for (const MultiBOMItem& item : m_aItems) {
        QStringList fields;
        for (const QString& field : FieldsOf(item)) {
            fields.append(Quoted(field));
        }
        items += u'(' + fields.join(u' ') + u')';
        numbers += Quoted(item.strNumber) + u' ';
    }
    items += u')';
    numbers = numbers.trimmed() + u')';
}
