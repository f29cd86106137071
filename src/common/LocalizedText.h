#pragma once

#include <QString>

namespace zelvar {

// Text comparisons that follow the user's locale and ignore case, but not accents:
// "ÉDITEUR" matches "éditeur", "STRASSE" matches "straße", "editeur" does not match
// "éditeur". Canonically equivalent spellings (composed or decomposed accents) are equal.
// Thread-safe: each thread keeps its own collator.

// Whether `text` contains `part`. An empty `part` is contained nowhere.
bool localizedCaseInsensitiveContains(const QString& text, const QString& part);

// Whole-string equality under the same rules.
bool localizedCaseInsensitiveEquals(const QString& a, const QString& b);

}  // namespace zelvar
