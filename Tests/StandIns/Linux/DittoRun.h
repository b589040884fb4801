#pragma once

#include "Platform/Basics/Path.h"

#include <functional>
#include <string>
#include <vector>

/// Runs the program `ditto` that was built with the tests, and makes what it is to copy.
namespace tarvik::test {

struct DittoRun {
    int status = -1;
    /// All that it wrote to standard error.
    std::string message;
    /// What it took of the machine.
    long peakMemoryKilobytes = 0;
};

/// Runs it to its end. `prepare` is called in the child before the program starts.
DittoRun runDitto(
    const std::vector<std::string>& arguments, const std::function<void()>& prepare = [] {});

/// `ditto --rsrc source destination`.
DittoRun ditto(
    const fs::path& source, const fs::path& destination, const std::function<void()>& prepare = [] {});

/// For `prepare`: a user without rights. Everyone may enter what the tests make for it.
void becomeNobody();
constexpr unsigned nobody = 65534;

/// True for the superuser, who alone may give files away and become someone else.
bool isSuperuser();

}  // namespace tarvik::test
