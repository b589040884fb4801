#include "hdiutil/Attachment.h"

#include <fmt/format.h>

namespace tarvik::hdiutil::AttachmentRecord {

namespace {

PropertyList::Dictionary answerOf(const Entity& entity) {
    PropertyList::Dictionary answer = {
        {"content-hint", entity.content},
        {"dev-entry", entity.device},
        {"potentially-mountable", !entity.kind.empty()},
        {"unmapped-content-hint", entity.unmapped},
    };
    if (!entity.kind.empty()) answer.emplace("volume-kind", entity.kind);
    if (!entity.mountPoint.empty()) answer.emplace("mount-point", entity.mountPoint);
    return answer;
}

Entity entityOf(const PropertyList& list) {
    const PropertyList* inode = list.find("inode");
    const std::int64_t* number = inode ? inode->as<std::int64_t>() : nullptr;
    return {.device = list.text("dev-entry").value_or(""),
            .content = list.text("content-hint").value_or(""),
            .unmapped = list.text("unmapped-content-hint").value_or(""),
            .kind = list.text("volume-kind").value_or(""),
            .mountPoint = list.text("mount-point").value_or(""),
            .inode = number ? *number : 0};
}

}  // namespace

std::string identityOf(const struct stat& status) {
    return fmt::format("{}:{}:{}:{}", status.st_dev, status.st_ino, status.st_size, status.st_mtime);
}

PropertyList kept(const Attachment& attachment) {
    PropertyList::List entities;
    for (const Entity& entity : attachment.entities) {
        PropertyList::Dictionary one = answerOf(entity);
        one.emplace("inode", entity.inode);
        entities.emplace_back(std::move(one));
    }
    return PropertyList::Dictionary{
        {"image", attachment.image}, {"identity", attachment.identity}, {"system-entities", std::move(entities)}};
}

Attachment read(const PropertyList& list) {
    Attachment attachment{list.text("image").value_or(""), list.text("identity").value_or(""), {}};
    const PropertyList* entities = list.find("system-entities");
    if (const auto* all = entities ? entities->as<PropertyList::List>() : nullptr)
        for (const PropertyList& each : *all) attachment.entities.push_back(entityOf(each));
    return attachment;
}

std::string answer(const Attachment& attachment) {
    PropertyList::List entities;
    for (const Entity& entity : attachment.entities) entities.emplace_back(answerOf(entity));
    return PropertyList(PropertyList::Dictionary{{"system-entities", std::move(entities)}}).xml();
}

std::string lines(const Attachment& attachment) {
    std::string text;
    for (const Entity& entity : attachment.entities)
        text += fmt::format("{:<20}\t{:<31}\t{}\n", entity.device, entity.content, entity.mountPoint);
    return text;
}

}  // namespace tarvik::hdiutil::AttachmentRecord
