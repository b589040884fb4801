#include "CommandLine/InstallActs.h"

#include "CommandLine/DriveActs.h"
#include "CommandLine/InstallTexts.h"
#include "CommandLine/Output/ProgressDisplay.h"
#include "CommandLine/Output/Records.h"
#include "CommandLine/Output/Terminal.h"
#include "CommandLine/Signals.h"
#include "Installers/Inspection/InstallerInspector.h"
#include "Installers/Options/InstallerOptionCheck.h"
#include "Installers/Options/InstallerOptionLoader.h"
#include "Installers/Planning/InstallerPlanner.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"
#include "Platform/Files/WrittenPath.h"
#include "Platform/Machine/AppStorageNames.h"
#include "Reports/TOMLFormatter.h"
#include "Reports/TSVFormatter.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace tarvik::CommandLine::InstallActs {

namespace {

[[noreturn]] void refuse(std::string sentence) {
    throw Failure("CommandLine", 1, std::move(sentence));
}

/// The source that was written, which must be there.
fs::path sourceOf(const Options& options) {
    fs::path source = WrittenPath::meant(options.path);
    if (!Files::itemExists(source)) refuse(fmt::format("Nothing stands at {}.", source.native()));
    if (!Files::exists(source)) refuse(fmt::format("The link {} leads nowhere.", source.native()));
    return source;
}

/// Looks at a source. A signal ends the command only when what was mounted or unpacked for the look is cleared away.
template <typename Look>
auto looked(const fs::path& source, Format format, Look look) {
    ProgressDisplay display(ProgressDisplay::outputForQuestion(format), source.filename());
    display.step("looking into");
    const SignalGuard guard;
    auto seen = look();
    if (SignalGuard::isAskedToEnd()) refuse("Stopped: the command was asked to end.");
    return seen;
}

std::vector<InstallerOption> allOptions(const Host& host) {
    return InstallerOptionLoader::loadAll(AppStorageNames::userInstallerOptionsRoot(host));
}

InstallerOption chosenOption(const Host& host, const Options& options) {
    const auto all = allOptions(host);
    if (all.empty()) refuse("There are no options for installers.");
    const auto wanted = std::find_if(all.begin(), all.end(),
                                     [&](const InstallerOption& option) { return option.id == options.option; });
    if (options.option.empty()) return all.front();
    if (wanted == all.end())
        throw WrongUse(fmt::format("There is no option \"{}\". \"tarvik install options\" shows all.", options.option),
                       std::string(usageOf(options.verb)));
    return *wanted;
}

Record recordOf(const InstallerOption& option) {
    std::vector<std::string> kinds;
    for (const InstallerKind kind : option.sourceKinds) kinds.emplace_back(textOf(kind));
    return {{"id", option.id},
            {"label", option.label},
            {"strategy", option.strategy},
            {"sourceKinds", kinds},
            {"allowUntrustedPackages", option.allowUntrustedPackages},
            {"allowUntrustedScripts", option.allowUntrustedScripts},
            {"externalRootName", option.externalRootName},
            {"applicationLinkRoot", option.applicationLinkRoot.native()},
            {"track", option.track},
            {"relocateSafeApps", option.relocateSafeApps}};
}

/// Says of each option that cannot be used why.
void sayWhatIsRefused(const std::vector<InstallerOption>& all) {
    for (const InstallerOption& option : all) {
        try {
            InstallerOptionCheck::requireSafe(option);
        } catch (const Failure& failure) {
            Terminal::say(failure.description());
        }
    }
}

}  // namespace

void inspect(const Host& host, const Options& options) {
    const fs::path source = sourceOf(options);
    const InstallerInspection inspection =
        looked(source, options.format, [&] { return InstallerInspector::inspect(host, source); });
    Terminal::writeResult(options.format == Format::human ? InstallTexts::inspection(inspection, host.temporary)
                          : options.format == Format::tsv ? TSVFormatter::inspection(inspection)
                                                          : TOMLFormatter::inspection(inspection));
}

void list(const Host& host, Format format) {
    const auto all = allOptions(host);
    if (format == Format::human && all.empty()) return Terminal::say("There are no options for installers.");
    std::vector<Record> records;
    records.reserve(all.size());
    for (const InstallerOption& option : all) records.push_back(recordOf(option));
    Terminal::writeResult(format == Format::human ? InstallTexts::options(all)
                          : format == Format::tsv ? TSVFormatter::options(all)
                                                  : toml("options", records));
    sayWhatIsRefused(all);
}

void plan(const Host& host, const Options& options) {
    const DriveInfo drive = DriveActs::chosen(host, options.drive, options.verb);
    const InstallerOption option = chosenOption(host, options);
    InstallerOptionCheck::requireSafe(option);
    const fs::path source = sourceOf(options);
    const InstallerPlan plan =
        looked(source, options.format, [&] { return InstallerPlanner::plan(host, source, option, drive.mountPath); });
    Terminal::writeResult(options.format == Format::human ? InstallTexts::plan(plan, option, drive)
                          : options.format == Format::tsv ? TSVFormatter::plan(plan)
                                                          : TOMLFormatter::plan(plan));
    if (options.format == Format::human) Terminal::writeLine("Nothing was changed.");
}

}  // namespace tarvik::CommandLine::InstallActs
