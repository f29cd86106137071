#include "ui/DiskView.h"

#include <QApplication>
#include <QComboBox>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>

#include "disk/DiskIOModels.h"
#include "disk/DiskInfo.h"
#include "process/ProcessMonitor.h"
#include "ui/ShownRefresh.h"
#include "ui/Symbols.h"
#include "ui/TextFormat.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {

QWidget* diskUsageCard(const DiskInfo& disk, QWidget* parent) {
    QFrame* frame = card(QStringLiteral("DiskUsageCard"), parent);
    frame->setMinimumWidth(220);
    auto* column = new QVBoxLayout(frame);
    const DiskView::UsageColors colors = DiskView::usageColors(disk.percentUsed());
    auto* top = new QHBoxLayout;
    auto* names = new QVBoxLayout;
    names->addWidget(textLabel(disk.mountPoint, semibold(QApplication::font()), frame));
    names->addWidget(textLabel(disk.displayUsed(), captionFont(), frame, secondaryColor(frame)));
    top->addLayout(names, 1);
    QLabel* percent = textLabel(disk.displayPercent(), semibold(QApplication::font()), frame,
                                namedColor(colors.text));
    percent->setObjectName(QStringLiteral("percent"));
    top->addWidget(percent);
    top->addWidget(textLabel(QStringLiteral("used"), captionFont(), frame, secondaryColor(frame)));
    column->addLayout(top);
    column->addWidget(new FillBar(std::clamp(disk.percentUsed() / 100.0, 0.0, 1.0),
                                  namedColor(colors.bar), 6, frame));
    return frame;
}

QColor orange(double opacity) {
    return withOpacity(namedColor(NamedColor::Orange), opacity);
}

QWidget* captionLine(const QString& text, QWidget* parent) {
    QLabel* caption = textLabel(text, caption2Font(), parent, secondaryColor(parent));
    caption->setObjectName(QStringLiteral("OriginCaption"));
    return caption;
}

QWidget* writerRow(const WriterEntry& writer, int rank, double maxMB, QWidget* parent) {
    auto* row = new QWidget(parent);
    row->setObjectName(QStringLiteral("WriterRow"));
    auto* column = new QVBoxLayout(row);
    column->setContentsMargins(0, 2, 0, 2);
    auto* line = new QHBoxLayout;
    QLabel* rankLabel = textLabel(QString::number(rank), caption2Font(), row, secondaryColor(row));
    rankLabel->setObjectName(QStringLiteral("rank"));
    rankLabel->setFixedWidth(16);
    line->addWidget(rankLabel, 0, Qt::AlignTop);
    auto* names = new QVBoxLayout;
    names->addWidget(textLabel(writer.name, captionFont(), row));
    names->addWidget(captionLine(
        DiskView::originCaption(writer.parentName, writer.immediateOrigin, writer.rootOrigin),
        row));
    line->addLayout(names, 1);
    auto* sizes = new QVBoxLayout;
    QLabel* written = textLabel(formatMegabytes(writer.writtenMB), semibold(captionFont()), row,
                                namedColor(NamedColor::Orange));
    written->setObjectName(QStringLiteral("written"));
    written->setAlignment(Qt::AlignRight);
    sizes->addWidget(written);
    QLabel* read =
        textLabel(QStringLiteral("↑  ") + formatMegabytes(writer.readMB) + QStringLiteral(" ↓"),
                  caption2Font(), row, secondaryColor(row));
    read->setAlignment(Qt::AlignRight);
    sizes->addWidget(read);
    line->addLayout(sizes);
    column->addLayout(line);
    column->addWidget(
        new FillBar(DiskView::barFraction(writer.writtenMB, maxMB), orange(0.7), 3, row));
    return row;
}

QWidget* pathRow(const QString& name, const QString& path, double writtenMB, double maxMB,
                 QWidget* parent) {
    auto* row = new QWidget(parent);
    row->setObjectName(name);
    auto* column = new QVBoxLayout(row);
    column->setContentsMargins(0, 2, 0, 2);
    auto* line = new QHBoxLayout;
    QLabel* pathLabel = textLabel(path, captionFont(), row);
    pathLabel->setTextFormat(Qt::PlainText);
    pathLabel->setMinimumWidth(0);
    pathLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    pathLabel->setToolTip(path);
    line->addWidget(pathLabel, 1);
    QLabel* written = textLabel(formatMegabytes(writtenMB), semibold(captionFont()), row);
    written->setObjectName(QStringLiteral("written"));
    line->addWidget(written);
    column->addLayout(line);
    column->addWidget(new FillBar(DiskView::barFraction(writtenMB, maxMB), orange(0.6), 3, row));
    return row;
}

QWidget* emptyIOCard(QWidget* parent) {
    QFrame* frame = card(QStringLiteral("EmptyIOCard"), parent);
    auto* row = new QHBoxLayout(frame);
    row->addWidget(
        symbolLabel(QStringLiteral("checkmark.circle"), 18, namedColor(NamedColor::Green), frame));
    row->addWidget(textLabel(QStringLiteral("No significant disk write activity"),
                             QApplication::font(), frame, secondaryColor(frame)),
                   1);
    return frame;
}

template <typename Entry>
double largestWritten(const QList<Entry>& entries) {
    double largest = 0.0;
    for (const Entry& entry : entries) {
        largest = std::max(largest, entry.writtenMB);
    }
    return largest;
}

QWidget* group(const QString& title, const QString& symbol, QWidget* parent) {
    auto* box = new QWidget(parent);
    auto* column = new QVBoxLayout(box);
    column->setContentsMargins(0, 4, 0, 4);
    auto* heading = new QHBoxLayout;
    if (!symbol.isEmpty()) {
        heading->addWidget(symbolLabel(symbol, 14, secondaryColor(box), box));
    }
    heading->addWidget(textLabel(title, semibold(captionFont()), box), 1);
    column->addLayout(heading);
    return box;
}

QWidget* ioActivitySection(const WindowData& data, QWidget* parent) {
    if (data.topWriters.isEmpty() && data.topDirectories.isEmpty() && data.topFiles.isEmpty()) {
        return emptyIOCard(parent);
    }
    QFrame* section = card(QStringLiteral("IOActivitySection"), parent);
    auto* column = new QVBoxLayout(section);
    if (!data.topWriters.isEmpty()) {
        QWidget* box = group(QStringLiteral("Top Writers (processes)"), {}, section);
        const double maxMB = largestWritten(data.topWriters);
        int rank = 1;
        for (const WriterEntry& writer : data.topWriters) {
            box->layout()->addWidget(writerRow(writer, rank++, maxMB, box));
        }
        column->addWidget(box);
    }
    if (!data.topDirectories.isEmpty()) {
        QWidget* box =
            group(QStringLiteral("Growing Directories"), QStringLiteral("folder.fill"), section);
        const double maxMB = largestWritten(data.topDirectories);
        for (const DirectoryEntry& directory : data.topDirectories) {
            box->layout()->addWidget(pathRow(QStringLiteral("DirectoryRow"), directory.path,
                                             directory.writtenMB, maxMB, box));
        }
        column->addWidget(box);
    }
    if (!data.topFiles.isEmpty()) {
        QWidget* box = group(QStringLiteral("Growing Files"), QStringLiteral("doc.fill"), section);
        const double maxMB = largestWritten(data.topFiles);
        for (const FileEntry& file : data.topFiles) {
            box->layout()->addWidget(
                pathRow(QStringLiteral("FileRow"), file.path, file.writtenMB, maxMB, box));
        }
        column->addWidget(box);
    }
    return section;
}

QWidget* burstCard(const DiskIOBurst& burst, QWidget* parent) {
    QFrame* frame = card(QStringLiteral("BurstCard"), parent);
    auto* row = new QHBoxLayout(frame);
    row->addWidget(symbolLabel(burst.icon(), 14, namedColor(NamedColor::Orange), frame), 0,
                   Qt::AlignTop);
    auto* column = new QVBoxLayout;
    auto* line = new QHBoxLayout;
    QLabel* name = textLabel(burst.label, semibold(captionFont()), frame);
    name->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    line->addWidget(name, 1);
    line->addWidget(
        textLabel(burst.displayWritten(), captionFont(), frame, namedColor(NamedColor::Orange)));
    line->addWidget(
        textLabel(QStringLiteral("/ ") + QString::number(burst.windowS) + QStringLiteral("s"),
                  caption2Font(), frame, secondaryColor(frame)));
    line->addWidget(
        textLabel(localTimeText(burst.timestamp), caption2Font(), frame, secondaryColor(frame)));
    column->addLayout(line);
    column->addWidget(captionLine(
        DiskView::originCaption(burst.parentName, burst.immediateOrigin, burst.rootOrigin), frame));
    row->addLayout(column, 1);
    return frame;
}

}  // namespace

const QStringList& DiskView::windows() {
    static const QStringList kWindows = {QStringLiteral("1m"), QStringLiteral("5m"),
                                         QStringLiteral("30m")};
    return kWindows;
}

DiskView::UsageColors DiskView::usageColors(double percentUsed) {
    if (percentUsed > 90.0) {
        return {NamedColor::Red, NamedColor::Red};
    }
    if (percentUsed > 75.0) {
        return {NamedColor::Orange, NamedColor::Orange};
    }
    return {NamedColor::Green, NamedColor::Blue};
}

double DiskView::barFraction(double writtenMB, double maxMB) {
    return std::clamp(writtenMB / std::max(maxMB, 0.001), 0.0, 1.0);
}

QString DiskView::originCaption(const std::optional<QString>& parentName,
                                const ProcessOrigin& immediateOrigin,
                                const ProcessOrigin& rootOrigin) {
    QStringList pieces;
    if (parentName && !parentName->isEmpty()) {
        pieces << QStringLiteral("parent ") + *parentName;
    }
    const auto iconAndLabel = [](const ProcessOrigin& origin) {
        const QString icon = origin.icon();
        return icon.isEmpty() ? origin.shortLabel() : icon + QLatin1Char(' ') + origin.shortLabel();
    };
    if (immediateOrigin.kind() != ProcessOrigin::Kind::Unknown) {
        pieces << iconAndLabel(immediateOrigin);
    }
    if (rootOrigin != immediateOrigin && rootOrigin.kind() != ProcessOrigin::Kind::Unknown) {
        pieces << QStringLiteral("via ") + iconAndLabel(rootOrigin);
    }
    return pieces.join(QStringLiteral(" · "));
}

DiskView::DiskView(ProcessMonitor& processMonitor, ConfigManager& configManager, QWidget* parent)
    : QWidget(parent), m_processMonitor(processMonitor), m_configManager(configManager) {
    setObjectName(QStringLiteral("DiskView"));
    auto* outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    auto* scroll = new QScrollArea(this);
    scroll->setObjectName(QStringLiteral("diskScroll"));
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    outer->addWidget(scroll);
    auto* content = new QWidget(scroll);
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(16, 12, 16, 12);

    auto* status = new QHBoxLayout;
    m_updated = textLabel({}, captionFont(), content, secondaryColor(this));
    status->addWidget(m_updated);
    m_overhead = textLabel({}, captionFont(), content, secondaryColor(this));
    m_overhead->setObjectName(QStringLiteral("overhead"));
    status->addWidget(m_overhead);
    status->addStretch(1);
    m_live = new QWidget(content);
    auto* live = new QHBoxLayout(m_live);
    live->setContentsMargins(0, 0, 0, 0);
    const QColor green = namedColor(NamedColor::Green);
    live->addWidget(symbolLabel(QStringLiteral("dot.radiowaves.left.and.right"),
                                QFontMetrics(captionFont()).height(), green, m_live));
    live->addWidget(textLabel(QStringLiteral("Live"), captionFont(), m_live, green));
    status->addWidget(m_live);
    column->addLayout(status);

    m_volumes = new QWidget(content);
    m_volumes->setObjectName(QStringLiteral("volumes"));
    auto* volumes = new QHBoxLayout(m_volumes);
    volumes->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_volumes);

    auto* picker = new QWidget(content);
    auto* pickerRow = new QHBoxLayout(picker);
    pickerRow->setContentsMargins(0, 0, 0, 0);
    pickerRow->addWidget(textLabel(QStringLiteral("Window"), captionFont(), picker));
    m_picker = new QComboBox(picker);
    m_picker->setObjectName(QStringLiteral("windowPicker"));
    m_picker->addItems(windows());
    m_picker->setCurrentText(m_selectedWindow);
    m_picker->setFixedWidth(80);
    pickerRow->addWidget(m_picker);
    picker->setFixedWidth(140);
    column->addWidget(sectionHeader(QStringLiteral("Write Activity"), picker, content));

    m_activity = new QWidget(content);
    (new QVBoxLayout(m_activity))->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_activity);
    m_bursts = new QWidget(content);
    m_bursts->setObjectName(QStringLiteral("bursts"));
    (new QVBoxLayout(m_bursts))->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_bursts);
    column->addStretch(1);
    scroll->setWidget(content);

    connect(m_picker, &QComboBox::currentTextChanged, this, &DiskView::setSelectedWindow);
    // Samples are followed while the tab is on screen; a hidden one catches up when it shows.
    auto* statusRefresh = new ShownRefresh(this, [this] { refreshStatus(); });
    auto* volumesRefresh = new ShownRefresh(this, [this] { refreshVolumes(); });
    auto* activityRefresh = new ShownRefresh(this, [this] {
        refreshStatus();
        refreshActivity();
    });
    auto* burstsRefresh = new ShownRefresh(this, [this] { refreshBursts(); });
    connect(&m_processMonitor, &ProcessMonitor::lastUpdateTimeChanged, statusRefresh,
            &ShownRefresh::request);
    connect(&m_processMonitor, &ProcessMonitor::isMonitoringChanged, statusRefresh,
            &ShownRefresh::request);
    connect(&m_processMonitor, &ProcessMonitor::diskInfoChanged, volumesRefresh,
            &ShownRefresh::request);
    connect(&m_processMonitor, &ProcessMonitor::diskIOSummaryChanged, activityRefresh,
            &ShownRefresh::request);
    connect(&m_processMonitor, &ProcessMonitor::diskIOBurstsChanged, burstsRefresh,
            &ShownRefresh::request);
    refreshStatus();
    refreshVolumes();
    refreshActivity();
    refreshBursts();
}

void DiskView::setSelectedWindow(const QString& window) {
    if (window == m_selectedWindow || !windows().contains(window)) {
        return;
    }
    m_selectedWindow = window;
    m_picker->setCurrentText(window);
    refreshActivity();
}

QString DiskView::overheadText() const {
    const std::optional<DiskIOSummary>& summary = m_processMonitor.diskIOSummary();
    if (!summary) {
        return {};
    }
    return QString::asprintf("rusage %.0fs · overhead %.2f%%", summary->rusageIntervalS,
                             summary->rusageOverheadPct);
}

void DiskView::refreshStatus() {
    const QDateTime updated = m_processMonitor.lastUpdateTime();
    m_updated->setText(QStringLiteral("Updated: ") +
                       (updated.isValid() ? localTimeText(updated) : QStringLiteral("--")));
    m_overhead->setText(overheadText());
    m_overhead->setVisible(!m_overhead->text().isEmpty());
    m_live->setVisible(m_processMonitor.isMonitoring());
}

void DiskView::refreshVolumes() {
    clearLayout(m_volumes);
    for (const DiskInfo& disk : m_processMonitor.diskInfo()) {
        m_volumes->layout()->addWidget(diskUsageCard(disk, m_volumes));
    }
    m_volumes->setVisible(!m_processMonitor.diskInfo().isEmpty());
}

void DiskView::refreshActivity() {
    clearLayout(m_activity);
    const std::optional<DiskIOSummary>& summary = m_processMonitor.diskIOSummary();
    const std::optional<WindowData> data =
        summary ? summary->windowData(m_selectedWindow) : std::nullopt;
    m_activity->layout()->addWidget(data ? ioActivitySection(*data, m_activity)
                                         : emptyIOCard(m_activity));
}

void DiskView::refreshBursts() {
    clearLayout(m_bursts);
    const QList<DiskIOBurst>& bursts = m_processMonitor.diskIOBursts();
    if (bursts.isEmpty()) {
        return;
    }
    auto* divider = new QFrame(m_bursts);
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Sunken);
    m_bursts->layout()->addWidget(divider);
    m_bursts->layout()->addWidget(
        sectionHeader(QStringLiteral("Recent Bursts"), nullptr, m_bursts));
    for (const DiskIOBurst& burst :
         bursts.first(std::min<qsizetype>(bursts.size(), kMaximumBursts))) {
        m_bursts->layout()->addWidget(burstCard(burst, m_bursts));
    }
}

}  // namespace zelvar
