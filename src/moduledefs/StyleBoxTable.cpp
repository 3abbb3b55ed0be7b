#include "StyleBoxTable.h"

#include "BoxTextOrder.h"
#include "BoxValueCheck.h"
#include "CKVModule.h"
#include "CKVModuleDB.h"

namespace {

constexpr int kMsgBadNumber = 10123;
constexpr int kCapBadNumber = 10122;
constexpr int kMsgMainValues = 5006;
constexpr int kMsgUnitWithoutValue = 5007;
constexpr int kCapBoxDimensions = 5005;

// The row's text of a field (1 to 6) of a group.
int BoxIndex(bool bGroupB, int field) {
    return (bGroupB ? BoxTextOrder::kFieldCount : 0) + field - 1;
}

// Where the value and the unit of a screen place (1 to 6) lie among a group's twelve texts.
qsizetype ValueSlot(int place) {
    return 2 * qsizetype(place - 1);
}
qsizetype UnitSlot(int place) {
    return ValueSlot(place) + 1;
}

// Exactly twelve texts, none null: missing ones are empty, surplus ones dropped.
QStringList Twelve(const QStringList& texts) {
    QStringList twelve = texts.mid(0, StyleBoxTable::kGroupTextCount);
    while (twelve.size() < StyleBoxTable::kGroupTextCount) {
        twelve.append(QStringLiteral(""));
    }
    for (QString& text : twelve) {
        if (text.isNull()) {
            text = QStringLiteral("");
        }
    }
    return twelve;
}

QString FailureOf(const CKVModuleDB& db) {
    const QString reason = db.GetLastFailure();
    return reason.isEmpty() ? QStringLiteral("the store answered error %1").arg(db.GetLastError())
                            : reason;
}

}  // namespace

StyleBoxTable::StyleBoxTable() : m_aGroupA(Twelve({})), m_aGroupB(Twelve({})) {}

bool StyleBoxTable::Load(const QString& dbPath) {
    m_aStyles.clear();
    m_nCurStyle = -1;
    m_strFailure.clear();
    CKVModuleDB db;
    if (!db.Open(dbPath)) {
        m_strFailure = FailureOf(db);
        return false;
    }
    for (int style = 1; style <= kStyleCount; ++style) {
        // A style the store lacks shows empty, and saving adds its row.
        ModDB::StyleBoxData row;
        db.GetStyleBox(style, row);
        // The units too: they go back the same way on saving.
        for (QString& text : row.Box) {
            text = BoxValueCheck::ToLocaleSeparator(text);
        }
        m_aStyles.append(row);
    }
    db.Close();
    return true;
}

bool StyleBoxTable::Save(const QString& dbPath) {
    m_strFailure.clear();
    if (!IsLoaded()) {
        m_strFailure = QStringLiteral("the style rows were never read");
        return false;
    }
    KeepGroups();
    CKVModuleDB db;
    if (!db.Open(dbPath)) {
        m_strFailure = FailureOf(db);
        return false;
    }
    bool bWritten = db.BeginTransaction();
    for (int style = 1; bWritten && style <= kStyleCount; ++style) {
        ModDB::StyleBoxData row = m_aStyles[style - 1];
        for (QString& text : row.Box) {
            text = BoxValueCheck::ToPointSeparator(text);
        }
        // The store answers nothing here; a refusal leaves its text.
        db.UpdateStyleBox(style, row);
        bWritten = db.GetLastFailure().isEmpty();
    }
    bWritten = bWritten && db.CommitTransaction();
    if (!bWritten) {
        m_strFailure = FailureOf(db);
        db.RollbackTransaction();
    }
    db.Close();
    return bWritten;
}

const ModDB::StyleBoxData& StyleBoxTable::Row(int style) const {
    static const ModDB::StyleBoxData kNoRow;
    return style >= 1 && style <= m_aStyles.size() ? m_aStyles[style - 1] : kNoRow;
}

void StyleBoxTable::SelectStyle(int style) {
    if (style < 1 || style > kStyleCount || !IsLoaded()) {
        return;
    }
    KeepGroups();
    SplitGroup(m_aStyles[style - 1], false, m_aGroupA);
    SplitGroup(m_aStyles[style - 1], true, m_aGroupB);
    m_nCurStyle = style;
}

StyleFieldCheck StyleBoxTable::StoreGroup(bool bGroupB, const QStringList& shown) {
    const QStringList twelve = Twelve(shown);
    const StyleFieldCheck check = CheckFields(twelve);
    if (check.IsGood()) {
        (bGroupB ? m_aGroupB : m_aGroupA) = twelve;
    }
    return check;
}

StyleFieldCheck StyleBoxTable::CheckFields(const QStringList& twelve) {
    const QStringList texts = Twelve(twelve);
    if (const int place = BoxValueCheck::LastBadPlace(texts)) {
        return {kMsgBadNumber, kCapBadNumber, place, true};
    }
    if (BoxValueCheck::LacksAnyMainValue(texts)) {
        return {kMsgMainValues, kCapBoxDimensions, 0, false};
    }
    // Values 1 to 4 are all there by now, so only fields 5 and 6 can be found here.
    if (const int place = BoxValueCheck::FirstUnitWithoutValue(texts)) {
        return {kMsgUnitWithoutValue, kCapBoxDimensions, place, false};
    }
    return {};
}

void StyleBoxTable::SplitGroup(const ModDB::StyleBoxData& row, bool bGroupB, QStringList& twelve) {
    twelve = Twelve(twelve);
    for (int place = 1; place <= BoxTextOrder::kFieldCount; ++place) {
        const QString& text = row.Box[BoxIndex(bGroupB, BoxTextOrder::FieldAt(place))];
        // A null text would be passed over by the splitter; the store means empty by it.
        CKVModule::SplitValueUnit(text.isNull() ? QStringLiteral("") : text,
                                  twelve[ValueSlot(place)], twelve[UnitSlot(place)]);
    }
}

void StyleBoxTable::JoinGroup(const QStringList& twelve, bool bGroupB, ModDB::StyleBoxData& row) {
    const QStringList texts = Twelve(twelve);
    for (int place = 1; place <= BoxTextOrder::kFieldCount; ++place) {
        CKVModule::BuildValueWithUnit(texts[ValueSlot(place)], texts[UnitSlot(place)],
                                      row.Box[BoxIndex(bGroupB, BoxTextOrder::FieldAt(place))]);
    }
}

void StyleBoxTable::KeepGroups() {
    if (m_nCurStyle < 1 || !IsLoaded()) {
        return;
    }
    JoinGroup(m_aGroupA, false, m_aStyles[m_nCurStyle - 1]);
    JoinGroup(m_aGroupB, true, m_aStyles[m_nCurStyle - 1]);
}
