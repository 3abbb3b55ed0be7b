#pragma once

#include <QDateTime>
#include <QString>

#include <array>

// The records at the store boundary. All numbers that belong to a module are text
// here, as the store keeps them.
namespace ModDB {

// One row of the index: a manufacturer, a series of it, or a type of a series.
struct IndexData {
    QString Manufacturer;
    QString Series;     // empty on a manufacturer-only row
    QString Type;       // empty on a series-only row
    QString TableName;  // the module table of a type
};

// One terminal row of a module.
struct ModTermData {
    QString Code;       // catalog code of the owning module
    qint32 Number = 0;  // 1-based row number
    QString Text;
    QString Special;
};

// One module spec: 22 texts. A "value" field holds a number and an
// optional unit, separated by one blank, or nothing when the number is unset.
struct ModSpecData {
    static constexpr int kFieldCount = 22;
    static constexpr int kReservedPlace = 6;  // 0-based place of Reserved
    static constexpr int kFirstBoxPlace = 7;  // BoxA1; BoxB6 is place 18

    QString Code;
    QString ColText2;
    QString ColText1;
    QString Description;
    QString ColText3;
    QString AddrBase;
    QString Reserved;
    QString BoxA1, BoxA2, BoxA3, BoxA4, BoxA5, BoxA6;
    QString BoxB1, BoxB2, BoxB3, BoxB4, BoxB5, BoxB6;
    QString SpecNote;
    QString SpecTail;
    QString DirFlags;

    // The field at a 0-based place in the order above, and its name.
    QString& field(int place);
    const QString& field(int place) const;
    static const char* FieldName(int place);
};

// The default box values of one style: 12 texts, BoxA1 .. BoxA6 then BoxB1 .. BoxB6.
struct StyleBoxData {
    static constexpr int kBoxCount = 12;

    qint32 Number = 0;
    std::array<QString, kBoxCount> Box;

    static const char* BoxName(int index);  // "BoxA1" .. "BoxB6"
};

// One entry of the prompt table: a prompt text and its localized form.
struct PromptData {
    QString Prompt;
    QString Localized;
};

// One module found by a search: where it sits in the index, and its own texts.
struct ModuleMatch {
    QString Manufacturer;
    QString Series;
    QString Type;
    QString TableName;
    QString Catalog;
    QString Description;
};

// Who holds the edit lock of a module: "anna on ws-17", and since when (UTC).
struct ModuleLock {
    QString holder;
    QDateTime since;

    // since in local time, as the user's locale writes a short date and time.
    QString LocalSince() const;
};

}  // namespace ModDB
