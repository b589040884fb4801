#pragma once

#include "Platform/Basics/Path.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <sys/stat.h>

/// The shared vocabulary of made worlds: short words for files and folders.
namespace tarvik::test {

/// Makes a file with the folders above it.
void makeFile(const fs::path& path, std::string_view content = "content");
/// Makes a file of `size` bytes that differ from place to place and from `seed` to `seed`, and flushes it.
void makeFileOfSize(const fs::path& path, std::size_t size, unsigned seed = 1);
/// Flushes a file, for tests that count what files take on the disk: while ext4 gives a new file its blocks, `stat` may
/// tell for a moment that it has none.
void flush(const fs::path& file);
/// Waits until something stands at the path, a minute at most. @returns whether it does.
bool comesToStand(const fs::path& path);
void makeFolder(const fs::path& path);
void makeLink(const fs::path& link, const fs::path& target);
void makeSocket(const fs::path& path);
void makePipe(const fs::path& path);
/// The status of the item itself, a link not followed. @throws std::runtime_error when nothing stands there.
struct stat statusOf(const fs::path& path);
std::string contentOf(const fs::path& path);
/// Everything that a tree holds, an entry a line in byte order: kind, permissions, path, size and a digest of the
/// content or a link's text. Two trees with equal pictures are the same to a user. Times are left out.
std::string pictureOf(const fs::path& root);

}  // namespace tarvik::test
