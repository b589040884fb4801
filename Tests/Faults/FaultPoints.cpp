#include "Faults/FaultPoints.h"

#include <algorithm>
#include <cstddef>
#include <istream>
#include <map>
#include <set>
#include <utility>

namespace tarvik::test::FaultPoints {

namespace {

bool isChanging(std::string_view call, std::string_view line) {
    if (call == "open" || call == "openat") return line.find("O_CREAT") != std::string_view::npos;
    if (call == "ioctl") return line.find("FICLONE") != std::string_view::npos;
    return true;
}

}  // namespace

const std::string_view calls =
    "mkdir,mkdirat,symlink,symlinkat,link,linkat,unlink,unlinkat,rmdir,rename,renameat,renameat2,open,openat,creat,"
    "write,"
    "pwrite64,copy_file_range,sendfile,ioctl,fsync,fdatasync,syncfs,chmod,fchmod,fchmodat,chown,fchown,lchown,fchownat,"
    "utimensat,setxattr,lsetxattr,fsetxattr,truncate,ftruncate,fallocate,mknod,mknodat,close";

std::vector<Fault> in(const fs::path& root, std::istream& log) {
    std::vector<Fault> changes;
    std::map<std::pair<std::string, std::string>, int> ordinals;
    for (std::string line; std::getline(log, line);) {
        const std::size_t bracket = line.find('(');
        const bool isEndOfCall = line.find("resumed>") != std::string::npos;
        if (bracket == std::string::npos || isEndOfCall) continue;
        const std::size_t space = line.rfind(' ', bracket);
        const std::size_t begin = space == std::string::npos ? 0 : space + 1;
        const std::string thread = line.substr(0, line.find(' '));
        const std::string call = line.substr(begin, bracket - begin);
        const int ordinal = ++ordinals[{begin == 0 ? "" : thread, call}];
        if (line.find(root.native()) != std::string::npos && isChanging(call, line))
            changes.push_back({call, ordinal, begin != 0, ""});
    }
    return changes;
}

std::vector<Fault> someOf(std::vector<Fault> points) {
    constexpr std::size_t wanted = 4;
    std::map<std::string, std::set<Fault>> byCall;
    for (Fault& point : points) byCall[point.call].insert(std::move(point));
    std::vector<Fault> some;
    for (const auto& [call, all] : byCall) {
        const std::vector<Fault> sorted(all.begin(), all.end());
        const std::size_t count = std::min(wanted, sorted.size());
        for (std::size_t i = 0; i < count; ++i)
            some.push_back(sorted[count == 1 ? 0 : i * (sorted.size() - 1) / (count - 1)]);
    }
    return some;
}

bool hasStruckIn(const fs::path& folder, std::istream& log) {
    for (std::string line; std::getline(log, line);)
        if (line.find("(INJECTED)") != std::string::npos && line.find(folder.native()) != std::string::npos)
            return true;
    return false;
}

}  // namespace tarvik::test::FaultPoints
