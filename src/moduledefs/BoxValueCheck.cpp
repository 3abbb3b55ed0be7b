#include "BoxValueCheck.h"

#include "BoxTextOrder.h"
#include "ZelUtils.h"

namespace {

// The fields whose values give a box its size; the others are optional.
constexpr int kMainFields[] = {1, 2, 3, 4};

bool IsSeparatorChar(QChar ch, const QString& localeSep) {
    return ch == u'.' || localeSep.contains(ch);
}

// Where the value of a screen place lies among the twelve texts; its unit follows.
qsizetype ValueSlot(int place) {
    return 2 * qsizetype(place - 1);
}

QString ValueAt(const QStringList& twelve, int place) {
    return twelve.value(ValueSlot(place));
}

QString UnitAt(const QStringList& twelve, int place) {
    return twelve.value(ValueSlot(place) + 1);
}

QString MainValue(const QStringList& twelve, int field) {
    return ValueAt(twelve, BoxTextOrder::ScreenPlaceOf(field));
}

bool HasAnyText(const QStringList& twelve) {
    for (const QString& text : twelve) {
        if (!text.isEmpty()) {
            return true;
        }
    }
    return false;
}

// The locale's separator when it differs from the stored "."; empty otherwise.
QString ForeignSeparator() {
    const QString sep = GetLocaleDecimalSep();
    return sep == QLatin1String(".") ? QString() : sep;
}

}  // namespace

bool BoxValueCheck::IsGoodValue(const QString& text) {
    const QString localeSep = GetLocaleDecimalSep();
    bool bOnlySeparators = true;
    for (const QChar ch : text) {
        if (IsSeparatorChar(ch, localeSep)) {
            continue;
        }
        if (ch < u'0' || ch > u'9') {
            return false;
        }
        bOnlySeparators = false;
    }
    return text.isEmpty() || !bOnlySeparators;
}

int BoxValueCheck::LastBadPlace(const QStringList& twelve) {
    for (int place = BoxTextOrder::kFieldCount; place >= 1; --place) {
        if (!IsGoodValue(ValueAt(twelve, place))) {
            return place;
        }
    }
    return 0;
}

bool BoxValueCheck::LacksAllMainValues(const QStringList& twelve) {
    if (!HasAnyText(twelve)) {
        return false;
    }
    for (const int field : kMainFields) {
        if (!MainValue(twelve, field).isEmpty()) {
            return false;
        }
    }
    return true;
}

bool BoxValueCheck::LacksAnyMainValue(const QStringList& twelve) {
    if (!HasAnyText(twelve)) {
        return false;
    }
    for (const int field : kMainFields) {
        if (MainValue(twelve, field).isEmpty()) {
            return true;
        }
    }
    return false;
}

int BoxValueCheck::FirstUnitWithoutValue(const QStringList& twelve) {
    for (int place = 1; place <= BoxTextOrder::kFieldCount; ++place) {
        if (ValueAt(twelve, place).isEmpty() && !UnitAt(twelve, place).isEmpty()) {
            return place;
        }
    }
    return 0;
}

QString BoxValueCheck::ToLocaleSeparator(const QString& text) {
    const QString sep = ForeignSeparator();
    if (sep.isEmpty()) {
        return text;
    }
    QString result = text;
    return result.replace(u'.', sep);
}

QString BoxValueCheck::ToPointSeparator(const QString& text) {
    const QString sep = ForeignSeparator();
    if (sep.isEmpty()) {
        return text;
    }
    QString result = text;
    return result.replace(sep, QLatin1String("."));
}
