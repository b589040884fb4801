#include "Practice/Packages/Packed.h"

#include "Platform/Basics/Failure.h"

#include <algorithm>
#include <bzlib.h>
#include <lzma.h>
#include <zlib.h>

namespace tarvik::Practice {

namespace {

void demand(bool isWell) {
    if (!isWell) throw Failure("Practice", 1, "Bytes could not be packed.");
}

std::string deflated(std::string_view bytes, int head) {
    z_stream stream{};
    constexpr int window = 15;
    constexpr int memory = 8;
    demand(::deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, window + head, memory, Z_DEFAULT_STRATEGY) == Z_OK);
    std::string result(::deflateBound(&stream, bytes.size()) + 64, '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(result.data());
    stream.avail_out = static_cast<uInt>(result.size());
    const int end = ::deflate(&stream, Z_FINISH);
    result.resize(stream.total_out);
    ::deflateEnd(&stream);
    demand(end == Z_STREAM_END);
    return result;
}

std::string bzipped(std::string_view bytes) {
    auto size = static_cast<unsigned>(bytes.size() + bytes.size() / 50 + 700);
    std::string result(size, '\0');
    demand(::BZ2_bzBuffToBuffCompress(result.data(), &size, const_cast<char*>(bytes.data()),
                                      static_cast<unsigned>(bytes.size()), 9, 0, 0) == BZ_OK);
    result.resize(size);
    return result;
}

std::string xzPacked(std::string_view bytes) {
    std::string result(::lzma_stream_buffer_bound(bytes.size()), '\0');
    std::size_t size = 0;
    demand(::lzma_easy_buffer_encode(6, LZMA_CHECK_CRC32, nullptr, reinterpret_cast<const std::uint8_t*>(bytes.data()),
                                     bytes.size(), reinterpret_cast<std::uint8_t*>(result.data()), &size,
                                     result.size()) == LZMA_OK);
    result.resize(size);
    return result;
}

std::string bigEndian(std::uint64_t number) {
    std::string bytes;
    for (int shift = 56; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift);
    return bytes;
}

std::string pbzxPacked(std::string_view bytes, std::size_t chunk) {
    std::string result = "pbzx" + bigEndian(chunk);
    do {
        const std::string_view piece = bytes.substr(0, chunk);
        bytes.remove_prefix(piece.size());
        std::string small = xzPacked(piece);
        // A chunk that does not become smaller stays as it is.
        if (small.size() >= chunk && piece.size() == chunk) small = piece;
        constexpr std::uint64_t more = 1 << 24;
        result += bigEndian(bytes.empty() ? 0 : more) + bigEndian(small.size());
        result += small;
    } while (!bytes.empty());
    return result;
}

}  // namespace

std::string packed(std::string_view bytes, Compression compression, std::size_t chunk) {
    constexpr int gzipHead = 16;
    switch (compression) {
        case Compression::none:
            break;
        case Compression::zlib:
            return deflated(bytes, 0);
        case Compression::gzip:
            return deflated(bytes, gzipHead);
        case Compression::bzip2:
            return bzipped(bytes);
        case Compression::xz:
            return xzPacked(bytes);
        case Compression::pbzx:
            return pbzxPacked(bytes, chunk);
    }
    return std::string(bytes);
}

}  // namespace tarvik::Practice
