#pragma once

#include <QByteArray>
#include <QString>

#include <cstddef>
#include <cstdint>

// What every fuzz target needs: its input as bytes or text, files in a scratch folder,
// and a way to report a broken promise as a crash that libFuzzer keeps.

QByteArray FuzzBytes(const uint8_t* data, size_t size);
// The input as UTF-8; invalid bytes read as replacement characters.
QString FuzzText(const uint8_t* data, size_t size);

// A folder of this process (below TMPDIR) that lives as long as the process, and a path
// in it.
QString FuzzFolder();
QString FuzzPath(const QString& name);
void FuzzWriteFile(const QString& path, const QByteArray& bytes);

// Prints which promise broke, with detail, and aborts.
[[noreturn]] void FuzzBroken(const char* promise, const QString& detail = QString());
// The same for a condition that must hold.
void FuzzCheck(bool condition, const char* promise, const QString& detail = QString());

// True when text holds a surrogate without its partner.
bool HasLoneSurrogate(const QString& text);
