#include "common/TerminalText.h"
#include "support/Testing.h"

// What a terminal would act on shows as an escape; the columns are those of what is shown.
TEST(TerminalText, EscapesWhatATerminalWouldActOnAndCountsTheColumnsDrawn) {
    const struct {
        QString name, shown;
        int columns;
    } cases[] = {
        {"evil\n\x1b[31mred", R"(evil\n\x1b[31mred)", 17},
        {QString::fromUtf8("a\tb\rc\x7f\u0085\u2028"), R"(a\tb\rc\x7f\x85\u2028)", 21},
        {QString::fromUtf8("doc\u202Etxt.exe\u2066\u200B\u00AD"),
         R"(doc\u202etxt.exe\u2066\u200b\xad)", 32},
        {QString::fromUcs4(U"tag\U000E0001"), R"(tag\U000e0001)", 13},
        {R"(C:\Temp\new \x \\)", R"(C:\Temp\\new \\x \\\)", 20},
        {QString::fromUtf8("end\\\n"), R"(end\\\n)", 7},
        {QString::fromUtf8("日本語 한국 Ａ"), QString::fromUtf8("日本語 한국 Ａ"), 14},
        {QString::fromUtf8("🐧 system ⚙️ 🖥️"),
         QString::fromUtf8("🐧 system ⚙️ 🖥️"), 15},
        {QString::fromUtf8("👨‍👩‍👧🇫🇷"),
         QString::fromUtf8("👨‍👩‍👧🇫🇷"), 4},
        {QString::fromUtf8("cafe\u0301 \u1100\u1161"), QString::fromUtf8("cafe\u0301 \u1100\u1161"),
         7},
    };
    for (const auto& c : cases) {
        const QString shown = TerminalText::escaped(c.name);
        EXPECT_EQ(shown, c.shown);
        EXPECT_EQ(TerminalText::width(shown), c.columns) << shown.toStdString();
    }
    EXPECT_EQ(std::pair(TerminalText::leftJustified(QString::fromUtf8("日本"), 6),
                        TerminalText::leftJustified("longer", 4)),
              std::pair(QString::fromUtf8("日本  "), QString("longer")));
}
