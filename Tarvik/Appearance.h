#pragma once

/// How the window fits the system that it runs on.
namespace tarvik::Appearance {

/// Makes the whole application look light, whatever the system's setting is. UI thread, with the application object
/// made.
void forceLight();

/// Gives the window its icon, and tells the desktop which of its entries the window belongs to. On a Mac both are in
/// the bundle. UI thread, with the application object made.
void identify();

/// Whether something can draw faster than the processor does.
bool hasGraphicsCard();

}  // namespace tarvik::Appearance
