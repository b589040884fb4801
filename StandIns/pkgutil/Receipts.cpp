#include "pkgutil/Receipts.h"

#include "Platform/Files/Files.h"
#include "Platform/Text/PropertyList.h"

#include <algorithm>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tarvik::pkgutil::Receipts {

namespace {

/// The folder of the receipts, or nothing where the machine has none of its own: a link must not lead to another's.
std::optional<fs::path> folderOf(const std::optional<fs::path>& root) {
    const auto machine = root ? Files::resolved(*root) : std::nullopt;
    if (!machine || *machine == "/") return std::nullopt;
    auto folder = Files::resolved(*machine / "private/var/db/receipts");
    if (!folder || !Files::isAtOrBelow(*folder, *machine)) return std::nullopt;
    return folder;
}

/// In bytes.
constexpr std::int64_t largestBill = 64'000'000;

std::string contentOfBill(const fs::path& bill) {
    try {
        return Files::read(bill, largestBill);
    } catch (const FileError&) {
        return {};
    }
}

}  // namespace

std::vector<Receipt> of(const std::optional<fs::path>& root) {
    std::vector<Receipt> receipts;
    const auto folder = folderOf(root);
    if (!folder) return receipts;
    for (const std::string& name : Files::names(*folder)) {
        const fs::path list = *folder / name;
        if (list.extension() != ".plist") continue;
        auto identifier = PropertyList::dictionaryAt(list).text("PackageIdentifier");
        if (!identifier || identifier->empty()) continue;
        receipts.push_back({std::move(*identifier), list, fs::path(list).replace_extension(".bom")});
    }
    return receipts;
}

std::vector<std::string> paths(const Receipt& receipt) {
    const std::string bill = contentOfBill(receipt.bill);
    std::vector<std::string> paths;
    std::string_view rest = bill;
    while (!rest.empty()) {
        std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        if (line.starts_with("./")) line.remove_prefix(2);
        if (!line.empty() && line != ".") paths.emplace_back(line);
    }
    return paths;
}

std::vector<Refusal> forget(const Receipt& receipt) {
    std::vector<Refusal> refusals;
    for (const fs::path& file : {receipt.bill, receipt.list})
        if (::unlink(file.c_str()) != 0) refusals.push_back({file, errno});
    return refusals;
}

}  // namespace tarvik::pkgutil::Receipts
