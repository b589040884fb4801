#pragma once

#include <functional>

/// The way back to the UI thread: a queue of functions that other threads fill and that the UI thread runs in order.
///
/// Everything that crosses from a background thread to the state objects goes through here. The UI thread is the one
/// that the application object lives on.
namespace tarvik::UiThread {

/// Runs `function` on the UI thread, after all that was posted before. Any thread; never blocks. `function` must not
/// throw.
void post(std::function<void()> function);

/// Runs what is posted, and nothing else of the event loop, until `isDone` says that it is enough. Blocks between
/// posts. UI thread only.
void runUntil(const std::function<bool()>& isDone);

/// Runs what is posted by now, without the event loop. UI thread only.
void runPosted();

}  // namespace tarvik::UiThread
