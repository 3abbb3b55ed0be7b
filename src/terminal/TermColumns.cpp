#include "TermColumns.h"

#include "BlockLookup.h"
#include "CKVModule.h"
#include "CrtNumbers.h"
#include "HostBridge.h"
#include "ResourceLibrary.h"
#include "TermChoices.h"
#include "ZelUtils.h"

#include <QLocale>

#include <cmath>

namespace {

constexpr int kSpacingDecimals = 4;
constexpr int kHeaderTerminal = 4013;
constexpr int kHeaderShow = 4014;
constexpr int kHeaderRePrompt = 4016;
constexpr int kHeaderBreak = 4018;
constexpr int kHeaderSpacing = 4019;
// Both flag columns hold a set of two bits.
constexpr int kLargestBits = 3;

bool HasRow(const CKVModule& module, int row) {
    return row >= 1 && row <= module.GetTermCount();
}

QString Quoted(const QString& text) {
    return u'"' + text + u'"';
}

// The position of a choice line, case ignored; -1 when no line reads so.
int ChoicePosition(const QStringList& choices, const QString& text) {
    for (qsizetype i = 0; i < choices.size(); ++i) {
        if (choices[i].compare(text, Qt::CaseInsensitive) == 0) {
            return int(i);
        }
    }
    return -1;
}

}  // namespace

void TermColumns::SetTexts(const QStringList& headers, const QStringList& showChoices,
                           const QStringList& rePromptChoices) {
    m_headers = headers;
    m_showChoices = showChoices;
    m_rePromptChoices = rePromptChoices;
}

void TermColumns::LoadTexts() {
    SetTexts(
        {LoadResString(kHeaderTerminal), LoadResString(kHeaderShow), LoadResString(kHeaderRePrompt),
         LoadResString(kHeaderBreak), LoadResString(kHeaderSpacing)},
        TermChoices::Lines(TermChoices::kShow), TermChoices::Lines(TermChoices::kRePrompt));
}

QStringList TermColumns::Choices(int col) const {
    switch (col) {
        case Show:
            return m_showChoices;
        case RePrompt:
            return m_rePromptChoices;
        default:
            return {};
    }
}

QString TermColumns::Value(const CKVModule& module, int row, int col) const {
    if (!HasRow(module, row)) {
        return {};
    }
    switch (col) {
        case Terminal: {
            const int index = m_blocks ? m_blocks->Find(module.GetTermText(row)) : -1;
            return index < 1 ? QString() : QString::number(index);
        }
        case Show:
            return QString::number(module.GetIncludeExclude(row));
        case RePrompt:
            return QString::number(module.GetAddrFlags(row));
        case Break:
            return module.GetBreak(row) ? QStringLiteral("1") : QStringLiteral("0");
        case Spacing:
            return SpacingText(module.GetSpacingFactor(row));
        default:
            return {};
    }
}

bool TermColumns::StoreValue(CKVModule& module, int row, int col, const QString& value) const {
    if (!HasRow(module, row)) {
        return false;
    }
    switch (col) {
        case Terminal: {
            const QString name = m_blocks ? m_blocks->ModuleForm(int(crt::wtol(value))) : QString();
            if (name.isEmpty()) {
                return false;
            }
            module.SetTermText(row, name);
            return true;
        }
        case Show:
        case RePrompt: {
            const QString flags = value.trimmed();
            if (flags.isEmpty()) {
                return false;
            }
            if (col == Show) {
                module.SetIncludeExclude(row, crt::wtoi(flags));
            } else {
                module.SetAddrFlags(row, crt::wtoi(flags));
            }
            return true;
        }
        case Break:
            module.SetBreak(row, crt::wtoi(value) == 1);
            return true;
        case Spacing: {
            double spacing = -1.0;
            SpacingValue(value, spacing);
            module.SetSpacingFactor(row, spacing);
            return true;
        }
        default:
            return false;
    }
}

QString TermColumns::Text(const CKVModule& module, int row, int col) const {
    const QString value = Value(module, row, col);
    if (col == Terminal) {
        // A name the list does not know shows as it is stored.
        if (value.isEmpty() || !m_blocks) {
            return module.GetTermText(row);
        }
        return m_blocks->Descriptions().value(value.toInt() - 1);
    }
    const QStringList choices = Choices(col);
    const int position = value.toInt();
    return position >= 0 && position < choices.size() ? choices[position] : value;
}

bool TermColumns::ReadText(CKVModule& module, int row, int col, const QString& text,
                           const QStringList& knownNames, QString& error) const {
    if (!HasRow(module, row)) {
        error = QStringLiteral("there is no row %1").arg(row);
        return false;
    }
    switch (col) {
        case Terminal: {
            const int index = m_blocks ? m_blocks->FindDescription(text) : -1;
            if (index >= 1) {
                return StoreValue(module, row, col, QString::number(index));
            }
            if (knownNames.contains(text)) {
                module.SetTermText(row, text);
                return true;
            }
            error = QStringLiteral("no block of the list has the description %1").arg(Quoted(text));
            return false;
        }
        case Show:
        case RePrompt: {
            const QStringList choices = Choices(col);
            int bits = ChoicePosition(choices, text.trimmed());
            // A bit set without a line of its own shows as its number.
            bool isNumber = false;
            const int number = text.toInt(&isNumber);
            if (bits < 0 && isNumber && number >= choices.size() && number <= kLargestBits) {
                bits = number;
            }
            if (bits < 0) {
                error = QStringLiteral("%1 is none of the choices %2")
                            .arg(Quoted(text), Quoted(choices.join(QStringLiteral("\", \""))));
                return false;
            }
            return StoreValue(module, row, col, QString::number(bits));
        }
        case Break: {
            const QString flag = text.trimmed();
            if (flag != QStringLiteral("0") && flag != QStringLiteral("1")) {
                error = QStringLiteral("a break is 1 or 0, not %1").arg(Quoted(text));
                return false;
            }
            return StoreValue(module, row, col, flag);
        }
        case Spacing: {
            // -1 stands for no spacing, so no number below 0 can be one; nor one so small
            // that it shows as 0 and would come back as 0.
            double spacing = -1.0;
            const bool read = ShortSpacingValue(text, spacing) || SpacingValue(text, spacing);
            if (!read || (!text.isEmpty() && spacing < 0.0) ||
                (spacing != 0.0 && SpacingText(spacing) == QStringLiteral("0"))) {
                error = QStringLiteral(
                            "%1 is no spacing: a number of 0 or more such as %2, or empty for none")
                            .arg(Quoted(text), SpacingText(1.5));
                return false;
            }
            module.SetSpacingFactor(row, spacing);
            return true;
        }
        default:
            error = QStringLiteral("there is no column %1").arg(col);
            return false;
    }
}

QString TermColumns::SpacingText(double value) {
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

bool TermColumns::ShortSpacingValue(const QString& text, double& value) {
    const QString separator = GetLocaleDecimalSep();
    const qsizetype lead = text.startsWith(u'.')                                ? 1
                           : !separator.isEmpty() && text.startsWith(separator) ? separator.size()
                                                                                : 0;
    const QString digits = text.mid(lead);
    if (lead == 0 || digits.isEmpty() || digits.size() >= kSpacingDecimals) {
        return false;
    }
    for (const QChar c : digits) {
        if (c < u'0' || c > u'9') {
            return false;
        }
    }
    value = digits.toInt() / std::pow(10.0, kSpacingDecimals);
    return true;
}

bool TermColumns::SpacingValue(const QString& text, double& value) {
    if (text.isEmpty()) {
        value = -1.0;
        return true;
    }
    QString number = text;
    const QString separator = GetLocaleDecimalSep();
    if (!separator.isEmpty() && separator != QLatin1String(".")) {
        number.replace(separator, QStringLiteral("."));
    }
    value = crt::wtof(number);
    bool whole = false;
    const double checked = QLocale::c().toDouble(number.trimmed(), &whole);
    return whole && std::isfinite(checked);
}
