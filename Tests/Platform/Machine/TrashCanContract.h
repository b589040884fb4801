#pragma once

#include "Platform/Machine/TrashCan.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

namespace tarvik {

/// A kind of Trash that must keep the promises of `TrashCan`.
struct TrashCanKind {
    std::string name;
    std::function<std::shared_ptr<const TrashCan>(const fs::path& home)> make;
    /// Where trashed items land, below the home.
    fs::path folder;

    friend std::ostream& operator<<(std::ostream& output, const TrashCanKind& kind) { return output << kind.name; }
};

/// The cases that every kind must pass. Each system adds its kinds.
class TrashCanContract : public testing::TestWithParam<TrashCanKind> {
protected:
    TrashCanContract();

    fs::path trashed(const fs::path& item) const { return m_trash->moveToTrash(item); }
    /// errno of the refusal, 0 when the item was taken.
    int refusalOf(const fs::path& item) const;

    const test::TemporaryFolder m_world;
    const fs::path m_home = m_world / "home";
    const fs::path m_folder = m_home / GetParam().folder;
    std::shared_ptr<const TrashCan> m_trash;
};

inline std::string nameOfKind(const testing::TestParamInfo<TrashCanKind>& info) {
    return info.param.name;
}

}  // namespace tarvik
