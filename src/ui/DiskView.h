#pragma once

#include <QString>
#include <QStringList>
#include <QWidget>
#include <optional>

#include "common/ProcessOrigin.h"
#include "ui/Palette.h"

class QComboBox;
class QLabel;
class QVBoxLayout;

namespace zelvar {

class ConfigManager;
class ProcessMonitor;

// The Disk tab: a card per volume, then which processes, directories and files wrote most in
// the chosen window of the daemon's summary, and the recent write bursts. It reads the process
// monitor's published disk figures and writes nothing; choosing another window only shows
// another part of the summary already held.
class DiskView final : public QWidget {
    Q_OBJECT

public:
    // The colours of a volume's card: the percent text and the bar differ below 75 %.
    struct UsageColors {
        NamedColor text;
        NamedColor bar;
    };

    static const QStringList& windows();  // "1m", "5m", "30m"
    static constexpr int kMaximumBursts = 8;

    DiskView(ProcessMonitor& processMonitor, ConfigManager& configManager,
             QWidget* parent = nullptr);

    QString selectedWindow() const { return m_selectedWindow; }
    void setSelectedWindow(const QString& window);
    QComboBox* windowPicker() const { return m_picker; }
    // "rusage 30s · overhead 0.12%", empty without a summary.
    QString overheadText() const;

    // Strict comparisons: above 90 red, above 75 orange, otherwise green text on a blue bar.
    static UsageColors usageColors(double percentUsed);
    // The filled part of a row's bar, 0 to 1; a largest entry of 0 gives an empty bar.
    static double barFraction(double writtenMB, double maxMB);
    // "parent launchd · <icon> Terminal · via <icon> zsh", the missing pieces left out.
    static QString originCaption(const std::optional<QString>& parentName,
                                 const ProcessOrigin& immediateOrigin,
                                 const ProcessOrigin& rootOrigin);

private:
    void refreshStatus();
    void refreshVolumes();
    void refreshActivity();
    void refreshBursts();

    ProcessMonitor& m_processMonitor;
    [[maybe_unused]] ConfigManager& m_configManager;
    QString m_selectedWindow = QStringLiteral("5m");

    QLabel* m_updated = nullptr;
    QLabel* m_overhead = nullptr;
    QWidget* m_live = nullptr;
    QComboBox* m_picker = nullptr;
    QWidget* m_volumes = nullptr;
    QWidget* m_activity = nullptr;
    QWidget* m_bursts = nullptr;
};

}  // namespace zelvar
