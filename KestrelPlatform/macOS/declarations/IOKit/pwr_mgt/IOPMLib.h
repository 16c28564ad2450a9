#pragma once
#include <IOKit/IOKitLib.h>
extern "C" {
typedef uint32_t IOPMAssertionID;
typedef uint32_t IOPMAssertionLevel;
enum { kIOPMNullAssertionID = 0, kIOPMAssertionLevelOff = 0, kIOPMAssertionLevelOn = 255 };
#define kIOPMAssertionTypePreventUserIdleSystemSleep CFSTR("PreventUserIdleSystemSleep")
#define kIOPMAssertionTypePreventUserIdleDisplaySleep CFSTR("PreventUserIdleDisplaySleep")
#define kIOPMAssertionTypePreventSystemSleep CFSTR("PreventSystemSleep")
IOReturn IOPMAssertionCreateWithName(CFStringRef type, IOPMAssertionLevel, CFStringRef name, IOPMAssertionID* id);
IOReturn IOPMAssertionRelease(IOPMAssertionID);
#define kIOPMAssertionTypeKey CFSTR("AssertType")
#define kIOPMAssertionLevelKey CFSTR("AssertLevel")
#define kIOPMAssertionNameKey CFSTR("AssertName")
IOReturn IOPMCopyAssertionsByProcess(CFDictionaryRef* byProcess);
}
