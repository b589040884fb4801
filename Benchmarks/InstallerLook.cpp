#include "InstallerLook.h"

#include "Installers/Inspection/ContainedItemScanner.h"
#include "Measure.h"
#include "Platform/Machine/Host.h"
#include "Platform/Processes/ProgramLocation.h"
#include "Support/TemporaryFolder.h"
#include "Support/Tree.h"
#include "Table.h"

#include <fmt/format.h>

#include <cstdint>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarvik::InstallerLook {

namespace {

constexpr int fileCount = 100'000;
constexpr int filesInFolder = 100;

void makeFiles(const fs::path& root) {
    for (int file = 0; file < fileCount; ++file) {
        const fs::path folder = root / fmt::format("folder {}", file / filesInFolder);
        if (file % filesInFolder == 0) test::makeFolder(folder);
        test::makeFile(folder / fmt::format("file.{}", file % filesInFolder), "#!/bin/sh\nexit\n");
    }
}

/// What the usual tool does to look at the beginning of each file.
std::vector<std::string> headOfEach(const fs::path& root) {
    return {"/bin/sh", "-c", "find \"$1\" -type f -exec head -c 256 {} + >/dev/null", "sh", root.native()};
}

/// The system calls of a command and all that it starts.
std::int64_t systemCalls(const std::vector<std::string>& command) {
    const test::TemporaryFolder folder;
    const fs::path summary = folder / "summary";
    std::vector<std::string> traced = {"/usr/bin/strace", "-f", "-c", "-U", "calls,name", "-o", summary.native()};
    traced.insert(traced.end(), command.begin(), command.end());
    Measure::program(traced);
    std::istringstream lines(test::contentOf(summary));
    for (std::string line; std::getline(lines, line);)
        if (line.ends_with("total")) return std::stoll(line);
    throw std::runtime_error("strace has told no total.");
}

}  // namespace

void scan(const fs::path& folder) {
    ContainedItemScanner::scan(Host::thisMachine(), folder);
}

void measure(int rounds) {
    const test::TemporaryFolder folder;
    const fs::path files = folder / "files";
    const fs::path nothing = folder / "nothing";
    test::makeFolder(nothing);
    makeFiles(files);
    Table::heading(fmt::format("{} files of unknown kinds in {} folders, {} rounds", fileCount,
                               fileCount / filesInFolder, rounds));

    const auto head = headOfEach(files);
    Table::compare(
        "what of them can be installed", [&] { scan(files); }, "find -exec head", [&] { Measure::program(head); },
        rounds, "<= 1.00");

    // Without what it costs to start.
    const std::string program = ProgramLocation::executable();
    const auto ours =
        systemCalls({program, "contained-items", files}) - systemCalls({program, "contained-items", nothing});
    const auto theirs = systemCalls(head) - systemCalls(headOfEach(nothing));
    Table::line("  system calls", fmt::format("{}", ours), "find -exec head", fmt::format("{}", theirs),
                fmt::format("{:.2f}", static_cast<double>(ours) / static_cast<double>(theirs)), "<= 2.00");
}

}  // namespace tarvik::InstallerLook
