#include "Faults/FaultWorld.h"

#include "Faults/AloneOnTheMachine.h"
#include "Faults/FaultTrees.h"
#include "Platform/Files/Files.h"
#include "Platform/Processes/CommandRunner.h"
#include "Records/HealthManifest.h"
#include "Records/InstallsDB.h"
#include "Records/InstallsDBWriter.h"
#include "Support/Bundles.h"
#include "Support/TrackingDatabase.h"
#include "Support/Tree.h"
#include "Support/World.h"

#include <algorithm>
#include <array>
#include <set>
#include <sstream>

namespace tarvik::test {

namespace {

constexpr const char* appName = "Mixer";

bool isOneApplication(Subject subject) {
    return subject == Subject::application || subject == Subject::launcher;
}

void clear(const fs::path& folder) {
    for (const auto& name : Files::names(folder)) fs::remove_all(folder / name);
}

void writeScript(const fs::path& path, const std::string& lines) {
    makeFile(path, "#!/bin/sh\n" + lines + "\n");
    fs::permissions(path, fs::perms::owner_all);
}

RealVolume makeDrive(const fs::path& volumes) {
    makeFolder(volumes);
    return RealVolume::memory(volumes, 8'000'000);
}

}  // namespace

Stand FaultItem::standAt(const fs::path& place) const {
    if (!Files::itemExists(place)) return Stand::nothing;
    if (Files::linkText(place) == drive) return Stand::link;
    if (!launcher.empty() && FaultTrees::isSame(place, launcher)) return Stand::link;
    return FaultTrees::isSame(place, reference) ? Stand::whole : Stand::part;
}

Stand FaultItem::inStash() const {
    const fs::path stash = drive.parent_path() / ".TarvikTrash";
    for (const auto& name : Files::names(stash))
        if (name.starts_with(drive.filename().native())) return standAt(stash / name);
    return Stand::nothing;
}

bool FaultItem::hasNoBadLink() const {
    const auto target = atHome() == Stand::link ? drive : Files::linkText(home);
    return !target || FaultTrees::isSame(*target, reference);
}

FaultWorld::FaultWorld(Subject subject, Act act, Victim victim)
    : m_subject(subject),
      m_act(act),
      m_victim(victim),
      m_root(m_folder / "root"),
      m_drive(makeDrive(m_root / "Volumes")),
      m_home(m_root / "Users/ada") {
    makeFolder(m_home);
    makeFolder(applications());
    // The programs of this build with a copy tool of our own choice beside them.
    makeFolder(programs() / "stand-ins");
    for (const char* name : {"tarvik", "external-app-launcher"})
        fs::copy_file(programOfThisBuild(name), programs() / name);
    if (subject == Subject::folder) addFolder(victim == Victim::copierThreads);
    if (subject == Subject::application) addApplication();
    if (subject == Subject::launcher) addApplicationBehindLauncher();
    if (subject == Subject::suite) addSuite();
    HealthManifest::record(host(), {m_home / "Other", m_drive / "Other", std::nullopt, 1, host().now()});
    const fs::path database = InstallsDB::defaultPath(host());
    makeTrackingDatabase(database);
    if (act == Act::restore) {
        for (const auto& item : m_items) {
            HealthManifest::record(host(), {item.home, item.drive, std::nullopt, 1, host().now()});
            InstallsDBWriter::recordMove(host(), {item.home, item.drive, std::nullopt, std::nullopt, 1, {}}, database);
        }
    }
    m_memory = contentOf(HealthManifest::file(host()));
    m_database = contentOf(database);
    if (subject != Subject::suite) return;
    // What launchers are like is another test's matter: here they must be as a run without a fault leaves them.
    FaultTrees::copy(m_items.front().reference, m_items.front().home);
    runUnharmed(Act::move);
    for (const auto& launcher : launchers()) {
        FaultTrees::copy(launcher, m_folder / "launchers" / launcher.filename());
        FaultTrees::copy(launcher, m_folder / "plain launchers" / launcher.filename());
        fs::remove(m_folder / "plain launchers" / launcher.filename() / "Contents/Resources/Icon.icns");
    }
}

std::optional<std::string> FaultWorld::unavailableReason(Subject subject) {
    if (!Files::exists("/usr/bin/strace")) return "strace is not installed";
    if (isOneApplication(subject) && !AloneOnTheMachine::words())
        return "a process table of one's own is not allowed here";
    return std::nullopt;
}

void FaultWorld::addItem(const fs::path& home, const fs::path& onDrive, const std::string& label) {
    m_items.push_back({label, home.filename(), home, m_drive / "ExternalTarvik" / onDrive,
                       m_folder / "reference" / std::to_string(m_items.size()) / home.filename()});
}

void FaultWorld::addFolder(bool isCrowded) {
    addItem(m_home / "Studio/Music", "Folders/Music", "Music");
    FaultTrees::makeFolderOfAllKinds(m_items.front().reference);
    if (isCrowded) FaultTrees::makeCrowd(m_items.front().reference / "crowd");
}

void FaultWorld::addApplication() {
    const std::string name = appName;
    addItem(applications() / (name + ".app"), "Apps/" + name + ".app", name);
    FaultTrees::makeApplication(m_items.front().reference);
    for (const std::string data : {"Application Support/Mixer", "Caches/org.example.Mixer"}) {
        const fs::path place = "Library/" + data;
        addItem(m_home / place, "Data" / place, name + " — " + place.filename().native());
        FaultTrees::makeData(m_items.back().reference, static_cast<unsigned>(m_items.size()));
    }
}

void FaultWorld::addApplicationBehindLauncher() {
    const std::string name = appName;
    addItem(applications() / (name + ".app"), "Apps/" + name + ".app", name);
    FaultItem& item = m_items.front();
    FaultTrees::makeApplication(item.reference);
    item.launcher = m_folder / "launcher" / item.home.filename();
    makeLauncher(item.launcher, item.drive, {{"CFBundleName", name}});
}

void FaultWorld::addSuite() {
    addItem(applications() / "Suite", "Folders/Suite", "Suite");
    for (const char* name : {"One.app", "Two.app"}) FaultTrees::makeApplication(m_items.front().reference / name);
    makeFile(m_items.front().reference / "Read me", "a suite");
}

void FaultWorld::prepare() const {
    for (const fs::path& folder : {m_home, applications(), m_drive.path()}) clear(folder);
    makeFile(HealthManifest::file(host()), m_memory);
    makeFile(InstallsDB::defaultPath(host()), m_database);
    for (const auto& item : m_items) {
        FaultTrees::copy(item.reference, m_act == Act::move ? item.home : item.drive);
        if (m_act == Act::move) continue;
        if (item.launcher.empty())
            makeLink(item.home, item.drive);
        else
            FaultTrees::copy(item.launcher, item.home);
    }
    if (m_act == Act::move) return;
    for (const auto& name : Files::names(m_folder / "launchers"))
        FaultTrees::copy(m_folder / "launchers" / name, applications() / name);
}

std::vector<std::string> FaultWorld::command(Act act) const {
    std::vector<std::string> words = {(programs() / "tarvik").native(),
                                      "--root",
                                      m_root.native(),
                                      "--home",
                                      m_home.native(),
                                      "--yes",
                                      "--format",
                                      "human",
                                      "move"};
    const bool isApp = isOneApplication(m_subject);
    const std::string first = isApp ? std::string(appName) : m_items.front().home.native();
    if (act == Act::move) {
        words.insert(words.end(), {isApp ? "app" : "folder", first, "--drive", m_drive.path().native()});
        return words;
    }
    words.insert(words.end(), {"restore", first});
    for (auto item = m_items.begin() + 1; item != m_items.end(); ++item) words.push_back(item->home.native());
    return words;
}

CommandResult FaultWorld::runTraced(Act act, const std::vector<std::string>& tracing) const {
    const fs::path ditto = programs() / "stand-ins/ditto";
    const std::string realDitto = "exec '" + programOfThisBuild("stand-ins/ditto").native() + "' \"$@\"";
    std::vector<std::string> words = command(act);
    std::vector<std::string> tracer = {"/usr/bin/strace", "-qqq", "-y"};
    tracer.insert(tracer.end(), tracing.begin(), tracing.end());
    if (m_victim == Victim::engine) {
        writeScript(ditto, realDitto);
        words.insert(words.begin(), tracer.begin(), tracer.end());
    } else {
        std::string script = "case $2 in */'" + m_items.front().home.filename().native() + "') set -- ";
        for (const auto& word : tracer) script += " '" + word + "'";
        script += " '" + programOfThisBuild("stand-ins/ditto").native() + "' \"$@\"; exec \"$@\";; esac\n";
        writeScript(ditto, script + realDitto);
    }
    if (isOneApplication(m_subject))
        words.insert(words.begin(), AloneOnTheMachine::words()->begin(), AloneOnTheMachine::words()->end());
    const fs::path program = words.front();
    words.erase(words.begin());
    return CommandRunner::run(program, words);
}

CommandResult FaultWorld::list(std::vector<Fault>& points) const {
    prepare();
    const fs::path log = m_folder / "log";
    std::vector<std::string> tracing = {"-o", log.native(), "-e", "trace=" + std::string(FaultPoints::calls)};
    if (m_victim == Victim::copierThreads) tracing.emplace_back("-f");
    CommandResult result = runTraced(m_act, tracing);
    std::istringstream lines(contentOf(log));
    points = FaultPoints::in(m_root, lines);
    if (m_victim == Victim::copierThreads) points = FaultPoints::someOf(std::move(points));
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

CommandResult FaultWorld::runUnharmed(Act act) const {
    return runTraced(act, {"-o", "/dev/null", "-e", "trace=none"});
}

CommandResult FaultWorld::repairLaunchers() const {
    return CommandRunner::run(programs() / "tarvik",
                              {"--root", m_root.native(), "--home", m_home.native(), "--yes", "launchers", "--repair"});
}

bool FaultWorld::hasStruck() const {
    return hasStruckIn("");
}

bool FaultWorld::hasStruckRecords() const {
    return hasStruckIn(HealthManifest::file(host()).parent_path()) ||
           hasStruckIn(InstallsDB::defaultPath(host()).parent_path());
}

bool FaultWorld::hasStruckIn(const fs::path& folder) const {
    std::istringstream log(contentOf(m_folder / "log"));
    return FaultPoints::hasStruckIn(folder, log);
}

bool FaultWorld::isTracked(const FaultItem& item) const {
    const fs::path database = InstallsDB::defaultPath(host());
    // What a killed writer has left only another writer can take back.
    if (Files::exists(database.native() + "-journal")) askDatabase(database, "SELECT count(*) FROM installs");
    return InstallsDB::entryForAppName(database, item.home.filename().native()).has_value();
}

bool FaultWorld::isRemembered(const FaultItem& item) const {
    const auto entries = HealthManifest::load(host());
    return std::any_of(entries.begin(), entries.end(),
                       [&](const HealthManifestEntry& entry) { return entry.sourcePath == item.home; });
}

bool FaultWorld::isMemorySound() const {
    const auto entries = HealthManifest::load(host());
    return !entries.empty() && entries.front().sourcePath == m_home / "Other";
}

bool FaultWorld::isWholeSomewhere(const FaultItem& item) const {
    return item.atHome() == Stand::whole || FaultTrees::isSameIn(m_drive.path(), item.reference);
}

std::vector<std::string> FaultWorld::leftovers() const {
    std::set<fs::path> known = {HealthManifest::file(host()).parent_path()};
    std::set<fs::path> folders;
    for (const auto& item : m_items) {
        known.insert({item.home, item.drive, item.drive.parent_path() / ".TarvikTrash"});
        if (!item.launcher.empty()) known.insert(item.home.parent_path() / ".TarvikTrash");
        folders.insert({item.home.parent_path(), item.drive.parent_path()});
    }
    for (const auto& launcher : launchers()) known.insert(launcher);
    std::vector<std::string> found;
    for (const auto& folder : folders)
        for (const auto& name : Files::names(folder))
            if (!known.contains(folder / name)) found.push_back(name);
    for (const auto& item : m_items)
        if (Files::names(item.drive.parent_path() / ".TarvikTrash").size() > 1)
            found.push_back(item.drive.filename().native() + " in the stash");
    return found;
}

std::vector<fs::path> FaultWorld::launchers() const {
    std::vector<fs::path> places;
    if (m_subject != Subject::suite) return places;
    for (const auto& name : Files::names(m_items.front().reference))
        if (name.ends_with(".app")) places.push_back(applications() / name);
    return places;
}

bool FaultWorld::isLauncherWhole(const fs::path& launcher) const {
    return FaultTrees::isSame(launcher, m_folder / "launchers" / launcher.filename()) ||
           FaultTrees::isSame(launcher, m_folder / "plain launchers" / launcher.filename());
}

bool FaultWorld::areReferenceLaunchersGood() const {
    const auto places = launchers();
    return std::all_of(places.begin(), places.end(), [&](const fs::path& place) {
        const fs::path contents = m_folder / "launchers" / place.filename() / "Contents";
        const fs::path program = contents / "MacOS/ExternalAppLauncher";
        return Files::exists(program) && contentOf(program) == contentOf(programOfThisBuild("external-app-launcher")) &&
               (statusOf(program).st_mode & 07777U) == 0755U &&
               contentOf(contents / "Resources/ExternalAppTarget.txt") == m_items.front().drive / place.filename() &&
               Files::exists(contents / "Info.plist") && Files::exists(contents / "Resources/Icon.icns");
    });
}

std::string FaultWorld::picture() const {
    return pictureOf(m_home) + "--\n" + pictureOf(applications()) + "--\n" + pictureOf(m_drive.path());
}

}  // namespace tarvik::test
