#include "Practice/Signature.h"

#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/Host.h"
#include "Platform/Processes/CommandRunner.h"

#include <fmt/format.h>

#include <cstdint>
#include <map>
#include <string>

namespace tarvik::Practice {

void sign(TreeWriter& writer, const Machine& machine, const fs::path& bundle) {
    constexpr std::int64_t mostBytes = 1'000'000;
    const Host host = Host::rootedAt(machine.root, machine.home);
    const auto result =
        CommandRunner::run(host.tools.codesign, {"--force", "--sign", "-", "--timestamp=none", bundle.native()});
    if (!result.succeeded())
        throw Failure("Practice", 1, fmt::format("{} could not be signed: {}", bundle.native(), result.stderr));
    // Written again by the writer, which gives the seal times and permissions that are always the same, and counts it.
    const fs::path seal = bundle / "Contents/_CodeSignature";
    std::map<std::string, std::string> files;
    for (const std::string& name : Files::names(seal)) files[name] = Files::read(seal / name, mostBytes);
    Files::removeItem(seal);
    for (const auto& [name, bytes] : files) writer.file(seal / name, bytes);
}

}  // namespace tarvik::Practice
