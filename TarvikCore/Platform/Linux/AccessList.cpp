#include "Platform/Files/AccessList.h"

std::vector<tarvik::AccessList::Denial> tarvik::AccessList::denialsAt(const fs::path&) {
    return {};
}
