#include "platform/macos/MacDesktop.h"

#import <AVFoundation/AVFoundation.h>
#import <AppKit/AppKit.h>
#import <UserNotifications/UserNotifications.h>

namespace zelvar {
namespace {

QString describe(NSError* error) {
    return error ? QString::fromNSString(error.localizedDescription) : QString();
}

}  // namespace

void MacNotificationCenter::getAuthorizationStatus(std::function<void(int status)> completion) {
    [UNUserNotificationCenter.currentNotificationCenter
        getNotificationSettingsWithCompletionHandler:^(UNNotificationSettings* settings) {
          completion(static_cast<int>(settings.authorizationStatus));
        }];
}

void MacNotificationCenter::requestAuthorization(
    std::function<void(bool granted, const QString& error)> completion) {
    [UNUserNotificationCenter.currentNotificationCenter
        requestAuthorizationWithOptions:(UNAuthorizationOptionAlert | UNAuthorizationOptionSound)
                      completionHandler:^(BOOL granted, NSError* error) {
                        completion(granted, describe(error));
                      }];
}

void MacNotificationCenter::add(const NotificationContent& content,
                                std::function<void(const QString& error)> completion) {
    UNMutableNotificationContent* body = [[UNMutableNotificationContent alloc] init];
    body.title = content.title.toNSString();
    if (!content.subtitle.isEmpty()) {
        body.subtitle = content.subtitle.toNSString();
    }
    body.body = content.body.toNSString();
    if (content.playSound) {
        body.sound = UNNotificationSound.defaultSound;
    }
    body.categoryIdentifier = content.categoryIdentifier.toNSString();
    body.threadIdentifier = content.threadIdentifier.toNSString();
    UNNotificationRequest* request =
        [UNNotificationRequest requestWithIdentifier:content.identifier.toNSString()
                                             content:body
                                             trigger:nil];
    [UNUserNotificationCenter.currentNotificationCenter addNotificationRequest:request
                                                         withCompletionHandler:^(NSError* error) {
                                                           completion(describe(error));
                                                         }];
}

MacSoundOutput::~MacSoundOutput() {
    if (m_player) {
        CFRelease(m_player);
    }
}

bool MacSoundOutput::playSystemSound(const QString& name) {
    NSSound* sound = [NSSound soundNamed:name.toNSString()];
    if (!sound) {
        return false;
    }
    [sound play];
    return true;
}

void MacSoundOutput::beep() { NSBeep(); }

bool MacSoundOutput::playFile(const QString& path, QString& error) {
    NSError* failure = nil;
    AVAudioPlayer* player =
        [[AVAudioPlayer alloc] initWithContentsOfURL:[NSURL fileURLWithPath:path.toNSString()]
                                               error:&failure];
    if (!player) {
        error = describe(failure);
        return false;
    }
    if (m_player) {
        CFRelease(m_player);
    }
    m_player = (void*)CFBridgingRetain(player);
    [player play];
    return true;
}

void MacActivationPolicy::setRegular() {
    [NSApp setActivationPolicy:NSApplicationActivationPolicyRegular];
}

void MacActivationPolicy::setAccessory() {
    [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

}  // namespace zelvar
