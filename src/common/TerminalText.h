#pragma once

#include <QString>

namespace zelvar {

// Text from the machine (process names, paths, network names) on its way to a terminal.
// A process may name itself anything, newlines and escape sequences included, and a table
// that prints such a name raw breaks its rows or lets the name recolour, move the cursor or
// reorder the text. Reports pass such text through escaped() and pad it by width(), which
// counts the columns a terminal draws rather than UTF-16 code units.
class TerminalText {
public:
    // `text` with every character that a terminal would act on or not draw written as a
    // visible escape: \n, \t, \r; other C0 and C1 controls and DEL as \xNN; invisible format
    // characters (bidirectional overrides and isolates, marks, zero-width spaces) and line or
    // paragraph separators as \uNNNN (\UNNNNNNNN beyond the first plane). Zero-width joiners
    // and non-joiners stay, since emoji sequences and some scripts need them.
    //
    // A backslash is doubled only where what follows it would otherwise read as one of these
    // escapes, so an ordinary path such as C:\Temp prints as it is while the output still
    // tells a name holding a newline from one holding a backslash and an "n".
    static QString escaped(const QString& text);

    // Terminal columns that `text` takes: 2 for an East Asian wide or fullwidth character or
    // a wide emoji (an emoji made wide by its presentation selector U+FE0F included), 0 for
    // combining marks, joiners and other characters that attach to the one before, 1 for the
    // rest. Counts whole grapheme clusters, so a ZWJ emoji sequence or a flag is one wide
    // character.
    static int width(const QString& text);

    // `text` followed by spaces up to `columns` display columns; longer text is left whole.
    static QString leftJustified(const QString& text, int columns);
};

}  // namespace zelvar
