#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Takes the times of programs and of our own code.
namespace tarvik::Measure {

/// What one run of a program cost.
struct Run {
    double seconds = 0;
    /// The largest resident memory of the program or of a child that it waited for, in bytes. The system counts to it
    /// what this program has had at most: no figure below that can be seen.
    std::int64_t peakMemory = 0;
    /// What it printed on standard output.
    std::string output;
};

/// Runs a program to its end. @throws std::runtime_error when it fails.
Run program(const std::vector<std::string>& command);
/// Runs a program that prints where this one does. @throws std::runtime_error when it fails.
void part(const std::vector<std::string>& command);
/// Seconds that a function takes.
double seconds(const std::function<void()>& act);
/// What an act takes by the clock, and of the processors' time in this program and in those that it has waited for: on
/// a busy machine only the second is worth comparing.
struct Cost {
    double seconds = 0;
    double processorSeconds = 0;
};
Cost cost(const std::function<void()>& act);
double median(std::vector<double> values);
/// Keeps this program, and what it starts, on one core while the object lives.
class OneCore {
public:
    OneCore();
    ~OneCore();
    OneCore(const OneCore&) = delete;
    OneCore& operator=(const OneCore&) = delete;
};

}  // namespace tarvik::Measure
