#pragma once

#include <QHash>
#include <QPointer>
#include <QTemporaryDir>
#include <QTimeZone>
#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <vector>

#include "alerts/AlertManager.h"
#include "alerts/NotificationHelper.h"
#include "alerts/SoundPlayer.h"
#include "platform/Ports.h"
#include "platform/null/NullAudioDeviceState.h"
#include "support/Guarded.h"

namespace zelvar::test {

// A clock that moves only when told, and a scheduler on the same time line: advancing the
// clock runs the callbacks that fell due, in order of their due time. Safe to read from any
// thread; advance from the test's thread.
class FakeClock final : public Clock, public Scheduler {
public:
    explicit FakeClock(QDateTime start = QDateTime(QDate(2026, 1, 15), QTime(12, 0),
                                                   QTimeZone::utc()))
        : m_start(start) {
        setNow(start);
    }

    QDateTime now() const override { return m_state.lock()->now; }
    void callAfter(double seconds, QObject* context, std::function<void()> callback) override {
        const auto state = m_state.lock();
        const qint64 due =
            state->now.toMSecsSinceEpoch() + std::llround(std::max(0.0, seconds) * 1e3);
        state->pending.emplace(due, std::pair(QPointer(context), std::move(callback)));
    }
    void setNow(const QDateTime& instant) { m_state.lock()->now = instant; }
    // Moves time forward step by step, running each callback at its due time.
    void advance(double seconds) {
        const qint64 target = now().toMSecsSinceEpoch() + std::llround(seconds * 1e3);
        while (const std::function<void()> callback = takeDue(target)) {
            callback();
        }
        setNow(QDateTime::fromMSecsSinceEpoch(target, QTimeZone::utc()));
    }
    double elapsed() const { return secondsBetween(m_start, now()); }
    std::size_t pendingCallbacks() const { return m_state.lock()->pending.size(); }

private:
    // The first callback due by `target`, with the clock moved to its due time; one that does
    // nothing if its context is gone; none when nothing is due.
    std::function<void()> takeDue(qint64 target) {
        const auto state = m_state.lock();
        const auto next = state->pending.begin();
        if (next == state->pending.end() || next->first > target) {
            return {};
        }
        state->now = QDateTime::fromMSecsSinceEpoch(next->first, QTimeZone::utc());
        auto [context, callback] = std::move(next->second);
        state->pending.erase(next);
        return context ? std::move(callback) : [] {};
    }

    struct State {
        QDateTime now;
        std::multimap<qint64, std::pair<QPointer<QObject>, std::function<void()>>> pending;
    };
    const QDateTime m_start;
    Guarded<State> m_state;
};

// Answers commands from canned output keyed by "program arg1 arg2 ..."; an unknown command
// fails to start. Records every request.
class FakeCommandRunner final : public CommandRunner {
public:
    void respond(const QString& commandLine, QByteArray standardOutput, int exitCode = 0) {
        respond(commandLine, {.started = true,
                              .exitCode = exitCode,
                              .standardOutput = std::move(standardOutput),
                              .standardError = {}});
    }
    // Any result, such as a time-out.
    void respond(const QString& commandLine, const CommandResult& result) {
        m_results.lock()->insert(commandLine, result);
    }
    CommandResult run(const CommandRequest& request) override {
        m_requests.lock()->append(request);
        return m_results.lock()->value(
            (QStringList{request.program} + request.arguments).join(' '));
    }
    QList<CommandRequest> requests() const { return *m_requests.lock(); }

private:
    Guarded<QHash<QString, CommandResult>> m_results;
    Guarded<QList<CommandRequest>> m_requests;
};

// A process table held in memory. A field left empty reads as a failure of that read; after
// failListing(), every read fails until the next setProcesses().
class FakeProcessTable final : public ProcessTable {
public:
    struct Process {
        Pid pid = 0;
        Pid parentPid = 0;
        std::optional<QString> name;
        std::optional<quint64> residentBytes;
        std::optional<quint64> cpuNanoseconds;
        quint64 startTime = 0;
    };

    FakeProcessTable() { setProcesses({}); }

    void setProcesses(std::vector<Process> processes) { *m_table.lock() = std::move(processes); }
    void failListing() { m_table.lock()->reset(); }
    void setCpu(Pid pid, quint64 nanoseconds) {
        const auto table = m_table.lock();
        for (Process& p : table->value()) {
            if (p.pid == pid) {
                p.cpuNanoseconds = nanoseconds;
            }
        }
    }
    // Runs inside list(), on the caller's thread: lets a test hold a sampling cycle open.
    void onList(std::function<void()> hook) { m_onList = std::move(hook); }

    std::optional<std::vector<ProcessTableEntry>> list() override {
        if (m_onList) {
            m_onList();
        }
        const std::optional<std::vector<Process>> table = *m_table.lock();
        if (!table) {
            return std::nullopt;
        }
        std::vector<ProcessTableEntry> entries;
        for (const Process& p : *table) {
            entries.push_back({p.pid, p.parentPid, p.startTime});
        }
        return entries;
    }
    std::optional<QString> name(Pid pid) override { return find(pid).name; }
    std::optional<quint64> residentBytes(Pid pid) override { return find(pid).residentBytes; }
    std::optional<quint64> cpuTimeNanoseconds(Pid pid) override { return find(pid).cpuNanoseconds; }

private:
    // A process missing from the table reads as one whose every field fails.
    Process find(Pid pid) const {
        const std::vector<Process> table = m_table.lock()->value_or(std::vector<Process>());
        const auto it = std::ranges::find(table, pid, &Process::pid);
        return it == table.end() ? Process() : *it;
    }

    Guarded<std::optional<std::vector<Process>>> m_table;
    std::function<void()> m_onList;
};

// Records every signal; answers with the errno set for a (pid, signal) pair, else success.
// A checked signal is sent the same way and recorded in checked() too, unless reuse() gave its
// pid to a process with another start time: then nothing is sent and it answers "replaced".
class FakeProcessSignaller final : public ProcessSignaller {
public:
    int send(Pid pid, int signal) override {
        m_sent.lock()->push_back({pid, signal});
        return (*m_errors.lock())[{pid, signal}];
    }
    SignalResult sendToMeasured(const ProcessIdentity& process, int signal) override {
        const std::optional<quint64> now = m_startTimes.lock()->value(process.pid);
        if (now && *now != process.startTime) {
            return {SignalResult::Outcome::replaced, 0};
        }
        m_checked.lock()->push_back({process.pid, signal});
        const int error = send(process.pid, signal);
        return {error == 0 ? SignalResult::Outcome::delivered : SignalResult::Outcome::failed,
                error};
    }
    void fail(Pid pid, int signal, int error) { (*m_errors.lock())[{pid, signal}] = error; }
    // From now on `pid` is a process that started at `startTime`.
    void reuse(Pid pid, quint64 startTime) { m_startTimes.lock()->insert(pid, startTime); }
    std::vector<std::pair<Pid, int>> sent() const { return *m_sent.lock(); }
    std::vector<std::pair<Pid, int>> checked() const { return *m_checked.lock(); }

private:
    Guarded<std::map<std::pair<Pid, int>, int>> m_errors;
    Guarded<QHash<Pid, std::optional<quint64>>> m_startTimes;
    Guarded<std::vector<std::pair<Pid, int>>> m_sent;
    Guarded<std::vector<std::pair<Pid, int>>> m_checked;
};

// Service manager listings held in memory. Counts how often it was asked.
class FakeServiceJobs final : public ServiceJobs {
public:
    void setListings(QList<ServiceJobListing> listings) {
        *m_listings.lock() = std::move(listings);
    }
    void setLaunchctlList(QByteArray text) {
        setListings({{ServiceJobListing::Format::LaunchctlList, std::move(text)}});
    }
    // Runs inside each listing, on the caller's thread: lets a test make the listing slow.
    void onListing(std::function<void()> hook) { m_onListing = std::move(hook); }

    QList<ServiceJobListing> runningJobListings() override {
        if (m_onListing) {
            m_onListing();
        }
        ++*m_calls.lock();
        return *m_listings.lock();
    }
    int calls() const { return *m_calls.lock(); }

private:
    Guarded<QList<ServiceJobListing>> m_listings;
    Guarded<int> m_calls;
    std::function<void()> m_onListing;
};

// Volumes from memory: a listing and a capacity per mount point; a mount point without one
// fails to answer with "no such volume".
class FakeVolumeSource final : public VolumeSource {
public:
    void setListing(VolumeListing listing) { *m_listing.lock() = std::move(listing); }
    void setCapacity(const QString& mountPoint, qint64 totalBytes, qint64 freeBytes) {
        m_capacities.lock()->insert(mountPoint, VolumeCapacity{totalBytes, freeBytes});
    }
    void removeCapacity(const QString& mountPoint) { m_capacities.lock()->remove(mountPoint); }

    VolumeListing listVolumes() const override { return *m_listing.lock(); }
    std::optional<VolumeCapacity> measure(const QString& mountPoint,
                                          QString* error) const override {
        const std::optional<VolumeCapacity> capacity = m_capacities.lock()->value(mountPoint);
        if (!capacity && error) {
            *error = QStringLiteral("no such volume");
        }
        return capacity;
    }

private:
    Guarded<VolumeListing> m_listing;
    Guarded<QHash<QString, std::optional<VolumeCapacity>>> m_capacities;
};

// Interface counters set by the test; no value after fail().
class FakeInterfaceCounters final : public InterfaceCounters {
public:
    void set(QList<InterfaceCounter> interfaces) { m_interfaces = std::move(interfaces); }
    void fail() { m_interfaces.reset(); }
    void add(const QString& name, quint64 received, quint64 sent) {
        for (InterfaceCounter& i : m_interfaces.value()) {
            if (i.name == name) {
                i.receivedBytes += received;
                i.sentBytes += sent;
            }
        }
    }
    // Runs before each read, with the number of reads so far.
    std::function<void(int)> beforeRead;

    std::optional<QList<InterfaceCounter>> read() override {
        if (beforeRead) {
            beforeRead(m_reads);
        }
        ++m_reads;
        return m_interfaces;
    }

private:
    std::optional<QList<InterfaceCounter>> m_interfaces = QList<InterfaceCounter>();
    int m_reads = 0;
};

// Answers with a set reading; runs an optional hook first, on the caller's thread and outside
// the lock, so that a hook may wait for the test.
template <typename Port, typename Reading>
class FakeReadingSource final : public Port {
public:
    void set(Reading reading) { *m_reading.lock() = std::move(reading); }
    void onRead(std::function<void()> hook) { *m_hook.lock() = std::move(hook); }
    Reading read() override {
        if (const std::function<void()> hook = *m_hook.lock()) {
            hook();
        }
        return *m_reading.lock();
    }

private:
    Guarded<Reading> m_reading;
    Guarded<std::function<void()>> m_hook;
};

using FakeNetworkNameSource = FakeReadingSource<NetworkNameSource, NetworkNameReading>;
using FakeProcessNetworkSource = FakeReadingSource<ProcessNetworkSource, ProcessNetworkReading>;

// A notification centre that answers at once with a set status and keeps what it was given.
class FakeNotificationCenter final : public NotificationCenter {
public:
    explicit FakeNotificationCenter(int status = Authorized) : m_status(status) {}

    void getAuthorizationStatus(std::function<void(int status)> completion) override {
        completion(m_status);
    }
    void requestAuthorization(
        std::function<void(bool granted, const QString& error)> completion) override {
        ++*m_requests.lock();
        completion(m_grant, m_requestError);
    }
    void add(const NotificationContent& content,
             std::function<void(const QString& error)> completion) override {
        m_delivered.lock()->push_back(content);
        completion(m_addError);
    }
    QString deniedAdvice() const override { return QStringLiteral("enable it in the fake centre"); }
    QString refusedAdvice() const override { return QStringLiteral("ask the fake centre again"); }

    std::vector<NotificationContent> delivered() const { return *m_delivered.lock(); }
    int requests() const { return *m_requests.lock(); }
    void grantOnRequest(bool grant, QString error = {}) {
        m_grant = grant;
        m_requestError = std::move(error);
    }
    void failDelivery(QString error) { m_addError = std::move(error); }

private:
    Guarded<int> m_requests;
    Guarded<std::vector<NotificationContent>> m_delivered;
    int m_status;
    bool m_grant = true;
    QString m_requestError;
    QString m_addError;
};

// Records what was played: "sound:<name>", "beep", "file:<path>".
class FakeSoundOutput final : public SoundOutput {
public:
    bool playSystemSound(const QString& name) override {
        return m_systemSounds.contains(name) && record(QStringLiteral("sound:") + name);
    }
    void beep() override { record(QStringLiteral("beep")); }
    bool playFile(const QString& path, QString& error) override {
        error = m_fileError;
        return error.isEmpty() && record(QStringLiteral("file:") + path);
    }

    QStringList played() const { return *m_played.lock(); }
    void setSystemSounds(QStringList names) { m_systemSounds = std::move(names); }
    void failFiles(QString error) { m_fileError = std::move(error); }

private:
    bool record(const QString& sound) {
        *m_played.lock() << sound;
        return true;
    }

    Guarded<QStringList> m_played;
    QStringList m_systemSounds{QStringLiteral("Glass")};
    QString m_fileError;
};

class FakeActivationPolicy final : public ActivationPolicy {
public:
    void setRegular() override { m_changes << QStringLiteral("regular"); }
    void setAccessory() override { m_changes << QStringLiteral("accessory"); }
    QStringList changes() const { return m_changes; }

private:
    QStringList m_changes;
};

// A battery held in memory: no battery until set(); counts its reads.
class FakeBatteryRegistry final : public BatteryRegistry {
public:
    void set(std::optional<BatteryReading> reading) { *m_reading.lock() = std::move(reading); }
    std::optional<BatteryReading> read() override {
        ++*m_reads.lock();
        return *m_reading.lock();
    }
    int reads() const { return *m_reads.lock(); }

private:
    Guarded<std::optional<BatteryReading>> m_reading;
    Guarded<int> m_reads;
};

// A power log held in memory: the kind of log, the journal's entries (those later than the
// asked date, after the one before it), folders and files as set; records each date asked.
class FakePowerLogSource final : public PowerLogSource {
public:
    struct State {
        Log log = Log::None;
        QList<JournalEntry> entries;
        QStringList diagnosticDirectories;
        QStringList panicRecordDirectories;
        QStringList crashReportDirectories;
        QStringList batteryHistoryFiles;
        QList<QDateTime> asked;
    };

    Log log() const override { return m_state.lock()->log; }
    QList<JournalEntry> journalEntries(const QDateTime& since) override {
        const auto state = m_state.lock();
        state->asked.append(since);
        const qint64 limit = since.toMSecsSinceEpoch() * 1000;
        qsizetype first = 0;
        while (first < state->entries.size() &&
               state->entries[first].realtimeMicroseconds <= limit) {
            ++first;
        }
        return state->entries.mid(std::max<qsizetype>(0, first - 1));
    }
    QStringList diagnosticDirectories() const override {
        return m_state.lock()->diagnosticDirectories;
    }
    QStringList panicRecordDirectories() const override {
        return m_state.lock()->panicRecordDirectories;
    }
    QStringList crashReportDirectories() const override {
        return m_state.lock()->crashReportDirectories;
    }
    QStringList batteryHistoryFiles() const override { return m_state.lock()->batteryHistoryFiles; }

    Guarded<State>& state() { return m_state; }

private:
    Guarded<State> m_state;
};

// A desktop in memory: the test sets the frontmost application and the list, and fires
// activations, which reach the subscriber while there is one.
class FakeWorkspace final : public Workspace {
public:
    void setFrontmost(std::optional<RunningApplication> application) {
        m_frontmost = std::move(application);
    }
    void setRunning(QList<RunningApplication> applications) { m_running = std::move(applications); }
    // What the desktop reports when `application` takes the focus; it becomes the frontmost.
    void activate(const RunningApplication& application) {
        m_frontmost = application;
        if (m_activated) {
            m_activated(application);
        }
    }
    void activate(const QString& name) { activate(RunningApplication{.localizedName = name}); }
    bool isSubscribed() const { return bool(m_activated); }

    std::optional<RunningApplication> frontmostApplication() override { return m_frontmost; }
    QList<RunningApplication> runningApplications() override { return m_running; }
    void subscribeActivations(std::function<void(const RunningApplication&)> activated) override {
        m_activated = std::move(activated);
    }
    void unsubscribeActivations() override { m_activated = nullptr; }
    QString applicationNameForIdentifier(const QString& identifier) override {
        return m_names.value(identifier);
    }
    void setName(const QString& identifier, const QString& name) {
        m_names.insert(identifier, name);
    }

private:
    std::optional<RunningApplication> m_frontmost;
    QList<RunningApplication> m_running;
    QHash<QString, QString> m_names;
    std::function<void(const RunningApplication&)> m_activated;
};

// Every location under one root, a folder per kind: <root>/data/<App>, <root>/state/<App>, ...,
// so that a file put in the wrong kind of folder is found missing.
class FakePaths final : public Paths {
public:
    explicit FakePaths(QString root) : m_root(std::move(root)) {}

    QString homeDirectory() const override { return m_root; }
    QString dataDirectory(const QString& app) const override { return in("data", app); }
    QString stateDirectory(const QString& app) const override { return in("state", app); }
    QString configDirectory(const QString& app) const override { return in("config", app); }
    QString runtimeDirectory(const QString& app) const override { return in("runtime", app); }

private:
    QString in(const char* kind, const QString& app) const {
        return m_root + '/' + kind + '/' + app;
    }

    QString m_root;
};

// A fake of every port under a temporary home, for tests that compose whole monitors. The
// process table holds init alone, and "/" has a capacity.
struct FakePorts {
    FakePorts() {
        processTable.setProcesses({{1, 0, "init", 4 << 20, 0}});
        volumes.setCapacity("/", qint64(100) << 30, qint64(40) << 30);
    }

    Ports ports() {
        return {clock,        clock,      commands,      processTable,   paths,
                volumes,      interfaces, networkName,   processNetwork, serviceJobs,
                audioDevices, signaller,  notifications, sounds,         activation,
                battery,      powerLog,   workspace,     profile};
    }

    QTemporaryDir home;
    FakePaths paths{home.path()};
    SystemProfile profile = linuxSystemProfile();
    FakeClock clock;
    FakeCommandRunner commands;
    FakeProcessTable processTable;
    FakeVolumeSource volumes;
    FakeInterfaceCounters interfaces;
    FakeNetworkNameSource networkName;
    FakeProcessNetworkSource processNetwork;
    FakeServiceJobs serviceJobs;
    FakeProcessSignaller signaller;
    FakeNotificationCenter notifications;
    FakeSoundOutput sounds;
    FakeActivationPolicy activation;
    FakeBatteryRegistry battery;
    NullAudioDeviceState audioDevices;
    FakePowerLogSource powerLog;
    FakeWorkspace workspace;
};

// An alert manager on a fake desktop: every notification and sound it gives is recorded.
// The helper's permission answer arrives with the next processed events.
struct RecordingAlerts {
    RecordingAlerts(const Clock& clock, Scheduler& scheduler, const QString& soundsDirectory)
        : player(sound, scheduler, soundsDirectory), manager(helper, player, clock, scheduler) {}

    FakeNotificationCenter center;
    FakeSoundOutput sound;
    NotificationHelper helper{center};
    SoundPlayer player;
    AlertManager manager;
};

}  // namespace zelvar::test
