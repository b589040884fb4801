#pragma once

#include "Platform/Basics/Path.h"
#include "Platform/Files/AccessList.h"

#include <cstdint>
#include <string>

/// The commands by which a user lifts what keeps an item where it is, as they are typed into a shell. Pure, but for
/// `forThisSystem`, which is each system's choice of the two.
namespace tarvik::UnlockCommand {

/// The command of this system for the locks among `flags` (`FileFlags`), which hold at least one.
std::string forThisSystem(std::uint32_t flags, const fs::path& item);
/// The Mac's: chflags(1). What only the administrator can lift needs sudo(8).
std::string byChflags(std::uint32_t flags, const fs::path& item);
/// Linux's: chattr(1).
std::string byChattr(std::uint32_t flags, const fs::path& item);

/// Lifts an entry of an access control list, such as the one that a Mac gives the folders of a home: chmod(1).
std::string ofDenial(const AccessList::Culprit& entry);
/// Lifts nothing, but shows the lists of an item and of the folder that holds it: ls(1) of macOS.
std::string showingLists(const fs::path& item);
/// Makes what belongs to the administrator the user's own: chown(8).
std::string ofOwner(const fs::path& item);

}  // namespace tarvik::UnlockCommand
