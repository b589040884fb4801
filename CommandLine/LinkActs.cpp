#include "CommandLine/LinkActs.h"

#include "Applications/DataPathSize.h"
#include "CommandLine/FoundApps.h"
#include "CommandLine/Output/Columns.h"
#include "CommandLine/Output/Terminal.h"
#include "Discovery/SymlinkScanner.h"
#include "Platform/Storage/SizeCalculator.h"

#include <cstddef>
#include <string>
#include <vector>

namespace tarvik::CommandLine::LinkActs {

namespace {

std::string stateOf(const SymlinkEntry& link) {
    return link.isValid ? "ok" : "broken";
}

Record recordOf(const SymlinkEntry& link) {
    return {{"link", link.location.native()},
            {"target", link.target.native()},
            {"bytes", link.targetSize},
            {"state", stateOf(link)}};
}

std::string tableOf(const std::vector<SymlinkEntry>& links, const fs::path& home) {
    using Columns::Align;
    const auto text = [&](const fs::path& path) { return Columns::oneLine(DataPathSize{path}.displayPath(home)); };
    std::vector<std::vector<std::string>> rows;
    rows.reserve(links.size());
    for (const auto& link : links)
        rows.push_back({stateOf(link), link.isValid ? SizeCalculator::format(link.targetSize) : std::string(),
                        text(link.location), text(link.target)});
    return Columns::table({{"State"}, {"Size", Align::right}, {"Link"}, {"Leads to"}}, rows);
}

}  // namespace

void list(const Host& host, Format format) {
    auto links = SymlinkScanner::links(SymlinkScanner::defaultRoots(host));
    measureEach(links.size(), "links", format, [&](std::size_t index) {
        auto& link = links[index];
        if (link.isValid) link.targetSize = SizeCalculator::size(host, link.target);
    });
    if (format == Format::human) {
        if (links.empty()) return Terminal::say("No links were found where things are moved from.");
        return Terminal::writeResult(tableOf(links, host.home));
    }
    std::vector<Record> records;
    records.reserve(links.size());
    for (const auto& link : links) records.push_back(recordOf(link));
    if (format == Format::toml) return Terminal::writeResult(toml("links", records));
    Terminal::writeResult(tsv(namesOf(recordOf({})), records));
}

}  // namespace tarvik::CommandLine::LinkActs
