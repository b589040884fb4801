#include "CommandLine/InstallTexts.h"

#include "CommandLine/Output/Columns.h"
#include "Installers/Opening/ZipFolder.h"
#include "Platform/Text/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

namespace tarvik::CommandLine::InstallTexts {

namespace {

using Columns::Align;

constexpr std::size_t widestLabel = 40;

std::string_view nameOf(InstallerKind kind) {
    switch (kind) {
        case InstallerKind::app:
            return "application";
        case InstallerKind::dmg:
            return "disk image";
        case InstallerKind::zip:
            return "zip archive";
        case InstallerKind::pkg:
            return "package";
        case InstallerKind::mpkg:
            return "meta package";
        case InstallerKind::script:
            return "script";
        case InstallerKind::unknown:
            break;
    }
    return "unknown";
}

std::string yesOrNo(bool is) {
    return is ? "yes" : "no";
}

/// Where the item is: its path, or of what was unpacked its path in the archive.
std::string placeOf(const InstallableItem& item, const fs::path& temporary) {
    const fs::path unpacked = item.path.lexically_relative(temporary);
    const bool isUnpacked = !unpacked.empty() && ZipFolder::isName(unpacked.begin()->native());
    return Columns::oneLine((isUnpacked ? unpacked.lexically_relative(*unpacked.begin()) : item.path).native());
}

std::string warningsOf(const std::vector<std::string>& warnings) {
    std::string text = warnings.empty() ? "" : "\n";
    for (const std::string& warning : warnings) text += fmt::format("! {}\n", Columns::oneLine(warning));
    return text;
}

/// What a step of a plan does, by its tag; its fields follow behind a colon.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> stepNames = {
    {{"snapshot-before", "Note what is there"},
     {"install-pkg", "Install the package"},
     {"snapshot-after", "Note what is there now"},
     {"receipt-diff", "Compare the receipts"},
     {"externalize-safe-new-apps",
      "Move new applications that can safely be moved to the drive, if the option says so"},
     {"copy-app", "Copy the application"},
     {"launcher-app", "Make a launcher"},
     {"inspect-contained", "Look at what it is"}}};

std::string stepOf(const std::string& action) {
    const auto tab = action.find('\t');
    const std::string_view tag = std::string_view(action).substr(0, tab);
    std::string text(tag);
    for (const auto& [known, name] : stepNames)
        if (known == tag) text = name;
    if (tab != action.npos) text += ": " + Text::replacing(std::string_view(action).substr(tab + 1), "\t", " → ");
    return Columns::oneLine(text);
}

}  // namespace

std::string inspection(const InstallerInspection& inspection, const fs::path& temporary) {
    const TrustSummary& trust = inspection.trust;
    const std::array<std::pair<std::string_view, std::string>, 4> facts = {
        {{"Kind", std::string(nameOf(inspection.kind))},
         {"Trust", Columns::oneLine(trust.status)},
         {"Install scripts", yesOrNo(trust.hasScripts)},
         {"Places of the system", yesOrNo(trust.hasPrivilegedPayload)}}};
    std::string text = Columns::oneLine(inspection.sourcePath.native()) + "\n";
    for (const auto& [name, value] : facts) text += fmt::format("{:<22} {}\n", fmt::format("{}:", name), value);
    std::vector<std::vector<std::string>> rows;
    for (const InstallableItem& item : inspection.items)
        rows.push_back({Text::byteCount(item.sizeBytes), std::string(nameOf(item.kind)), placeOf(item, temporary)});
    if (!rows.empty()) text += "\n" + Columns::table({{"Size", Align::right}, {"Kind"}, {"What it holds"}}, rows);
    text += warningsOf(inspection.warnings);
    if (!trust.details.empty()) text += "\nWhat is known of its trust:\n";
    for (const std::string& line : trust.details) text += fmt::format("  {}\n", Columns::oneLine(line));
    return text;
}

std::string options(const std::vector<InstallerOption>& options) {
    std::vector<std::vector<std::string>> rows;
    for (const InstallerOption& option : options) {
        std::vector<std::string_view> kinds;
        for (const InstallerKind kind : option.sourceKinds) kinds.push_back(textOf(kind));
        rows.push_back({Columns::oneLine(option.id), Columns::cut(Columns::oneLine(option.label), widestLabel),
                        fmt::format("{}", fmt::join(kinds, ", ")), yesOrNo(option.allowUntrustedPackages),
                        yesOrNo(option.allowUntrustedScripts), yesOrNo(option.relocateSafeApps)});
    }
    return Columns::table(
        {{"ID"}, {"Label"}, {"Meant for"}, {"Untrusted packages"}, {"Scripts"}, {"Moves new applications"}}, rows);
}

std::string plan(const InstallerPlan& plan, const InstallerOption& option, const DriveInfo& drive) {
    std::string text = Columns::oneLine(fmt::format("{}, with the option \"{}\", to {}", plan.sourcePath.native(),
                                                    option.label, drive.name)) +
                       "\n";
    if (!plan.actions.empty()) text += "\n";
    std::size_t number = 0;
    for (const std::string& action : plan.actions) text += fmt::format("{:>3}. {}\n", ++number, stepOf(action));
    text += warningsOf(plan.warnings);
    if (plan.actions.empty()) return text + "\nThere is nothing to install.\n";
    const auto space = fmt::format("It takes {}; {} are free on {}.", Text::byteCount(plan.neededBytes),
                                   Text::byteCount(drive.freeBytes), drive.name);
    return text + "\n" + Columns::oneLine(space) + "\n";
}

}  // namespace tarvik::CommandLine::InstallTexts
