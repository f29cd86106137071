#include "platform/macos/MacWorkspace.h"

#import <AppKit/AppKit.h>

#include <memory>

#include "platform/system/PlatformServices.h"

namespace zelvar {
namespace {

RunningApplication fromRunning(NSRunningApplication* application) {
    return {
        application.processIdentifier,
        application.localizedName ? QString::fromNSString(application.localizedName) : QString(),
        static_cast<bool>(application.active)};
}

}  // namespace

MacWorkspace::~MacWorkspace() { unsubscribeActivations(); }

std::optional<RunningApplication> MacWorkspace::frontmostApplication() {
    NSRunningApplication* frontmost = NSWorkspace.sharedWorkspace.frontmostApplication;
    if (!frontmost) {
        return std::nullopt;
    }
    return fromRunning(frontmost);
}

QList<RunningApplication> MacWorkspace::runningApplications() {
    QList<RunningApplication> applications;
    for (NSRunningApplication* application in NSWorkspace.sharedWorkspace.runningApplications) {
        applications.append(fromRunning(application));
    }
    return applications;
}

void MacWorkspace::subscribeActivations(std::function<void(const RunningApplication&)> activated) {
    unsubscribeActivations();
    id observer = [NSWorkspace.sharedWorkspace.notificationCenter
        addObserverForName:NSWorkspaceDidActivateApplicationNotification
                    object:nil
                     queue:NSOperationQueue.mainQueue
                usingBlock:^(NSNotification* notification) {
                  id application = notification.userInfo[NSWorkspaceApplicationKey];
                  // A notification without a running application is not an activation.
                  if ([application isKindOfClass:[NSRunningApplication class]]) {
                      activated(fromRunning(application));
                  }
                }];
    m_observer = (__bridge_retained void*)observer;
}

void MacWorkspace::unsubscribeActivations() {
    if (m_observer) {
        id observer = (__bridge_transfer id)m_observer;
        [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:observer];
        m_observer = nullptr;
    }
}

QString MacWorkspace::applicationNameForIdentifier(const QString& identifier) {
    NSURL* url =
        [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:identifier.toNSString()];
    NSBundle* bundle = url ? [NSBundle bundleWithURL:url] : nil;
    if (!bundle) {
        return {};
    }
    for (NSString* key in @[ @"CFBundleDisplayName", @"CFBundleName" ]) {
        id name = [bundle objectForInfoDictionaryKey:key];
        if ([name isKindOfClass:[NSString class]] && [name length] > 0) {
            return QString::fromNSString(name);
        }
    }
    return {};
}

std::unique_ptr<Workspace> makeWorkspace(std::function<void(const QString& line)> /*log*/) {
    // NSWorkspace is there whenever the app runs: nothing to say.
    return std::make_unique<MacWorkspace>();
}

}  // namespace zelvar
