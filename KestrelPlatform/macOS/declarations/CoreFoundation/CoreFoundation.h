// Declarations for checking the macOS backend on a machine without the macOS SDK.
#pragma once
#include <stdbool.h>
#include <stdint.h>

#define CF_BRIDGED(T) struct __attribute__((objc_bridge(T)))
#define SDK_FROM(v) __attribute__((availability(macos, introduced = v)))

extern "C" {
typedef unsigned char Boolean;
typedef unsigned char UInt8;
typedef int SInt32;
typedef unsigned int UInt32;
typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef double CFTimeInterval;
typedef CFTimeInterval CFAbsoluteTime;
typedef struct { CFIndex location, length; } CFRange;
static inline CFRange CFRangeMake(CFIndex location, CFIndex length) { return CFRange{location, length}; }

typedef const void* CFTypeRef;
typedef const CF_BRIDGED(NSString) __CFString* CFStringRef;
typedef const CF_BRIDGED(NSArray) __CFArray* CFArrayRef;
typedef const CF_BRIDGED(NSDictionary) __CFDictionary* CFDictionaryRef;
typedef struct __attribute__((objc_bridge_mutable(NSMutableDictionary))) __CFDictionary* CFMutableDictionaryRef;
typedef const CF_BRIDGED(id) __CFBoolean* CFBooleanRef;
typedef const CF_BRIDGED(NSNumber) __CFNumber* CFNumberRef;
typedef const CF_BRIDGED(NSDate) __CFDate* CFDateRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef struct __CFRunLoop* CFRunLoopRef;
typedef struct __CFRunLoopSource* CFRunLoopSourceRef;
typedef struct __attribute__((objc_bridge_mutable(NSTimer))) __CFRunLoopTimer* CFRunLoopTimerRef;
typedef struct __CFFileDescriptor* CFFileDescriptorRef;
typedef CFStringRef CFRunLoopMode;

extern const CFAllocatorRef kCFAllocatorDefault;
void CFRelease(CFTypeRef);
CFTypeRef CFRetain(CFTypeRef);
CFTypeID CFGetTypeID(CFTypeRef);

#define CFSTR(s) ((CFStringRef)__builtin___CFStringMakeConstantString(s))
typedef UInt32 CFStringEncoding;
enum : CFStringEncoding { kCFStringEncodingISOLatin1 = 0x0201, kCFStringEncodingUTF8 = 0x08000100 };
CFTypeID CFStringGetTypeID(void);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count, CFStringEncoding, Boolean isExternalRepresentation);
CFStringRef CFStringCreateWithSubstring(CFAllocatorRef, CFStringRef, CFRange);
CFIndex CFStringGetLength(CFStringRef);
CFIndex CFStringGetBytes(CFStringRef, CFRange, CFStringEncoding, UInt8 lossByte, Boolean isExternalRepresentation, UInt8* buffer,
                         CFIndex maxBufLen, CFIndex* usedBufLen);
CFRange CFStringGetRangeOfComposedCharactersAtIndex(CFStringRef, CFIndex);

CFTypeID CFBooleanGetTypeID(void);
Boolean CFBooleanGetValue(CFBooleanRef);

typedef CFIndex CFNumberType;
enum : CFNumberType { kCFNumberSInt32Type = 3, kCFNumberSInt64Type = 4, kCFNumberIntType = 9, kCFNumberDoubleType = 13 };
CFTypeID CFNumberGetTypeID(void);
CFNumberRef CFNumberCreate(CFAllocatorRef, CFNumberType, const void* value);
Boolean CFNumberGetValue(CFNumberRef, CFNumberType, void* value);
Boolean CFNumberIsFloatType(CFNumberRef);

CFTypeID CFDateGetTypeID(void);
CFAbsoluteTime CFAbsoluteTimeGetCurrent(void);
CFDateRef CFDateCreate(CFAllocatorRef, CFAbsoluteTime);
CFAbsoluteTime CFDateGetAbsoluteTime(CFDateRef);

CFTypeID CFArrayGetTypeID(void);
CFIndex CFArrayGetCount(CFArrayRef);
const void* CFArrayGetValueAtIndex(CFArrayRef, CFIndex);
CFTypeID CFDictionaryGetTypeID(void);
const void* CFDictionaryGetValue(CFDictionaryRef, const void* key);

extern const CFRunLoopMode kCFRunLoopCommonModes, kCFRunLoopDefaultMode;
typedef SInt32 CFRunLoopRunResult;
enum : CFRunLoopRunResult {
    kCFRunLoopRunFinished = 1, kCFRunLoopRunStopped = 2, kCFRunLoopRunTimedOut = 3, kCFRunLoopRunHandledSource = 4 };
CFRunLoopRef CFRunLoopGetMain(void);
CFRunLoopRef CFRunLoopGetCurrent(void);
CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode, CFTimeInterval seconds, Boolean returnAfterSourceHandled);
void CFRunLoopStop(CFRunLoopRef);
void CFRunLoopWakeUp(CFRunLoopRef);
void CFRunLoopAddSource(CFRunLoopRef, CFRunLoopSourceRef, CFRunLoopMode);
void CFRunLoopRemoveSource(CFRunLoopRef, CFRunLoopSourceRef, CFRunLoopMode);
void CFRunLoopAddTimer(CFRunLoopRef, CFRunLoopTimerRef, CFRunLoopMode);

typedef struct {
    CFIndex version;
    void* info;
    const void* (*retain)(const void* info);
    void (*release)(const void* info);
    CFStringRef (*copyDescription)(const void* info);
    Boolean (*equal)(const void* info1, const void* info2);
    unsigned long (*hash)(const void* info);
    void (*schedule)(void* info, CFRunLoopRef, CFRunLoopMode);
    void (*cancel)(void* info, CFRunLoopRef, CFRunLoopMode);
    void (*perform)(void* info);
} CFRunLoopSourceContext;
CFRunLoopSourceRef CFRunLoopSourceCreate(CFAllocatorRef, CFIndex order, CFRunLoopSourceContext*);
void CFRunLoopSourceSignal(CFRunLoopSourceRef);
void CFRunLoopSourceInvalidate(CFRunLoopSourceRef);

CFRunLoopTimerRef CFRunLoopTimerCreateWithHandler(CFAllocatorRef, CFAbsoluteTime fireDate, CFTimeInterval interval, CFOptionFlags,
                                                  CFIndex order, void (^block)(CFRunLoopTimerRef timer));
void CFRunLoopTimerInvalidate(CFRunLoopTimerRef);

typedef int CFFileDescriptorNativeDescriptor;
enum : CFOptionFlags { kCFFileDescriptorReadCallBack = 1UL << 0, kCFFileDescriptorWriteCallBack = 1UL << 1 };
typedef void (*CFFileDescriptorCallBack)(CFFileDescriptorRef, CFOptionFlags callBackTypes, void* info);
typedef struct {
    CFIndex version;
    void* info;
    void* (*retain)(void* info);
    void (*release)(void* info);
    CFStringRef (*copyDescription)(void* info);
} CFFileDescriptorContext;
CFFileDescriptorRef CFFileDescriptorCreate(CFAllocatorRef, CFFileDescriptorNativeDescriptor, Boolean closeOnInvalidate,
                                           CFFileDescriptorCallBack, const CFFileDescriptorContext*);
CFRunLoopSourceRef CFFileDescriptorCreateRunLoopSource(CFAllocatorRef, CFFileDescriptorRef, CFIndex order);
void CFFileDescriptorEnableCallBacks(CFFileDescriptorRef, CFOptionFlags);
void CFFileDescriptorInvalidate(CFFileDescriptorRef);

extern const CFStringRef kCFPreferencesCurrentApplication;
CFTypeRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef app) __attribute__((cf_returns_retained));
Boolean CFPreferencesAppSynchronize(CFStringRef app);
}
