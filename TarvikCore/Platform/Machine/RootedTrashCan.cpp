#include "Platform/Files/ClashNames.h"
#include "Platform/Files/FileError.h"
#include "Platform/Files/Files.h"
#include "Platform/Machine/TrashCan.h"
#include "Platform/Machine/TrashItem.h"

#include <cerrno>
#include <string>
#include <utility>

namespace tarvik {

namespace {

constexpr std::size_t longestName = 255;

class RootedTrashCan final : public TrashCan {
public:
    explicit RootedTrashCan(fs::path folder) : m_folder(std::move(folder)) {}

    fs::path moveToTrash(const fs::path& item) const override {
        const fs::path place = TrashItem::place(item);
        TrashItem::refuseTrashItself(place, m_folder);
        TrashItem::makePrivateFolder(m_folder);

        const std::string own = place.filename();
        for (int number = 1;; ++number) {
            const std::string name = ClashNames::numbered(own, number, ' ', longestName);
            fs::path goal = m_folder.native() + "/" + name;
            try {
                Files::rename(place, goal);
                return goal;
            } catch (const FileError& error) {
                if (error.code() != EEXIST) throw;
            }
        }
    }

    std::vector<fs::path> foldersFor(const fs::path& /*place*/) const override { return {m_folder}; }

private:
    const fs::path m_folder;
};

}  // namespace

std::shared_ptr<const TrashCan> makeRootedTrashCan(const fs::path& home) {
    return std::make_shared<RootedTrashCan>(home / ".Trash");
}

}  // namespace tarvik
