#include "platform/macos/MacBatteryRegistry.h"

#import <Foundation/Foundation.h>
#include <IOKit/IOKitLib.h>

#include <memory>

#include "platform/portable/SmartBatteryProperties.h"
#include "platform/system/PlatformServices.h"

namespace zelvar {
namespace {

// The table as SmartBatteryProperties expects it: booleans as bool, whole numbers as the 64
// bits of their unsigned read, other numbers as double, dictionaries as maps.
QVariant toVariant(id value) {
    if ([value isKindOfClass:[NSNumber class]]) {
        NSNumber* number = value;
        if (CFGetTypeID((__bridge CFTypeRef)number) == CFBooleanGetTypeID()) {
            return QVariant(static_cast<bool>(number.boolValue));
        }
        if (CFNumberIsFloatType((__bridge CFNumberRef)number)) {
            return QVariant(number.doubleValue);
        }
        return QVariant(static_cast<qulonglong>(number.unsignedLongLongValue));
    }
    if ([value isKindOfClass:[NSDictionary class]]) {
        QVariantMap map;
        NSDictionary* dictionary = value;
        for (id key in dictionary) {
            if ([key isKindOfClass:[NSString class]]) {
                map.insert(QString::fromNSString(key), toVariant(dictionary[key]));
            }
        }
        return map;
    }
    if ([value isKindOfClass:[NSString class]]) {
        return QVariant(QString::fromNSString(value));
    }
    return {};
}

}  // namespace

std::optional<BatteryReading> MacBatteryRegistry::read() {
    const io_service_t service =
        IOServiceGetMatchingService(kIOMainPortDefault, IOServiceMatching("AppleSmartBattery"));
    if (service == IO_OBJECT_NULL) {
        return std::nullopt;
    }
    CFMutableDictionaryRef properties = nullptr;
    const kern_return_t result =
        IORegistryEntryCreateCFProperties(service, &properties, kCFAllocatorDefault, 0);
    IOObjectRelease(service);
    if (result != KERN_SUCCESS || properties == nullptr) {
        // A battery whose properties can't be read gives no figures: the same as none.
        if (properties != nullptr) {
            CFRelease(properties);
        }
        return std::nullopt;
    }
    QVariantMap table;
    @autoreleasepool {
        table = toVariant((__bridge NSDictionary*)properties).toMap();
    }
    CFRelease(properties);
    return SmartBatteryProperties::reading(table);
}

std::unique_ptr<BatteryRegistry> makeBatteryRegistry() {
    return std::make_unique<MacBatteryRegistry>();
}

}  // namespace zelvar
