#include "ui/power/PowerSourceDistributionView.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>
#include <algorithm>
#include <cmath>

#include "ui/Palette.h"
#include "ui/widgets/ViewParts.h"

namespace zelvar {

namespace {

constexpr int kBarHeight = 12;

QString shareText(double ratio) {
    return QString::number(std::lround(ratio * 100.0));
}

}  // namespace

class PowerSourceDistributionView::Bar final : public QWidget {
public:
    explicit Bar(QWidget* parent) : QWidget(parent) { setFixedHeight(kBarHeight); }

    void setShares(double ac, double battery) {
        m_ac = std::clamp(ac, 0.0, 1.0);
        m_battery = std::clamp(battery, 0.0, 1.0 - m_ac);
        update();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath outline;
        outline.addRoundedRect(QRectF(rect()), kBarHeight / 2.0, kBarHeight / 2.0);
        painter.setClipPath(outline);
        painter.fillRect(rect(), palette().color(QPalette::Midlight));
        const qreal acWidth = width() * m_ac;
        painter.fillRect(QRectF(0, 0, acWidth, height()), namedColor(NamedColor::Blue));
        painter.fillRect(QRectF(acWidth, 0, width() * m_battery, height()),
                         namedColor(NamedColor::Orange));
    }

private:
    double m_ac = 0;
    double m_battery = 0;
};

PowerSourceDistributionView::PowerSourceDistributionView(QWidget* parent) : QFrame(parent) {
    makeCard(this, QStringLiteral("PowerSourceDistributionView"));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(12, 10, 12, 10);
    column->setSpacing(8);
    column->addWidget(textLabel(QStringLiteral("Power Source Distribution"), headlineFont(), this));
    m_bar = new Bar(this);
    column->addWidget(m_bar);
    auto* labels = new QHBoxLayout;
    labels->setSpacing(4);
    labels->addWidget(
        symbolLabel(QStringLiteral("bolt.fill"), 14, namedColor(NamedColor::Blue), this));
    m_ac = textLabel(QString(), monospacedDigits(captionFont()), this);
    labels->addWidget(m_ac);
    labels->addSpacing(16);
    labels->addWidget(
        symbolLabel(QStringLiteral("battery.75"), 14, namedColor(NamedColor::Orange), this));
    m_battery = textLabel(QString(), monospacedDigits(captionFont()), this);
    labels->addWidget(m_battery);
    labels->addStretch(1);
    column->addLayout(labels);
    setStats({});
}

void PowerSourceDistributionView::setStats(const WattlogStats& stats) {
    m_bar->setShares(stats.timeOnACRatio, stats.timeOnBatteryRatio);
    m_ac->setText(QStringLiteral("AC %1%").arg(shareText(stats.timeOnACRatio)));
    m_battery->setText(QStringLiteral("Battery %1%").arg(shareText(stats.timeOnBatteryRatio)));
}

QStringList PowerSourceDistributionView::texts() const {
    return {m_ac->text(), m_battery->text()};
}

}  // namespace zelvar
