#pragma once

#include <QList>
#include <QWidget>

#include "network/BandwidthMonitor.h"

namespace zelvar {

// The download and upload rates of the last five minutes as two lines over a shared scale,
// drawn from the samples the bandwidth monitor already keeps.
class RateGraph final : public QWidget {
    Q_OBJECT

public:
    explicit RateGraph(QWidget* parent = nullptr);

    void setSamples(const QList<BandwidthMonitor::RateSample>& samples);
    const QList<BandwidthMonitor::RateSample>& samples() const { return m_samples; }
    // The top of the scale: the largest rate shown, at least 1 KB/s so that silence is flat.
    double scaleMaximum() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QList<BandwidthMonitor::RateSample> m_samples;
};

}  // namespace zelvar
