#pragma once

#include <QWidget>

#include "audio/AudioAppEvent.h"
#include "ui/widgets/EventListModel.h"

class QLabel;
class QPushButton;

namespace zelvar {

class AudioMonitor;
class AudioStatusCard;
class HistorySection;

// The Audio tab: while elevated access is missing, a strip that offers to enable it; a status
// card each for the speaker and the microphone; and their histories side by side, newest
// first. It shows the audio monitor's state, and its one action is the access request.
class AudioView final : public QWidget {
    Q_OBJECT

public:
    // A history lists its newest events only; its header still counts them all.
    static constexpr qsizetype kShownEvents = 100;

    explicit AudioView(AudioMonitor& monitor, QWidget* parent = nullptr);

    // "No speaker activity recorded yet": the device's name in lower case.
    static QString emptyHistoryText(AudioDeviceType type);

    bool showsEnableStrip() const;
    // Whether the strip says that the last request didn't bring access.
    bool showsNotGranted() const;
    QPushButton* enableButton() const { return m_enable; }
    AudioStatusCard* card(AudioDeviceType type) const;
    HistorySection* history(AudioDeviceType type) const;
    const EventListModel<AudioAppEvent>& historyModel(AudioDeviceType type) const;

private:
    struct Device {
        AudioStatusCard* card = nullptr;
        EventListModel<AudioAppEvent>* model = nullptr;
        HistorySection* history = nullptr;
    };

    QWidget* buildEnableStrip();
    Device buildDevice(AudioDeviceType type, QWidget* cards, QWidget* histories);
    void refreshAccess();
    void refreshCard(AudioDeviceType type);
    void refreshHistory(AudioDeviceType type);
    const Device& device(AudioDeviceType type) const;

    AudioMonitor& m_monitor;
    QWidget* m_strip = nullptr;
    QLabel* m_notGranted = nullptr;
    QPushButton* m_enable = nullptr;
    Device m_output;
    Device m_input;
};

}  // namespace zelvar
