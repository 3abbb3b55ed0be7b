#pragma once

#include <QStringList>

// The choice lists of the show and re-prompt values, as the terminal grid's drop lists
// and the picker's combo boxes offer them: line n of the text describes the flag set n.
class TermChoices {
public:
    static constexpr int kShow = 4015;
    static constexpr int kRePrompt = 4017;

    // The lines of a string table text, split at "\r\n"; a last line without a line
    // end counts, an empty text after the last line end does not.
    static QStringList Lines(int number);
};
