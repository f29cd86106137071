#pragma once

#include <QProcess>
#include <QStringList>

namespace zelvar::test {

// The test child (see TestChild.cpp), started in a mode and waited for until it is ready.
// Killed when this object goes.
class ChildProcess {
public:
    explicit ChildProcess(const QStringList& arguments) {
        m_process.start(QStringLiteral(ZELVAR_TEST_CHILD), arguments);
        m_ready = m_process.waitForStarted(5000) && m_process.waitForReadyRead(10000) &&
                  m_process.readLine().startsWith("ready");
    }
    ~ChildProcess() {
        m_process.kill();
        m_process.waitForFinished(5000);
    }

    bool ready() const { return m_ready; }
    qint32 pid() const { return static_cast<qint32>(m_process.processId()); }
    QProcess& process() { return m_process; }

private:
    QProcess m_process;
    bool m_ready = false;
};

}  // namespace zelvar::test
