#pragma once

#include <string_view>

/// The names by which an application's data is found are whatever its maker wrote, or nothing at all. In a pattern like
/// Library/Caches/NAME, a name such as "" or ".." would stand for a folder that belongs to everybody.
namespace tarvik::DataName {

/// Whether a folder joined with `name` is an item of its own below that folder, and no longer than a path may be. Pure.
bool isUsable(std::string_view name);
/// The same, and the item stands in that folder itself: `name` is one component of a path. Nor does it hold a control
/// character or a line break, which no maker writes into a name, and which would break a line of a report. Pure.
bool isOneComponent(std::string_view name);

}  // namespace tarvik::DataName
