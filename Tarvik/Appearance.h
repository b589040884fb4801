#pragma once

/// How the window fits the system that it runs on.
namespace tarvik::Appearance {

/// Makes the whole application look light, whatever the system's setting is. UI thread, with the application object
/// made.
void forceLight();

/// Whether something can draw faster than the processor does.
bool hasGraphicsCard();

}  // namespace tarvik::Appearance
