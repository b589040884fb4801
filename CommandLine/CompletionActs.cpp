#include "CommandLine/CompletionActs.h"

#include "Applications/DataPathSize.h"
#include "CommandLine/FoundApps.h"
#include "CommandLine/Grammar/BashLine.h"
#include "CommandLine/Grammar/CompletionPlace.h"
#include "CommandLine/Grammar/Options.h"
#include "CommandLine/Output/Columns.h"
#include "CommandLine/Output/Terminal.h"
#include "Installers/Options/InstallerOptionLoader.h"
#include "MovePlan/DriveChoice.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Platform/Machine/Host.h"
#include "Platform/Storage/DriveScanner.h"
#include "Platform/Text/Text.h"
#include "UninstallRun/UninstallHistory.h"
#include "UninstallRun/UninstallUndo.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace tarvik::CommandLine::CompletionActs {

namespace {

using Kind = CompletionPlace::Kind;
using Candidates = std::vector<Candidate>;

constexpr std::string_view questionMark = "--complete";

struct Question {
    /// Behind the command's name; the last one is being typed.
    std::vector<std::string> words;
    /// The same as bash has it.
    std::optional<BashLine> line;

    const std::string& typed() const { return words.back(); }
};

Question questionIn(const std::vector<std::string>& arguments) {
    Question question;
    if (arguments[1] == "bash") {
        question.line =
            readBashLine(arguments.size() > 2 ? arguments[2] : "", arguments.size() > 3 ? arguments[3] : "");
        question.words.assign(question.line->words.begin() + 1, question.line->words.end());
    } else {
        question.words.assign(arguments.begin() + 2, arguments.end());
    }
    if (question.words.empty()) question.words.emplace_back();
    return question;
}

/// The shell has not read the word yet: a "~" still stands for the home folder.
std::optional<fs::path> pathOf(const std::optional<std::string>& word) {
    const char* home = std::getenv("HOME");
    if (!word || !home || (*word != "~" && !word->starts_with("~/"))) return word;
    return home + word->substr(1);
}

bool looksLikePath(std::string_view word) {
    return !word.empty() && std::string_view("/.~").find(word.front()) != std::string_view::npos;
}

/// Each by the name that tells it from the others, else by its path.
class Names {
public:
    void add(const std::string& name, const fs::path& path, const std::string& note) {
        ++m_counts[name];
        m_items.push_back({name, path, note});
    }
    Candidates candidates() const {
        Candidates found;
        for (const auto& item : m_items)
            found.push_back({m_counts.at(item.name) == 1 ? item.name : item.path.native(), item.note});
        return found;
    }

private:
    struct Item {
        std::string name;
        fs::path path;
        std::string note;
    };
    std::map<std::string, int> m_counts;
    std::vector<Item> m_items;
};

Candidates drivesFor(const Host& host, const CompletionPlace& place) {
    Names names;
    for (const auto& drive : DriveScanner::scan(host))
        if (place.verb == "backup list" || DriveChoice::canBeTarget(drive))
            names.add(drive.name, drive.mountPath, fmt::format("{} free", Text::byteCount(drive.freeBytes)));
    return names.candidates();
}

Candidates applicationsFor(const Host& host, const CompletionPlace& place) {
    Names names;
    for (const auto& entry : findApps(host)) {
        const bool isOffered = (place.verb != "move app" || !entry.isAlreadySymlinked) &&
                               (place.verb != "move restore" || entry.isAlreadySymlinked);
        if (isOffered) names.add(entry.name, entry.bundlePath, DataPathSize{entry.bundlePath}.displayPath(host.home));
    }
    auto candidates = names.candidates();
    const auto& given = place.arguments;
    std::erase_if(candidates, [&](const Candidate& candidate) {
        return std::find(given.begin(), given.end(), candidate.word) != given.end();
    });
    return candidates;
}

/// Of those that are wholly back, nothing can be put back.
bool isWanted(const Host& host, const AppUninstallSession& session, const CompletionPlace& place) {
    if (place.verb != "uninstall undo") return true;
    const auto items = UninstallUndo::look(host, session);
    return std::any_of(items.begin(), items.end(),
                       [](const auto& item) { return item.state != UninstallUndo::Item::State::back; });
}

Candidates uninstallsFor(const Host& machine, const CompletionPlace& place) {
    const Host host = UninstallHistory::knownMachine(machine);
    Candidates found;
    for (const auto& session : UninstallHistory::list(host))
        if (isWanted(host, session, place))
            found.push_back({session.id, fmt::format("{}, {}", session.appName, Text::date(session.createdAt))});
    return found;
}

Candidates installerOptionsFor(const Host& host) {
    Candidates found;
    for (const auto& option : InstallerOptionLoader::loadAll(AppStorageNames::userInstallerOptionsRoot(host)))
        found.push_back({option.id, option.label});
    return found;
}

/// What the machine has of that kind.
Candidates onMachine(const Host& host, const CompletionPlace& place) {
    switch (place.kind) {
        case Kind::drive:
            return drivesFor(host, place);
        case Kind::application:
        case Kind::applicationOrPath:
            return applicationsFor(host, place);
        case Kind::uninstall:
            return uninstallsFor(host, place);
        case Kind::installerOption:
            return installerOptionsFor(host);
        case Kind::words:
        case Kind::path:
        case Kind::folder:
            break;
    }
    return {};
}

Candidates candidatesFor(const CompletionPlace& place) {
    auto candidates = place.candidates;
    if (place.kind == Kind::words || place.kind == Kind::path || place.kind == Kind::folder) return candidates;
    try {
        const auto host = Host::fromOptions(pathOf(place.root), pathOf(place.home));
        host.guideTools();
        const auto found = onMachine(host, place);
        candidates.insert(candidates.end(), found.begin(), found.end());
    } catch (const Failure&) {
        candidates.clear();  // There is no such machine, and so no name on it.
    }
    return candidates;
}

std::string_view kindOf(const CompletionPlace& place, std::string_view typed) {
    switch (place.kind) {
        case Kind::path:
        case Kind::applicationOrPath:
            return "files";
        case Kind::folder:
            return "folders";
        case Kind::application:
            return looksLikePath(typed) ? "files" : "nothing";
        case Kind::drive:
            return looksLikePath(typed) ? "folders" : "nothing";
        case Kind::words:
        case Kind::uninstall:
        case Kind::installerOption:
            break;
    }
    return "nothing";
}

/// Bash takes every word that it is given: those that do not fit are left out here. Case counts only where it decides.
Candidates fitting(const Candidates& candidates, std::string_view typed) {
    const auto thatBegin = [&](const auto& begins) {
        Candidates found;
        std::copy_if(candidates.begin(), candidates.end(), std::back_inserter(found), begins);
        return found;
    };
    auto found = thatBegin([&](const Candidate& candidate) { return candidate.word.starts_with(typed); });
    if (!found.empty()) return found;
    const auto folded = Text::caseFolded(typed);
    return thatBegin([&](const Candidate& candidate) { return Text::caseFolded(candidate.word).starts_with(folded); });
}

}  // namespace

bool isQuestion(const std::vector<std::string>& arguments) {
    return arguments.size() > 1 && arguments.front() == questionMark;
}

void answer(const std::vector<std::string>& arguments) {
    const auto question = questionIn(arguments);
    const auto place = placeIn(describe(), question.words);
    auto candidates = candidatesFor(place);
    std::erase_if(candidates, [](const Candidate& each) { return Columns::oneLine(each.word) != each.word; });
    for (auto& candidate : candidates) candidate.word.insert(0, place.prefix);
    if (question.line) candidates = fitting(candidates, question.typed());

    const auto typed = question.typed().substr(std::min(place.prefix.size(), question.typed().size()));
    auto text = fmt::format("{}\n", kindOf(place, typed));
    for (const auto& candidate : candidates) {
        if (!question.line) {
            const auto note = Columns::oneLine(candidate.note);
            text += fmt::format("{}{}{}\n", candidate.word, note.empty() ? "" : "\t", note);
        } else if (const auto replacement = replacementIn(*question.line, candidate.word)) {
            text += fmt::format("{}\n", *replacement);
        }
    }
    Terminal::writeResult(text);
}

}  // namespace tarvik::CommandLine::CompletionActs
