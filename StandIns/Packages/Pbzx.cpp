#include "Packages/Pbzx.h"

#include "Packages/PackageFailure.h"
#include "Packages/Unpacking.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace tarvik::packages {

namespace {

constexpr std::uint64_t largestChunk = 64'000'000;
constexpr const char* damagedPbzx = "The payload is damaged.";

class PbzxStream {
public:
    explicit PbzxStream(ByteSource packed) : m_packed(std::move(packed)) {}

    std::string_view next() {
        if (!m_hasHead) readHead();
        while (!m_isEnd) {
            if (!m_chunk && !openChunk()) break;
            const std::string_view block = (*m_chunk)();
            if (!block.empty()) {
                if (block.size() > m_left) failDamaged(damagedPbzx);
                m_left -= block.size();
                return block;
            }
            m_chunk.reset();
        }
        m_isEnd = true;
        return {};
    }

private:
    void readHead() {
        const auto magic = taken(4);
        const auto size = taken(8);
        if (!magic || *magic != "pbzx" || !size) failDamaged(damagedPbzx);
        m_chunkSize = number(*size);
        if (m_chunkSize == 0 || m_chunkSize > largestChunk) failDamaged(damagedPbzx);
        m_hasHead = true;
    }

    /// False at the end, which is where a chunk would begin.
    bool openChunk() {
        if (m_input.empty()) m_input = m_packed();
        if (m_input.empty()) return false;
        const auto head = taken(16);
        if (!head) failDamaged(damagedPbzx);
        const std::uint64_t length = number(std::string_view(*head).substr(8));
        if (length > largestChunk) failDamaged(damagedPbzx);
        auto bytes = taken(length);
        if (!bytes) failDamaged(damagedPbzx);
        m_bytes = std::move(*bytes);
        m_left = m_chunkSize;
        auto isGiven = std::make_shared<bool>(false);
        ByteSource plain = [this, isGiven]() -> std::string_view {
            if (*isGiven) return {};
            *isGiven = true;
            return m_bytes;
        };
        const bool isPacked =
            m_bytes.starts_with(std::string_view("\xfd"
                                                 "7zXZ\0",
                                                 6));
        m_chunk = isPacked ? unpackedSource(Packing::lzma, std::move(plain)) : std::move(plain);
        return true;
    }

    /// That many bytes; nothing when there are fewer.
    std::optional<std::string> taken(std::uint64_t count) {
        std::string bytes;
        while (bytes.size() < count) {
            if (m_input.empty()) m_input = m_packed();
            if (m_input.empty()) return std::nullopt;
            const auto piece = m_input.substr(0, count - bytes.size());
            bytes += piece;
            m_input.remove_prefix(piece.size());
        }
        return bytes;
    }

    static std::uint64_t number(std::string_view bytes) {
        std::uint64_t result = 0;
        for (const char each : bytes.substr(0, 8)) result = result << 8 | static_cast<unsigned char>(each);
        return result;
    }

    ByteSource m_packed;
    std::string_view m_input;
    bool m_hasHead = false;
    bool m_isEnd = false;
    std::uint64_t m_chunkSize = 0;
    /// The chunk that is read: its packed bytes, what they unpack to, and how much more that may be.
    std::string m_bytes;
    std::optional<ByteSource> m_chunk;
    std::uint64_t m_left = 0;
};

}  // namespace

ByteSource pbzxSource(ByteSource packed) {
    auto stream = std::make_shared<PbzxStream>(std::move(packed));
    return [stream] { return stream->next(); };
}

}  // namespace tarvik::packages
