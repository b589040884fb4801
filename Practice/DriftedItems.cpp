#include "Practice/DriftedItems.h"

#include "Platform/Text/PropertyList.h"
#include "Practice/Bundle.h"
#include "Practice/Signature.h"

#include <fmt/format.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarvik::Practice {

namespace {

/// Makes what stands on a drive, with its link and what is remembered of the move.
class Mover {
public:
    Mover(TreeWriter& writer, const Machine& machine, Records& records)
        : m_writer(writer),
          m_machine(machine),
          m_records(records),
          m_storage(machine.drives.front() / "ExternalTarvik") {}

    /// An application of some bytes, whose bundle may be an unusual one. @returns the bundle on the drive.
    fs::path app(std::string_view name, std::int64_t bytes, Bundle bundle = {}, std::vector<fs::path> files = {}) {
        const fs::path source = m_machine.root / "Applications" / fmt::format("{}.app", name);
        write(std::move(bundle), name, bytes);
        m_writer.link(source, onDrive(name));
        m_records.addMove(source, onDrive(name), identifierOf(name), bytes, std::move(files));
        return onDrive(name);
    }
    /// An application that no link leads to.
    void orphan(std::string_view name, std::int64_t bytes) { write({}, name, bytes); }
    /// A folder of the user's Library.
    void data(const fs::path& folder) {
        m_writer.noise(inLibrary(folder) / "data.db", 60'000);
        linkToLibrary(folder);
    }
    void preferences(const fs::path& file) {
        m_writer.file(inLibrary(file), PropertyList(PropertyList::Dictionary{{"Theme", "dark"}}).binary());
        linkToLibrary(file);
    }

private:
    static std::string identifierOf(std::string_view name) {
        std::string word;
        for (const char letter : name)
            if (letter != ' ') word += static_cast<char>(letter | 0x20);
        return "org.example." + word;
    }
    fs::path onDrive(std::string_view name) const { return m_storage / "Apps" / fmt::format("{}.app", name); }
    fs::path inLibrary(const fs::path& item) const { return m_storage / "Data/Library" / item; }
    void linkToLibrary(const fs::path& item) { m_writer.link(m_machine.home / "Library" / item, inLibrary(item)); }
    void write(Bundle bundle, std::string_view name, std::int64_t bytes) {
        bundle.path = onDrive(name);
        bundle.identifier = identifierOf(name);
        Practice::write(m_writer, bundle);
        m_writer.noise(bundle.path / "Contents/Resources/Assets.car", bytes);
    }

    TreeWriter& m_writer;
    const Machine& m_machine;
    Records& m_records;
    fs::path m_storage;
};

}  // namespace

void addDriftedItems(TreeWriter& writer, const Machine& machine, Records& records) {
    Mover mover(writer, machine, records);
    sign(writer, machine, mover.app("Orchestra", 2'400'000));
    mover.app("Darkroom Pro", 1'100'000);
    mover.data("Application Support/Orchestra");

    Bundle without;
    without.form = Bundle::Form::none;
    mover.app("Half Removed", 700'000, without);
    without.form = Bundle::Form::xml;
    without.hasProgram = false;
    mover.app("Engineless", 300'000, without);

    const fs::path altered = mover.app("Altered", 500'000);
    sign(writer, machine, altered);
    writer.damage(altered / "Contents/Resources/Assets.car");

    mover.app("Scorebook", 400'000, {},
              {machine.home / "Documents/Scorebook/Templates.book", machine.home / "Documents/Scorebook/Fonts.book",
               machine.root / "Applications/Scorebook.app"});
    mover.orphan("Left Behind", 900'000);
    // The launcher of that name opens nothing; it could open this one.
    Bundle ghost;
    ghost.path = machine.home / "Applications/Ghost.app";
    ghost.identifier = "org.example.Ghost";
    write(writer, ghost);
    mover.preferences("Preferences/org.example.orchestra.plist");
    mover.data("Containers/org.example.orchestra");
}

}  // namespace tarvik::Practice
