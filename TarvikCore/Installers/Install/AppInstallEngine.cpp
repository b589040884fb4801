#include "Installers/Install/AppInstallEngine.h"

#include "Copying/CopyPlace.h"
#include "Copying/CopyProof.h"
#include "Copying/Disposal.h"
#include "Copying/FileCopier.h"
#include "Copying/FileStash.h"
#include "Copying/HiddenPlace.h"
#include "Copying/Leftovers.h"
#include "Copying/MoveVerifier.h"
#include "Copying/MoverError.h"
#include "Discovery/AppScanner.h"
#include "Installers/Install/InstallCancellation.h"
#include "Installers/Install/InstallLinePath.h"
#include "Installers/Install/SourceWatch.h"
#include "Installers/Options/InstallerOptionCheck.h"
#include "Installers/Options/InstallerOptionPlaces.h"
#include "Launchers/LauncherAppBuilder.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/KeptAwake.h"
#include "Platform/Storage/SizeCalculator.h"
#include "Platform/Storage/VolumeCapacityProbe.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tarvik::AppInstallEngine {

namespace {

using End = Disposal::Outcome::End;

constexpr std::string_view installAppDomain = "install-app";
constexpr int notInstallable = 1;
constexpr int notTheSame = 2;

/// Where everything is, or will be.
struct Places {
    fs::path source;
    fs::path appsRoot;
    /// The application on the drive.
    fs::path goal;
    fs::path launcher;

    std::string name() const { return source.filename(); }
    /// The launcher will take the source's place.
    bool isSourceReplaced() const { return Files::isItemAtOrBelow(source, launcher); }
};

Places placesFor(const Host& host, const fs::path& app, const InstallerOption& option, const TargetDrive& drive) {
    Places places;
    places.source = Files::standardized(app);
    places.appsRoot = Files::standardized(InstallerOptionPlaces::applicationsOn(drive.mountPath(), option));
    places.goal = places.appsRoot / places.source.filename();
    places.launcher = Files::standardized(InstallerOptionPlaces::launchers(host, option)) / places.source.filename();
    return places;
}

Failure refusal(std::string description) {
    return {std::string(installAppDomain), notInstallable, std::move(description)};
}

/// What only leads to an application would be installed in its place, and lead to itself then; and an application that
/// lies in another one's place would go with it.
void requireInstallable(const Places& places) {
    for (const fs::path& path : {places.source, places.goal, places.launcher}) InstallLinePath::require(path);
    if (!Files::itemExists(places.source)) throw FileError("install", places.source, ENOENT);
    const auto leadsTo = Files::isSymbolicLink(places.source) ? Files::linkText(places.source)
                                                              : AppScanner::launcherShimTarget(places.source);
    if (leadsTo) throw refusal(fmt::format("{} only leads to {}.", places.name(), leadsTo->native()));
    const bool isInGoal =
        Files::isItemAtOrBelow(places.source, places.goal) && !Files::isItemAtOrBelow(places.goal, places.source);
    if (isInGoal || Files::isItemAtOrBelow(places.appsRoot, places.source))
        throw refusal(fmt::format("{} cannot be installed into itself.", places.name()));
    if (Files::isItemAtOrBelow(places.launcher, places.goal) || Files::isItemAtOrBelow(places.goal, places.launcher))
        throw refusal(fmt::format("The launcher of {} would take the place of the application itself.", places.name()));
}

void requireNoneUnderWay(const Places& places) {
    if (HiddenPlace::isCopyUnderWayTo(places.goal))
        throw Failure(std::string(installAppDomain), EBUSY,
                      fmt::format("{} is being installed already.", places.name()));
}

/// What a look at the goal has found.
struct Standing {
    bool isSame = false;
    /// Why what stands there cannot be used, when something does.
    std::optional<std::string> reason;
};

/// Asks last for another install: one that has begun by then has not set the same thing aside.
Standing lookAtGoal(const Host& host, const Places& places) {
    Standing standing;
    if (Files::isSymbolicLink(places.goal)) {
        standing.reason = "symlink destination";
    } else if (Files::itemExists(places.goal)) {
        standing.reason = MoveVerifier::failureReason(host, places.source, places.goal);
        standing.isSame = !standing.reason;
    }
    requireNoneUnderWay(places);
    return standing;
}

/// Whether the same application stands there already.
bool isReused(const Standing& standing, const Places& places, const InstallerRunReporter& reporter) {
    if (standing.isSame) reporter.log(fmt::format("reuse-app\t{}", places.goal.native()));
    return standing.isSame;
}

void requireSpace(const Host& host, const Places& places, const Cancellation& cancellation) {
    const std::int64_t needed = SizeCalculator::size(host, places.source, cancellation);
    InstallCancellation::throwIfAsked(cancellation);
    const std::int64_t free = VolumeCapacityProbe::freeBytes(host, places.appsRoot);
    const bool isKnown = free >= 1;
    if (isKnown && free < needed) throw MoverError::insufficientSpace(needed, free);
}

/// Sets aside what stands at the goal.
Disposal::Outcome makeRoom(const Host& host, const Places& places, const std::string& reason,
                           const InstallerRunReporter& reporter) {
    reporter.log(fmt::format("stash-existing-app\t{}\t{}", places.goal.native(), reason));
    auto outcome = FileStash::moveAside(host, places.goal, "install-conflict");
    // The copy tool would merge into what could not be set aside.
    if (Files::itemExists(places.goal)) throw FileError("replace", places.goal, EEXIST);
    return outcome;
}

/// The copy while it grows.
class GrowingApp {
public:
    GrowingApp(const Host& host, const Places& places, const TargetDrive& drive)
        : m_host(host),
          m_places(places),
          m_drive(drive),
          m_source(places.source, depthFor(places)),
          m_copy(places.goal) {}

    /// Leaves nothing when it fails.
    void fill(const Cancellation& cancellation) {
        removingIfThrown([&] {
            try {
                FileCopier::runDitto(m_host, m_places.source, m_copy.path(), cancellation);
            } catch (const Failure& failure) {
                InstallCancellation::throwIfAsked(cancellation);
                throw Failure(failure.domain(), failure.code(), m_copy.inOwnName(failure.description()));
            }
        });
    }

    /// Gives the copy its own name when it is good; it is set aside when it is not.
    void arrive(const Cancellation& cancellation) {
        if (const auto reason = reasonAgainst()) {
            if (HiddenPlace::moveAside(m_host, m_copy.path(), m_places.goal, verifyFailed).end == End::stayed) remove();
            m_copy.clearFolder();
            throw failureOf(*reason);
        }
        removingIfThrown([&] {
            InstallCancellation::throwIfAsked(cancellation);
            m_copy.arrive();
        });
        try {
            Files::flushVolume(m_places.appsRoot);
        } catch (const FileError& error) {
            FileStash::moveAside(m_host, m_places.goal, verifyFailed);
            throw failureOf(error.description());
        }
    }

private:
    static constexpr std::string_view verifyFailed = "verify-failed";

    static SourceWatch::Depth depthFor(const Places& places) {
        return places.isSourceReplaced() ? SourceWatch::Depth::mappedWrites : SourceWatch::Depth::writes;
    }

    std::optional<std::string> reasonAgainst() const {
        if (auto reason = CopyProof::reasonAgainst(m_host, m_places.source, m_copy.path(), CopyProof::Count::yes))
            return reason;
        if (!m_drive.holds(m_places.appsRoot)) return "The target drive was disconnected while it was written to.";
        return m_source.reasonAgainstCopy(m_host);
    }

    Failure failureOf(const std::string& reason) const {
        return {std::string(installAppDomain), notTheSame, m_copy.inOwnName(reason)};
    }

    template <typename Step>
    void removingIfThrown(Step&& step) {
        try {
            step();
        } catch (...) {
            remove();
            throw;
        }
    }

    /// Our own copy: the source is whole.
    void remove() noexcept {
        ignoringFailure([&] { Files::removeItem(m_copy.path()); });
        m_copy.clearFolder();
    }

    const Host& m_host;
    const Places& m_places;
    const TargetDrive& m_drive;
    SourceWatch m_source;
    CopyPlace m_copy;
};

void copyApp(const Host& host, const Places& places, const TargetDrive& drive, const InstallerRunReporter& reporter,
             const Cancellation& cancellation) {
    reporter.log(fmt::format("copy-app\t{}\t{}", places.source.native(), places.goal.native()));
    GrowingApp copy(host, places, drive);
    copy.fill(cancellation);
    reporter.log(fmt::format("verify-app\t{}", places.goal.native()));
    copy.arrive(cancellation);
}

/// Where what stood at the goal is, as a sentence of its own; empty when nothing stood there.
std::string whereabouts(const Places& places, const Disposal::Outcome& stood) {
    if (stood.end == End::nothing) return {};
    if (stood.end == End::trashed) return fmt::format(" The {} that stood there is in the Trash.", places.name());
    return fmt::format(" The {} that stood there is at {}.", places.name(), stood.place.native());
}

void replaceByCopy(const Host& host, const Places& places, const std::optional<std::string>& reasonAgainstStanding,
                   const TargetDrive& drive, const InstallerRunReporter& reporter, const Cancellation& cancellation) {
    const auto stood =
        reasonAgainstStanding ? makeRoom(host, places, *reasonAgainstStanding, reporter) : Disposal::Outcome{};
    try {
        copyApp(host, places, drive, reporter, cancellation);
    } catch (const Failure& failure) {
        const std::string sentence = whereabouts(places, stood);
        if (sentence.empty()) throw;
        const std::string_view end = failure.description().ends_with('.') ? "" : ".";
        throw Failure(failure.domain(), failure.code(), fmt::format("{}{}{}", failure.description(), end, sentence));
    }
}

/// Makes sure that the same application stands at the goal.
void bringToDrive(const Host& host, const Places& places, const TargetDrive& drive,
                  const InstallerRunReporter& reporter, const Cancellation& cancellation) {
    drive.require(places.appsRoot);
    Files::createFolder(places.appsRoot);
    drive.require(places.appsRoot);
    Leftovers::sweep(host, places.appsRoot);
    requireNoneUnderWay(places);
    if (isReused(lookAtGoal(host, places), places, reporter)) return;
    requireSpace(host, places, cancellation);
    drive.require(places.appsRoot);
    // The look is old by now: another install may have put its copy there, which is not to be set aside.
    const Standing standing = lookAtGoal(host, places);
    if (isReused(standing, places, reporter)) return;
    replaceByCopy(host, places, standing.reason, drive, reporter, cancellation);
}

}  // namespace

std::string install(const Host& host, const fs::path& source, const InstallerOption& option, const TargetDrive& drive,
                    const InstallerRunReporter& reporter, const Cancellation& cancellation) {
    const KeptAwake awake(host, "An application is being installed");
    InstallerOptionCheck::requireSafe(option);
    const Places places = placesFor(host, source, option, drive);
    InstallCancellation::throwIfAsked(cancellation);
    requireInstallable(places);
    bringToDrive(host, places, drive, reporter, cancellation);
    LauncherAppBuilder::install(host, places.goal, places.launcher, places.goal, reporter);
    std::string line = fmt::format("installed-app\t{}\t{}", places.launcher.native(), places.goal.native());
    reporter.log(line);
    return line;
}

}  // namespace tarvik::AppInstallEngine
