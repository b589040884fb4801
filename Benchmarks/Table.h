#pragma once

#include "Measure.h"

#include <functional>
#include <string>
#include <vector>

/// Prints what was measured, a line as soon as its figures are there.
namespace tarvik::Table {

/// A headline for the lines that follow, and the names of the columns.
void heading(const std::string& text);
void line(const std::string& figure, const std::string& ours, const std::string& peer, const std::string& theirs,
          const std::string& ratio, const std::string& aim, const std::string& processorRatio = {});
/// The medians of seconds, and their ratio.
void ratio(const std::string& figure, const std::vector<double>& ours, const std::string& peer,
           const std::vector<double>& theirs, const std::string& aim);
/// Runs both alternately, after one round that only warms the caches.
void compare(const std::string& figure, const std::function<void()>& ours, const std::string& peer,
             const std::function<void()>& theirs, int rounds, const std::string& aim);
/// Runs an act that has no peer, after one round that only warms the caches: milliseconds by the clock and, in the
/// peer's place, of processor time.
void milliseconds(const std::string& figure, const std::function<void()>& act, int rounds, const std::string& aim);

}  // namespace tarvik::Table
