#include "NewCommand.h"

#include "BoxTextOrder.h"
#include "BoxValueCheck.h"
#include "CatalogDocument.h"
#include "CliFailure.h"
#include "CliOptions.h"
#include "DatabaseSession.h"
#include "Messages.h"
#include "ModuleDefaults.h"
#include "ModuleSpecForm.h"
#include "ResourceLibrary.h"
#include "ZelUtils.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>

#include <cstdio>

namespace {

constexpr int kNotMade = 1;
constexpr int kUsage = 2;
constexpr int kGroupTexts = 2 * BoxTextOrder::kFieldCount;

// The text options and the form field each one fills; a name keeps the length the
// dialog's combo or edit allows (0: no limit).
struct TextOption {
    const char* name;
    QString ModuleSpecForm::*field;
    int maxChars;
    bool bRequired;
};

const TextOption kTextOptions[] = {
    {"--manufacturer", &ModuleSpecForm::m_strManufacturer, ModuleSpecForm::kMaxNameChars, true},
    {"--series", &ModuleSpecForm::m_strSeries, ModuleSpecForm::kMaxNameChars, true},
    {"--type", &ModuleSpecForm::m_strType, ModuleSpecForm::kMaxTypeChars, true},
    {"--catalog", &ModuleSpecForm::m_strCatalog, ModuleSpecForm::kMaxCatalogChars, true},
    {"--description", &ModuleSpecForm::m_strDescription, 0, false},
    {"--col-text1", &ModuleSpecForm::m_strColText1, 0, false},
    {"--col-text2", &ModuleSpecForm::m_strColText2, 0, false},
    {"--col-text3", &ModuleSpecForm::m_strColText3, 0, false},
    {"--spec-note", &ModuleSpecForm::m_strSpecNote, 0, false},
    {"--spec-tail", &ModuleSpecForm::m_strSpecTail, 0, false},
};

// The direction words and the entries of the dialog's direction list they stand for;
// "none" is the text the list shows for a module without direction.
const struct {
    const char* word;
    int message;
} kDirections[] = {{"in", 4030}, {"out", 4029}, {"both", 4028}, {"none", 4031}};

// What the command line gives; the rest comes from the default files.
struct NewArguments {
    QMap<const TextOption*, QString> texts;
    unsigned terminals = 0;  // 0: from the defaults
    int addrBaseIndex = 3;
    // The dialog starts with the input entry chosen.
    int directionMessage = 4030;
    bool bPromptsGiven = false;
    QStringList prompts;
    QStringList boxTexts = QStringList(BoxTextOrder::kTextCount, QString());
};

int Fail(const QString& text, int status) {
    return ReportFailure(QStringLiteral("new"), text, status);
}

const TextOption* FindTextOption(const QString& name) {
    for (const TextOption& option : kTextOptions) {
        if (name == QLatin1String(option.name)) {
            return &option;
        }
    }
    return nullptr;
}

// Names lose their white space at both ends as the dialog's combos and catalog edit do.
bool TakeText(const TextOption& option, const QString& value, NewArguments& out, QString& error) {
    QString text = value;
    if (option.maxChars > 0) {
        text = ModuleSpecForm::TrimmedRight(ModuleSpecForm::TrimmedLeft(text));
        if (GetCharCount(text) > option.maxChars) {
            error = QStringLiteral("%1 takes at most %2 characters")
                        .arg(QLatin1String(option.name))
                        .arg(option.maxChars);
            return false;
        }
    }
    out.texts.insert(&option, text);
    return true;
}

bool TakeTerminals(const QString& value, NewArguments& out, QString& error) {
    bool ok = false;
    const unsigned count = value.trimmed().toUInt(&ok);
    if (!ok || count < ModuleSpecForm::kMinTermCount || count > ModuleSpecForm::kMaxTermCount) {
        error = QStringLiteral("--terminals takes a whole number from %1 to %2")
                    .arg(ModuleSpecForm::kMinTermCount)
                    .arg(ModuleSpecForm::kMaxTermCount);
        return false;
    }
    out.terminals = count;
    return true;
}

bool TakeAddressBase(const QString& value, NewArguments& out, QString& error) {
    const int index = value.compare(QStringLiteral("none"), Qt::CaseInsensitive) == 0
                          ? 3
                          : ModuleSpecForm::AddrBaseIndexFromText(value, -1);
    if (index < 0 || value.isEmpty()) {
        error = QStringLiteral("--address-base takes octal, decimal, hexadecimal or none");
        return false;
    }
    out.addrBaseIndex = index;
    return true;
}

bool TakeDirection(const QString& value, NewArguments& out, QString& error) {
    for (const auto& direction : kDirections) {
        if (value.compare(QLatin1String(direction.word), Qt::CaseInsensitive) == 0) {
            out.directionMessage = direction.message;
            return true;
        }
    }
    error = QStringLiteral("--direction takes in, out, both or none");
    return false;
}

// NAME=VALUE[UNIT]: NAME is A1 to A6 or B1 to B6; the value is the leading run of
// digits, separators and signs, and the unit what follows it, without blanks around.
bool TakeBox(const QString& value, NewArguments& out, QString& error) {
    const qsizetype equals = value.indexOf(u'=');
    const QString name = value.left(equals).trimmed().toUpper();
    const bool bGroupB = name.startsWith(u'B');
    const int field = name.size() == 2 ? name.at(1).digitValue() : 0;
    if (equals < 0 || (!name.startsWith(u'A') && !bGroupB) || field < 1 ||
        field > BoxTextOrder::kFieldCount) {
        error = QStringLiteral(
                    "--box takes NAME=VALUE[UNIT] with NAME A1 to A6 or B1 to B6, "
                    "not %1")
                    .arg(value);
        return false;
    }
    const QString rest = value.mid(equals + 1).trimmed();
    const QString separators = QStringLiteral(".,+-") + GetLocaleDecimalSep();
    qsizetype end = 0;
    while (end < rest.size() && (rest.at(end).isDigit() || separators.contains(rest.at(end)))) {
        ++end;
    }
    const QString number = rest.left(end);
    if (!BoxValueCheck::IsGoodValue(number)) {
        error = QStringLiteral("--box %1: %2").arg(value, Messages::Format(10123));
        return false;
    }
    out.boxTexts[BoxTextOrder::ValueIndex(bGroupB, field)] =
        BoxValueCheck::ToPointSeparator(number);
    out.boxTexts[BoxTextOrder::UnitIndex(bGroupB, field)] = rest.mid(end).trimmed();
    return true;
}

// The twelve texts of one group.
QStringList GroupTexts(const QStringList& boxTexts, bool bGroupB) {
    return boxTexts.mid(bGroupB ? kGroupTexts : 0, kGroupTexts);
}

QString GroupName(bool bGroupB) {
    return bGroupB ? QStringLiteral("B") : QStringLiteral("A");
}

// The box dialog's checks of its OK over both groups, in its order.
bool CheckBoxGroups(const QStringList& boxTexts, QString& error) {
    for (const bool bGroupB : {false, true}) {
        if (BoxValueCheck::LacksAllMainValues(GroupTexts(boxTexts, bGroupB))) {
            error = QStringLiteral("--box group %1: %2")
                        .arg(GroupName(bGroupB), Messages::Format(5006));
            return false;
        }
    }
    for (const bool bGroupB : {false, true}) {
        const int place = BoxValueCheck::FirstUnitWithoutValue(GroupTexts(boxTexts, bGroupB));
        if (place != 0) {
            error = QStringLiteral("--box %1%2: %3")
                        .arg(GroupName(bGroupB))
                        .arg(BoxTextOrder::FieldAt(place))
                        .arg(Messages::Format(5007));
            return false;
        }
    }
    return true;
}

bool TakeOption(const QString& name, const QString& value, NewArguments& out, QString& error) {
    if (const TextOption* option = FindTextOption(name)) {
        return TakeText(*option, value, out, error);
    }
    if (name == QStringLiteral("--terminals")) {
        return TakeTerminals(value, out, error);
    }
    if (name == QStringLiteral("--address-base")) {
        return TakeAddressBase(value, out, error);
    }
    if (name == QStringLiteral("--direction")) {
        return TakeDirection(value, out, error);
    }
    if (name == QStringLiteral("--box")) {
        return TakeBox(value, out, error);
    }
    if (name == QStringLiteral("--prompt")) {
        out.bPromptsGiven = true;
        out.prompts.append(value);
        return true;
    }
    error = QStringLiteral("unknown argument %1").arg(name);
    return false;
}

bool ParseNewArguments(const QStringList& args, NewArguments& out, QString& error) {
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& name = args[i];
        if (!name.startsWith(QStringLiteral("--"))) {
            error = QStringLiteral("unknown argument %1").arg(name);
            return false;
        }
        if (i + 1 >= args.size()) {
            error = QStringLiteral("%1 needs a value").arg(name);
            return false;
        }
        if (!TakeOption(name, args[++i], out, error)) {
            return false;
        }
    }
    for (const TextOption& option : kTextOptions) {
        if (option.bRequired && out.texts.value(&option).isEmpty()) {
            error = QStringLiteral("give %1").arg(QLatin1String(option.name));
            return false;
        }
    }
    if (out.prompts.size() > CKVModule::kPromptCount) {
        error = QStringLiteral("give --prompt at most %1 times").arg(CKVModule::kPromptCount);
        return false;
    }
    return CheckBoxGroups(out.boxTexts, error);
}

// The form as the dialog has it on OK: its start values and the default files, then
// what the command line gives.
void FillForm(const NewArguments& args, ModuleSpecForm& form) {
    const QString folder = ModuleDefaults::Folder();
    form.ApplyInfoDefaults(ModuleDefaults::ReadInfo(folder));
    form.m_aPrompts = args.bPromptsGiven ? args.prompts : ModuleDefaults::ReadPrompts(folder);
    for (auto text = args.texts.constBegin(); text != args.texts.constEnd(); ++text) {
        form.*(text.key()->field) = text.value();
    }
    if (args.terminals != 0) {
        form.m_nTermCount = args.terminals;
    }
    form.m_nAddrBaseIndex = args.addrBaseIndex;
    form.m_strDirFlags = ModuleSpecForm::DirFlagsForChoice(Messages::Format(args.directionMessage),
                                                           form.m_strDirFlags);
    form.m_aBoxText = args.boxTexts;
}

int ReportOutcome(ModuleSpecForm::Outcome outcome, const ModuleSpecForm& form,
                  DatabaseSession& session) {
    const QString reason = session.db().GetLastFailure();
    switch (outcome) {
        case ModuleSpecForm::Outcome::Created:
            return 0;
        case ModuleSpecForm::Outcome::StoreNotOpen:
            return Fail(session.readFailure(), kNotMade);
        case ModuleSpecForm::Outcome::NeedsMigration:
            return Fail(QStringLiteral("the type %1 lies in a database of an older plcdb that "
                                       "lacks fields a new module needs; upgrade it first with "
                                       "c:ZLPLCMIGRATE: plcdb --file %2 call "
                                       "\"(c:ZLPLCMIGRATE)\". No module was made.")
                            .arg(form.m_strType, session.db().GetPath()),
                        kNotMade);
        case ModuleSpecForm::Outcome::CatalogExists:
            return Fail(Messages::Format(10117, {form.m_strCatalog}), kNotMade);
        case ModuleSpecForm::Outcome::Failed:
            break;
    }
    return Fail(
        Messages::Format(5004) + (reason.isEmpty() ? QString() : QStringLiteral(" ") + reason),
        kNotMade);
}

int MakeModule(const CliOptions& options) {
    NewArguments args;
    QString error;
    if (!ParseNewArguments(options.arguments, args, error)) {
        return Fail(error, kUsage);
    }
    DatabaseSession session;
    // With the host: it names the folder of the default files.
    if (!session.open(options, &error, true)) {
        return Fail(error, kNotMade);
    }
    if (session.readOnly()) {
        return Fail(session.writeFailure(), kNotMade);
    }
    ModuleSpecForm form;
    FillForm(args, form);
    // The dialog refuses such a count on OK; a default file may still hold one.
    if (form.m_nTermCount > ModuleSpecForm::kMaxTermCount) {
        return Fail(
            QStringLiteral("%1 of %2 asks for %3 terminals, more than %4; give --terminals")
                .arg(ModuleDefaults::kInfoFile, QDir::toNativeSeparators(ModuleDefaults::Folder()))
                .arg(form.m_nTermCount)
                .arg(ModuleSpecForm::kMaxTermCount),
            kNotMade);
    }
    const int status = ReportOutcome(form.CreateModule(session.db().GetPath()), form, session);
    if (status != 0) {
        return status;
    }
    QJsonObject module;
    if (!CatalogDocument::ExportModule(session.db(), form.m_strManufacturer, form.m_strSeries,
                                       form.m_strType, form.m_strCatalog, module, &error)) {
        return Fail(error, kNotMade);
    }
    std::fputs(QJsonDocument(module).toJson(QJsonDocument::Indented).constData(), stdout);
    return 0;
}

}  // namespace

int RunNewCommand(const CliOptions& options) {
    QString error;
    // The texts of the dialog's messages and of its direction list.
    if (LoadResDll(QStringLiteral("zel_mb"), QStringLiteral("zel_mbres"), &error) == nullptr) {
        return Fail(error, kNotMade);
    }
    const int status = MakeModule(options);
    UnloadResDll();
    return status;
}
