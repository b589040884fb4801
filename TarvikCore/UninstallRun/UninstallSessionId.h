#pragma once

#include <chrono>
#include <string>
#include <string_view>

/// What past uninstalls are called. Pure, but for the local time.
namespace tarvik::UninstallSessionId {

/// The local time, "20261115_174543".
std::string at(std::chrono::system_clock::time_point instant);
/// What an interrupted run is called that has the journal of this name, "interrupted-20261115_174540", and back; empty
/// when the id is none of an interrupted run.
std::string ofInterrupted(std::string_view journalName);
std::string journalNameOf(std::string_view id);
/// Whether a user may have read it in a list: letters, digits, "_" and "-" alone, so that it is no path.
bool isOne(std::string_view text);

}  // namespace tarvik::UninstallSessionId
