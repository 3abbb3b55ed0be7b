#pragma once

#include "HostValue.h"

#include <QString>
#include <QStringList>

// Calls back into the family's Lisp functions. Each answers false (and leaves its
// output alone) when the call does not succeed or gives no string.

// "kv_fio_does_file_exist" on the host's search path; on a miss with bReportError the
// Lisp side reports it through "kv_fio_does_file_exist_error".
bool FindSupportFile(const QString& name, QString& out, bool bReportError);
// "kv_fio_does_block_exist_disk" on the block folders; reports through
// "kv_fio_block_path_failed_msg".
bool FindBlockFile(const QString& name, QString& out, bool bReportError);
// "zel_get_var": a variable of the family's Lisp side.
bool GetLispVar(const QString& name, QString& out);
// "c:kv_msg": the translation of text under key replaces text.
bool TranslateMessage(const QString& key, QString& text);
// "qeval-str+": evaluates Lisp text; answers the host's result code.
int EvalLisp(const QString& text, HostValue* result = nullptr);
// Makes a Lisp function callable through HostInvoke.
int DeclareLispFunction(const QString& name);

// One of the family's task dialogs, named by its resource source and name, asked as a
// Yes/No question through the message seam. Its answer (kIdYes, kIdNo), or -1 when the
// dialog is not known, which counts as not yes.
int HostTaskDialog(const QString& source, const QString& name);

// The database file "ZEL_PLC.MDB" on the host's search path, reported when missing.
bool FindDatabaseFile(QString& out);
// The folders of "GBL_kv_lib", split at ";", trimmed, in native form.
bool GetLibraryPaths(QStringList& list);
// Looks for name in each folder of list; the localized placeholders of messages 6000
// (the host's search path) and 6001 (the library folders) stand for those searches.
bool SearchPathList(const QString& name, QString& out, const QStringList& list);

// Fixed decimals, independent of locale, in the manner of the runtime's fcvt: a value
// below 0.1 has no leading zero (0.05 with 4 decimals is ".500").
bool RealToText(double value, QString& out, int digits);

inline constexpr const char* kDatabaseFileName = "ZEL_PLC.MDB";
