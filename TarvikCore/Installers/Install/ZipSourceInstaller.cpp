#include "Installers/Install/ZipSourceInstaller.h"

#include "Copying/FileStash.h"
#include "Installers/Install/ContainedItemsInstaller.h"
#include "Installers/Install/InstallCancellation.h"
#include "Installers/Opening/ZipExpander.h"
#include "Platform/Basics/Failure.h"
#include "Platform/Files/Files.h"

#include <fmt/format.h>

namespace tarvik::ZipSourceInstaller {

namespace {

/// What an archive holds, for as long as it is needed.
class ExpandedArchive {
public:
    ExpandedArchive(const Host& host, const fs::path& archive)
        : m_host(host), m_folder(ZipExpander::expand(host, archive, m_hold)) {}
    ~ExpandedArchive() {
        ignoringFailure([&] { FileStash::moveAside(m_host, m_folder, "zip-run"); });
        // Where nothing takes it, it is only in the way: the archive holds it all.
        ignoringFailure([&] {
            if (Files::itemExists(m_folder)) Files::removeItem(m_folder);
        });
    }
    ExpandedArchive(const ExpandedArchive&) = delete;
    ExpandedArchive& operator=(const ExpandedArchive&) = delete;

    const fs::path& folder() const { return m_folder; }

private:
    const Host& m_host;
    OpenedHold m_hold;
    fs::path m_folder;
};

}  // namespace

std::vector<std::string> install(const Host& host, const fs::path& source, const InstallTerms& terms,
                                 const ItemInstaller& installItem) {
    terms.reporter.log(fmt::format("source\tzip\t{}", source.native()));
    InstallCancellation::throwIfAsked(terms.cancellation);
    const ExpandedArchive archive(host, source);
    std::vector<std::string> lines;
    ContainedItemsInstaller::install(host, archive.folder(), installItem, terms.cancellation, lines);
    return lines;
}

}  // namespace tarvik::ZipSourceInstaller
