#pragma once

#include "Packages/BoundedTree.h"
#include "Packages/ByteSource.h"
#include "Packages/SafeName.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace tarvik::packages {

/// An item of a payload.
struct CpioEntry {
    enum class Type { file, folder, link, hardLink };

    SafeName::Components path;
    Type type = Type::file;
    ItemStatus status;
    /// In bytes. A hard link may bear the bytes of all its names.
    std::uint64_t size = 0;
    /// What a symbolic link leads to.
    std::string target;
    /// What a hard link is one with: an entry that came before.
    SafeName::Components original;
};

/// The items of a payload in the format of cpio, packed in any way that `recognizedSource` knows.
class Cpio {
public:
    explicit Cpio(ByteSource packed);
    Cpio(Cpio&&) noexcept;
    Cpio& operator=(Cpio&&) noexcept;
    ~Cpio();

    /// Goes to the next item. False at the end, behind which nothing more than zeros may lie.
    /// @throws PackageFailure for what is damaged, for a name that leads elsewhere, and for what is neither a file, a
    /// folder nor a link.
    bool next();
    const CpioEntry& entry() const;
    /// The bytes of the item; valid until the next call of `next`.
    ByteSource bytes();

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}  // namespace tarvik::packages
