#include "ModuleSpecForm.h"

#include "CKVModule.h"
#include "CrtNumbers.h"
#include "HostBridge.h"
#include "Messages.h"
#include "ZelDbMigrate.h"
#include "ZelUtils.h"

namespace {

constexpr int kInputBit = 1;
constexpr int kOutputBit = 2;
constexpr int kDescriptionCharsInRow = 60;
constexpr int kBoxDecimals = 4;

// Address base entries and their stored texts; the entry past them stores nothing.
constexpr int kAddrBaseNone = 3;
const char* const kAddrBaseTexts[] = {"Octal", "Decimal", "Hexadecimal"};

// The order in which the new module's OK writes the fields of each group.
constexpr int kBoxWriteOrder[] = {4, 3, 2, 1, 6, 5};

bool SameTextNoCase(const QString& a, const QString& b) {
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

bool ContainsNoCase(const QStringList& list, const QString& text) {
    return list.contains(text, Qt::CaseInsensitive);
}

// The locale's collating compare of two texts, ignoring case.
bool SameChoiceText(const QString& a, const QString& b) {
    return QString::localeAwareCompare(a.toCaseFolded(), b.toCaseFolded()) == 0;
}

}  // namespace

QList<int> ModuleSpecForm::AddrBaseMessages() {
    return {4023, 4024, 4025, 4026};
}

QList<int> ModuleSpecForm::DirectionMessages() {
    return {4028, 4029, 4030};
}

QString ModuleSpecForm::AddrBaseText(int index) {
    if (index < 0 || index >= kAddrBaseNone) {
        return {};
    }
    return QString::fromLatin1(kAddrBaseTexts[index]);
}

int ModuleSpecForm::AddrBaseIndexFromText(const QString& text, int current) {
    // The short keywords are accepted too, as a hand-edited database may hold them.
    static const struct {
        const char* keyword;
        int index;
    } kKeywords[] = {
        {"oct", 0}, {"octal", 0}, {"dec", 1}, {"decimal", 1}, {"hex", 2}, {"hexadecimal", 2},
    };
    if (text.isEmpty()) {
        return kAddrBaseNone;
    }
    for (const auto& entry : kKeywords) {
        if (SameTextNoCase(text, QString::fromLatin1(entry.keyword))) {
            return entry.index;
        }
    }
    return current;
}

QString ModuleSpecForm::DirFlagsForChoice(const QString& choiceText, const QString& flags) {
    long bits = crt::wtol(flags) & ~long(kInputBit | kOutputBit);
    if (SameChoiceText(choiceText, Messages::Format(4028))) {
        bits |= kInputBit | kOutputBit;
    } else if (SameChoiceText(choiceText, Messages::Format(4029))) {
        bits |= kOutputBit;
    } else if (SameChoiceText(choiceText, Messages::Format(4030))) {
        bits |= kInputBit;
    }
    return QString::number(bits);
}

int ModuleSpecForm::DirectionMessageOf(const QString& flags) {
    const long bits = crt::wtol(flags);
    const bool input = (bits & kInputBit) != 0;
    const bool output = (bits & kOutputBit) != 0;
    if (input && output) {
        return 4028;
    }
    if (output) {
        return 4029;
    }
    return input ? 4030 : 4031;
}

QString ModuleSpecForm::TrimmedLeft(const QString& text) {
    qsizetype start = 0;
    while (start < text.size() && text.at(start).isSpace()) {
        ++start;
    }
    return text.mid(start);
}

QString ModuleSpecForm::TrimmedRight(const QString& text) {
    qsizetype end = text.size();
    while (end > 0 && text.at(end - 1).isSpace()) {
        --end;
    }
    return text.left(end);
}

bool ModuleSpecForm::CutToChars(QString& text, int maxChars) {
    if (GetCharCount(text) <= maxChars) {
        return false;
    }
    text = GetStringAtCharCount(text, maxChars);
    return true;
}

bool ModuleSpecForm::IsComplete(const QString& manufacturer, const QString& series,
                                const QString& type, const QString& catalog,
                                const QString& termCountText) {
    return !manufacturer.isEmpty() && !series.isEmpty() && !type.isEmpty() && !catalog.isEmpty() &&
           !termCountText.isEmpty();
}

void ModuleSpecForm::ApplyInfoDefaults(const ModuleInfoDefaults& defaults) {
    // The address base line is deliberately not applied: the list shows the entry that
    // m_nAddrBaseIndex names, whatever the file says.
    if (defaults.bHasColText2) {
        m_strColText2 = defaults.strColText2;
    }
    if (defaults.bHasInfoNumber) {
        m_nInfoNumber = defaults.nInfoNumber;
    }
    if (defaults.bHasTermCount) {
        m_nTermCount = defaults.nTermCount;
    }
    if (defaults.bHasSpecNote) {
        m_strSpecNote = defaults.strSpecNote;
    }
    if (defaults.bHasSpecTail) {
        m_strSpecTail = defaults.strSpecTail;
    }
}

void ModuleSpecForm::ReadHierarchy(const QString& dbPath) {
    CKVModuleDB db;
    if (!db.Open(dbPath)) {
        return;
    }
    db.GetHierarchy(m_lstHierarchy);
    db.Close();
}

QStringList ModuleSpecForm::Manufacturers() const {
    QStringList names;
    for (const _manfams& manufacturer : m_lstHierarchy) {
        names.append(manufacturer.strManufacturer);
    }
    return names;
}

const _manfams* ModuleSpecForm::FindManufacturer(const QString& manufacturer) const {
    if (manufacturer.isEmpty()) {
        return nullptr;
    }
    for (const _manfams& entry : m_lstHierarchy) {
        if (SameTextNoCase(entry.strManufacturer, manufacturer)) {
            return &entry;
        }
    }
    return nullptr;
}

QStringList ModuleSpecForm::SeriesOf(const QString& manufacturer) const {
    QStringList names;
    if (const _manfams* entry = FindManufacturer(manufacturer)) {
        for (const _familytypes& family : entry->families) {
            names.append(family.strSeries);
        }
    }
    return names;
}

QStringList ModuleSpecForm::StoreTypesOf(const QString& manufacturer, const QString& series) const {
    QStringList names;
    const _manfams* entry = FindManufacturer(manufacturer);
    if (entry == nullptr || series.isEmpty()) {
        return names;
    }
    // Every series of that name counts: the store may hold it in two spellings.
    for (const _familytypes& family : entry->families) {
        if (!SameTextNoCase(family.strSeries, series)) {
            continue;
        }
        for (const _typetname& type : family.types) {
            names.append(type.strType);
        }
    }
    return names;
}

QStringList ModuleSpecForm::TypeChoices(const QString& manufacturer, const QString& series,
                                        const QStringList& defaultTypes) const {
    QStringList choices;
    for (const QString& type : defaultTypes) {
        if (!ContainsNoCase(choices, type)) {
            choices.append(type);
        }
    }
    // The store's types go first, in store order, ahead of the defaults.
    qsizetype position = 0;
    for (const QString& type : StoreTypesOf(manufacturer, series)) {
        if (!ContainsNoCase(choices, type)) {
            choices.insert(position++, type);
        }
    }
    return choices;
}

QString ModuleSpecForm::NewTermRowText(int row) const {
    const QString first = QStringLiteral("HP?SPACE;TERM_=") + QString::number(row);
    if (row != 1) {
        return first;
    }
    // The names go in as they stand; the row codec does not escape them.
    return first + QStringLiteral(";MFG=") + m_strManufacturer + QStringLiteral(";CAT=") +
           m_strCatalog + QStringLiteral(";DESC=") +
           GetStringAtCharCount(m_strDescription, kDescriptionCharsInRow) +
           QStringLiteral(";TAG=PLC%N;LINE1=RACK %%1;LINE2=SLOT %%2");
}

ModuleSpecForm::Outcome ModuleSpecForm::CreateModule(const QString& dbPath) {
    CKVModuleDB db;
    if (!db.Open(dbPath)) {
        return Outcome::StoreNotOpen;
    }
    QString table;
    if (db.GetTypeTableName(m_strManufacturer, m_strSeries, m_strType, table)) {
        // A type table of an older file lacks fields this module needs: nothing is made,
        // even after an upgrade, so that the user confirms again.
        if (TableNeedsMigration(dbPath, table)) {
            db.Close();
            return Outcome::NeedsMigration;
        }
    }
    const int handle = db.NewModule(m_strManufacturer, m_strSeries, m_strType, m_strCatalog);
    Outcome outcome = Outcome::Failed;
    if (handle == -1) {
        if (db.GetLastError() == CKVModuleDB::kErrCatalogExists) {
            outcome = Outcome::CatalogExists;
        }
    } else {
        outcome = FillNewModule(db, handle);
    }
    db.Close();
    return outcome;
}

ModuleSpecForm::Outcome ModuleSpecForm::FillNewModule(CKVModuleDB& db, int handle) const {
    bool found = false;
    CKVModule& module = db.GetModule(handle, &found);
    if (!found) {
        return Outcome::Failed;
    }
    module.SetAddrBase(AddrBaseText(m_nAddrBaseIndex));
    module.SetDirFlags(m_strDirFlags);
    module.SetCatalog(m_strCatalog);
    module.SetSpecTail(m_strSpecTail);
    module.SetDescription(m_strDescription);
    module.SetColText1(m_strColText1);
    module.SetColText2(m_strColText2);
    module.SetSpecNote(m_strSpecNote);
    module.SetColText3(m_strColText3);
    // An empty value keeps the new module's unset value.
    WriteBoxes(module, nullptr);
    for (unsigned row = 1; row <= m_nTermCount; ++row) {
        module.SetTermRow(int(row), NewTermRowText(int(row)));
    }
    module.SetPrompts(m_aPrompts);
    db.SaveModule(handle);
    db.ReleaseModule(handle);
    return Outcome::Created;
}

QString ModuleSpecForm::BoxText(int index) const {
    return m_aBoxText.value(index);
}

void ModuleSpecForm::WriteBoxes(CKVModule& module, const double* emptyValue) const {
    for (const bool bGroupB : {false, true}) {
        for (const int field : kBoxWriteOrder) {
            const QString value = BoxText(BoxTextOrder::ValueIndex(bGroupB, field));
            if (!value.isEmpty()) {
                module.SetBox(bGroupB, field, crt::wtof(value));
            } else if (emptyValue != nullptr) {
                module.SetBox(bGroupB, field, *emptyValue);
            }
            module.SetUnit(bGroupB, field, BoxText(BoxTextOrder::UnitIndex(bGroupB, field)));
        }
    }
}

void ModuleSpecForm::FillFromModule(const CKVModule& module) {
    m_strCatalog = module.GetCatalog();
    m_strDescription = module.GetDescription();
    m_strColText3 = module.GetColText3();
    m_nTermCount = unsigned(module.GetTermCount());
    m_strSpecNote = module.GetSpecNote();
    m_strSpecTail = module.GetSpecTail();
    m_strDirFlags = module.GetDirFlags();
    m_strColText1 = module.GetColText1();
    m_aBoxText = QStringList(BoxTextOrder::kTextCount, QString());
    for (const bool bGroupB : {false, true}) {
        for (int field = 1; field <= BoxTextOrder::kFieldCount; ++field) {
            const double value = module.GetBox(bGroupB, field);
            QString text;
            if (value >= 0.0) {
                RealToText(value, text, kBoxDecimals);
            }
            m_aBoxText[BoxTextOrder::ValueIndex(bGroupB, field)] = text;
            m_aBoxText[BoxTextOrder::UnitIndex(bGroupB, field)] = module.GetUnit(bGroupB, field);
        }
    }
    m_strColText2 = module.GetColText2();
    // No entry is chosen unless the stored text fits a keyword.
    m_nAddrBaseIndex = AddrBaseIndexFromText(module.GetAddrBase(), -1);
    m_aPrompts = module.Prompts();
}

void ModuleSpecForm::ApplyToModule(CKVModule& module, bool bPromptsChanged) const {
    module.SetAddrBase(AddrBaseText(m_nAddrBaseIndex));
    module.SetDirFlags(m_strDirFlags);
    module.SetSpecTail(m_strSpecTail);
    module.SetDescription(m_strDescription);
    module.SetColText1(m_strColText1);
    module.SetColText2(m_strColText2);
    module.SetSpecNote(m_strSpecNote);
    // Here an empty value unsets the field.
    const double unset = -1.0;
    WriteBoxes(module, &unset);
    module.SetColText3(m_strColText3);
    if (bPromptsChanged) {
        module.SetPrompts(m_aPrompts);
    }
}
