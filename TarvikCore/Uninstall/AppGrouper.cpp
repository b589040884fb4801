#include "Uninstall/AppGrouper.h"

#include "Platform/Text/Text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace tarvik {

namespace {

/// Second pieces that stand for no vendor, or for the system's own.
constexpr std::array<std::string_view, 5> suppressedVendors = {"apple", "com", "org", "io", "net"};

/// Vendors who write their name in their own way, by the second piece in lower case.
constexpr std::pair<std::string_view, std::string_view> vendorNames[] = {
    {"openai", "OpenAI"}, {"github", "GitHub"},       {"googlecode", "Google"},
    {"google", "Google"}, {"microsoft", "Microsoft"}, {"apple", "Apple"},
    {"ai", "AI"},         {"todesktop", "ToDesktop"},
};

/// The pieces between the dots, empty ones left out.
std::vector<std::string_view> piecesOf(std::string_view text) {
    std::vector<std::string_view> pieces;
    while (!text.empty()) {
        const std::string_view piece = text.substr(0, text.find('.'));
        if (!piece.empty()) pieces.push_back(piece);
        text.remove_prefix(std::min(piece.size() + 1, text.size()));
    }
    return pieces;
}

std::string keyOf(const AppRecord& record) {
    if (!record.bundleIdentifier) return "path:" + record.bundlePath.native();
    const auto pieces = piecesOf(*record.bundleIdentifier);
    if (pieces.size() < 2) return *record.bundleIdentifier;
    return std::string(pieces[0]) + "." + std::string(pieces[1]);
}

/// The piece of a key that names the vendor.
std::optional<std::string_view> vendorPieceOf(std::string_view key) {
    const auto pieces = piecesOf(key);
    if (pieces.size() < 2) return std::nullopt;
    return pieces[1];
}

bool canJoinAGroup(std::string_view key) {
    const auto vendor = vendorPieceOf(key);
    if (!vendor) return false;
    const auto* const end = suppressedVendors.end();
    return std::find(suppressedVendors.begin(), end, Text::caseFolded(*vendor)) == end;
}

std::optional<std::string> vendorName(std::string_view key) {
    const auto piece = vendorPieceOf(key);
    if (!piece) return std::nullopt;
    const std::string folded = Text::caseFolded(*piece);
    for (const auto& [vendor, name] : vendorNames)
        if (folded == vendor) return std::string(name);
    return Text::upperCased(Text::firstCharacters(*piece, 1)) + Text::droppingCharacters(*piece, 1);
}

std::string labelOf(const std::string& key, const std::optional<std::string>& developer) {
    std::string name = key;
    if (const auto vendor = vendorName(key)) {
        name = *vendor;
    } else if (developer && !developer->empty()) {
        name = *developer;
    }
    return name + " Group";
}

std::optional<std::string> developerOf(const std::vector<AppRecord>& records) {
    for (const AppRecord& record : records)
        if (record.developer) return record.developer;
    return std::nullopt;
}

struct Vendor {
    std::string key;
    std::vector<AppRecord> apps;
};

/// By key, in the order in which the keys first appear.
std::vector<Vendor> vendorsOf(const std::vector<AppRecord>& records) {
    std::vector<Vendor> vendors;
    std::unordered_map<std::string, std::size_t> places;
    for (const AppRecord& record : records) {
        if (record.kind == AppRecordKind::systemRisky) continue;
        std::string key = keyOf(record);
        if (!canJoinAGroup(key)) continue;
        const auto [place, isNew] = places.try_emplace(key, vendors.size());
        if (isNew) vendors.push_back({std::move(key), {}});
        vendors[place->second].apps.push_back(record);
    }
    return vendors;
}

}  // namespace

std::vector<UninstallGroup> AppGrouper::group(const std::vector<AppRecord>& records) {
    std::vector<UninstallGroup> groups;
    for (Vendor& vendor : vendorsOf(records)) {
        if (vendor.apps.size() < 2) continue;
        auto developer = developerOf(vendor.apps);
        auto label = labelOf(vendor.key, developer);
        groups.push_back({std::move(vendor.key), std::move(label), std::move(developer), std::move(vendor.apps)});
    }
    std::stable_sort(groups.begin(), groups.end(), [](const UninstallGroup& left, const UninstallGroup& right) {
        return Text::localizedCompare(left.label, right.label) < 0;
    });
    return groups;
}

std::vector<AppRecord> AppGrouper::ungrouped(const std::vector<AppRecord>& records) {
    std::unordered_set<std::string> members;
    for (const UninstallGroup& group : group(records))
        for (const AppRecord& record : group.apps) members.insert(record.id);

    std::vector<AppRecord> rest;
    for (const AppRecord& record : records)
        if (!members.contains(record.id)) rest.push_back(record);
    return rest;
}

}  // namespace tarvik
