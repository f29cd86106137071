#pragma once

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

#include "audio/AudioDeviceType.h"
#include "platform/Workspace.h"

namespace zelvar {

class AudioDeviceState;
class CommandRunner;
struct SystemProfile;

// Names the application responsible for a device that has just started running, by a chain
// of strategies from the most specific evidence to a plain guess, and reads the system's log
// for applications that started to play. Static and blocking: run it off the main thread.
// The parsing is in pure functions over the tools' text, public so that it is tested.
class AudioAppDetection final {
public:
    AudioAppDetection() = delete;

    // What a detection found, and which strategy found it.
    struct Result {
        QString appName;
        std::optional<QString> bundleID;  // only from the log
        QString source;
    };
    // Where the strategies look.
    struct Sources {
        CommandRunner& commands;
        AudioDeviceState& devices;
        Workspace& workspace;
        const SystemProfile& system;
    };

    // The strategies' labels.
    static inline const QString kAudioServiceSource = QStringLiteral("audio service process");
    static inline const QString kPrivilegedHelperSource = QStringLiteral("privileged helper");
    static inline const QString kCoreaudiodClientsSource = QStringLiteral("coreaudiod clients");
    static inline const QString kProcessScanSource = QStringLiteral("process scan");
    static inline const QString kFrontmostSource = QStringLiteral("frontmost fallback");
    static inline const QString kDeviceStateSource = QStringLiteral("device state");
    static inline const QString kLogSource = QStringLiteral("CoreAudio log");
    // This program's own name, which some strategies never report.
    static inline const QString kOwnName = QStringLiteral("Zelvar2");

    // Names never reported as the application using audio: parts of the desktop itself.
    static const QStringList& excludedAudioAppNames();

    // The chain: audio service process, privileged helper (when the helper answers),
    // the audio service's clients, the process scan, the frontmost application; else
    // "Unknown" from "device state". Never fails.
    static Result detectAudioApp(const Sources& sources, AudioDeviceType scope);
    // Output starts named by the system's log since `since`, as (name, bundle id, "CoreAudio
    // log"); empty where the system keeps no such log.
    static QList<Result> findRecentOutputEvents(const Sources& sources, const QDateTime& since);

    // The strategies, each yielding a name or nothing.
    static std::optional<QString> findAudioAppViaAudioServiceProcess(const Sources& sources,
                                                                     AudioDeviceType scope);
    static std::optional<QString> findAudioAppViaPrivilegedHelper(const Sources& sources);
    static std::optional<QString> findAudioAppViaCoreaudiodClients(const Sources& sources,
                                                                   AudioDeviceType scope);
    static std::optional<QString> findAudioAppViaProcessScan(const Sources& sources);

    // A scored candidate of the process list.
    struct Candidate {
        int score = 0;
        QString name;
        friend bool operator==(const Candidate&, const Candidate&) = default;
    };
    // The audio helper processes of browsers and browser-based applications in `ps -axo args`
    // output, best first.
    static QList<Candidate> audioServiceCandidates(const QString& processList,
                                                   AudioDeviceType scope);
    // The first usable name of the helper's output, after dropping the tools' messages and
    // the sound servers.
    static std::optional<QString> appFromHelperOutput(const QString& output,
                                                      const QSet<QString>& soundServers = {});
    // The first usable client name of `lsof -nP +E -c coreaudiod` output, names sorted.
    static std::optional<QString> appFromAudioDaemonFiles(const QString& output);
    // The first usable name of a list of client names, in its order.
    static std::optional<QString> firstUsableClient(const QStringList& names);
    // Whether one application's `lsof -nP -p` output shows audio files.
    static bool holdsAudioFiles(const QString& openFiles);
    // The frontmost application, else the first running one, that may be reported.
    static std::optional<QString> frontmostFallback(const QList<RunningApplication>& apps);

    // Bundle identifiers of applications that started playing, from `log show` output, each
    // once in first-seen order.
    static QStringList parseAudioBundleIDs(const QString& text);
    // Capture group 1 of every match; nothing for a pattern that doesn't compile.
    static QStringList matches(const QString& text, const QString& pattern);
    // A process or bundle name as a person knows it: its last path component without ".app"
    // and without one helper suffix.
    static QString friendlyProcessName(const QString& name);
    // The application of the outermost ".app" path in `text`: its last path component without
    // the extension.
    static std::optional<QString> appNameFromApplicationPath(const QString& text);
    // The display name of a bundle identifier's application, else its friendly form.
    static QString appNameForBundleID(Workspace& workspace, const QString& bundleID);
    // The log tool's predicate: audiomxd or audioaccessoryd lines about starting to play.
    static QString unifiedLogPredicate();

    // Runs a tool with the standard error joined to the output, stopping it after
    // `timeoutSeconds`; what it printed until then, as UTF-8 (empty when it isn't).
    static QString runCommand(CommandRunner& runner, const QString& program,
                              const QStringList& arguments, double timeoutSeconds);
};

}  // namespace zelvar
