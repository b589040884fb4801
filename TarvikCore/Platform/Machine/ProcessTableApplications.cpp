#include "Platform/Files/FileDescriptor.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/EnclosingBundles.h"
#include "Platform/Machine/RunningApplications.h"
#include "Platform/Processes/ProcessTable.h"

#include <algorithm>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tarvik {

namespace {

using ProcessTable::Process;

/// The first line of a script without its "#!"; empty when the file is no script or cannot be read.
std::string interpreterLine(const fs::path& file) {
    constexpr std::string_view mark = "#!";
    constexpr std::size_t longestLine = 256;  // Systems look no further.
    const auto info = Files::info(file);
    if (!info || info->type != Files::ItemType::regular) return {};
    const FileDescriptor handle(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    std::string line(longestLine, '\0');
    const ssize_t length = handle ? ::read(handle.get(), line.data(), line.size()) : -1;
    line.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    if (!line.starts_with(mark)) return {};
    return line.substr(mark.size(), line.find('\n') - mark.size());
}

/// The words of a line, of which the first two matter.
std::vector<std::string> wordsOf(std::string_view line) {
    constexpr std::string_view space = " \t\r";
    std::vector<std::string> words;
    for (std::size_t start = 0; (start = line.find_first_not_of(space, start)) != std::string_view::npos;) {
        const std::size_t end = std::min(line.find_first_of(space, start), line.size());
        words.emplace_back(line.substr(start, end - start));
        start = end;
    }
    return words;
}

/// Whether a script names the process's program as the one to run it: by its path, or through `env` by the name that
/// the process was called by.
bool isRunBy(const Process& process, const fs::path& script) {
    const auto words = wordsOf(interpreterLine(script));
    if (words.empty()) return false;
    const fs::path interpreter = words.front();
    if (interpreter.filename() != "env") return Files::resolved(interpreter) == process.executable;
    const auto named = std::find_if(words.begin() + 1, words.end(), [](const auto& word) { return word[0] != '-'; });
    return named != words.end() && fs::path(process.arguments.front()).filename() == fs::path(*named).filename();
}

/// The script that an interpreter runs: its first argument that is no option, if that names it as its interpreter. So
/// an editor that has opened a script is not taken for it.
std::optional<fs::path> scriptOf(const Process& process) {
    for (std::size_t index = 1; index < process.arguments.size(); ++index) {
        const std::string& argument = process.arguments[index];
        if (argument.starts_with('-')) continue;
        const fs::path named = process.workingFolder / argument;
        const auto script = named.is_absolute() ? Files::resolved(named) : std::nullopt;
        return script && isRunBy(process, *script) ? script : std::nullopt;
    }
    return std::nullopt;
}

class ProcessTableApplications final : public RunningApplications {
public:
    explicit ProcessTableApplications(std::vector<fs::path> folders) : m_folders(std::move(folders)) {}

    std::vector<RunningApplication> running() const override {
        std::vector<RunningApplication> applications;
        for (const Process& process : ProcessTable::processes()) {
            auto bundles = EnclosingBundles::of(process.executable);
            if (bundles.empty())
                if (const auto script = scriptOf(process)) bundles = EnclosingBundles::of(*script);
            for (auto& bundle : bundles)
                if (counts(bundle)) applications.push_back({process.identifier, process.startTime, std::move(bundle)});
        }
        return applications;
    }

    std::vector<fs::path> bundlesInUse() const override {
        std::vector<fs::path> inUse;
        for (const fs::path& program : ProcessTable::programs())
            for (auto& bundle : EnclosingBundles::of(program))
                if (counts(bundle)) inUse.push_back(std::move(bundle));
        return inUse;
    }

    void terminate(const RunningApplication& application) const override {
        ProcessTable::send(SIGTERM, application.process, application.startTime);
    }

    void forceTerminate(const RunningApplication& application) const override {
        ProcessTable::send(SIGKILL, application.process, application.startTime);
    }

private:
    bool counts(const fs::path& bundle) const {
        return m_folders.empty() || std::any_of(m_folders.begin(), m_folders.end(), [&](const fs::path& folder) {
                   return Files::isAtOrBelow(bundle, folder);
               });
    }

    const std::vector<fs::path> m_folders;
};

}  // namespace

std::shared_ptr<const RunningApplications> makeProcessTableApplications(std::vector<fs::path> folders) {
    return std::make_shared<ProcessTableApplications>(std::move(folders));
}

}  // namespace tarvik
