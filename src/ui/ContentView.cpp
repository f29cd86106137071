#include "ui/ContentView.h"

#include <QDialog>
#include <QHBoxLayout>
#include <QLabel>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

#include "common/Log.h"
#include "config/ConfigManager.h"
#include "process/ProcessMonitor.h"
#include "ui/AlertHistoryView.h"
#include "ui/DiskView.h"
#include "ui/NetworkView.h"
#include "ui/Palette.h"
#include "ui/ProcessesView.h"
#include "ui/SettingsView.h"
#include "ui/Symbols.h"
#include "ui/TextFormat.h"
#include "ui/audio/AudioView.h"
#include "ui/focus/FocusView.h"
#include "ui/power/PowerView.h"

namespace zelvar {

ContentView::ContentView(Managers managers, QWidget* parent)
    : QWidget(parent), m_managers(std::move(managers)) {
    setObjectName(QStringLiteral("ContentView"));
    setMinimumSize(kMinimumWidth, kMinimumHeight);
    // The control background of the platform under everything.
    setBackgroundRole(QPalette::Window);
    setAutoFillBackground(true);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(buildHeader());

    m_tabs = new QTabWidget(this);
    m_tabs->setDocumentMode(true);
    m_processesView = new ProcessesView(m_managers.processMonitor, m_managers.configManager,
                                        m_managers.expansionAnchors, m_tabs);
    m_tabs->addTab(m_processesView, symbolIcon(QStringLiteral("memorychip")),
                   QStringLiteral("RAM"));
    m_tabs->addTab(new DiskView(m_managers.processMonitor, m_managers.configManager, m_tabs),
                   symbolIcon(QStringLiteral("internaldrive")), QStringLiteral("Disk"));
    m_tabs->addTab(new NetworkView(m_managers.bandwidthMonitor, m_tabs),
                   symbolIcon(QStringLiteral("network")), QStringLiteral("Network"));
    m_tabs->addTab(new PowerView(m_managers.powerMonitor, m_tabs),
                   symbolIcon(QStringLiteral("bolt")), QStringLiteral("Power"));
    m_tabs->addTab(new AudioView(m_managers.audioMonitor, m_tabs),
                   symbolIcon(QStringLiteral("speaker.wave.2")), QStringLiteral("Audio"));
    m_tabs->addTab(new FocusView(m_managers.focusMonitor, m_tabs),
                   symbolIcon(QStringLiteral("app.window")), QStringLiteral("Focus"));
    m_tabs->addTab(new AlertHistoryView(m_managers.processMonitor, m_tabs),
                   symbolIcon(QStringLiteral("bell.badge")), QStringLiteral("Alerts"));
    m_tabs->setCurrentIndex(0);
    layout->addWidget(m_tabs, 1);
    layout->addWidget(buildStatusLine());

    connect(&m_managers.processMonitor, &ProcessMonitor::lastUpdateTimeChanged, this,
            &ContentView::refreshUpdated);
    connect(&m_managers.configManager, &ConfigManager::saveFailed, this,
            &ContentView::showSaveFailure);
    refreshUpdated();
    logLine(QStringLiteral("[ContentView] Initialized with managers"));
}

QWidget* ContentView::buildHeader() {
    auto* header = new QWidget(this);
    header->setObjectName(QStringLiteral("header"));
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(12, 6, 8, 6);
    row->setSpacing(4);

    const QColor green = namedColor(NamedColor::Green);
    const int symbolSize = QFontMetrics(captionFont()).height();
    auto* live = new QLabel(header);
    live->setPixmap(
        symbolPixmap(QStringLiteral("dot.radiowaves.left.and.right"), symbolSize, green));
    row->addWidget(live);
    auto* liveText = new QLabel(QStringLiteral("Live"), header);
    liveText->setObjectName(QStringLiteral("live"));
    liveText->setFont(captionFont());
    QPalette livePalette = liveText->palette();
    livePalette.setColor(QPalette::WindowText, green);
    liveText->setPalette(livePalette);
    row->addWidget(liveText);
    row->addStretch(1);

    m_updated = new QLabel(header);
    m_updated->setFont(captionFont());
    QPalette secondary = m_updated->palette();
    secondary.setColor(QPalette::WindowText, secondaryColor(this));
    m_updated->setPalette(secondary);
    row->addWidget(m_updated);

    auto* gear = new QToolButton(header);
    gear->setObjectName(QStringLiteral("settingsButton"));
    gear->setIcon(symbolIcon(QStringLiteral("gear")));
    gear->setAutoRaise(true);
    gear->setToolTip(QStringLiteral("Settings"));
    connect(gear, &QToolButton::clicked, this, &ContentView::presentSettings);
    row->addWidget(gear);
    return header;
}

QWidget* ContentView::buildStatusLine() {
    m_statusLine = new QWidget(this);
    m_statusLine->setObjectName(QStringLiteral("statusLine"));
    auto* row = new QHBoxLayout(m_statusLine);
    row->setContentsMargins(12, 4, 8, 4);
    const QColor red = namedColor(NamedColor::Red);
    auto* icon = new QLabel(m_statusLine);
    icon->setPixmap(symbolPixmap(QStringLiteral("exclamationmark.triangle.fill"),
                                 QFontMetrics(captionFont()).height(), red));
    row->addWidget(icon);
    m_statusText = new QLabel(m_statusLine);
    m_statusText->setFont(captionFont());
    m_statusText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    QPalette palette = m_statusText->palette();
    palette.setColor(QPalette::WindowText, red);
    m_statusText->setPalette(palette);
    row->addWidget(m_statusText, 1);
    auto* dismiss = new QToolButton(m_statusLine);
    dismiss->setText(QStringLiteral("Dismiss"));
    dismiss->setAutoRaise(true);
    connect(dismiss, &QToolButton::clicked, this, [this] {
        m_statusText->clear();
        m_statusLine->hide();
    });
    row->addWidget(dismiss);
    m_statusLine->hide();
    return m_statusLine;
}

void ContentView::showSaveFailure(const QString& message) {
    // The change is still in effect in memory; the line says it won't survive a restart.
    m_statusText->setText(message + QStringLiteral(" (changes apply until Zelvar+ quits)"));
    m_statusLine->show();
}

QString ContentView::statusText() const {
    return m_statusLine->isHidden() ? QString() : m_statusText->text();
}

void ContentView::refreshUpdated() {
    m_updated->setText(updatedText());
}

QString ContentView::updatedText() const {
    return QStringLiteral("Updated: ") + localTimeText(m_managers.processMonitor.lastUpdateTime());
}

void ContentView::presentSettings() {
    if (m_settings) {
        return;
    }
    m_settings = new SettingsView(m_managers.configManager, m_managers.notificationCenter,
                                  m_managers.soundPlayer, m_managers.scheduler, this);
    m_settings->setAttribute(Qt::WA_DeleteOnClose);
    m_settings->setWindowModality(Qt::WindowModal);
    m_settings->open();
}

}  // namespace zelvar
