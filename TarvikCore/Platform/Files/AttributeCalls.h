#pragma once

/// An empty extended attribute of this program's own on an open item. They give 0 or an errno value.
namespace tarvik::AttributeCalls {

/// Puts it there, also when it is there already.
int put(int handle);
/// Takes it away.
int take(int handle);

}  // namespace tarvik::AttributeCalls
