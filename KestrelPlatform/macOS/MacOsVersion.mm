#import <Foundation/Foundation.h>

#include "KestrelPlatform/macOS/MacBackends.h"

namespace kestrel {

std::string macOsVersion() {
  const char* text = [NSProcessInfo processInfo].operatingSystemVersionString.UTF8String;
  return text == nullptr ? "" : text;
}

}  // namespace kestrel
