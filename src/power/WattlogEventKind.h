#pragma once

#include <QList>
#include <QString>
#include <optional>

namespace zelvar {

// Where the power came from at an event. The raw values are those of the power log and of
// stored events.
enum class WattlogPowerSource { AC, Battery };

// The kinds of power history event, in the order the Power tab lists its filters. The label is
// also the value stored in JSON.
enum class WattlogEventKind {
    Sleep,
    Wake,
    DarkWake,
    DisplayOn,
    DisplayOff,
    AcConnected,
    AcDisconnected,
    BatteryLevel,
    LidSleep,
    LidOpen,
    Reboot,
    BatteryHealth,
    KernelPanic,
    AppCrash,
    AppHang,
    JetsamEvent,
    WifiConnected,
    WifiDisconnected,
};

// A colour as data: a named system colour, or red, green and blue from 0 to 1 where no named
// one fits. The user interface maps it to its palette.
struct WattlogColor {
    QString name;  // "indigo", ...; empty for an RGB colour
    double red = 0.0;
    double green = 0.0;
    double blue = 0.0;

    bool operator==(const WattlogColor&) const = default;
};

// What the user interface shows of a kind.
class WattlogEventKinds {
public:
    WattlogEventKinds() = delete;

    static constexpr int kCount = 18;

    static const QList<WattlogEventKind>& all();
    static QString label(WattlogEventKind kind);
    // The kind whose label is `text`; nothing for any other text.
    static std::optional<WattlogEventKind> fromLabel(const QString& text);
    // A symbol name; the user interface maps it to an icon.
    static QString symbol(WattlogEventKind kind);
    static WattlogColor color(WattlogEventKind kind);
    // Whether the battery chart's timeline marks events of this kind.
    static bool showOnBatteryTimeline(WattlogEventKind kind);

    // "AC" or "Batt".
    static QString sourceText(WattlogPowerSource source);
    static std::optional<WattlogPowerSource> sourceFromText(const QString& text);
};

}  // namespace zelvar
