#pragma once
typedef int mach_error_t;
extern "C" char* mach_error_string(mach_error_t);
