#include "Platform/Machine/SleepBlocker.h"

#import <Foundation/Foundation.h>
#include <memory>
#include <string>

namespace tarvik {

namespace {

/// An activity of this process that the user has asked for (NSProcessInfo): it keeps the system from idle sleep, and a
/// window that nobody looks at from being slowed down.
class MacSleepHold final : public SleepBlocker::Hold {
public:
    explicit MacSleepHold(NSString* reason)
        : m_activity(CFBridgingRetain([NSProcessInfo.processInfo beginActivityWithOptions:NSActivityUserInitiated
                                                                                   reason:reason])) {}
    ~MacSleepHold() override {
        @autoreleasepool {
            [NSProcessInfo.processInfo endActivity:CFBridgingRelease(m_activity)];
        }
    }

private:
    CFTypeRef m_activity;
};

class MacSleepBlocker final : public SleepBlocker {
public:
    std::unique_ptr<Hold> hold(const std::string& reason) const override {
        @autoreleasepool {
            NSString* text = [NSString stringWithUTF8String:reason.c_str()];
            return std::make_unique<MacSleepHold>(text.length > 0 ? text : @"Tarvik");
        }
    }
};

}  // namespace

std::shared_ptr<const SleepBlocker> makeSystemSleepBlocker() {
    return std::make_shared<MacSleepBlocker>();
}

}  // namespace tarvik
