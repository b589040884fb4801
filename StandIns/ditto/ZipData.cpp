#include "ditto/ZipData.h"

#include "ditto/ItemError.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <zlib.h>

namespace tarvik::ditto::ZipData {

namespace {

constexpr std::size_t pieceLength = std::size_t{1} << 18;
constexpr unsigned storedMethod = 0;
constexpr unsigned deflateMethod = 8;

using Use = std::function<void(std::string_view)>;

/// What arrives is used and counted: in the end it must be what the directory promises.
class Proof {
public:
    Proof(const ZipHeader& entry, const fs::path& path, const Use& use) : m_entry(entry), m_path(path), m_use(use) {}

    void take(std::string_view bytes) {
        m_size += bytes.size();
        if (m_size > m_entry.size) fail();
        m_sum = ::crc32_z(m_sum, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size());
        m_use(bytes);
    }
    void finish() const {
        if (m_size != m_entry.size || m_sum != m_entry.checkSum) fail();
    }
    [[noreturn]] void fail() const { throw ItemError(m_path, EIO); }

private:
    const ZipHeader& m_entry;
    const fs::path& m_path;
    const Use& m_use;
    std::uint64_t m_size = 0;
    uLong m_sum = 0;
};

/// Where the stored data go on from, piece by piece.
class Stored {
public:
    Stored(ZipBytes& bytes, std::uint64_t at, std::uint64_t length) : m_bytes(bytes), m_at(at), m_left(length) {}

    /// Empty at the end, and where the file ends before.
    std::string_view next() {
        const auto piece = m_bytes.at(m_at, static_cast<std::size_t>(std::min<std::uint64_t>(m_left, pieceLength)));
        m_at += piece.size();
        m_left -= piece.size();
        return piece;
    }

private:
    ZipBytes& m_bytes;
    std::uint64_t m_at;
    std::uint64_t m_left;
};

class Inflation {
public:
    Inflation() {
        if (::inflateInit2(&m_stream, -MAX_WBITS) != Z_OK) throw std::bad_alloc();
    }
    ~Inflation() { ::inflateEnd(&m_stream); }
    Inflation(const Inflation&) = delete;
    Inflation& operator=(const Inflation&) = delete;

    void run(Stored stored, Proof& proof) {
        const auto output = std::make_unique_for_overwrite<Bytef[]>(pieceLength);
        for (;;) {
            if (m_stream.avail_in == 0) {
                const std::string_view piece = stored.next();
                m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(piece.data()));
                m_stream.avail_in = static_cast<uInt>(piece.size());
            }
            m_stream.next_out = output.get();
            m_stream.avail_out = pieceLength;
            const int result = ::inflate(&m_stream, Z_NO_FLUSH);
            proof.take({reinterpret_cast<const char*>(output.get()), pieceLength - m_stream.avail_out});
            if (result == Z_STREAM_END) return;
            if (result != Z_OK) proof.fail();
        }
    }

private:
    z_stream m_stream{};
};

}  // namespace

void read(ZipBytes& bytes, const ZipHeader& entry, std::uint64_t shift, const fs::path& path, const Use& use) {
    Proof proof(entry, path, use);
    const std::uint64_t begin = entry.localOffset + shift;
    const auto local = ZipHeader::localAt(bytes, begin);
    if (!local) proof.fail();
    Stored stored(bytes, begin + local->length, entry.storedSize);
    if (entry.method == deflateMethod) {
        Inflation().run(stored, proof);
    } else if (entry.method == storedMethod) {
        for (auto piece = stored.next(); !piece.empty(); piece = stored.next()) proof.take(piece);
    } else {
        throw ItemError(path, EOPNOTSUPP);
    }
    proof.finish();
}

}  // namespace tarvik::ditto::ZipData
