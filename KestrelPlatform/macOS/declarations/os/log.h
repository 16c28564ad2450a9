#pragma once
#include <stdbool.h>
#include <stdint.h>
#ifdef __OBJC__
#include <Foundation/Foundation.h>
@protocol OS_os_log <NSObject>
@end
typedef NSObject<OS_os_log>* os_log_t;
#else
typedef struct os_log_s* os_log_t;
#endif
typedef uint8_t os_log_type_t;
enum : os_log_type_t {
    OS_LOG_TYPE_DEFAULT = 0x00, OS_LOG_TYPE_INFO = 0x01, OS_LOG_TYPE_DEBUG = 0x02, OS_LOG_TYPE_ERROR = 0x10, OS_LOG_TYPE_FAULT = 0x11 };
extern "C" os_log_t os_log_create(const char* subsystem, const char* category)
#ifdef __OBJC__
    __attribute__((ns_returns_retained))
#endif
    ;
extern "C" bool os_log_type_enabled(os_log_t, os_log_type_t);
extern "C" void os_log_stub_(os_log_t, os_log_type_t, const char* format, ...) __attribute__((format(os_log, 3, 4)));
#define os_log_with_type(h, type, ...) os_log_stub_(h, type, __VA_ARGS__)
