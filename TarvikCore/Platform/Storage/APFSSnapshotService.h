#pragma once

#include "Platform/Machine/Host.h"

#include <chrono>
#include <cstdio>  // Some systems define the names of the standard streams as macros: every user must see the same.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Snapshots of the disk that the system keeps locally, where it has such a facility. A snapshot is taken of the
/// running system's own disk, never of a host in a folder. Nothing here fails. The functions with a host run the
/// system's tool without a time limit, so they block; any thread.
namespace tarvik::APFSSnapshotService {

struct Snapshot {
    std::string name;
    /// When it was taken; nothing where the name does not tell.
    std::optional<std::chrono::system_clock::time_point> createdAt;

    bool operator==(const Snapshot&) const = default;
};

struct CreateResult {
    /// Nothing when the tool did not say which one it took, also after a success.
    std::optional<Snapshot> snapshot;
    /// What the tool wrote.
    std::string stdout;
    std::string stderr;
    bool succeeded = false;

    bool operator==(const CreateResult&) const = default;
};

bool isSupported(const Host& host);
/// Takes a snapshot. The system names it itself: `label` is accepted for callers that have one, and not used.
CreateResult create(const Host& host, const std::optional<std::string>& label = std::nullopt);
/// The snapshots of the system's disk, in the tool's order. Their full names are too long for `timestamp`.
std::vector<Snapshot> list(const Host& host);

/// The local time that a text such as "2026-11-15-174543" tells. Of a text with full stops, the first piece that has a
/// "-" and more than 18 characters is read, else the whole text; and of that the first 19 characters. Pure but for the
/// time zone.
std::optional<std::chrono::system_clock::time_point> timestamp(std::string_view text);

}  // namespace tarvik::APFSSnapshotService
