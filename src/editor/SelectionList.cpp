#include "SelectionList.h"

#include "CKVModule.h"
#include "CKVModuleDB.h"
#include "HostServices.h"
#include "ModDB.h"
#include "MultiBOMGenerator.h"
#include "SelectionChoices.h"
#include "ZelUtils.h"

#include <array>

namespace {

constexpr double kUnset = -1.0;

// The box values of one group as the list reads them, with the style row to fall back on.
class BoxSource {
public:
    BoxSource(const CKVModule& module, bool bGroupB) : m_module(module), m_bGroupB(bGroupB) {}

    double Value(int place) const { return m_module.GetBox(m_bGroupB, place); }
    const QString& Unit(int place) const { return m_module.GetUnit(m_bGroupB, place); }
    QString Formatted(int place) const { return FormatDimension(Value(place), Unit(place)); }
    bool ReadStyle(CKVModuleDB& db, int style) { return db.GetStyleBox(style, m_style); }
    QString StyleText(int place) const { return m_style.Box[(m_bGroupB ? 6 : 0) + place - 1]; }

private:
    const CKVModule& m_module;
    bool m_bGroupB;
    ModDB::StyleBoxData m_style;
};

// The order in which places 2, 1, 3 and 4 stand in the module list.
constexpr std::array<int, 4> kFrontPlaces = {2, 1, 3, 4};

bool AnyFrontPlaceUnset(const BoxSource& boxes) {
    for (int place : kFrontPlaces) {
        if (boxes.Value(place) == kUnset) {
            return true;
        }
    }
    return false;
}

// Place 6 (or 5) follows place 4 (or 3): from the style row when that one came from there,
// else the module's own value, falling back on the partner's value but keeping its own unit.
void AppendTailDimension(const BoxSource& boxes, int place, int partner, bool bPartnerFromStyle,
                         HostValue& list) {
    if (bPartnerFromStyle) {
        const QString text = boxes.StyleText(place);
        AppendDimension(text.isEmpty() ? boxes.StyleText(partner) : text, list);
        return;
    }
    const double value = boxes.Value(place) == kUnset ? boxes.Value(partner) : boxes.Value(place);
    AppendDimension(FormatDimension(value, boxes.Unit(place)), list);
}

void AppendModuleHead(const CKVModule& module, HostValue& list) {
    list.begin()
        .string(module.GetCatalog())
        .string(module.GetManufacturer())
        .string(module.GetDescription())
        .string(module.GetColText3())
        .string(QString());
}

void AppendModuleTail(const CKVModule& module, const BoxSource& boxes, bool bFromStyle3,
                      bool bFromStyle4, HostValue& list) {
    list.string(module.GetAddrBase());
    if (module.GetSpecNote().isEmpty()) {
        list.nil();
    } else {
        list.begin().string(module.GetSpecNote()).end();
    }
    AppendTailDimension(boxes, 6, 4, bFromStyle4, list);
    AppendTailDimension(boxes, 5, 3, bFromStyle3, list);
    list.string(module.GetColText1()).string(module.GetSpecTail()).end();
}

// Appends the module list; false when it had to stop after its five leading strings.
bool AppendModuleList(const CKVModule& module, CKVModuleDB* db, int style, bool bGroupB,
                      HostValue& list) {
    BoxSource boxes(module, bGroupB);
    AppendModuleHead(module, list);
    bool bFromStyle3 = false;
    bool bFromStyle4 = false;
    if (!AnyFrontPlaceUnset(boxes)) {
        for (int place : kFrontPlaces) {
            AppendDimension(boxes.Formatted(place), list);
        }
    } else if (!db || !db->IsOpen()) {
        return false;
    } else if (boxes.ReadStyle(*db, style)) {
        for (int place : kFrontPlaces) {
            const bool bFromStyle = boxes.Value(place) == kUnset;
            AppendDimension(bFromStyle ? boxes.StyleText(place) : boxes.Formatted(place), list);
            bFromStyle3 = bFromStyle3 || (place == 3 && bFromStyle);
            bFromStyle4 = bFromStyle4 || (place == 4 && bFromStyle);
        }
    }
    AppendModuleTail(module, boxes, bFromStyle3, bFromStyle4, list);
    return true;
}

// Include/exclude value 1 (exclude) keeps a row out of B, 2 (include) out of A; rows with
// neither or both go into both lists.
void AppendTermLists(const CKVModule& module, HostValue& list) {
    HostValue listA;
    HostValue listB;
    bool bBreak = false;
    listA.begin();
    listB.begin();
    for (int row = 1; row <= module.GetTermCount(); ++row) {
        bBreak = bBreak || module.GetBreak(row) != 0;
        const int flags = module.GetIncludeExclude(row);
        if (flags != 2) {
            AppendTermRow(module, row, listA);
        }
        if (flags != 1) {
            AppendTermRow(module, row, listB);
        }
    }
    listA.end();
    listB.end();
    list.append(listA).append(listB);
    if (bBreak) {
        list.begin().t().end();
    } else {
        list.nil();
    }
}

}  // namespace

void AppendTermRow(const CKVModule& module, int row, HostValue& list) {
    const QString special = module.GetTermSpecial(row);
    list.begin().string(module.GetTermText(row)).begin();
    QString rest = special;
    QString name;
    QString value;
    while (CKVModule::NextAttrPair(rest, name, value)) {
        list.begin().string(name).string(value).end();
    }
    list.end();
    MultiBOMGenerator items;
    items.Parse(special);
    items.AppendTo(list);
    list.end();
}

QString FormatDimension(double value, const QString& unit) {
    return HostRealToString(value, 2, -1) + u' ' + unit;
}

void AppendDimension(const QString& text, HostValue& list) {
    list.begin();
    if (text.isEmpty()) {
        list.string(QStringLiteral("0.0")).end();
        return;
    }
    QString rest = text;
    QString token;
    int count = 0;
    auto appendToken = [&](const QString& value) {
        if (count == 1) {
            list.begin();  // every token behind the number shares one nested list
        }
        list.string(value);
        ++count;
    };
    while (GetToken(rest, token, QStringLiteral(" "))) {
        appendToken(token);
    }
    if (!rest.isEmpty()) {
        appendToken(rest);
    }
    if (count > 1) {
        list.end();
    }
    list.end();
}

bool BuildSelectionList(CKVModule& module, CKVModuleDB* db, int style, bool bGroupB,
                        HostValue& out) {
    out.clear();
    module.ApplyPrompts();
    if (!AppendModuleList(module, db, style, bGroupB, out)) {
        // An unset box value with no open store to fall back on: the answer is the
        // module's five leading strings, left unclosed, with the choices hung behind
        // them. That is the form the selection has always answered in this case, so it
        // is kept rather than repaired; the dialog's tree holds its store open, so only
        // a caller without a store can get here.
        return true;
    }
    AppendTermLists(module, out);
    return true;
}

bool BuildSelectionAnswer(CKVModule& module, CKVModuleDB* db, const SelectionChoices& choices,
                          bool bGroupB, HostValue& out) {
    if (!BuildSelectionList(module, db, choices.Style(), bGroupB, out)) {
        return false;
    }
    choices.AppendTo(out);
    return true;
}
