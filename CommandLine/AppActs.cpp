#include "CommandLine/AppActs.h"

#include "CommandLine/AppTexts.h"
#include "CommandLine/FoundApps.h"
#include "CommandLine/Output/Terminal.h"
#include "Platform/Bundles/CodesignMetadata.h"
#include "Platform/Files/Files.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace tarvik::CommandLine::AppActs {

namespace {

/// Where a tool is missing its silence would be read as an answer, and of a bundle that is not there nothing is known.
AppTexts::Vouchers vouchersOf(const Host& host, const fs::path& bundle) {
    AppTexts::Vouchers vouchers;
    if (!Files::exists(bundle)) return vouchers;
    if (Files::exists(host.tools.codesign)) vouchers.signedBy = CodesignMetadata::teamName(host, bundle);
    if (Files::exists(host.tools.spctl)) vouchers.notarization = CodesignMetadata::notarizationStatus(host, bundle);
    if (vouchers.notarization == "Unknown") vouchers.notarization.reset();
    return vouchers;
}

/// One table: a line for each data path, with the facts of the application before it.
std::string tsvOf(const Record& facts, std::vector<Record> data) {
    if (data.empty())
        data.push_back({{"category", std::string()}, {"bytes", std::string()}, {"dataPath", std::string()}});
    std::vector<Record> lines;
    for (const auto& path : data) {
        auto line = facts;
        line.insert(line.end(), path.begin(), path.end());
        lines.push_back(std::move(line));
    }
    return tsv(namesOf(lines.front()), lines);
}

}  // namespace

void list(const Host& host, Format format) {
    auto apps = inspected(host, findApps(host), format);
    std::stable_sort(apps.begin(), apps.end(), [](const FoundApp& left, const FoundApp& right) {
        return left.entry.totalSize() > right.entry.totalSize();
    });
    if (format == Format::human) {
        if (apps.empty()) return Terminal::say("No applications were found.");
        return Terminal::writeResult(AppTexts::table(apps));
    }
    std::vector<Record> records;
    records.reserve(apps.size());
    for (const auto& app : apps) records.push_back(AppTexts::recordOf(app));
    if (format == Format::toml) return Terminal::writeResult(toml("apps", records));
    Terminal::writeResult(tsv(namesOf(AppTexts::recordOf({})), records));
}

void show(const Host& host, const std::string& name, Format format) {
    const auto entries = findApps(host);
    const auto app = inspected(host, {chosenApp(entries, name, Options::Verb::apps)}, format).front();
    const auto vouchers = vouchersOf(host, app.entry.bundlePath);
    if (format == Format::human) return Terminal::writeResult(AppTexts::portrait(app, vouchers, host.home));
    const auto facts = AppTexts::recordOf(app, vouchers);
    const auto data = AppTexts::dataRecordsOf(app.entry);
    Terminal::writeResult(format == Format::tsv ? tsvOf(facts, data) : toml(facts) + "\n" + toml("data", data));
}

}  // namespace tarvik::CommandLine::AppActs
