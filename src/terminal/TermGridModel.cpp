#include "TermGridModel.h"

#include "BlockNames.h"
#include "CBlockDescEx.h"
#include "CrtNumbers.h"
#include "HostBridge.h"
#include "ZelUtils.h"

namespace {

constexpr int kSpacingDecimals = 4;

QString EmptyIfNull(const QString& text) {
    return text.isNull() ? QStringLiteral("") : text;
}

}  // namespace

TermGridModel::TermGridModel(QObject* parent) : GridModel(parent) {}

TermGridModel::~TermGridModel() = default;

void TermGridModel::SetTexts(const QStringList& headers, const QStringList& showChoices,
                             const QStringList& rePromptChoices) {
    m_headers = headers;
    m_showChoices = showChoices;
    m_rePromptChoices = rePromptChoices;
    emit headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1);
}

void TermGridModel::SetBlockDesc(CBlockDescEx* blocks) {
    m_pBlockDesc = blocks;
    RefreshBlocks();
}

void TermGridModel::RefreshBlocks() {
    m_lookup.Rebuild(m_pBlockDesc);
    m_termChoices = m_lookup.Descriptions();
}

void TermGridModel::ShowRows(int count) {
    beginResetModel();
    m_nRows = qMax(count, 0);
    endResetModel();
}

int TermGridModel::RowCount() const {
    return m_nRows;
}

int TermGridModel::BlockIndexOf(int row) const {
    const CKVModule* module = Module();
    if (!module || !m_pBlockDesc || row < 1 || row > module->GetTermCount()) {
        return -1;
    }
    return m_lookup.Find(module->GetTermText(row));
}

void TermGridModel::WriteBackRow(int row, int blockIndex) {
    CKVModule* module = Module();
    if (!module || row < 1 || row > module->GetTermCount()) {
        return;
    }
    const QString name = m_lookup.ModuleForm(blockIndex);
    if (!name.isEmpty() && module->GetTermText(row) != name) {
        module->SetTermText(row, name);
    }
}

QString TermGridModel::SpacingText(double value) {
    if (value == -1.0) {
        return {};
    }
    QString text;
    RealToText(value, text, kSpacingDecimals);
    const QString separator = GetLocaleDecimalSep();
    if (!separator.isEmpty() && separator != QLatin1String(".")) {
        text.replace(u'.', separator);
    }
    return text;
}

double TermGridModel::SpacingValue(const QString& text) {
    if (text.isEmpty()) {
        return -1.0;
    }
    QString number = text;
    const QString separator = GetLocaleDecimalSep();
    if (!separator.isEmpty() && separator != QLatin1String(".")) {
        number.replace(separator, QStringLiteral("."));
    }
    return crt::wtof(number);
}

QString TermGridModel::CellValue(int row, int col) const {
    const CKVModule* module = Module();
    if (!module || row < 1 || row > m_nRows || row > module->GetTermCount()) {
        return {};
    }
    switch (col) {
        case ColumnTerminal: {
            const int index = BlockIndexOf(row);
            return index < 1 ? QString() : QString::number(index);
        }
        case ColumnShow:
            return QString::number(module->GetIncludeExclude(row));
        case ColumnRePrompt:
            return QString::number(module->GetAddrFlags(row));
        case ColumnBreak:
            return module->GetBreak(row) ? QStringLiteral("1") : QStringLiteral("0");
        case ColumnSpacing:
            return SpacingText(module->GetSpacingFactor(row));
        default:
            return {};
    }
}

bool TermGridModel::StoreValue(int row, int col, const QString& value) {
    CKVModule* module = Module();
    if (!module || row < 1 || row > m_nRows || row > module->GetTermCount()) {
        return false;
    }
    switch (col) {
        case ColumnTerminal: {
            _termblock block;
            if (!m_pBlockDesc || !m_pBlockDesc->GetBlockAt(int(crt::wtol(value)), block)) {
                return false;
            }
            module->SetTermText(row, BlockNames::ModuleForm(block.strBlockFile));
            return true;
        }
        case ColumnShow:
        case ColumnRePrompt: {
            const QString flags = value.trimmed();
            if (flags.isEmpty()) {
                return false;
            }
            if (col == ColumnShow) {
                module->SetIncludeExclude(row, crt::wtoi(flags));
            } else {
                module->SetAddrFlags(row, crt::wtoi(flags));
            }
            return true;
        }
        case ColumnBreak:
            module->SetBreak(row, crt::wtoi(value) == 1);
            return true;
        case ColumnSpacing:
            module->SetSpacingFactor(row, SpacingValue(value));
            return true;
        default:
            return false;
    }
}

GridModel::ColumnKind TermGridModel::Kind(int col) const {
    switch (col) {
        case ColumnTerminal:
            return ColumnKind::ChoiceFrom1;
        case ColumnShow:
        case ColumnRePrompt:
            return ColumnKind::ChoiceFrom0;
        case ColumnBreak:
            return ColumnKind::Check;
        default:
            return ColumnKind::Text;
    }
}

QStringList TermGridModel::Choices(int col) const {
    switch (col) {
        case ColumnTerminal:
            return m_termChoices;
        case ColumnShow:
            return m_showChoices;
        case ColumnRePrompt:
            return m_rePromptChoices;
        default:
            return {};
    }
}

QString TermGridModel::ColumnHeader(int col) const {
    return m_headers.value(col - 1);
}

QString TermGridModel::DisplayText(int row, int col) const {
    if (col == ColumnTerminal && BlockIndexOf(row) < 1) {
        // A name the list does not know shows as it is stored.
        const CKVModule* module = Module();
        return module ? module->GetTermText(row) : QString();
    }
    return GridModel::DisplayText(row, col);
}

_termvalues TermGridModel::RowValues(int row) const {
    const CKVModule* module = Module();
    if (!module) {
        return {};
    }
    return _termvalues{module->GetTermText(row), module->GetTermSpecial(row)};
}

void TermGridModel::RestoreRow(int row, const _termvalues& values) {
    CKVModule* module = Module();
    if (!module || row < 1 || row > module->GetTermCount()) {
        return;
    }
    module->SetTermText(row, EmptyIfNull(values.strText));
    module->SetTermSpecial(row, EmptyIfNull(values.strSpecial));
    CellsChanged(row, 1, ColumnCount);
}

bool TermGridModel::InsertRow(int row, bool bFromSameRow) {
    CKVModule* module = Module();
    if (!module || m_nRows != module->GetTermCount() || row < 1 || row > m_nRows + 1 ||
        module->GetTermText(bFromSameRow ? row : row - 1).isEmpty()) {
        return false;
    }
    beginInsertRows(QModelIndex(), row - 1, row - 1);
    module->InsertTermCopy(row, bFromSameRow);
    ++m_nRows;
    endInsertRows();
    return true;
}

bool TermGridModel::InsertRowValues(int row, const _termvalues& values) {
    CKVModule* module = Module();
    // The module adds a row only as a copy of a neighbour, which is then overwritten.
    const bool bFromSameRow = module && row <= module->GetTermCount();
    if (!module || m_nRows != module->GetTermCount() || row < 1 || row > m_nRows + 1 ||
        module->GetTermText(bFromSameRow ? row : row - 1).isEmpty()) {
        return false;
    }
    beginInsertRows(QModelIndex(), row - 1, row - 1);
    module->InsertTermCopy(row, bFromSameRow);
    module->SetTermText(row, EmptyIfNull(values.strText));
    module->SetTermSpecial(row, EmptyIfNull(values.strSpecial));
    ++m_nRows;
    endInsertRows();
    return true;
}

bool TermGridModel::RemoveRow(int row) {
    CKVModule* module = Module();
    if (!module || m_nRows != module->GetTermCount() || row < 1 || row > m_nRows) {
        return false;
    }
    beginRemoveRows(QModelIndex(), row - 1, row - 1);
    module->RemoveTerm(row);
    --m_nRows;
    endRemoveRows();
    return true;
}
