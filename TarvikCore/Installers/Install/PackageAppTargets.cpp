#include "Installers/Install/PackageAppTargets.h"

#include "Copying/ItemLock.h"
#include "Installers/Inspection/NonEmptyLines.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Basics/Identifier.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/TreeWalk.h"
#include "Platform/Machine/SystemFolders.h"
#include "Platform/Processes/CommandRunner.h"
#include "Platform/Text/Text.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace tarvik::PackageAppTargets {

namespace {

using namespace std::chrono_literals;

constexpr std::string_view applicationsPrefix = "/Applications/";
constexpr std::string_view bundleEnd = ".app";
constexpr std::string_view folderPrefix = "TarvikPkgInfo-";
/// In bytes. Descriptions of large suites have a few hundred thousand.
constexpr std::int64_t largestDescription = 16'000'000;

/// The white space of Unicode that can stand inside a line and is no character of ASCII.
constexpr std::string_view wideSpaces[] = {
    "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005",
    "\u2006", "\u2007", "\u2008", "\u2009", "\u200A", "\u202F", "\u205F", "\u3000",
};

bool endsName(std::string_view rest) {
    constexpr std::string_view ends = "\"<\t /";
    if (ends.find(rest.front()) != ends.npos) return true;
    return std::any_of(std::begin(wideSpaces), std::end(wideSpaces),
                       [&](std::string_view space) { return rest.starts_with(space); });
}

/// What a name that begins `text` may be at most.
std::string_view nameBeginning(std::string_view text) {
    std::size_t length = 0;
    while (length < text.size() && !endsName(text.substr(length))) ++length;
    return text.substr(0, length);
}

/// The name of the first application in a line: up to the last ".app" before its end, so that "Editor.app.old" tells of
/// "Editor.app".
std::optional<std::string> firstNameIn(std::string_view line) {
    for (std::size_t at = line.find(applicationsPrefix); at != line.npos; at = line.find(applicationsPrefix, at + 1)) {
        const std::string_view name = nameBeginning(line.substr(at + applicationsPrefix.size()));
        const std::size_t end = name.rfind(bundleEnd);
        if (end != name.npos && end > 0) return std::string(name.substr(0, end + bundleEnd.size()));
    }
    return std::nullopt;
}

bool isDescription(const fs::path& relativePath) {
    return relativePath.filename() == "PackageInfo" || relativePath == "Distribution";
}

/// A new folder for the length of one look, marked as in use.
class ScratchFolder {
public:
    explicit ScratchFolder(const Host& host) {
        ignoringFailure([&] {
            Files::createFolder(host.temporary);
            clearLeftovers(host.temporary);
            for (int attempt = 1; attempt <= mostAttempts && m_folder.empty(); ++attempt)
                claim(host.temporary, attempt == mostAttempts);
        });
    }
    ~ScratchFolder() {
        if (m_folder.empty()) return;
        ignoringFailure([&] { Files::removeItem(m_folder); });
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    /// Empty when none could be made.
    const fs::path& path() const { return m_folder; }

private:
    static constexpr int mostAttempts = 5;

    void claim(const fs::path& temporary, bool isLast) {
        const fs::path folder = temporary / (std::string(folderPrefix) + newIdentifier());
        if (!Files::claim(folder)) return;
        m_held = ItemLock::hold(folder);
        // Another one may be clearing it away before it is held. Where nothing can be locked, nothing is cleared.
        if (ItemLock::isHeldAt(folder, m_held) || isLast)
            m_folder = folder;
        else
            ignoringFailure([&] { Files::removeItem(folder); });
    }
    static bool isName(std::string_view name) {
        constexpr std::size_t uuidLength = 36;
        return name.starts_with(folderPrefix) && name.size() == folderPrefix.size() + uuidLength;
    }
    static void clearLeftovers(const fs::path& temporary) {
        for (const auto& name : Files::names(temporary)) {
            if (!isName(name)) continue;
            const FileDescriptor lock = ItemLock::holdAlone(temporary / name);
            if (lock) ignoringFailure([&] { Files::removeItem(temporary / name); });
        }
    }

    fs::path m_folder;
    FileDescriptor m_held;
};

/// Empty when it cannot be read.
std::string textOf(const fs::path& description) {
    std::string text;
    ignoringFailure([&] { text = Files::read(description, largestDescription); });
    return Text::isValidUtf8(text) ? text : std::string();
}

}  // namespace

std::set<std::string> namesIn(std::string_view description) {
    std::set<std::string> names;
    NonEmptyLines::forEach(description, [&](std::string_view line) {
        auto name = firstNameIn(line);
        // The system would take a name with a NUL in it for a shorter one.
        if (name && name->find('\0') == std::string::npos) names.insert(std::move(*name));
    });
    return names;
}

std::set<fs::path> of(const Host& host, const fs::path& package, const Cancellation& cancellation) {
    const ScratchFolder folder(host);
    if (folder.path().empty()) return {};
    const auto opened = CommandRunner::ask(
        host.tools.xar, {"-xf", package.native(), "-C", folder.path().native(), "PackageInfo", "Distribution"},
        {.limit = 15s, .cancellation = cancellation});
    if (opened.timedOut) return {};
    std::set<fs::path> targets;
    TreeWalk walk(folder.path(), {.order = TreeWalk::Order::any});
    while (walk.next()) {
        // A hostile package may hold a link or a pipe of that name.
        if (walk.event() != TreeWalk::Event::item || walk.type() != Files::ItemType::regular) continue;
        const fs::path relative = walk.relativePath();
        if (!isDescription(relative)) continue;
        for (const auto& name : namesIn(textOf(folder.path() / relative)))
            targets.insert(SystemFolders::applications(host) / name);
    }
    return targets;
}

}  // namespace tarvik::PackageAppTargets
