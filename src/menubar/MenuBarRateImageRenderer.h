#pragma once

#include <QColor>
#include <QImage>
#include <QString>
#include <optional>

namespace zelvar {

// Draws the status item's image: two right-aligned lines of rate ("↓ " download above, "↑ "
// upload below) in a 9-point semibold face, and optionally "P " with the power text in a
// larger face to their right. 22 points high; as wide as the texts need. The image carries
// its own colours and isn't meant to be tinted. Each call is self-contained.
class MenuBarRateImageRenderer {
public:
    static constexpr double kHeight = 22.0;
    static constexpr double kRateFontSize = 9.0;
    static constexpr double kPowerFontSize = 13.0;
    static constexpr double kPowerGap = 2.0;

    // The image at `devicePixelRatio` pixels a point; its device-independent size is the
    // width in points by 22.
    static QImage render(const QString& download, const QString& upload,
                         const std::optional<QString>& power, double devicePixelRatio = 1.0,
                         const QColor& color = defaultColor());

    // Linux trays show icons square and scale anything wider down until it can't be read. This
    // draws the same lines in a `side`-point square instead: each rate shortened by
    // compactRate(), one line each (a third line for the power text), condensed sideways when
    // still too wide.
    static QImage renderSquare(const QString& download, const QString& upload,
                               const std::optional<QString>& power, double side = kHeight,
                               double devicePixelRatio = 1.0, const QColor& color = defaultColor());

    // A rate text without its unit's "B/s": "1.50MB/s" gives "1.50M", "999B/s" gives "999".
    static QString compactRate(const QString& rate);

    // The text colour of the desktop's palette.
    static QColor defaultColor();
};

}  // namespace zelvar
