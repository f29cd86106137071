#pragma once

#include <QString>
#include <memory>

namespace zelvar {

// Text comparisons that follow the user's locale and ignore case, but not accents:
// "ÉDITEUR" matches "éditeur", "STRASSE" matches "straße", "editeur" does not match
// "éditeur". Canonically equivalent spellings (composed or decomposed accents) are equal.
// Thread-safe: each thread keeps its own collator.

// Whether `text` contains `part`. An empty `part` is contained nowhere.
bool localizedCaseInsensitiveContains(const QString& text, const QString& part);

// Whole-string equality under the same rules.
bool localizedCaseInsensitiveEquals(const QString& a, const QString& b);

// Full case folding, the first step of both comparisons: fold once, test many times.
QString localizedFold(const QString& text);

// One `part` looked for in many texts: foundInFolded(localizedFold(text)) is
// localizedCaseInsensitiveContains(text, part), without preparing the search for `part` again
// on each call. Use it on the thread that made it.
class LocalizedPattern {
public:
    explicit LocalizedPattern(const QString& part);
    ~LocalizedPattern();
    LocalizedPattern(const LocalizedPattern&) = delete;
    LocalizedPattern& operator=(const LocalizedPattern&) = delete;

    bool foundInFolded(const QString& foldedText);

private:
    struct Search;
    QString m_foldedPart;
    std::unique_ptr<Search> m_search;
};

}  // namespace zelvar
