#pragma once

#include "Platform/Basics/Dialog.h"
#include "Platform/Basics/Path.h"
#include "Platform/Machine/Host.h"

#include <cstdint>
#include <string>
#include <vector>

/// Moves files of an application's data to the Trash, on the user's word.
namespace tarvik::DataTrash {

/// Whether the item is a link to a drive, such as a move leaves. It belongs to what is there, and that comes back by a
/// move back: the link alone is not thrown away. Looks at the disk.
bool isLinkToDrive(const Host& host, const fs::path& item);

/// The question before it: how much goes, and of which application.
Dialog confirm(const std::string& appName, std::int64_t count, std::int64_t bytes);

struct Outcome {
    std::int64_t movedCount = 0;
    /// Why an item stayed, one text for each that did.
    std::vector<std::string> failures;

    bool operator==(const Outcome&) const = default;
};

/// Moves each item to the Trash, one by one; a failure does not stop the rest. What lies in another one of the items
/// goes with that one, and an item that is named in two ways goes once. An item stays that is neither at nor below one
/// of `dataPaths`, that is reached only through a link below one of them, or that is a link to a drive. Blocks; any
/// thread; never fails.
Outcome moveToTrash(const Host& host, const std::vector<fs::path>& dataPaths, const std::vector<fs::path>& items);

/// The sentences for the user at the end; empty where there is nothing to tell.
std::string movedText(const Outcome& outcome);
std::string failureText(const Outcome& outcome);

}  // namespace tarvik::DataTrash
