#pragma once

#include <QObject>

class QSocketNotifier;

namespace zelvar {

// Turns SIGINT and SIGTERM into a Qt signal on the main thread, so that an interrupted app
// still runs its orderly shutdown. One instance per process.
class TerminationSignals final : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

signals:
    void terminationRequested();

private:
    QSocketNotifier* m_notifier = nullptr;
};

}  // namespace zelvar
