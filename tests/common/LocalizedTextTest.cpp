#include <gtest/gtest.h>

#include <thread>

#include "common/LocalizedText.h"

using namespace zelvar;

TEST(LocalizedText, ContainmentIgnoresCaseBeyondAscii) {
    EXPECT_TRUE(localizedCaseInsensitiveContains("Google Chrome Helper", "chrome"));
    EXPECT_TRUE(localizedCaseInsensitiveContains("mon éditeur", "ÉDITEUR"));
    EXPECT_TRUE(localizedCaseInsensitiveContains("ΣΊΣΥΦΟΣ", "σίσυφος"));
    // German sharp s folds to "ss", which a byte or simple case comparison misses.
    EXPECT_TRUE(localizedCaseInsensitiveContains("STRASSENBAHN", "straße"));
    EXPECT_TRUE(localizedCaseInsensitiveContains("Straßenbahn", "STRASSE"));
}

TEST(LocalizedText, ContainmentKeepsAccentsAndNeedsTheWholePart) {
    EXPECT_FALSE(localizedCaseInsensitiveContains("editeur", "éditeur"));
    EXPECT_FALSE(localizedCaseInsensitiveContains("Chrome", "Chrome Helper"));
    EXPECT_FALSE(localizedCaseInsensitiveContains("Safari", ""));
    EXPECT_FALSE(localizedCaseInsensitiveContains("", "x"));
}

TEST(LocalizedText, EqualityIsWholeStringUpToCaseAndComposition) {
    const QString composed = QString::fromUtf8("caf\xC3\xA9");     // é as one code point
    const QString decomposed = QString::fromUtf8("CAFE\xCC\x81");  // E + combining acute
    EXPECT_TRUE(localizedCaseInsensitiveEquals(composed, decomposed));
    EXPECT_TRUE(localizedCaseInsensitiveContains("Le " + decomposed, composed));
    EXPECT_FALSE(localizedCaseInsensitiveEquals("chrome", "chrome helper"));
    EXPECT_FALSE(localizedCaseInsensitiveEquals("chrome", " chrome"));
}

TEST(LocalizedText, WorksFromSeveralThreadsAtOnce) {
    std::atomic<int> hits = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 500; ++i) {
                hits += localizedCaseInsensitiveContains("Firefox Web Content", "WEB") ? 1 : 0;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(hits, 2000);
}
