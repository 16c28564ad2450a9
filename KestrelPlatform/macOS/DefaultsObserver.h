#pragma once

#include <Foundation/Foundation.h>

/// Observes single keys of a defaults database: key-value observing is what the system offers for changes
/// that another process makes. Safe from any thread.
@interface KestrelDefaultsObserver : NSObject

/// `onChange` is called on any thread, for this process's own writes too.
- (instancetype)initWithDefaults:(NSUserDefaults*)defaults onChange:(void (^)(void))onChange;
/// Observes a key from its first call on.
- (void)watchKey:(NSString*)key;
/// Ends all observation; call it before dropping the observer.
- (void)stop;

@end
