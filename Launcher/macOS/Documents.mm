#include "Documents.h"

#import <AppKit/AppKit.h>

/// Gathers what the system asks this program to open until its launch is over.
@interface LaunchGatherer : NSObject <NSApplicationDelegate> {
@public
    std::vector<std::string> gathered;
}
@end

@implementation LaunchGatherer

- (void)application:(NSApplication*)application openURLs:(NSArray<NSURL*>*)urls {
    (void)application;
    for (NSURL* url in urls)
        gathered.emplace_back(url.isFileURL ? url.fileSystemRepresentation : url.absoluteString.UTF8String);
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    (void)notification;
    [NSApp stop:nil];
    // The loop looks whether it shall stop only after an event.
    [NSApp postEvent:[NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0]
             atStart:YES];
}

@end

namespace launcher {

std::vector<std::string> Documents::given() {
    @autoreleasepool {
        LaunchGatherer* const gatherer = [[[LaunchGatherer alloc] init] autorelease];
        [[NSApplication sharedApplication] setDelegate:gatherer];
        [NSApp run];
        [NSApp setDelegate:nil];
        return gatherer->gathered;
    }
}

}  // namespace launcher
