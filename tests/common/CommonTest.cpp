#include <QTimeZone>
#include <future>

#include "common/IsoDate.h"
#include "common/LocalizedText.h"
#include "support/Testing.h"

TEST(IsoDate, FormatsAndParsesWholeSecondsWithZOrAnOffset) {
    const QDateTime instant(QDate(2026, 3, 5), QTime(23, 4, 5), QTimeZone(3600));
    EXPECT_EQ(formatIsoDate(instant.addMSecs(987)), "2026-03-05T22:04:05Z");
    EXPECT_EQ(parseIsoDate("2026-03-05T21:04:05-01:00"), instant);
    for (const char* text :
         {"2026-03-05T22:04:05.123Z", "2026-03-05T22:04:05", "2026-03-05 22:04:05Z", "2026-03-05",
          "2026-02-30T10:00:00Z", "2026-03-05T24:00:00Z", " 2026-03-05T22:04:05Z"}) {
        EXPECT_FALSE(parseIsoDate(text).has_value()) << text;
    }
}

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
