#pragma once

#include <QString>

class SqliteDb;

// The search index of a store file: the catalog, description and three column texts of
// every module under SQLite's trigram tokenizer (case folded), with a key table that ties
// its rows to the modules. Triggers on plc_spec keep it, so that every writer of the file
// keeps it right without doing anything for it.
namespace SearchIndex {

// The first schema version with the index.
constexpr int kFirstVersion = 3;
// A trigram: shorter fragments can't be sought in the index.
constexpr int kShortestFragment = 3;

// Makes the index's tables and triggers and fills them from plc_spec. The caller holds
// the transaction.
bool Create(SqliteDb& db);

// Whether a file of the version has the index as this program knows it; a newer file may
// keep it otherwise.
bool IsIn(int version);

// Whether the index finds every module that the case-folded scan finds for fragment.
bool Takes(const QString& fragment);

// Whether the index's case folding keeps c apart from a character that Qt folds alike.
// A module with such a character in its texts is always handed over for the scan's check.
bool FoldsApart(char32_t c);

// The fragment as one phrase of the index's query language.
QString Phrase(const QString& fragment);

}  // namespace SearchIndex
