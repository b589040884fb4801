#include "Platform/Files/AccessList.h"

#include <uuid/uuid.h>

#include <cstring>
#include <membership.h>
#include <memory>
#include <sys/acl.h>
#include <type_traits>

namespace tarvik::AccessList {

namespace {

struct Release {
    void operator()(void* item) const { ::acl_free(item); }
};

/// The group "everyone" of the system's own directory.
constexpr gid_t everyone = 12;

bool isForEveryone(acl_entry_t entry) {
    const std::unique_ptr<void, Release> who(::acl_get_qualifier(entry));
    uuid_t all{};
    return who && ::mbr_gid_to_uuid(everyone, all) == 0 && std::memcmp(who.get(), all, sizeof all) == 0;
}

bool isInherited(acl_entry_t entry) {
    acl_flagset_t flags = nullptr;
    return ::acl_get_flagset_np(entry, &flags) == 0 && ::acl_get_flag_np(flags, ACL_ENTRY_INHERITED) == 1;
}

}  // namespace

std::vector<Denial> denialsAt(const fs::path& item) {
    const std::unique_ptr<std::remove_pointer_t<acl_t>, Release> list(
        ::acl_get_link_np(item.c_str(), ACL_TYPE_EXTENDED));
    std::vector<Denial> denials;
    if (!list) return denials;
    acl_entry_t entry = nullptr;
    // acl_get_entry(3) of macOS gives 0 for an entry, and -1 behind the last one.
    for (int which = ACL_FIRST_ENTRY; ::acl_get_entry(list.get(), which, &entry) == 0; which = ACL_NEXT_ENTRY) {
        acl_tag_t tag = ACL_UNDEFINED_TAG;
        acl_permset_t rights = nullptr;
        if (::acl_get_tag_type(entry, &tag) != 0 || tag != ACL_EXTENDED_DENY) continue;
        if (::acl_get_permset(entry, &rights) != 0) continue;
        const Denial denial{.isForEveryone = isForEveryone(entry),
                            .isInherited = isInherited(entry),
                            .coversItem = ::acl_get_perm_np(rights, ACL_DELETE) == 1,
                            .coversContents = ::acl_get_perm_np(rights, ACL_DELETE_CHILD) == 1};
        if (denial.coversItem || denial.coversContents) denials.push_back(denial);
    }
    return denials;
}

}  // namespace tarvik::AccessList
