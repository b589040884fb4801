#include "Faults/FaultWorld.h"

#include "Platform/CommandRunner.h"
#include "Platform/Files.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string_view>
#include <sys/xattr.h>
#include <utility>

namespace tarvik::test {

namespace {

/// The calls that change a file system, and those that bring data to a drive.
constexpr std::string_view changingCalls =
    "mkdir,mkdirat,symlink,symlinkat,link,linkat,unlink,unlinkat,rmdir,rename,renameat,renameat2,open,openat,creat,"
    "write,"
    "pwrite64,copy_file_range,sendfile,ioctl,fsync,fdatasync,syncfs,chmod,fchmod,fchmodat,chown,fchown,lchown,fchownat,"
    "utimensat,setxattr,lsetxattr,fsetxattr,truncate,ftruncate,fallocate,mknod,mknodat,close";

bool isChanging(std::string_view call, std::string_view line) {
    if (call == "open" || call == "openat") return line.find("O_CREAT") != std::string_view::npos;
    if (call == "ioctl") return line.find("FICLONE") != std::string_view::npos;
    return true;
}

/// The calls of a tracer's log that change something in `root`, each with its ordinal among its thread's calls.
std::vector<Fault> changesIn(const fs::path& root, std::istream& log) {
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

/// The first, the last and a few in between of each call.
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

/// More items than the copy tool handles on one thread.
void makeCrowd(const fs::path& tree) {
    for (int number = 0; number < 80; ++number)
        makeFileOfSize(tree / std::to_string(number % 6) / std::to_string(number), 500, static_cast<unsigned>(number));
}

void makeReference(const fs::path& tree) {
    makeFileOfSize(tree / "song", 20'000);
    makeFile(tree / "sub/.hidden", "notes");
    makeFile(tree / "sub/deep/odd \xff\n name", "odd");
    makeLink(tree / "sub/link", "../song");
    makeLink(tree / "dangling", "nowhere");
    makeFolder(tree / "empty");
    makePipe(tree / "pipe");
    fs::create_hard_link(tree / "song", tree / "sub/same song");
    makeFile(tree / "sealed/inside", "read only");
    fs::permissions(tree / "sealed", fs::perms::owner_read | fs::perms::owner_exec);
    makeFile(tree / "tagged", "with a tag");
    ::setxattr((tree / "tagged").c_str(), "user.tag", "blue", 4, 0);
    makeFile(tree / "holes", "start");
    fs::resize_file(tree / "holes", 50'000);
}

/// Whether the trees are the same to the last byte.
bool isSameTree(const fs::path& tree, const fs::path& reference) {
    if (!Files::isFolder(tree) || Files::names(tree) != Files::names(reference)) return false;
    if (pictureOf(tree) != pictureOf(reference)) return false;
    for (const auto& entry : fs::recursive_directory_iterator(reference)) {
        if (!entry.is_regular_file() || entry.is_symlink()) continue;
        if (contentOf(entry.path()) != contentOf(tree / fs::relative(entry.path(), reference))) return false;
    }
    return true;
}

bool holdsSameTree(const fs::path& folder, const fs::path& reference) {
    if (isSameTree(folder, reference)) return true;
    const auto names = Files::names(folder);
    return std::any_of(names.begin(), names.end(), [&](const std::string& name) {
        return Files::isFolder(folder / name) && holdsSameTree(folder / name, reference);
    });
}

void clear(const fs::path& folder) {
    for (const auto& name : Files::names(folder)) fs::remove_all(folder / name);
}

void copyTree(const fs::path& from, const fs::path& to) {
    fs::create_directories(to.parent_path());
    CommandRunner::run("/bin/cp", {"-a", from.native(), to.native()});
}

void writeScript(const fs::path& path, const std::string& line) {
    makeFile(path, "#!/bin/sh\n" + line + "\n");
    fs::permissions(path, fs::perms::owner_all);
}

RealVolume makeDrive(const fs::path& volumes) {
    makeFolder(volumes);
    return RealVolume::memory(volumes, 8'000'000);
}

}  // namespace

FaultWorld::FaultWorld(Act act, Victim victim)
    : m_act(act),
      m_victim(victim),
      m_drive(makeDrive(m_folder / "root/Volumes")),
      m_home(m_folder / "root/Users/ada"),
      m_item(m_home / "Studio/Music"),
      m_destination(m_drive.path() / "ExternalTarvik/Folders/Music"),
      m_reference(m_folder / "reference") {
    makeReference(m_reference);
    if (victim == Victim::copierThreads) makeCrowd(m_reference / "crowd");
    makeFolder(m_home);
    // The program of this build with a copy tool of our own choice beside it.
    makeFolder(m_folder / "bin/stand-ins");
    fs::copy_file(programOfThisBuild("tarvik"), m_folder / "bin/tarvik");
}

void FaultWorld::prepare() const {
    clear(m_home);
    clear(m_drive.path());
    if (m_act == Act::move) {
        copyTree(m_reference, m_item);
    } else {
        copyTree(m_reference, m_destination);
        makeLink(m_item, m_destination);
    }
}

CommandResult FaultWorld::runTraced(Act act, const std::vector<std::string>& tracing) const {
    const fs::path ditto = m_folder / "bin/stand-ins/ditto";
    const std::string realDitto = programOfThisBuild("stand-ins/ditto").native();
    std::vector<std::string> command = {(m_folder / "bin/tarvik").native(),
                                        "--root",
                                        (m_folder / "root").native(),
                                        "--home",
                                        m_home.native(),
                                        "--yes",
                                        "--format",
                                        "human",
                                        "move"};
    if (act == Act::move) {
        command.insert(command.end(), {"folder", m_item.native(), "--drive", m_drive.path().native()});
    } else {
        command.insert(command.end(), {"restore", m_item.native()});
    }
    std::vector<std::string> tracer = {"-qqq", "-y"};
    tracer.insert(tracer.end(), tracing.begin(), tracing.end());
    if (m_victim == Victim::engine) {
        writeScript(ditto, "exec '" + realDitto + "' \"$@\"");
        command.insert(command.begin(), tracer.begin(), tracer.end());
        return CommandRunner::run("/usr/bin/strace", command);
    }
    std::string script = "exec /usr/bin/strace";
    for (const auto& word : tracer) script += " '" + word + "'";
    writeScript(ditto, script + " '" + realDitto + "' \"$@\"");
    const fs::path program = command.front();
    command.erase(command.begin());
    return CommandRunner::run(program, command);
}

CommandResult FaultWorld::list(std::vector<Fault>& points) const {
    prepare();
    const fs::path log = m_folder / "log";
    std::vector<std::string> tracing = {"-o", log.native(), "-e", "trace=" + std::string(changingCalls)};
    if (m_victim == Victim::copierThreads) tracing.emplace_back("-f");
    CommandResult result = runTraced(m_act, tracing);
    std::istringstream lines(contentOf(log));
    points = m_victim == Victim::copierThreads ? someOf(changesIn(m_folder / "root", lines))
                                               : changesIn(m_folder / "root", lines);
    // The engine flushes from a thread of its own, which the listing above does not follow.
    if (m_victim == Victim::engine) points.push_back({"syncfs", 1, true, ""});
    return result;
}

CommandResult FaultWorld::run(const Fault& fault) const {
    prepare();
    std::vector<std::string> tracing = {"-o",
                                        (m_folder / "log").native(),
                                        "-e",
                                        "trace=" + fault.call,
                                        "-e",
                                        "inject=" + fault.call + ":" + fault.effect +
                                            ":when=" + std::to_string(fault.ordinal) + (fault.isForGood ? "+" : "")};
    if (fault.isOfAnyThread) tracing.insert(tracing.begin(), "-f");
    return runTraced(m_act, tracing);
}

CommandResult FaultWorld::runAgain() const {
    return runOther(m_act);
}

CommandResult FaultWorld::runOther(Act act) const {
    return runTraced(act, {"-o", "/dev/null", "-e", "trace=none"});
}

bool FaultWorld::hasStruck() const {
    return contentOf(m_folder / "log").find("(INJECTED)") != std::string::npos;
}

bool FaultWorld::isRemembered() const {
    const fs::path manifest = m_home / "Library/Application Support/Tarvik/health-manifest.json";
    return Files::exists(manifest) && contentOf(manifest).find(m_item.native()) != std::string::npos;
}

bool FaultWorld::isWholeAtHome() const {
    return isSameTree(m_item, m_reference);
}
bool FaultWorld::isWholeOnDrive() const {
    return holdsSameTree(m_drive.path(), m_reference);
}
bool FaultWorld::isSomethingAtHome() const {
    return Files::itemExists(m_item);
}
bool FaultWorld::isLinkAtHome() const {
    return Files::isSymbolicLink(m_item);
}

bool FaultWorld::isLinkGood() const {
    const auto target = Files::linkText(m_item);
    return target && isSameTree(*target, m_reference);
}

Stand FaultWorld::standOf(const fs::path& item) const {
    if (!Files::itemExists(item)) return Stand::nothing;
    if (Files::linkText(item) == m_destination) return Stand::link;
    return isSameTree(item, m_reference) ? Stand::whole : Stand::part;
}

Places FaultWorld::places() const {
    const fs::path folders = m_destination.parent_path();
    const fs::path stash = folders / ".TarvikTrash";
    Places places{standOf(m_item), standOf(m_destination), Stand::nothing, {}};
    for (const auto& [folder, known] : {std::pair(m_item.parent_path(), ""), std::pair(folders, ".TarvikTrash")})
        for (const auto& name : Files::names(folder))
            if (name != m_item.filename() && name != known) places.leftovers.push_back(name);
    for (const auto& name : Files::names(stash)) {
        if (places.stash != Stand::nothing) places.leftovers.push_back(name);
        places.stash = standOf(stash / name);
    }
    return places;
}

std::string FaultWorld::picture() const {
    return pictureOf(m_home) + "--\n" + pictureOf(m_drive.path());
}

}  // namespace tarvik::test
