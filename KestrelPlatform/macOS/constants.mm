// Holds the declarations beside this file to the SDK: compiled against them by the check without an SDK, and
// against the real SDK by every build with tests on a Mac.
#import <AppKit/AppKit.h>
#import <CoreFoundation/CoreFoundation.h>
#import <IOKit/IOKitLib.h>
#import <IOKit/ps/IOPSKeys.h>
#import <IOKit/ps/IOPowerSources.h>
#import <IOKit/pwr_mgt/IOPMLib.h>
#import <ServiceManagement/ServiceManagement.h>
#import <UserNotifications/UserNotifications.h>
#import <libproc.h>
#import <mach/mach_error.h>
#import <os/log.h>
#import <sys/socket.h>
#import <unistd.h>

#include <string_view>
#include <type_traits>

using namespace std::string_view_literals;

// A CFSTR macro is no constant expression; the text of its expansion is.
#define EXPANSION(...) #__VA_ARGS__
#define EXPANDS_TO(macro, literal) \
  (std::string_view(EXPANSION_OF(macro)).find(#literal) != std::string_view::npos)
#define EXPANSION_OF(macro) EXPANSION(macro)
#define HAS_TYPE(function, ...) std::is_same_v<decltype(function), __VA_ARGS__>

// Sizes.
static_assert(sizeof(BOOL) == 1 && sizeof(NSInteger) == 8 && sizeof(NSUInteger) == 8 && sizeof(CGFloat) == 8);
static_assert(sizeof(CFIndex) == 8 && sizeof(CFTypeID) == 8 && sizeof(CFOptionFlags) == 8 &&
              sizeof(Boolean) == 1);
static_assert(sizeof(CFStringEncoding) == 4 && sizeof(CFRange) == 16 && sizeof(CFAbsoluteTime) == 8);
static_assert(sizeof(CFRunLoopSourceContext) == 80 && sizeof(CFFileDescriptorContext) == 40);
static_assert(sizeof(IOPMAssertionID) == 4 && sizeof(IOReturn) == 4 && sizeof(io_service_t) == 4);

// Core Foundation.
static_assert(kCFStringEncodingUTF8 == 0x08000100 && kCFStringEncodingISOLatin1 == 0x0201);
static_assert(kCFNumberSInt32Type == 3 && kCFNumberSInt64Type == 4);
static_assert(kCFNumberIntType == 9 && kCFNumberDoubleType == 13);
static_assert(kCFRunLoopRunFinished == 1 && kCFRunLoopRunStopped == 2);
static_assert(kCFRunLoopRunTimedOut == 3 && kCFRunLoopRunHandledSource == 4);
static_assert(kCFFileDescriptorReadCallBack == 1 && kCFFileDescriptorWriteCallBack == 2);
static_assert(HAS_TYPE(CFStringCreateWithBytes,
                       CFStringRef(CFAllocatorRef, const UInt8*, CFIndex, CFStringEncoding, Boolean)));
static_assert(HAS_TYPE(CFStringGetBytes, CFIndex(CFStringRef, CFRange, CFStringEncoding, UInt8, Boolean,
                                                 UInt8*, CFIndex, CFIndex*)));
static_assert(HAS_TYPE(CFStringGetRangeOfComposedCharactersAtIndex, CFRange(CFStringRef, CFIndex)));
static_assert(HAS_TYPE(CFStringCreateWithSubstring, CFStringRef(CFAllocatorRef, CFStringRef, CFRange)));
static_assert(HAS_TYPE(CFDateCreate, CFDateRef(CFAllocatorRef, CFAbsoluteTime)));
static_assert(HAS_TYPE(CFRunLoopSourceCreate,
                       CFRunLoopSourceRef(CFAllocatorRef, CFIndex, CFRunLoopSourceContext*)));
static_assert(HAS_TYPE(CFRunLoopTimerCreateWithHandler,
                       CFRunLoopTimerRef(CFAllocatorRef, CFAbsoluteTime, CFTimeInterval, CFOptionFlags,
                                         CFIndex, void (^)(CFRunLoopTimerRef))));
static_assert(HAS_TYPE(CFFileDescriptorCreate,
                       CFFileDescriptorRef(CFAllocatorRef, CFFileDescriptorNativeDescriptor, Boolean,
                                           CFFileDescriptorCallBack, const CFFileDescriptorContext*)));
static_assert(HAS_TYPE(CFPreferencesAppSynchronize, Boolean(CFStringRef)));

// Foundation.
static_assert(NSApplicationSupportDirectory == 14 && NSCachesDirectory == 13 && NSLibraryDirectory == 5);
static_assert(NSUserDomainMask == 1);
static_assert(NSProcessInfoThermalStateNominal == 0 && NSProcessInfoThermalStateFair == 1);
static_assert(NSProcessInfoThermalStateSerious == 2 && NSProcessInfoThermalStateCritical == 3);
static_assert(NSKeyValueObservingOptionNew == 1 && NSKeyValueObservingOptionOld == 2);
static_assert(NSKeyValueObservingOptionInitial == 4 && NSKeyValueObservingOptionPrior == 8);

// AppKit, UserNotifications, ServiceManagement.
static_assert(NSEventMaskKeyDown == 1 << 10 && NSEventMaskLeftMouseDown == 2 && NSEventMaskMouseMoved == 32);
static_assert(NSApplicationActivationPolicyRegular == 0 && NSApplicationActivationPolicyProhibited == 2);
static_assert(NSEventModifierFlagCapsLock == 0x10000 && NSEventModifierFlagShift == 0x20000);
static_assert(NSEventModifierFlagControl == 0x40000 && NSEventModifierFlagOption == 0x80000);
static_assert(NSEventModifierFlagCommand == 0x100000);
static_assert(UNAuthorizationOptionAlert == 4 && UNAuthorizationOptionSound == 2 &&
              UNAuthorizationOptionBadge == 1);
static_assert(SMAppServiceStatusNotRegistered == 0 && SMAppServiceStatusEnabled == 1);
static_assert(SMAppServiceStatusRequiresApproval == 2 && SMAppServiceStatusNotFound == 3);

// IOKit.
static_assert(kIOReturnSuccess == 0 && IO_OBJECT_NULL == 0);
static_assert(kIOPMNullAssertionID == 0 && kIOPMAssertionLevelOff == 0 && kIOPMAssertionLevelOn == 255);
static_assert(EXPANDS_TO(kIOPMAssertionTypeKey, "AssertType"));
static_assert(EXPANDS_TO(kIOPMAssertionLevelKey, "AssertLevel"));
static_assert(EXPANDS_TO(kIOPMAssertionNameKey, "AssertName"));
static_assert(EXPANDS_TO(kIOPMAssertionTypePreventUserIdleSystemSleep, "PreventUserIdleSystemSleep"));
static_assert(EXPANDS_TO(kIOPMAssertionTypePreventUserIdleDisplaySleep, "PreventUserIdleDisplaySleep"));
static_assert(kIOPSTypeKey == "Type"sv && kIOPSInternalBatteryType == "InternalBattery"sv);
static_assert(kIOPSACPowerValue == "AC Power"sv && kIOPSBatteryPowerValue == "Battery Power"sv);
static_assert(kIOPSPowerSourceStateKey == "Power Source State"sv && kIOPSIsChargingKey == "Is Charging"sv);
static_assert(kIOPSCurrentCapacityKey == "Current Capacity"sv && kIOPSMaxCapacityKey == "Max Capacity"sv);
static_assert(kIOPSTimeToEmptyKey == "Time to Empty"sv);
static_assert(HAS_TYPE(IOPMAssertionCreateWithName,
                       IOReturn(CFStringRef, IOPMAssertionLevel, CFStringRef, IOPMAssertionID*)));
static_assert(HAS_TYPE(IOPMCopyAssertionsByProcess, IOReturn(CFDictionaryRef*)));
static_assert(HAS_TYPE(IOPSGetPowerSourceDescription, CFDictionaryRef(CFTypeRef, CFTypeRef)));
static_assert(HAS_TYPE(IOPSNotificationCreateRunLoopSource,
                       CFRunLoopSourceRef(IOPowerSourceCallbackType, void*)));
static_assert(HAS_TYPE(IORegistryEntryCreateCFProperty,
                       CFTypeRef(io_registry_entry_t, CFStringRef, CFAllocatorRef, IOOptionBits)));

// The system's log.
static_assert(OS_LOG_TYPE_DEFAULT == 0x00 && OS_LOG_TYPE_INFO == 0x01 && OS_LOG_TYPE_DEBUG == 0x02);
static_assert(OS_LOG_TYPE_ERROR == 0x10 && OS_LOG_TYPE_FAULT == 0x11 && sizeof(os_log_type_t) == 1);

// The C library and the kernel.
static_assert(SO_NOSIGPIPE == 0x1022);
static_assert(HAS_TYPE(getpeereid, int(int, uid_t*, gid_t*)));
static_assert(HAS_TYPE(mach_error_string, char*(mach_error_t)));
static_assert(PROC_PIDTBSDINFO == 3 && sizeof(proc_bsdinfo) == 136);
static_assert(HAS_TYPE(proc_pidinfo, int(int, int, uint64_t, void*, int)));
