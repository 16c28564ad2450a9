#pragma once
#include <CoreFoundation/CoreFoundation.h>

typedef long NSInteger;
typedef unsigned long NSUInteger;
#if __OBJC_BOOL_IS_BOOL
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr
#define NS_ENUM(T, N) enum N : T N; enum N : T
#define NS_OPTIONS(T, N) T N; enum : T
#define NS_RELEASES_ARGUMENT __attribute__((ns_consumed))
typedef struct objc_selector* SEL;
typedef struct objc_class* Class;
typedef double NSTimeInterval;

@class NSString, NSArray<T>, NSDictionary<K, V>, NSError, NSURL, NSOperationQueue, NSNotification;
typedef NSString* NSNotificationName;
typedef NSString* NSKeyValueChangeKey;
typedef NS_OPTIONS(NSUInteger, NSKeyValueObservingOptions) {
    NSKeyValueObservingOptionNew = 1, NSKeyValueObservingOptionOld = 2, NSKeyValueObservingOptionInitial = 4,
    NSKeyValueObservingOptionPrior = 8 };

@protocol NSObject
- (BOOL)isEqual:(id)other;
- (BOOL)isKindOfClass:(Class)c;
@property(readonly, copy) NSString* description;
@end
__attribute__((objc_root_class)) @interface NSObject <NSObject>
+ (instancetype)alloc;
+ (Class)class;
- (instancetype)init;
@end
@interface NSObject (NSKeyValueObserving)
- (void)observeValueForKeyPath:(NSString*)path ofObject:(id)o change:(NSDictionary<NSKeyValueChangeKey, id>*)c context:(void*)x;
- (void)addObserver:(NSObject*)observer forKeyPath:(NSString*)path options:(NSKeyValueObservingOptions)options context:(void*)x;
- (void)removeObserver:(NSObject*)observer forKeyPath:(NSString*)path context:(void*)x;
@end
@protocol NSCopying
@end
typedef struct { unsigned long state; id __unsafe_unretained* itemsPtr; unsigned long* mutationsPtr; unsigned long extra[5]; } NSFastEnumerationState;
@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)s objects:(id __unsafe_unretained*)buffer count:(NSUInteger)n;
@end

@interface NSString : NSObject <NSCopying>
+ (instancetype)stringWithUTF8String:(const char*)s;
@property(readonly) const char* UTF8String;
@property(readonly) const char* fileSystemRepresentation;
@property(readonly) NSUInteger length;
- (BOOL)isEqualToString:(NSString*)s;
@end
@interface NSConstantString : NSString
@end
@interface NSNumber : NSObject
+ (NSNumber*)numberWithBool:(BOOL)b;
+ (NSNumber*)numberWithInt:(int)i;
+ (NSNumber*)numberWithDouble:(double)d;
@property(readonly) double doubleValue;
@property(readonly) BOOL boolValue;
@property(readonly) int intValue;
@end
@interface NSArray<T> : NSObject <NSFastEnumeration>
+ (instancetype)arrayWithObjects:(const T[])objects count:(NSUInteger)n;
@property(readonly) NSUInteger count;
@property(readonly) T firstObject;
- (T)objectAtIndexedSubscript:(NSUInteger)i;
@end
@interface NSDictionary<K, V> : NSObject <NSFastEnumeration>
+ (instancetype)dictionaryWithObjects:(const V[])v forKeys:(const K[])k count:(NSUInteger)n;
@property(readonly) NSUInteger count;
- (V)objectForKeyedSubscript:(K)key;
- (V)objectForKey:(K)key;
@end
@interface NSMutableDictionary<K, V> : NSDictionary<K, V>
@end
@interface NSMutableSet<T> : NSObject <NSFastEnumeration>
+ (instancetype)set;
- (void)addObject:(T)object;
- (BOOL)containsObject:(T)object;
@end
@interface NSDate : NSObject
@end
@interface NSThread : NSObject
@property(class, readonly) BOOL isMainThread;
@end
@interface NSError : NSObject
@property(readonly, copy) NSString* localizedDescription;
@property(readonly) NSInteger code;
@end
@interface NSURL : NSObject
@property(readonly, copy) NSString* path;
@property(readonly, copy) NSString* pathExtension;
@property(readonly) const char* fileSystemRepresentation;
- (NSURL*)URLByAppendingPathComponent:(NSString*)c isDirectory:(BOOL)d;
@end
@interface NSBundle : NSObject
@property(class, readonly, strong) NSBundle* mainBundle;
@property(readonly, copy) NSURL* bundleURL;
@property(readonly, copy) NSString* bundleIdentifier;
@end
@interface NSUUID : NSObject
+ (instancetype)UUID;
@property(readonly, copy) NSString* UUIDString;
@end
@interface NSOperationQueue : NSObject
@property(class, readonly) NSOperationQueue* mainQueue;
@end
@interface NSNotification : NSObject
@end
@interface NSNotificationCenter : NSObject
@property(class, readonly) NSNotificationCenter* defaultCenter;
- (id<NSObject>)addObserverForName:(NSNotificationName)name object:(id)o queue:(NSOperationQueue*)q usingBlock:(void (^)(NSNotification*))block;
- (void)removeObserver:(id)o;
@end

typedef NS_ENUM(NSInteger, NSProcessInfoThermalState) {
    NSProcessInfoThermalStateNominal, NSProcessInfoThermalStateFair,
    NSProcessInfoThermalStateSerious, NSProcessInfoThermalStateCritical };
extern NSNotificationName const NSProcessInfoThermalStateDidChangeNotification;
extern NSNotificationName const NSProcessInfoPowerStateDidChangeNotification SDK_FROM(12.0);
@interface NSProcessInfo : NSObject
@property(class, readonly) NSProcessInfo* processInfo;
@property(readonly, copy) NSArray<NSString*>* arguments;
@property(readonly, copy) NSString* operatingSystemVersionString;
@property(readonly) NSProcessInfoThermalState thermalState;
@property(readonly, getter=isLowPowerModeEnabled) BOOL lowPowerModeEnabled SDK_FROM(12.0);
@end

typedef NS_ENUM(NSUInteger, NSSearchPathDirectory) { NSLibraryDirectory = 5, NSCachesDirectory = 13, NSApplicationSupportDirectory = 14 };
typedef NS_OPTIONS(NSUInteger, NSSearchPathDomainMask) { NSUserDomainMask = 1 };
@interface NSFileManager : NSObject
@property(class, readonly) NSFileManager* defaultManager;
- (NSArray<NSURL*>*)URLsForDirectory:(NSSearchPathDirectory)d inDomains:(NSSearchPathDomainMask)m;
- (BOOL)createDirectoryAtURL:(NSURL*)u withIntermediateDirectories:(BOOL)i attributes:(NSDictionary<NSString*, id>*)a error:(NSError**)e;
@end
extern "C" NSString* NSHomeDirectory(void);
extern "C" NSString* NSTemporaryDirectory(void);
@interface NSUserDefaults : NSObject
@property(class, readonly) NSUserDefaults* standardUserDefaults;
- (id)objectForKey:(NSString*)k;
- (void)setObject:(id)v forKey:(NSString*)k;
- (void)setBool:(BOOL)v forKey:(NSString*)k;
- (void)setInteger:(NSInteger)v forKey:(NSString*)k;
- (void)setDouble:(double)v forKey:(NSString*)k;
- (void)removeObjectForKey:(NSString*)k;
- (NSString*)stringForKey:(NSString*)k;
@end
