#include "CAttribGridWnd.h"

#include "AttribGridModel.h"
#include "CBlockDescEx.h"
#include "CKVModule.h"
#include "DialogControls.h"
#include "ResourceLibrary.h"

namespace {

constexpr int kCornerCaption = 4006;
constexpr int kValueRowCaption = 4007;
const QString kLayoutKey = QStringLiteral("Settings\\AttribGrid");
// Smallest width and height a column or row can be dragged to, at scale 1.
constexpr int kMinimumTrack = 10;

}  // namespace

CAttribGridWnd::CAttribGridWnd(QWidget* parent)
    : GridCore(parent), m_model(new AttribGridModel(this)) {
    SetGridModel(m_model);
}

CAttribGridWnd::~CAttribGridWnd() = default;

CKVModule* CAttribGridWnd::CurrentModule() const {
    return m_source ? m_source() : nullptr;
}

void CAttribGridWnd::Initialize() {
    SetMinimumTrackSize(ScaledX(kMinimumTrack), ScaledY(kMinimumTrack));
    SetUndoEnabled(false);
    m_model->SetValueRow(false);
    m_model->SetAttributes({}, {});
    SetLayoutKey(kLayoutKey, 0);
    LoadLayout();
    SetUndoEnabled(true);
    SetModifiedFlag(0);
}

void CAttribGridWnd::OnModifyCell(int /*row*/, int /*col*/) {
    SetModifiedFlag(1);
}

void CAttribGridWnd::OnTermRowChange(int blockIndex, const _rowchange* change) {
    if (!change) {
        return;
    }
    SetUndoEnabled(false);
    setUpdatesEnabled(false);
    if (m_model->RowCount() == 0) {
        m_model->SetValueRow(true);
        SetCornerText(LoadResString(kCornerCaption));
        m_model->SetRowCaption(LoadResString(kValueRowCaption));
    }
    // The columns shown are those of the row left, so they are saved before the new
    // row's are made.
    if (!m_bSkipSave && change->bSave && change->nPrevRow != -1) {
        SaveValues(change->nPrevRow);
    }
    LoadValues(blockIndex, change->nNewRow);
    UndoStack().clear();
    SetUndoEnabled(true);
    setUpdatesEnabled(true);
    m_bSkipSave = false;
    SetModifiedFlag(0);
}

void CAttribGridWnd::SaveValues(int row) {
    QStringList pairs;
    for (int col = 1; col <= m_model->ColCount(); ++col) {
        const QString tag = m_model->Tag(col);
        if (tag.isEmpty()) {
            continue;
        }
        pairs << tag << CellText(1, col).trimmed();
    }
    CKVModule* module = CurrentModule();
    if (!pairs.isEmpty() && module) {
        module->MergeAttrValues(pairs, row);
    }
}

void CAttribGridWnd::LoadValues(int blockIndex, int row) {
    CKVModule* module = CurrentModule();
    if (!m_pBlockDesc || m_nModuleHandle == -1 || !module || blockIndex == 0) {
        m_model->SetAttributes({}, {});
        return;
    }
    _termblock block;
    if (!m_pBlockDesc->GetBlockAt(blockIndex, block)) {
        // Past the end of the list: the columns and values of the row left stay.
        return;
    }
    QStringList tags;
    QStringList values;
    for (const _attrinfo& attrib : block.lstAttribs) {
        QString value;
        tags.append(attrib.strTag);
        values.append(module->GetAttrValue(attrib.strTag, value, row) ? value : QString());
    }
    m_model->SetAttributes(tags, values);
}
