#include "Platform/Files/UnlockCommand.h"

std::string tarvik::UnlockCommand::forThisSystem(std::uint32_t flags, const fs::path& item) {
    return byChflags(flags, item);
}
