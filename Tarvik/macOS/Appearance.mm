#include "Appearance.h"

#import <AppKit/AppKit.h>

namespace tarvik::Appearance {

void forceLight() {
    // On the next turn of the main queue, when the shared application is wholly set up.
    dispatch_async(dispatch_get_main_queue(), ^{
      NSApplication.sharedApplication.appearance = [NSAppearance appearanceNamed:NSAppearanceNameAqua];
    });
}

void identify() {}

bool hasGraphicsCard() {
    return true;
}

}  // namespace tarvik::Appearance
