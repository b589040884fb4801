#include "State/Symlinks/SymlinkRow.h"

#include "Platform/Text/Text.h"
#include "State/Lists/FilePath.h"
#include "State/Lists/ScreenText.h"

namespace tarvik::SymlinkRow {

std::vector<Role<SymlinkEntry>> roles() {
    return {
        {"location", [](const SymlinkEntry& link) { return QVariant::fromValue(FilePath(link.location)); }},
        {"locationText", [](const SymlinkEntry& link) -> QVariant { return screenPath(link.location); }},
        {"targetText", [](const SymlinkEntry& link) -> QVariant { return screenPath(link.target); }},
        {"isValid", [](const SymlinkEntry& link) -> QVariant { return link.isValid; }},
        {"sizeText", [](const SymlinkEntry& link) -> QVariant { return screenText(Text::byteCount(link.targetSize)); }},
    };
}

std::string key(const SymlinkEntry& link) {
    return link.id;
}

}  // namespace tarvik::SymlinkRow
