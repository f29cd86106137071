#include "audio/AudioAppDetection.h"

#include <QCollator>
#include <QRegularExpression>
#include <QSet>
#include <QStringDecoder>
#include <algorithm>

#include "audio/AudioPrivilegeManager.h"
#include "platform/AudioDeviceState.h"
#include "platform/CommandRunner.h"
#include "platform/SystemProfile.h"

namespace zelvar {
namespace {

const QString kPsProgram = QStringLiteral("/bin/ps");
const QString kSudoProgram = QStringLiteral("/usr/bin/sudo");
const QString kPgrepProgram = QStringLiteral("/usr/bin/pgrep");
const QString kLogProgram = QStringLiteral("/usr/bin/log");
constexpr double kPsTimeout = 2.0;
constexpr double kHelperTimeout = 3.0;
constexpr double kPgrepTimeout = 2.0;
constexpr double kDaemonFilesTimeout = 3.0;
constexpr double kOpenFilesTimeout = 1.0;
constexpr double kLogTimeout = 2.0;

const QString kAudioServiceMarker = QStringLiteral("--utility-sub-type=audio.mojom.AudioService");
const QString kLoopbackCaptureMarker = QStringLiteral("MacCatapSystemAudioLoopbackCapture");
const QString kScreenShareMarker = QStringLiteral("MacLoopbackAudioForScreenShare");

bool usable(const QString& name) {
    return name.size() > 1 && !AudioAppDetection::excludedAudioAppNames().contains(name);
}

AudioDeviceState::Device deviceOf(AudioDeviceType scope) {
    return scope == AudioDeviceType::Output ? AudioDeviceState::Device::Output
                                            : AudioDeviceState::Device::Input;
}

}  // namespace

const QStringList& AudioAppDetection::excludedAudioAppNames() {
    static const QStringList names{QStringLiteral("Control Center"),
                                   QStringLiteral("SystemUIServer"),
                                   QStringLiteral("Dock"),
                                   QStringLiteral("Finder"),
                                   QStringLiteral("WindowServer"),
                                   QStringLiteral("loginwindow"),
                                   QStringLiteral("Spotlight"),
                                   QStringLiteral("Notification Center"),
                                   QStringLiteral("System Settings"),
                                   QStringLiteral("ScreenSaverEngine")};
    return names;
}

AudioAppDetection::Result AudioAppDetection::detectAudioApp(const Sources& sources,
                                                            AudioDeviceType scope) {
    if (auto name = findAudioAppViaAudioServiceProcess(sources, scope)) {
        return {*name, std::nullopt, kAudioServiceSource};
    }
    if (AudioPrivilegeManager::isElevatedAccessAvailable(sources.commands)) {
        if (auto name = findAudioAppViaPrivilegedHelper(sources)) {
            return {*name, std::nullopt, kPrivilegedHelperSource};
        }
    }
    if (auto name = findAudioAppViaCoreaudiodClients(sources, scope)) {
        return {*name, std::nullopt, kCoreaudiodClientsSource};
    }
    if (auto name = findAudioAppViaProcessScan(sources)) {
        return {*name, std::nullopt, kProcessScanSource};
    }
    if (auto name = frontmostFallback(sources.workspace.runningApplications())) {
        return {*name, std::nullopt, kFrontmostSource};
    }
    return {QStringLiteral("Unknown"), std::nullopt, kDeviceStateSource};
}

std::optional<QString> AudioAppDetection::findAudioAppViaAudioServiceProcess(
    const Sources& sources, AudioDeviceType scope) {
    const QList<Candidate> candidates = audioServiceCandidates(
        runCommand(sources.commands, kPsProgram, {QStringLiteral("-axo"), QStringLiteral("args")},
                   kPsTimeout),
        scope);
    return candidates.isEmpty() ? std::nullopt : std::optional(candidates.first().name);
}

QList<AudioAppDetection::Candidate> AudioAppDetection::audioServiceCandidates(
    const QString& processList, AudioDeviceType scope) {
    QList<Candidate> candidates;
    for (const QString& line : processList.split(u'\n')) {
        const bool audioService = line.contains(kAudioServiceMarker);
        const bool loopbackCapture = line.contains(kLoopbackCaptureMarker);
        const bool screenShare = line.contains(kScreenShareMarker);
        if (!(audioService || loopbackCapture || screenShare) ||
            line.contains(QLatin1String("/Zelvar2.app/"))) {
            continue;
        }
        const std::optional<QString> name = appNameFromApplicationPath(line);
        if (!name || excludedAudioAppNames().contains(*name) || *name == kOwnName) {
            continue;
        }
        int score = 0;
        score += audioService ? 10 : 0;
        score += loopbackCapture ? 20 : 0;
        score += screenShare ? 20 : 0;
        score += line.contains(QLatin1String("video_capture.mojom.VideoCaptureService")) ? 10 : 0;
        score += line.contains(QLatin1String("wispr-extension")) ? 10 : 0;
        if (scope == AudioDeviceType::Input && name->toLower().contains(QLatin1String("wispr"))) {
            score += 30;
        }
        candidates.append({score, *name});
    }
    QCollator collator;
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::stable_sort(candidates.begin(), candidates.end(),
                     [&](const Candidate& a, const Candidate& b) {
                         if (a.score != b.score) {
                             return a.score > b.score;
                         }
                         return collator.compare(a.name, b.name) < 0;
                     });
    return candidates;
}

std::optional<QString> AudioAppDetection::findAudioAppViaPrivilegedHelper(const Sources& sources) {
    return appFromHelperOutput(
        runCommand(sources.commands, kSudoProgram,
                   {QStringLiteral("-n"), AudioPrivilegeManager::kHelperPath}, kHelperTimeout),
        sources.system.soundServerProcesses);
}

std::optional<QString> AudioAppDetection::appFromHelperOutput(const QString& output,
                                                              const QSet<QString>& soundServers) {
    static const QStringList messageStarts{QStringLiteral("lsof "), QStringLiteral("latest "),
                                           QStringLiteral("usage:"), QStringLiteral("["),
                                           QStringLiteral("Use the ")};
    QStringList names;
    for (const QString& raw : output.trimmed().split(u'\n')) {
        const QString line = raw.trimmed();
        const bool message =
            line.contains(QLatin1String("illegal option character")) ||
            std::any_of(messageStarts.begin(), messageStarts.end(),
                        [&](const QString& start) { return line.startsWith(start); });
        if (!line.isEmpty() && !message && !soundServers.contains(line)) {
            names.append(line);
        }
    }
    return firstUsableClient(names);
}

std::optional<QString> AudioAppDetection::findAudioAppViaCoreaudiodClients(const Sources& sources,
                                                                           AudioDeviceType scope) {
    // A sound server that lists its streams names its clients directly.
    if (const std::optional<QStringList> clients =
            sources.devices.clientApplications(deviceOf(scope))) {
        return firstUsableClient(*clients);
    }
    const QString pid =
        runCommand(sources.commands, kPgrepProgram,
                   {QStringLiteral("-x"), QStringLiteral("coreaudiod")}, kPgrepTimeout)
            .trimmed();
    bool parsed = false;
    if (pid.isEmpty() || pid.toLongLong(&parsed) <= 0 || !parsed) {
        return std::nullopt;
    }
    return appFromAudioDaemonFiles(runCommand(sources.commands, sources.system.lsofProgram,
                                              {QStringLiteral("-nP"), QStringLiteral("+E"),
                                               QStringLiteral("-c"), QStringLiteral("coreaudiod")},
                                              kDaemonFilesTimeout));
}

std::optional<QString> AudioAppDetection::appFromAudioDaemonFiles(const QString& output) {
    if (output.contains(QLatin1String("illegal option character")) ||
        output.contains(QLatin1String("Use the ``-h'' option"))) {
        return std::nullopt;
    }
    QSet<QString> names;
    for (const QString& line : output.split(u'\n')) {
        const QString first = line.split(u' ', Qt::SkipEmptyParts).value(0).trimmed();
        if (!first.isEmpty() && first != QLatin1String("coreaudiod") &&
            first != QLatin1String("lsof") && first != QLatin1String("COMMAND")) {
            names.insert(first);
        }
    }
    QStringList sorted(names.begin(), names.end());
    std::sort(sorted.begin(), sorted.end());
    return firstUsableClient(sorted);
}

std::optional<QString> AudioAppDetection::firstUsableClient(const QStringList& names) {
    for (const QString& name : names) {
        if (const QString friendly = friendlyProcessName(name); usable(friendly)) {
            return friendly;
        }
    }
    return std::nullopt;
}

std::optional<QString> AudioAppDetection::findAudioAppViaProcessScan(const Sources& sources) {
    // This program's own name is not skipped here: it may be the one playing.
    for (const RunningApplication& app : sources.workspace.runningApplications()) {
        if (app.pid < 1 || app.localizedName.isEmpty() ||
            excludedAudioAppNames().contains(app.localizedName)) {
            continue;
        }
        if (holdsAudioFiles(
                runCommand(sources.commands, sources.system.lsofProgram,
                           {QStringLiteral("-nP"), QStringLiteral("-p"), QString::number(app.pid)},
                           kOpenFilesTimeout))) {
            return app.localizedName;
        }
    }
    return std::nullopt;
}

bool AudioAppDetection::holdsAudioFiles(const QString& openFiles) {
    const QString lower = openFiles.toLower();
    // "audio" covers CoreAudio's files and the pulse and PipeWire libraries' names; ALSA's
    // device nodes are the Linux kernel's audio files.
    return lower.contains(QLatin1String("coreaudio")) || lower.contains(QLatin1String("audio")) ||
           lower.contains(QLatin1String(".caf")) || lower.contains(QLatin1String("/dev/snd/"));
}

std::optional<QString> AudioAppDetection::frontmostFallback(const QList<RunningApplication>& apps) {
    const auto passes = [](const RunningApplication& app) {
        return !app.localizedName.isEmpty() &&
               !excludedAudioAppNames().contains(app.localizedName) &&
               app.localizedName != kOwnName;
    };
    const auto active = std::find_if(apps.begin(), apps.end(),
                                     [](const RunningApplication& app) { return app.isActive; });
    if (active != apps.end() && passes(*active)) {
        return active->localizedName;
    }
    const auto any = std::find_if(apps.begin(), apps.end(), passes);
    return any != apps.end() ? std::optional(any->localizedName) : std::nullopt;
}

QList<AudioAppDetection::Result> AudioAppDetection::findRecentOutputEvents(const Sources& sources,
                                                                           const QDateTime& since) {
    if (!sources.system.coreAudio) {
        return {};
    }
    const QString start = since.toLocalTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss"));
    const QString output = runCommand(
        sources.commands, kLogProgram,
        {QStringLiteral("show"), QStringLiteral("--style"), QStringLiteral("compact"),
         QStringLiteral("--start"), start, QStringLiteral("--predicate"), unifiedLogPredicate()},
        kLogTimeout);
    QList<Result> events;
    for (const QString& bundleID : parseAudioBundleIDs(output)) {
        events.append({appNameForBundleID(sources.workspace, bundleID), bundleID, kLogSource});
    }
    return events;
}

QString AudioAppDetection::unifiedLogPredicate() {
    return QStringList{
        QStringLiteral(R"((process == "audiomxd" OR process == "audioaccessoryd"))"),
        QStringLiteral("AND"),
        QStringLiteral(R"((eventMessage CONTAINS[c] "Audio state update Start apps")"),
        QStringLiteral(R"(OR eventMessage CONTAINS[c] "UpdateAudioState")"),
        QStringLiteral(R"(OR eventMessage CONTAINS[c] "starting playing"))")}
        .join(u' ');
}

QStringList AudioAppDetection::parseAudioBundleIDs(const QString& text) {
    static const QStringList ignored{QStringLiteral("com.apple.audio.AudioSession"),
                                     QStringLiteral("com.apple.coreaudiod"),
                                     QStringLiteral("com.apple.audioaccessoryd")};
    QStringList found;
    static const QRegularExpression newlines(QStringLiteral("[\\n\\r\\x{2028}\\x{2029}]"));
    for (const QString& line : text.split(newlines)) {
        const QStringList session =
            matches(line, QStringLiteral(R"(MXCoreSession\s+([A-Za-z0-9_.-]+).*starting playing)"));
        if (!session.isEmpty()) {
            found.append(session.first());
        }
        found += matches(line, QStringLiteral(R"re("([A-Za-z0-9_.-]+)"\s*:)re"));
    }
    QStringList bundleIDs;
    for (const QString& id : found) {
        if (id.contains(u'.') && !ignored.contains(id) && !bundleIDs.contains(id)) {
            bundleIDs.append(id);
        }
    }
    return bundleIDs;
}

QStringList AudioAppDetection::matches(const QString& text, const QString& pattern) {
    const QRegularExpression expression(pattern);
    if (!expression.isValid()) {
        return {};
    }
    QStringList captures;
    for (auto it = expression.globalMatch(text); it.hasNext();) {
        const QRegularExpressionMatch match = it.next();
        if (match.lastCapturedIndex() >= 1 && match.capturedStart(1) >= 0) {
            captures.append(match.captured(1));
        }
    }
    return captures;
}

QString AudioAppDetection::friendlyProcessName(const QString& name) {
    QString friendly = name.mid(name.lastIndexOf(u'/') + 1);
    if (friendly.endsWith(QLatin1String(".app"))) {
        friendly.chop(4);
    }
    for (const QLatin1String suffix :
         {QLatin1String(" Helper"), QLatin1String(" Helper (Renderer)"),
          QLatin1String(" Helper (GPU)")}) {
        if (friendly.endsWith(suffix)) {
            friendly.chop(suffix.size());
            break;
        }
    }
    return friendly;
}

std::optional<QString> AudioAppDetection::appNameFromApplicationPath(const QString& text) {
    const QStringList paths = matches(text, QStringLiteral(R"((/[^\n]*?\.app)(?:/|\s|$))"));
    if (paths.isEmpty()) {
        return std::nullopt;
    }
    QString path = paths.first().trimmed();
    while (!path.isEmpty() && (path.front() == u'"' || path.front() == u'\'')) {
        path.remove(0, 1);
    }
    while (!path.isEmpty() && (path.back() == u'"' || path.back() == u'\'')) {
        path.chop(1);
    }
    QString last = path.mid(path.lastIndexOf(u'/') + 1);
    const qsizetype dot = last.lastIndexOf(u'.');
    return dot > 0 ? last.left(dot) : last;
}

QString AudioAppDetection::appNameForBundleID(Workspace& workspace, const QString& bundleID) {
    const QString name = workspace.applicationNameForIdentifier(bundleID);
    return name.isEmpty() ? friendlyProcessName(bundleID) : name;
}

QString AudioAppDetection::runCommand(CommandRunner& runner, const QString& program,
                                      const QStringList& arguments, double timeoutSeconds) {
    const CommandResult result = runner.run({.program = program,
                                             .arguments = arguments,
                                             .timeoutSeconds = timeoutSeconds,
                                             .pollStepSeconds = 0.05,
                                             .stderrMode = CommandRequest::Stderr::Merged,
                                             .killGraceSeconds = 0.2});
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = utf8(result.standardOutput);
    return utf8.hasError() ? QString() : text;
}

}  // namespace zelvar
