#include "ModDB.h"

#include <QLocale>

namespace ModDB {
namespace {

const char* const kSpecFieldNames[ModSpecData::kFieldCount] = {
    "Code",  "ColText2", "ColText1", "Description", "ColText3", "AddrBase", "Reserved", "BoxA1",
    "BoxA2", "BoxA3",    "BoxA4",    "BoxA5",       "BoxA6",    "BoxB1",    "BoxB2",    "BoxB3",
    "BoxB4", "BoxB5",    "BoxB6",    "SpecNote",    "SpecTail", "DirFlags",
};

}  // namespace

QString& ModSpecData::field(int place) {
    QString* const fields[kFieldCount] = {
        &Code,  &ColText2, &ColText1, &Description, &ColText3, &AddrBase, &Reserved, &BoxA1,
        &BoxA2, &BoxA3,    &BoxA4,    &BoxA5,       &BoxA6,    &BoxB1,    &BoxB2,    &BoxB3,
        &BoxB4, &BoxB5,    &BoxB6,    &SpecNote,    &SpecTail, &DirFlags,
    };
    return *fields[(place >= 0 && place < kFieldCount) ? place : 0];
}

const QString& ModSpecData::field(int place) const {
    return const_cast<ModSpecData*>(this)->field(place);
}

const char* ModSpecData::FieldName(int place) {
    return (place >= 0 && place < kFieldCount) ? kSpecFieldNames[place] : "";
}

const char* StyleBoxData::BoxName(int index) {
    static const char* const names[kBoxCount] = {"BoxA1", "BoxA2", "BoxA3", "BoxA4",
                                                 "BoxA5", "BoxA6", "BoxB1", "BoxB2",
                                                 "BoxB3", "BoxB4", "BoxB5", "BoxB6"};
    return (index >= 0 && index < kBoxCount) ? names[index] : "";
}

QString ModuleLock::LocalSince() const {
    return QLocale().toString(since.toLocalTime(), QLocale::ShortFormat);
}

}  // namespace ModDB
