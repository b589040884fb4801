#include "State/Folders/QuickPick.h"

#include "Platform/Files/Files.h"
#include "Platform/Storage/SizeCalculator.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/ScreenText.h"

#include <array>
#include <utility>

namespace tarvik {

std::vector<QuickPick> QuickPick::suggestions(const Host& host) {
    static constexpr std::array<std::pair<const char*, const char*>, 4> candidates = {{
        {"Logic Pro Library", "Music/Logic Pro Library.bundle"},
        {"Claude data", "Library/Application Support/Claude"},
        {"Downloads", "Downloads"},
        {"Xcode DerivedData", "Library/Developer/Xcode/DerivedData"},
    }};
    std::vector<QuickPick> picks;
    for (const auto& [label, relative] : candidates) {
        const fs::path path = host.home / relative;
        if (Files::exists(path)) picks.push_back({label, path, std::string("~/") + relative});
    }
    return picks;
}

std::vector<Role<QuickPick>> QuickPick::roles() {
    return {
        {"label", [](const QuickPick& pick) -> QVariant { return screenText(pick.label); }},
        {"path", [](const QuickPick& pick) { return QVariant::fromValue(FilePath(pick.path)); }},
        {"sizeText",
         [](const QuickPick& pick) -> QVariant {
             return pick.bytes ? screenText(SizeCalculator::format(*pick.bytes)) : QString();
         }},
        {"pathText", [](const QuickPick& pick) -> QVariant { return screenText(pick.pathText); }},
    };
}

}  // namespace tarvik
