#include "ui/audio/AudioView.h"

#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include "audio/AudioMonitor.h"
#include "ui/Palette.h"
#include "ui/ShownRefresh.h"
#include "ui/audio/AudioEventRow.h"
#include "ui/audio/AudioStatusCard.h"
#include "ui/widgets/HistorySection.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

QString AudioView::emptyHistoryText(AudioDeviceType type) {
    return QStringLiteral("No ") + rawValue(type).toLower() +
           QStringLiteral(" activity recorded yet");
}

AudioView::AudioView(AudioMonitor& monitor, QWidget* parent) : QWidget(parent), m_monitor(monitor) {
    setObjectName(QStringLiteral("AudioView"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(16, 12, 16, 12);
    column->setSpacing(12);
    column->addWidget(buildEnableStrip());

    auto* cards = new QWidget(this);
    (new QHBoxLayout(cards))->setContentsMargins(0, 0, 0, 0);
    column->addWidget(cards);
    auto* histories = new QWidget(this);
    (new QHBoxLayout(histories))->setContentsMargins(0, 0, 0, 0);
    column->addWidget(histories, 1);
    m_output = buildDevice(AudioDeviceType::Output, cards, histories);
    m_input = buildDevice(AudioDeviceType::Input, cards, histories);

    // Each part follows its own signals, while the tab is on screen.
    auto* access = new ShownRefresh(this, [this] { refreshAccess(); });
    connect(&m_monitor, &AudioMonitor::isElevatedAccessAvailableChanged, access,
            &ShownRefresh::request);
    for (const AudioDeviceType type : allAudioDeviceTypes()) {
        auto* card = new ShownRefresh(this, [this, type] { refreshCard(type); });
        auto* history = new ShownRefresh(this, [this, type] { refreshHistory(type); });
        const bool output = type == AudioDeviceType::Output;
        for (const auto changed :
             {output ? &AudioMonitor::isOutputActiveChanged : &AudioMonitor::isInputActiveChanged,
              output ? &AudioMonitor::mostRecentOutputAppChanged
                     : &AudioMonitor::mostRecentInputAppChanged,
              output ? &AudioMonitor::outputStatusTextChanged
                     : &AudioMonitor::inputStatusTextChanged}) {
            connect(&m_monitor, changed, card, &ShownRefresh::request);
        }
        connect(&m_monitor,
                output ? &AudioMonitor::outputHistoryChanged : &AudioMonitor::inputHistoryChanged,
                history, &ShownRefresh::request);
        refreshCard(type);
        refreshHistory(type);
    }
    refreshAccess();
}

QWidget* AudioView::buildEnableStrip() {
    m_strip = new QFrame(this);
    m_strip->setObjectName(QStringLiteral("enableStrip"));
    m_strip->setAttribute(Qt::WA_StyledBackground);
    m_strip->setStyleSheet(QStringLiteral("#enableStrip { background: %1; border-radius: 8px; }")
                               .arg(styleColor(withOpacity(namedColor(NamedColor::Orange), 0.06))));
    auto* row = new QHBoxLayout(m_strip);
    row->setContentsMargins(12, 8, 12, 8);
    row->addWidget(
        symbolLabel(QStringLiteral("lock.shield"), 16, namedColor(NamedColor::Orange), m_strip));
    row->addWidget(textLabel(QStringLiteral("Accurate audio detection requires elevated access"),
                             captionFont(), m_strip, secondaryColor(this)),
                   1);
    // Said after a request that didn't bring access (refused, or no consent tool), so that a
    // press never seems to do nothing; the log has the reason.
    m_notGranted = textLabel(QStringLiteral("Not granted"), captionFont(), m_strip,
                             namedColor(NamedColor::Orange));
    m_notGranted->hide();
    row->addWidget(m_notGranted);
    m_enable = new QPushButton(QStringLiteral("Enable"), m_strip);
    m_enable->setObjectName(QStringLiteral("enableButton"));
    // Blocks until the user has answered the system's consent dialog, which is modal anyway.
    connect(m_enable, &QPushButton::clicked, this, [this] {
        m_monitor.requestElevatedAccess();
        m_notGranted->setVisible(!m_monitor.isElevatedAccessAvailable());
        refreshAccess();
    });
    row->addWidget(m_enable);
    return m_strip;
}

AudioView::Device AudioView::buildDevice(AudioDeviceType type, QWidget* cards, QWidget* histories) {
    const bool output = type == AudioDeviceType::Output;
    const QString title = rawValue(type);
    Device device;
    device.card = new AudioStatusCard(
        title, output ? QStringLiteral("speaker.wave.2") : QStringLiteral("mic"), cards);
    cards->layout()->addWidget(device.card);
    device.model = new EventListModel<AudioAppEvent>(kShownEvents, this);
    EventListModel<AudioAppEvent>* model = device.model;
    auto* rows = new EventRowDelegate(
        [model](const QModelIndex& index) {
            return AudioEventRow::content(model->at(index.row()));
        },
        this);
    device.history = new HistorySection(
        {output ? QStringLiteral("speaker.wave.2") : QStringLiteral("mic"),
         title + QStringLiteral(" History"),
         output ? QStringLiteral("speaker") : QStringLiteral("mic.slash"), emptyHistoryText(type)},
        model, rows, histories);
    device.history->setObjectName(title + QStringLiteral("History"));
    histories->layout()->addWidget(device.history);
    return device;
}

void AudioView::refreshAccess() {
    m_strip->setVisible(!m_monitor.isElevatedAccessAvailable());
}

void AudioView::refreshCard(AudioDeviceType type) {
    const bool output = type == AudioDeviceType::Output;
    device(type).card->setState(
        output ? m_monitor.isOutputActive() : m_monitor.isInputActive(),
        output ? m_monitor.mostRecentOutputApp() : m_monitor.mostRecentInputApp(),
        output ? m_monitor.outputStatusText() : m_monitor.inputStatusText());
}

void AudioView::refreshHistory(AudioDeviceType type) {
    const QList<AudioAppEvent>& events =
        type == AudioDeviceType::Output ? m_monitor.outputHistory() : m_monitor.inputHistory();
    device(type).model->setHistory(events);
    device(type).history->setTotal(events.size());
}

bool AudioView::showsNotGranted() const {
    return !m_notGranted->isHidden();
}

bool AudioView::showsEnableStrip() const {
    return !m_strip->isHidden();
}

AudioStatusCard* AudioView::card(AudioDeviceType type) const {
    return device(type).card;
}

HistorySection* AudioView::history(AudioDeviceType type) const {
    return device(type).history;
}

const EventListModel<AudioAppEvent>& AudioView::historyModel(AudioDeviceType type) const {
    return *device(type).model;
}

const AudioView::Device& AudioView::device(AudioDeviceType type) const {
    return type == AudioDeviceType::Output ? m_output : m_input;
}

}  // namespace zelvar
