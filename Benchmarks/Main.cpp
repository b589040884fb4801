// Holds Tarvik against what a user would pick instead, side by side in one run, and prints tables of ratios.
//   tarvik-benchmark [FILES] [ROUNDS]          all parts
//   tarvik-benchmark discovery [ROUNDS]        how quickly applications and links are found
//   tarvik-benchmark health [ROUNDS]           how long the check of everything that was moved takes
//   tarvik-benchmark archives [ROUNDS]         how quickly zip archives are expanded
//   tarvik-benchmark installs [FILES] [ROUNDS] applications that are installed on a drive
//   tarvik-benchmark tracking [ROUNDS]         what an installer has changed, and what watching it costs
//   tarvik-benchmark uninstall [ROUNDS]        plans of uninstalls, and much that goes to the Trash
//   tarvik-benchmark installers [ROUNDS]       how an image is looked through for what can be installed
//   tarvik-benchmark window [ROUNDS]           how quickly the window shows many applications
//   tarvik-benchmark moves [FILES] [ROUNDS]    moves and what they consist of
#include "Archives.h"
#include "Discovery.h"
#include "Health.h"
#include "InstallerLook.h"
#include "Installs.h"
#include "Measure.h"
#include "Moves.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Support/RealVolume.h"
#include "Tracking.h"
#include "Uninstall.h"
#include "Window.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace tarvik;

struct Sizes {
    std::size_t files = 60'000;
    int rounds = 5;
};

void setRounds(Sizes& sizes, const std::string& word) {
    sizes.rounds = std::max(1, std::atoi(word.c_str()));
}

/// FILES and ROUNDS.
Sizes sizesFrom(const std::vector<std::string>& words, std::size_t first) {
    Sizes sizes;
    if (words.size() > first) sizes.files = std::strtoul(words[first].c_str(), nullptr, 10);
    if (words.size() > first + 1) setRounds(sizes, words[first + 1]);
    return sizes;
}

void runPart(const std::string& part, const std::vector<std::string>& words) {
    test::RealVolume::prepareProcess();
    if (const auto reason = test::RealVolume::unavailableReason()) throw std::runtime_error(*reason);
    if (part == "moves") {
        const Sizes sizes = sizesFrom(words, 1);
        return Moves::measure(sizes.files, sizes.rounds);
    }
    if (part == "installs") {
        const Sizes sizes = sizesFrom(words, 1);
        return InstallSpeed::measure(sizes.files, sizes.rounds);
    }
    Sizes sizes;
    if (words.size() > 1) setRounds(sizes, words[1]);
    if (part == "discovery") return Discovery::measure(sizes.rounds);
    if (part == "health") return HealthSpeed::measure(sizes.rounds);
    if (part == "archives") return ArchiveSpeed::measure(sizes.rounds);
    if (part == "tracking") return TrackingSpeed::measure(sizes.rounds);
    if (part == "uninstall") return UninstallSpeed::measure(sizes.rounds);
    if (part == "installers") return InstallerLook::measure(sizes.rounds);
    WindowSpeed::measure(sizes.rounds);
}

/// Each part is a process of its own: the system counts what a program holds in memory to those that it starts.
void runAll(const Sizes& sizes) {
    const std::string rounds = std::to_string(sizes.rounds);
    const std::string program = ProgramLocation::executable();
    Measure::part({program, "discovery", rounds});
    Measure::part({program, "health", rounds});
    Measure::part({program, "archives", rounds});
    Measure::part({program, "tracking", rounds});
    Measure::part({program, "uninstall", rounds});
    Measure::part({program, "installers", rounds});
    Measure::part({program, "window", rounds});
    Measure::part({program, "moves", std::to_string(sizes.files), rounds});
    Measure::part({program, "installs", std::to_string(sizes.files), rounds});
}

}  // namespace

int main(int argc, char** argv) {
    try {
        const std::vector<std::string> words(argv + 1, argv + argc);
        const std::string part = words.empty() ? "" : words.front();
        constexpr std::array parts = {"discovery",  "health", "archives", "tracking", "uninstall",
                                      "installers", "window", "moves",    "installs"};
        if (part == "snapshots" && words.size() > 1) {
            TrackingSpeed::compareSnapshots(words[1]);  // What another part runs.
        } else if (part == "contained-items" && words.size() > 1) {
            InstallerLook::scan(words[1]);  // The same.
        } else if (std::find(parts.begin(), parts.end(), part) != parts.end()) {
            runPart(part, words);
        } else {
            runAll(sizesFrom(words, 0));
        }
        return 0;
    } catch (const std::exception& failure) {
        fmt::print(stderr, "{}\n", failure.what());
        return 1;
    }
}
