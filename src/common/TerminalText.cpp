#include "common/TerminalText.h"

#include <QList>
#include <QTextBoundaryFinder>
#include <algorithm>
#include <iterator>

namespace zelvar {
namespace {

constexpr char32_t kZeroWidthNonJoiner = 0x200C;
constexpr char32_t kZeroWidthJoiner = 0x200D;
constexpr char32_t kEmojiPresentation = 0xFE0F;

struct Range {
    char32_t first;
    char32_t last;
};

// The characters a terminal draws two columns wide: the East Asian Wide and Fullwidth ranges
// and the emoji shown as pictures by default, sorted for the binary search.
constexpr Range kWide[] = {
    {0x1100, 0x115F},   {0x231A, 0x231B},   {0x2329, 0x232A},   {0x23E9, 0x23EC},
    {0x23F0, 0x23F0},   {0x23F3, 0x23F3},   {0x25FD, 0x25FE},   {0x2614, 0x2615},
    {0x2648, 0x2653},   {0x267F, 0x267F},   {0x2693, 0x2693},   {0x26A1, 0x26A1},
    {0x26AA, 0x26AB},   {0x26BD, 0x26BE},   {0x26C4, 0x26C5},   {0x26CE, 0x26CE},
    {0x26D4, 0x26D4},   {0x26EA, 0x26EA},   {0x26F2, 0x26F3},   {0x26F5, 0x26F5},
    {0x26FA, 0x26FA},   {0x26FD, 0x26FD},   {0x2705, 0x2705},   {0x270A, 0x270B},
    {0x2728, 0x2728},   {0x274C, 0x274C},   {0x274E, 0x274E},   {0x2753, 0x2755},
    {0x2757, 0x2757},   {0x2795, 0x2797},   {0x27B0, 0x27B0},   {0x27BF, 0x27BF},
    {0x2B1B, 0x2B1C},   {0x2B50, 0x2B50},   {0x2B55, 0x2B55},   {0x2E80, 0x303E},
    {0x3041, 0x33FF},   {0x3400, 0x4DBF},   {0x4E00, 0x9FFF},   {0xA000, 0xA4CF},
    {0xA960, 0xA97F},   {0xAC00, 0xD7A3},   {0xF900, 0xFAFF},   {0xFE10, 0xFE19},
    {0xFE30, 0xFE6F},   {0xFF00, 0xFF60},   {0xFFE0, 0xFFE6},   {0x16FE0, 0x16FE4},
    {0x17000, 0x18CFF}, {0x1B000, 0x1B2FF}, {0x1F004, 0x1F004}, {0x1F0CF, 0x1F0CF},
    {0x1F18E, 0x1F18E}, {0x1F191, 0x1F19A}, {0x1F1E6, 0x1F1FF}, {0x1F200, 0x1F202},
    {0x1F210, 0x1F23B}, {0x1F240, 0x1F248}, {0x1F250, 0x1F251}, {0x1F260, 0x1F265},
    {0x1F300, 0x1F320}, {0x1F32D, 0x1F335}, {0x1F337, 0x1F37C}, {0x1F37E, 0x1F393},
    {0x1F3A0, 0x1F3CA}, {0x1F3CF, 0x1F3D3}, {0x1F3E0, 0x1F3F0}, {0x1F3F4, 0x1F3F4},
    {0x1F3F8, 0x1F43E}, {0x1F440, 0x1F440}, {0x1F442, 0x1F4FC}, {0x1F4FF, 0x1F53D},
    {0x1F54B, 0x1F54E}, {0x1F550, 0x1F567}, {0x1F57A, 0x1F57A}, {0x1F595, 0x1F596},
    {0x1F5A4, 0x1F5A4}, {0x1F5FB, 0x1F64F}, {0x1F680, 0x1F6C5}, {0x1F6CC, 0x1F6CC},
    {0x1F6D0, 0x1F6D2}, {0x1F6D5, 0x1F6D7}, {0x1F6DC, 0x1F6DF}, {0x1F6EB, 0x1F6EC},
    {0x1F6F4, 0x1F6FC}, {0x1F7E0, 0x1F7EB}, {0x1F7F0, 0x1F7F0}, {0x1F90C, 0x1F93A},
    {0x1F93C, 0x1F945}, {0x1F947, 0x1F9FF}, {0x1FA70, 0x1FAFF}, {0x20000, 0x2FFFD},
    {0x30000, 0x3FFFD},
};

bool isWide(char32_t c) {
    const auto after =
        std::upper_bound(std::begin(kWide), std::end(kWide), c,
                         [](char32_t value, const Range& r) { return value < r.first; });
    return after != std::begin(kWide) && c <= std::prev(after)->last;
}

// Combining marks, format characters and the Hangul vowels and finals that join the syllable
// before them take no column of their own.
bool takesNoColumn(char32_t c) {
    switch (QChar::category(c)) {
        case QChar::Mark_NonSpacing:
        case QChar::Mark_Enclosing:
        case QChar::Other_Format:
        case QChar::Other_Control:
            return true;
        default:
            return c >= 0x1160 && c <= 0x11FF;
    }
}

bool needsEscape(char32_t c) {
    switch (QChar::category(c)) {
        case QChar::Other_Control:  // C0, DEL and C1
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        case QChar::Other_Format:
            return c != kZeroWidthNonJoiner && c != kZeroWidthJoiner;
        default:
            return false;
    }
}

QString escapeOf(char32_t c) {
    switch (c) {
        case U'\n':
            return QStringLiteral("\\n");
        case U'\t':
            return QStringLiteral("\\t");
        case U'\r':
            return QStringLiteral("\\r");
        default:
            break;
    }
    const uint value = c;
    if (value <= 0xFF) {
        return QString::asprintf("\\x%02x", value);
    }
    return value <= 0xFFFF ? QString::asprintf("\\u%04x", value)
                           : QString::asprintf("\\U%08x", value);
}

// Whether a backslash right before `c` would read as the start of an escape.
bool startsEscapeAfterBackslash(char32_t c) {
    return needsEscape(c) || (c < 0x80 && QByteArrayView("\\ntrxuU").contains(char(c)));
}

}  // namespace

QString TerminalText::escaped(const QString& text) {
    if (std::none_of(text.cbegin(), text.cend(), [](QChar c) {
            return c == QLatin1Char('\\') || needsEscape(c.unicode()) || c.isSurrogate();
        })) {
        return text;
    }
    // A lone half of a surrogate pair comes out as U+FFFD, as it would in the UTF-8 output.
    const QList<uint> codePoints = text.toUcs4();
    QString result;
    result.reserve(text.size() + 8);
    for (qsizetype i = 0; i < codePoints.size(); ++i) {
        const char32_t c = codePoints[i];
        if (needsEscape(c)) {
            result += escapeOf(c);
        } else if (c == U'\\' && i + 1 < codePoints.size() &&
                   startsEscapeAfterBackslash(codePoints[i + 1])) {
            result += QStringLiteral("\\\\");
        } else {
            result += QChar::fromUcs4(c);
        }
    }
    return result;
}

int TerminalText::width(const QString& text) {
    int columns = 0;
    QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, text);
    qsizetype start = 0;
    bool flagOpen = false;
    for (qsizetype end = graphemes.toNextBoundary(); end != -1; end = graphemes.toNextBoundary()) {
        const QList<uint> cluster = QStringView(text).sliced(start, end - start).toUcs4();
        start = end;
        // Qt's boundaries split a flag into its two regional indicators, which a terminal
        // draws as one picture: the second of a pair adds no column.
        const bool indicator = cluster.front() >= 0x1F1E6 && cluster.front() <= 0x1F1FF;
        const bool secondOfFlag = indicator && flagOpen;
        flagOpen = indicator && !flagOpen;
        if (secondOfFlag) {
            continue;
        }
        if (cluster.contains(kEmojiPresentation)) {
            columns += 2;
        } else if (!takesNoColumn(cluster.front())) {
            columns += isWide(cluster.front()) ? 2 : 1;
        }
    }
    return columns;
}

QString TerminalText::leftJustified(const QString& text, int columns) {
    return text + QString(std::max(0, columns - width(text)), QLatin1Char(' '));
}

}  // namespace zelvar
