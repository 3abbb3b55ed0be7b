// The terminal row grammar. The special part of a row is a ";"-separated token list;
// every operation below scans it with ScanTokens and compares tokens in one of the two
// normal forms, FlagForm or PairForm. Which form an operation uses is part of the
// stored format: readers and writers deliberately do not always agree.

#include "CKVModule.h"

#include "CrtNumbers.h"
#include "HostBridge.h"
#include "ZelPlcDbIO.h"
#include "ZelUtils.h"

#include <span>

namespace {

const QString kSeparator = QStringLiteral(";");
const QString kBreak = QStringLiteral("\\SPECIAL=BREAK");
const QString kInclude = QStringLiteral("\\SPECIAL=INCLUDE");
const QString kExclude = QStringLiteral("\\SPECIAL=EXCLUDE");
const QString kAddrIn = QStringLiteral("\\SPECIAL=ADDR_IN");
const QString kAddrOut = QStringLiteral("\\SPECIAL=ADDR_OUT");
const QString kSpacing = QStringLiteral("\\SPECIAL=SPACINGFACTOR");
const QString kSpacingValue = QStringLiteral("\\SPECIAL=SPACINGFACTOR=");
const QString kSpecial = QStringLiteral("\\SPECIAL");
const QString kPromptMark = QStringLiteral("%%");

// One flag bit and the token that stands for it.
struct FlagBit {
    int bit;
    const QString& token;
};
const FlagBit kBreakBits[] = {{1, kBreak}};
// Appended in this order when newly set.
const FlagBit kIncludeExcludeBits[] = {{2, kInclude}, {1, kExclude}};
// Put in front in this order, so that a pair set at once reads ADDR_OUT first.
const FlagBit kAddrBits[] = {{1, kAddrIn}, {2, kAddrOut}};

// The tokens cut off at a ";", and the rest behind the last ";", which counts as one
// more token only when it is not empty.
struct RowTokens {
    QStringList cut;
    QString rest;
};

RowTokens ScanTokens(const QString& special) {
    RowTokens tokens;
    QString work = special;
    QString token;
    while (GetToken(work, token, kSeparator)) {
        tokens.cut.append(token);
    }
    tokens.rest = work;
    return tokens;
}

QStringList AllTokens(const QString& special) {
    RowTokens tokens = ScanTokens(special);
    if (!tokens.rest.isEmpty()) {
        tokens.cut.append(tokens.rest);
    }
    return tokens.cut;
}

QString JoinTokens(const QStringList& tokens) {
    return tokens.isEmpty() ? QStringLiteral("") : tokens.join(kSeparator);
}

QString TrimLeft(const QString& text) {
    qsizetype start = 0;
    while (start < text.size() && text[start].isSpace()) {
        ++start;
    }
    return text.mid(start);
}

QString TrimRight(const QString& text) {
    qsizetype end = text.size();
    while (end > 0 && text[end - 1].isSpace()) {
        --end;
    }
    return text.left(end);
}

// The readers' form of a flag: no blanks at all.
QString FlagForm(const QString& token) {
    QString form = token;
    form.remove(u' ');
    return form;
}

// The form of attribute pairs and of every rebuilt token: no blanks before "=", none
// at the left.
QString PairForm(const QString& token) {
    QString form = token;
    while (ReplaceStringInString(form, QStringLiteral(" ="), QStringLiteral("=")) > 0) {
    }
    return TrimLeft(form);
}

bool SameText(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

void AppendToken(QString& special, const QString& token) {
    special = special.isEmpty() ? token : special + kSeparator + token;
}

void PrependToken(QString& special, const QString& token) {
    special = special.isEmpty() ? token : token + kSeparator + special;
}

// The tokens in pair form, without those that drop() names. A row changes its
// spelling only through this rebuild.
template <typename Drop>
QString Rebuild(const QString& special, Drop drop) {
    QStringList kept;
    for (const QString& token : AllTokens(special)) {
        const QString form = PairForm(token);
        if (!drop(form)) {
            kept.append(form);
        }
    }
    return JoinTokens(kept);
}

int ReadFlags(const QString& special, std::span<const FlagBit> flags) {
    int bits = 0;
    for (const QString& token : AllTokens(special)) {
        const QString form = FlagForm(token);
        for (const FlagBit& flag : flags) {
            if (SameText(form, flag.token)) {
                bits |= flag.bit;
            }
        }
    }
    return bits;
}

// Removes the tokens of the bits that go (only tokens that are exact in pair form; the
// text stays untouched when none go), then adds the tokens of the new bits.
void ChangeFlags(QString& special, int oldBits, int newBits, std::span<const FlagBit> flags,
                 bool bInFront) {
    const int gone = oldBits & ~newBits;
    const int added = newBits & ~oldBits;
    if (gone != 0) {
        special = Rebuild(special, [&](const QString& form) {
            for (const FlagBit& flag : flags) {
                if ((gone & flag.bit) && SameText(form, flag.token)) {
                    return true;
                }
            }
            return false;
        });
    }
    for (const FlagBit& flag : flags) {
        if (added & flag.bit) {
            bInFront ? PrependToken(special, flag.token) : AppendToken(special, flag.token);
        }
    }
}

// Prompts, flags and texts without a value are no attribute pairs.
bool IsAttributePair(const QString& form) {
    return !form.startsWith(kPromptMark) && !form.contains(kSpecial) && form.contains(u'=');
}

// A pair with an empty value is left out: that is how a value is removed.
void AppendPair(QStringList& tokens, const QString& name, const QString& value) {
    if (!value.isEmpty()) {
        tokens.append(name + u'=' + value);
    }
}

// The entry of name in a list of name, value, name, value ...; -1 when missing.
qsizetype FindPairName(const QStringList& pairs, const QString& name) {
    for (qsizetype i = 0; i < pairs.size(); i += 2) {
        if (SameText(pairs[i], name)) {
            return i;
        }
    }
    return -1;
}

bool SplitPair(const QString& token, QString& name, QString& value) {
    const QString form = PairForm(token);
    const qsizetype equals = form.indexOf(u'=');
    if (equals < 0) {
        return false;
    }
    name = form.left(equals).trimmed();
    value = form.mid(equals + 1).trimmed();
    return true;
}

// The prompt number of a token in pair form, 0 when it is no prompt token.
int PromptNumber(const QString& form) {
    if (!form.startsWith(kPromptMark) || form.size() < 3) {
        return 0;
    }
    const int number = crt::wtoi(form.mid(2, 1));
    return number >= 1 && number <= CKVModule::kPromptCount ? number : 0;
}

QString PromptToken(int number, const QString& text) {
    return kPromptMark + QString::number(number) + QStringLiteral("PROMPT=") + text;
}

}  // namespace

QString CKVModule::FlagForm(const QString& token) {
    return ::FlagForm(token);
}
QString CKVModule::PairForm(const QString& token) {
    return ::PairForm(token);
}
int CKVModule::PromptNumber(const QString& form) {
    return ::PromptNumber(form);
}
QStringList CKVModule::Tokens(const QString& special) {
    return AllTokens(special);
}

bool CKVModule::IsFlagToken(const QString& token) {
    const QString form = ::FlagForm(token);
    for (const QString* flag : {&kBreak, &kInclude, &kExclude, &kAddrIn, &kAddrOut}) {
        if (SameText(form, *flag)) {
            return true;
        }
    }
    return form.contains(kSpacingValue);
}

void CKVModule::SetTermRow(int row, const QString& joined) {
    if (joined.isNull() || row < 1) {
        return;
    }
    const qsizetype separator = joined.indexOf(kSeparator);
    if (separator < 0) {
        const QString text = joined.trimmed();
        if (!text.isEmpty()) {
            SetTermText(row, text);
        }
        return;
    }
    _termvalues* values = RowOrAppend(row);
    if (!values) {
        return;
    }
    values->strText = TrimRight(joined.left(separator));
    const QString special = TrimLeft(joined.mid(separator + 1));
    if (!special.isEmpty()) {
        values->strSpecial = special;
    }
}

int CKVModule::GetBreak(int row) const {
    const _termvalues* values = Row(row);
    return values ? ReadFlags(values->strSpecial, kBreakBits) : 0;
}

int CKVModule::GetIncludeExclude(int row) const {
    const _termvalues* values = Row(row);
    return values ? ReadFlags(values->strSpecial, kIncludeExcludeBits) : -1;
}

int CKVModule::GetAddrFlags(int row) const {
    const _termvalues* values = Row(row);
    return values ? ReadFlags(values->strSpecial, kAddrBits) : -1;
}

double CKVModule::GetSpacingFactor(int row) const {
    const _termvalues* values = Row(row);
    double factor = -1.0;
    if (!values) {
        return factor;
    }
    for (const QString& token : AllTokens(values->strSpecial)) {
        const QString form = FlagForm(token);
        // Unlike the flags, the factor's name is matched with regard to case.
        if (form.contains(kSpacingValue)) {
            factor = crt::wtof(form.mid(form.lastIndexOf(u'=') + 1));
        }
    }
    return factor;
}

bool CKVModule::GetAttrValue(const QString& name, QString& value, int row) const {
    const _termvalues* values = Row(row);
    if (!values || name.isEmpty()) {
        return false;
    }
    // Attribute names are stored in upper case; the search is a plain substring search.
    const QString sought = name.toUpper() + u'=';
    for (const QString& token : AllTokens(values->strSpecial)) {
        const QString form = PairForm(token);
        const qsizetype hit = form.indexOf(sought);
        if (hit >= 0) {
            value = form.mid(hit + sought.size());
            return true;
        }
    }
    return false;
}

void CKVModule::SetBreak(int row, bool bBreak) {
    _termvalues* values = Row(row);
    if (!values) {
        return;
    }
    const int oldBits = GetBreak(row);
    const int newBits = bBreak ? 1 : 0;
    if (oldBits != newBits) {
        ChangeFlags(values->strSpecial, oldBits, newBits, kBreakBits, false);
    }
}

void CKVModule::SetIncludeExclude(int row, int flags) {
    _termvalues* values = Row(row);
    if (!values) {
        return;
    }
    const int oldBits = GetIncludeExclude(row);
    if (oldBits != (flags & 3)) {
        ChangeFlags(values->strSpecial, oldBits, flags & 3, kIncludeExcludeBits, false);
    }
}

void CKVModule::SetAddrFlags(int row, int flags) {
    _termvalues* values = Row(row);
    if (!values) {
        return;
    }
    const int oldBits = GetAddrFlags(row);
    if (oldBits != (flags & 3)) {
        ChangeFlags(values->strSpecial, oldBits, flags & 3, kAddrBits, true);
    }
}

void CKVModule::SetSpacingFactor(int row, double value) {
    _termvalues* values = Row(row);
    if (!values) {
        return;
    }
    const double current = GetSpacingFactor(row);
    if (value == current) {
        return;
    }
    if (current != -1.0) {
        values->strSpecial = Rebuild(values->strSpecial,
                                     [](const QString& form) { return form.contains(kSpacing); });
    }
    if (value != -1.0) {
        AppendToken(values->strSpecial, kSpacingValue + QString::number(value, 'f', 6));
    }
}

void CKVModule::MergeAttrValues(QStringList& pairs, int row) {
    _termvalues* values = Row(row);
    if (!values) {
        return;
    }
    QStringList merged;
    for (const QString& token : AllTokens(values->strSpecial)) {
        const QString form = PairForm(token).trimmed();
        const qsizetype entry =
            IsAttributePair(form) ? FindPairName(pairs, form.left(form.indexOf(u'='))) : -1;
        if (entry < 0) {
            merged.append(form);
            continue;
        }
        AppendPair(merged, pairs[entry], pairs.value(entry + 1));
        pairs.remove(entry, qMin<qsizetype>(2, pairs.size() - entry));
    }
    for (qsizetype i = 0; i < pairs.size(); i += 2) {
        AppendPair(merged, pairs[i], pairs.value(i + 1));
    }
    pairs.clear();
    values->strSpecial = JoinTokens(merged);
}

bool CKVModule::NextAttrPair(QString& text, QString& name, QString& value) {
    if (text.isEmpty()) {
        return false;
    }
    QString token;
    while (GetToken(text, token, kSeparator)) {
        if (SplitPair(token, name, value)) {
            return true;
        }
    }
    token = text;
    text.clear();
    return SplitPair(token, name, value);
}

bool CKVModule::ParsePromptsToArray() {
    const _termvalues* first = Row(1);
    if (!first) {
        return false;
    }
    const RowTokens tokens = ScanTokens(first->strSpecial);
    bool found = false;
    for (const QString& token : tokens.cut) {
        const QString form = PairForm(token);
        const int number = PromptNumber(form);
        if (number == 0) {
            continue;
        }
        found = true;
        QString text = form.mid(CKVModule::kPromptTextStart);
        ZelPlcDbIO* store = ZelPlcDbIO::Instance();
        const QString localized = store ? store->ReturnLocalizedPrompt(text) : QString();
        // A prompt the store does not know is deliberately not taken; the next save
        // then drops it from the row.
        if (!localized.isEmpty()) {
            TranslateMessage(localized, text);
            SetPrompt(number, text);
        }
    }
    const QString rest = PairForm(tokens.rest);
    const int number = PromptNumber(rest);
    if (number != 0) {
        found = true;
        SetPrompt(number, rest.mid(CKVModule::kPromptTextStart));
    }
    return found;
}

void CKVModule::SetPrompt(int number, const QString& text) {
    while (m_aPrompts.size() < number) {
        m_aPrompts.append(QStringLiteral(""));
    }
    m_aPrompts[number - 1] = text;
}

bool CKVModule::RewritePrompts(const QStringList& prompts, int row) {
    _termvalues* values = Row(row);
    if (!values) {
        return false;
    }
    QStringList tokens;
    for (qsizetype j = 1; j <= prompts.size(); ++j) {
        if (!prompts[j - 1].isEmpty()) {
            tokens.append(PromptToken(int(j), prompts[j - 1]));
        }
    }
    for (const QString& token : AllTokens(values->strSpecial)) {
        const QString form = PairForm(token);
        if (!form.startsWith(kPromptMark)) {
            tokens.append(form);
        }
    }
    values->strSpecial = JoinTokens(tokens);
    return true;
}

void CKVModule::ApplyPrompts() {
    // The prompts go to the first row that is neither included nor excluded, or else to
    // the first included and the first excluded row; rows behind that lose theirs.
    bool bExcludedDone = false;
    bool bIncludedDone = false;
    int stop = 0;
    for (int row = 1; row <= GetTermCount() && stop == 0; ++row) {
        const int flags = GetIncludeExclude(row);
        if (flags == 0) {
            RewritePrompts(m_aPrompts, row);
            stop = row;
        } else if (flags == 1 && !bExcludedDone) {
            RewritePrompts(m_aPrompts, row);
            bExcludedDone = true;
        } else if (flags == 2 && !bIncludedDone) {
            RewritePrompts(m_aPrompts, row);
            bIncludedDone = true;
        }
        if (bExcludedDone && bIncludedDone) {
            stop = row;
        }
    }
    for (int row = stop + 1; stop != 0 && row <= GetTermCount(); ++row) {
        RewritePrompts(QStringList(), row);
    }
}
