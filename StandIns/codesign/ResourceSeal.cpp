#include "codesign/ResourceSeal.h"

#include "Platform/Text/PropertyList.h"
#include "Signatures/Digest.h"
#include "codesign/ResourceRules.h"

namespace tarvik::codesign {

namespace {

constexpr std::size_t sha1Size = 20;
constexpr std::size_t sha256Size = 32;
constexpr std::size_t codeHashSize = 20;

PropertyList valueOf(const SealedItem& item) {
    PropertyList::Dictionary value;
    if (item.link) value["symlink"] = *item.link;
    if (item.sha1) value["hash"] = PropertyList::Data{*item.sha1};
    if (item.sha256) value["hash2"] = PropertyList::Data{*item.sha256};
    if (item.codeHash) {
        value["cdhash"] = PropertyList::Data{*item.codeHash};
        value["requirement"] = "cdhash H\"" + signatures::Digest::hexadecimal(*item.codeHash) + "\"";
    }
    if (item.isOptional) value["optional"] = true;
    return value;
}

/// In the seals of old a digest alone stands for itself.
PropertyList oldValueOf(const SealedItem& item) {
    if (!item.isOptional) return PropertyList::Data{item.sha1.value_or("")};
    return PropertyList::Dictionary{{"hash", PropertyList::Data{item.sha1.value_or("")}}, {"optional", true}};
}

/// The data under a key: nothing when there is no such key. @throws ResourceSeal::Flaw when it is no such data
std::optional<std::string> dataAt(const PropertyList& item, std::string_view key, std::size_t size) {
    const PropertyList* value = item.find(key);
    if (!value) return std::nullopt;
    const auto* data = value->as<PropertyList::Data>();
    if (!data || data->bytes.size() != size) throw ResourceSeal::Flaw::unreadable;
    return data->bytes;
}

SealedItem itemOf(const PropertyList& value) {
    SealedItem item;
    if (const auto* data = value.as<PropertyList::Data>()) {
        if (data->bytes.size() != sha1Size) throw ResourceSeal::Flaw::unreadable;
        item.sha1 = data->bytes;
        return item;
    }
    if (!value.as<PropertyList::Dictionary>()) throw ResourceSeal::Flaw::unreadable;
    item.sha1 = dataAt(value, "hash", sha1Size);
    item.sha256 = dataAt(value, "hash2", sha256Size);
    item.codeHash = dataAt(value, "cdhash", codeHashSize);
    if (const PropertyList* link = value.find("symlink")) {
        const auto* text = link->as<std::string>();
        if (!text) throw ResourceSeal::Flaw::unreadable;
        item.link = *text;
    }
    if (const PropertyList* optional = value.find("optional")) {
        const auto* flag = optional->as<bool>();
        if (!flag) throw ResourceSeal::Flaw::unreadable;
        item.isOptional = *flag;
    }
    return item;
}

ResourceSeal::Items itemsOf(const PropertyList& seal, const char* key) {
    const PropertyList* list = seal.find(key);
    const auto* values = list ? list->as<PropertyList::Dictionary>() : nullptr;
    if (!values) throw ResourceSeal::Flaw::unreadable;
    ResourceSeal::Items items;
    for (const auto& [path, value] : *values) items.emplace(path, itemOf(value));
    return items;
}

}  // namespace

std::string ResourceSeal::xml() const {
    PropertyList::Dictionary files;
    for (const auto& [path, item] : oldItems) files[path] = oldValueOf(item);
    PropertyList::Dictionary files2;
    for (const auto& [path, item] : items) files2[path] = valueOf(item);
    return PropertyList(PropertyList::Dictionary{{"files", std::move(files)},
                                                 {"files2", std::move(files2)},
                                                 {"rules", ResourceRules::ofOldSeals().propertyList()},
                                                 {"rules2", ResourceRules::standard().propertyList()}})
        .xml();
}

ResourceSeal ResourceSeal::parsed(std::string_view bytes) {
    const auto seal = PropertyList::parsed(bytes);
    if (!seal || !seal->as<PropertyList::Dictionary>()) throw Flaw::unreadable;
    const PropertyList* rules = seal->find("rules2");
    if (!rules || !seal->find("files2")) throw Flaw::tooOld;
    // Other rules could leave anything out of the seal.
    if (*rules != ResourceRules::standard().propertyList()) throw Flaw::otherRules;
    ResourceSeal result{.items = itemsOf(*seal, "files2"), .oldItems = itemsOf(*seal, "files")};
    for (const auto& [path, item] : result.items)
        if (int(item.sha256.has_value()) + int(item.link.has_value()) + int(item.codeHash.has_value()) != 1)
            throw Flaw::unreadable;
    return result;
}

}  // namespace tarvik::codesign
