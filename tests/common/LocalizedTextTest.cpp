#include <gtest/gtest.h>

#include <QStringList>
#include <future>

#include "common/LocalizedText.h"

using namespace zelvar;

TEST(LocalizedText, FoldsCaseKeepsAccentsAndAnswersAlikeOnSeveralThreads) {
    const QString composed = QString::fromUtf8("caf\xC3\xA9");     // é as one code point
    const QString decomposed = QString::fromUtf8("CAFE\xCC\x81");  // E + combining acute
    // Pairs of a text and a part. German sharp s folds to "ss", which a byte or simple case
    // comparison misses.
    const QStringList contained = {
        "Google Chrome Helper", "chrome", "mon éditeur", "ÉDITEUR", "ΣΊΣΥΦΟΣ",          "σίσυφος",
        "STRASSENBAHN",         "straße", "Straßenbahn", "STRASSE", "Le " + decomposed, composed};
    const QStringList apart = {"editeur", "éditeur", "Chrome", "Chrome Helper",
                               "Safari",  "",        "",       "x"};
    const auto check = [&] {
        for (const auto& [pairs, expected] :
             {std::pair(contained, true), std::pair(apart, false)}) {
            for (qsizetype i = 0; i < pairs.size(); i += 2) {
                EXPECT_EQ(localizedCaseInsensitiveContains(pairs[i], pairs[i + 1]), expected) << i;
            }
        }
        EXPECT_TRUE(localizedCaseInsensitiveEquals(composed, decomposed));
        EXPECT_FALSE(localizedCaseInsensitiveEquals("chrome", "chrome helper"));
        EXPECT_FALSE(localizedCaseInsensitiveEquals("chrome", " chrome"));
    };
    // Each thread keeps its own collator; four run the cases at once, each many times over.
    std::vector<std::future<void>> runs;  // each waits for its thread when it goes
    for (int t = 0; t < 4; ++t) {
        runs.push_back(std::async(std::launch::async, [&] {
            for (int round = 0; round < 200; ++round) {
                check();
            }
        }));
    }
}
