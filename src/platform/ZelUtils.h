#pragma once

#include <QString>

// The family's text and path helpers. Paths use the platform's native separator;
// both "/" and "\" are accepted on input.

// Cuts the text up to the first of the delimiters into token and removes token and
// delimiter from text; a text that begins with a delimiter yields an empty token.
// When no delimiter is left, answers false, clears token and leaves text as it is.
bool GetToken(QString& text, QString& token, const QString& delimiters);

// Replaces every occurrence of find in text and answers the number of replacements.
int ReplaceStringInString(QString& text, const QString& find, const QString& replace);

// Every "/" and "\" turned into the native separator.
QString NativePath(const QString& path);

// Appends the native separator unless the path is empty or already ends with one.
void EnsureEndingBackslash(QString& path);

// Appends "." and the extension unless the name is empty or already ends with it
// (compared without regard to case).
void EnsureExtension(QString& name, const QString& extension);

// The folder of the module (executable or plug-in) that holds this code.
QString GenerateProgramDir();

// Copies at most maxChars characters of source into target.
void SetStringWithLength(QString& target, const QString& source, int maxChars);

// The decimal separator of the user's locale.
QString GetLocaleDecimalSep();

// Characters (code points) and bytes (UTF-8) of a text, and its first count characters.
int GetCharCount(const QString& text);
int GetByteCount(const QString& text);
QString GetStringAtCharCount(const QString& text, int count);

// The text as a message quotes it: text longer than maxLength characters is cut, never
// inside a character, and marked with "..." and its full length, so that no input
// floods a message.
QString TextExcerpt(const QString& text, qsizetype maxLength = 40);
