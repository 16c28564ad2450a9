#include "KestrelPlatform/macOS/DefaultsObserver.h"

#include <memory>

#include "KestrelCore/Support/Mutex.h"

namespace {

// Its address marks this class's observations.
char observationContext;

}  // namespace

@implementation KestrelDefaultsObserver {
  NSUserDefaults* _defaults;
  void (^_onChange)(void);
  std::unique_ptr<kestrel::Mutex> _mutex;
  NSMutableSet<NSString*>* _keys;
}

- (instancetype)initWithDefaults:(NSUserDefaults*)defaults onChange:(void (^)(void))onChange {
  self = [super init];
  if (self != nil) {
    _defaults = defaults;
    _onChange = onChange;
    _mutex = std::make_unique<kestrel::Mutex>(kestrel::LockRank::leaf);
    _keys = [NSMutableSet set];
  }
  return self;
}

- (void)watchKey:(NSString*)key {
  {
    const kestrel::LockGuard guard(*_mutex);
    if ([_keys containsObject:key]) return;
    [_keys addObject:key];
  }
  [_defaults addObserver:self forKeyPath:key options:0 context:&observationContext];
}

- (void)stop {
  NSMutableSet<NSString*>* keys = nil;
  {
    const kestrel::LockGuard guard(*_mutex);
    keys = _keys;
    _keys = [NSMutableSet set];
  }
  for (NSString* key in keys) {
    [_defaults removeObserver:self forKeyPath:key context:&observationContext];
  }
}

- (void)observeValueForKeyPath:(NSString*)path
                      ofObject:(id)object
                        change:(NSDictionary<NSKeyValueChangeKey, id>*)change
                       context:(void*)context {
  if (context == &observationContext) {
    _onChange();
  } else {
    [super observeValueForKeyPath:path ofObject:object change:change context:context];
  }
}

@end
