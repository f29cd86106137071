#include <gtest/gtest.h>

#include <future>

#include "common/LocalizedText.h"

using namespace zelvar;

TEST(LocalizedText, FoldsCaseKeepsAccentsAndAnswersAlikeOnSeveralThreads) {
    const QString composed = QString::fromUtf8("caf\xC3\xA9");     // é as one code point
    const QString decomposed = QString::fromUtf8("CAFE\xCC\x81");  // E + combining acute
    const QString contained[] = {
        "Google Chrome Helper", "chrome", "mon éditeur", "ÉDITEUR", "ΣΊΣΥΦΟΣ",          "σίσυφος",
        "STRASSENBAHN",         "straße", "Straßenbahn", "STRASSE", "Le " + decomposed, composed};
    const QString apart[] = {"editeur", "éditeur", "Chrome", "Chrome Helper", "Safari", "", "",
                             "",        "",        "x",      "Cafe",          composed};
    const auto check = [&] {
        for (int round = 0; round < 200; ++round) {
            for (qsizetype i = 0; i < std::ssize(contained); i += 2) {
                EXPECT_TRUE(localizedCaseInsensitiveContains(contained[i], contained[i + 1])) << i;
                EXPECT_FALSE(localizedCaseInsensitiveContains(apart[i], apart[i + 1])) << i;
            }
            EXPECT_TRUE(localizedCaseInsensitiveEquals(composed, decomposed));
            EXPECT_FALSE(localizedCaseInsensitiveEquals("chrome", "chrome helper") ||
                         localizedCaseInsensitiveEquals("chrome", " chrome"));
        }
    };
    // Each thread keeps its own collator: four run the cases at once, each future waits for one.
    const std::future<void> runs[] = {
        std::async(std::launch::async, check), std::async(std::launch::async, check),
        std::async(std::launch::async, check), std::async(std::launch::async, check)};
}
