#pragma once

#include <QSet>
#include <QString>

namespace zelvar {

// The names by which origin detection tells a system's own processes and its GUI
// applications apart. Compared exactly.
struct OriginNames {
    QSet<QString> knownGUIApps;
    // Processes that are the system themselves: init, display servers, desktop daemons.
    QSet<QString> systemProcessNames;
    // The parent of every kernel thread, whose children count as the system; empty where
    // kernel threads don't appear in the process table.
    QString kernelThreadParent;
};

// How the system itself shows as a process origin.
struct SystemOriginStyle {
    QString icon;
    QString label;
};

// What the logic above the adapters needs to know about a system, as plain data: the logic
// then has no branch per system, and both systems' data is built and tested everywhere.
struct SystemProfile {
    OriginNames originNames;
    SystemOriginStyle systemOrigin;
    QString lsofProgram;  // absolute path
    // Whether the audio service is CoreAudio: its clients are found with lsof on the audio
    // daemon, output starts show in the unified log, and consent comes from osascript. Else
    // the sound server lists its streams, there is no such log, and consent comes from pkexec.
    bool coreAudio = false;
    // The device nodes whose holders the elevated audio helper lists, as a shell word list.
    QString audioDeviceNodes;
    // The sound servers that hold those nodes for their clients: never the application using
    // audio (Linux: PulseAudio and PipeWire; CoreAudio's daemon is left out by the helper).
    QSet<QString> soundServerProcesses;
    // Whether the tray shows every status icon square, scaling a wider picture down to fit
    // (the trays of Linux desktops), rather than as wide as its picture (the macOS menu bar).
    bool squareTrayIcons = false;
};

// Defined in platform/linux/ and platform/macos/, both built on every system.
SystemProfile linuxSystemProfile();
SystemProfile macSystemProfile();

}  // namespace zelvar
