#include "CKVModule.h"

namespace {

// Texts of a module are never null: a null text means "no text given" to the setters,
// so an emptied member must stay an empty, non-null text.
QString EmptyText() {
    return QStringLiteral("");
}

bool IsPlace(int place) {
    return place >= 1 && place <= 6;
}

}  // namespace

CKVModule::CKVModule() {
    m_strDirFlags = EmptyText();
    m_strTableName = EmptyText();
    Clear(true);
}

CKVModule::CKVModule(const CKVModule& other) : m_aTermValues(other.m_aTermValues) {
    m_strTableName = EmptyText();
    CopySpecification(other);
}

CKVModule& CKVModule::operator=(const CKVModule& other) {
    if (this == &other) {
        return *this;
    }
    CopySpecification(other);
    // Rows are overwritten one by one; rows of the target behind the source's last row
    // stay where they are.
    for (qsizetype i = 0; i < other.m_aTermValues.size(); ++i) {
        if (i < m_aTermValues.size()) {
            m_aTermValues[i] = other.m_aTermValues[i];
        } else {
            m_aTermValues.append(other.m_aTermValues[i]);
        }
    }
    return *this;
}

CKVModule::~CKVModule() = default;

// Everything but the rows and the table name, which belongs to where the module was
// loaded from, not to its content.
void CKVModule::CopySpecification(const CKVModule& other) {
    m_aPrompts = other.m_aPrompts;
    m_bIsNew = other.m_bIsNew;
    m_strSpecTail = other.m_strSpecTail;
    m_strDirFlags = other.m_strDirFlags;
    for (int group = 0; group < 2; ++group) {
        for (int place = 0; place < 6; ++place) {
            m_aUnits[group][place] = other.m_aUnits[group][place];
            m_aBoxes[group][place] = other.m_aBoxes[group][place];
        }
    }
    m_strAddrBase = other.m_strAddrBase;
    m_strSpecNote = other.m_strSpecNote;
    m_strDescription = other.m_strDescription;
    m_strColText3 = other.m_strColText3;
    m_strColText2 = other.m_strColText2;
    m_strColText1 = other.m_strColText1;
    m_strManufacturer = other.m_strManufacturer;
    m_strCatalog = other.m_strCatalog;
    m_strSpare = other.m_strSpare;
}

void CKVModule::Clear(bool bMarkNew) {
    if (bMarkNew) {
        m_bIsNew = true;
    }
    m_aTermValues.clear();
    // The direction flags and the table name survive on purpose.
    for (QString* text :
         {&m_strSpecTail, &m_strAddrBase, &m_strSpecNote, &m_strDescription, &m_strColText3,
          &m_strColText2, &m_strColText1, &m_strManufacturer, &m_strCatalog, &m_strSpare}) {
        *text = EmptyText();
    }
    for (int group = 0; group < 2; ++group) {
        for (int place = 0; place < 6; ++place) {
            m_aUnits[group][place] = EmptyText();
            m_aBoxes[group][place] = -1.0;
        }
    }
    m_aPrompts.clear();
    for (int i = 0; i < kPromptCount; ++i) {
        m_aPrompts.append(EmptyText());
    }
}

double CKVModule::GetBox(bool bGroupB, int place) const {
    return IsPlace(place) ? m_aBoxes[bGroupB][place - 1] : -1.0;
}

void CKVModule::SetBox(bool bGroupB, int place, double value) {
    if (IsPlace(place)) {
        m_aBoxes[bGroupB][place - 1] = value;
    }
}

const QString& CKVModule::GetUnit(bool bGroupB, int place) const {
    static const QString none = EmptyText();
    return IsPlace(place) ? m_aUnits[bGroupB][place - 1] : none;
}

void CKVModule::SetUnit(bool bGroupB, int place, const QString& unit) {
    if (IsPlace(place)) {
        m_aUnits[bGroupB][place - 1] = unit;
    }
}

_termvalues* CKVModule::Row(int row) {
    return row >= 1 && row <= GetTermCount() ? &m_aTermValues[row - 1] : nullptr;
}

const _termvalues* CKVModule::Row(int row) const {
    return row >= 1 && row <= GetTermCount() ? &m_aTermValues[row - 1] : nullptr;
}

_termvalues* CKVModule::RowOrAppend(int row) {
    if (row == GetTermCount() + 1) {
        m_aTermValues.append(_termvalues{EmptyText(), EmptyText()});
    }
    return Row(row);
}

QString CKVModule::GetTermText(int row) const {
    const _termvalues* values = Row(row);
    return values ? values->strText : QString();
}

QString CKVModule::GetTermSpecial(int row) const {
    const _termvalues* values = Row(row);
    return values ? values->strSpecial : QString();
}

void CKVModule::SetTermText(int row, const QString& text) {
    if (text.isNull()) {
        return;
    }
    if (_termvalues* values = RowOrAppend(row)) {
        values->strText = text;
    }
}

void CKVModule::SetTermSpecial(int row, const QString& text) {
    if (text.isNull()) {
        return;
    }
    if (_termvalues* values = RowOrAppend(row)) {
        values->strSpecial = text;
    }
}

bool CKVModule::RemoveTerm(int row) {
    if (!Row(row)) {
        return false;
    }
    m_aTermValues.removeAt(row - 1);
    return true;
}

bool CKVModule::InsertTermCopy(int row, bool bFromSameRow) {
    if (row < 1 || row > GetTermCount() + 1) {
        return false;
    }
    const QString text = GetTermText(bFromSameRow ? row : row - 1);
    if (text.isEmpty()) {
        return false;
    }
    m_aTermValues.insert(row - 1, _termvalues{text, EmptyText()});
    return true;
}

bool CKVModule::SplitValueUnit(const QString& text, QString& value, QString& unit) {
    if (text.isNull()) {
        return false;
    }
    const qsizetype blank = text.indexOf(u' ');
    if (blank < 0) {
        value = text;
        unit = EmptyText();
        return true;
    }
    // An empty side leaves its target as it was.
    const QString before = text.left(blank);
    const QString after = text.mid(blank + 1);
    if (!before.isEmpty()) {
        value = before;
    }
    if (!after.isEmpty()) {
        unit = after;
    }
    return true;
}

bool CKVModule::BuildValueWithUnit(const QString& value, const QString& unit, QString& out) {
    if (value.isEmpty() || unit.isNull()) {
        out = EmptyText();
    } else if (unit.isEmpty()) {
        out = value;
    } else {
        out = value + u' ' + unit;
    }
    return true;
}
