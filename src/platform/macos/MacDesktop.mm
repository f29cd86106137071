#include "platform/macos/MacDesktop.h"

#import <AVFoundation/AVFoundation.h>
#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>
#import <UserNotifications/UserNotifications.h>

#include <QDir>
#include <QFileInfo>
#include <algorithm>

// Shows alerts as banners, with their sound, also while this application is frontmost (the
// dashboard open); without a delegate the centre would keep them out of sight.
@interface ZelvarNotificationDelegate : NSObject <UNUserNotificationCenterDelegate>
@end

@implementation ZelvarNotificationDelegate
- (void)userNotificationCenter:(UNUserNotificationCenter*)center
       willPresentNotification:(UNNotification*)notification
         withCompletionHandler:
             (void (^)(UNNotificationPresentationOptions options))completionHandler {
    completionHandler(UNNotificationPresentationOptionBanner |
                      UNNotificationPresentationOptionList | UNNotificationPresentationOptionSound);
}
@end

namespace zelvar {
namespace {

QString describe(NSError* error) {
    return error ? QString::fromNSString(error.localizedDescription) : QString();
}

// Runs `block` on the main thread: at once when already there, else queued.
void onMain(dispatch_block_t block) {
    if (NSThread.isMainThread) {
        block();
    } else {
        dispatch_async(dispatch_get_main_queue(), block);
    }
}

}  // namespace

MacNotificationCenter::MacNotificationCenter() {
    @autoreleasepool {
        ZelvarNotificationDelegate* delegate = [[ZelvarNotificationDelegate alloc] init];
        UNUserNotificationCenter.currentNotificationCenter.delegate = delegate;
        m_delegate = (void*)CFBridgingRetain(delegate);
    }
}

MacNotificationCenter::~MacNotificationCenter() {
    @autoreleasepool {
        UNUserNotificationCenter.currentNotificationCenter.delegate = nil;
        CFRelease(m_delegate);
    }
}

bool MacNotificationCenter::hasBundleIdentifier() {
    @autoreleasepool {
        return NSBundle.mainBundle.bundleIdentifier != nil;
    }
}

void MacNotificationCenter::getAuthorizationStatus(std::function<void(int status)> completion) {
    @autoreleasepool {
        [UNUserNotificationCenter.currentNotificationCenter
            getNotificationSettingsWithCompletionHandler:^(UNNotificationSettings* settings) {
              completion(static_cast<int>(settings.authorizationStatus));
            }];
    }
}

void MacNotificationCenter::requestAuthorization(
    std::function<void(bool granted, const QString& error)> completion) {
    @autoreleasepool {
        [UNUserNotificationCenter.currentNotificationCenter
            requestAuthorizationWithOptions:(UNAuthorizationOptionAlert |
                                             UNAuthorizationOptionSound)
                          completionHandler:^(BOOL granted, NSError* error) {
                            completion(granted, describe(error));
                          }];
    }
}

void MacNotificationCenter::add(const NotificationContent& content,
                                std::function<void(const QString& error)> completion) {
    @autoreleasepool {
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
        onMain(^{
          [UNUserNotificationCenter.currentNotificationCenter
              addNotificationRequest:request
               withCompletionHandler:^(NSError* error) {
                 completion(describe(error));
               }];
        });
    }
}

MacSoundOutput::~MacSoundOutput() {
    if (m_player) {
        CFRelease(m_player);
    }
}

bool MacSoundOutput::playSystemSound(const QString& name) {
    // NSSound's named lookup isn't documented as safe off the main thread, so the answer comes
    // from the folders that lookup searches, and the lookup and the playing happen on the main
    // thread. The named sound stays in NSSound's own table, so it isn't released while it plays.
    const QString file = name + QStringLiteral(".aiff");
    const QStringList folders{QDir::homePath() + QStringLiteral("/Library/Sounds"),
                              QStringLiteral("/Library/Sounds"),
                              QStringLiteral("/System/Library/Sounds")};
    const bool found = std::any_of(folders.begin(), folders.end(), [&](const QString& folder) {
        return QFileInfo::exists(folder + QLatin1Char('/') + file);
    });
    if (!found) {
        return false;
    }
    @autoreleasepool {
        NSString* soundName = name.toNSString();
        onMain(^{
          [[NSSound soundNamed:soundName] play];
        });
    }
    return true;
}

void MacSoundOutput::beep() {
    onMain(^{
      NSBeep();
    });
}

bool MacSoundOutput::playFile(const QString& path, QString& error) {
    @autoreleasepool {
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
        onMain(^{
          [player play];
        });
        return true;
    }
}

void MacActivationPolicy::setRegular() {
    onMain(^{
      @autoreleasepool {
          [NSApp setActivationPolicy:NSApplicationActivationPolicyRegular];
      }
    });
}

void MacActivationPolicy::setAccessory() {
    onMain(^{
      @autoreleasepool {
          [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
      }
    });
}

}  // namespace zelvar
