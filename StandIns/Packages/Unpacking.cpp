#include "Packages/Unpacking.h"

#include "Packages/PackageFailure.h"
#include "Packages/Pbzx.h"

#include <bzlib.h>
#include <cstddef>
#include <lzma.h>
#include <memory>
#include <vector>
#include <zlib.h>

namespace tarvik::packages {

namespace {

constexpr std::size_t blockSize = 131'072;
constexpr std::uint64_t mostMemory = 256'000'000;
constexpr const char* damagedStream = "Packed bytes are damaged.";

/// One library's stream. A step takes what it can of the input and gives what fits into the output.
class Unpacker {
public:
    virtual ~Unpacker() = default;
    struct Step {
        std::size_t taken;
        std::size_t given;
        bool isEnd;
    };
    virtual Step step(std::string_view input, char* output, std::size_t room) = 0;
};

class ZlibUnpacker : public Unpacker {
public:
    ZlibUnpacker() {
        constexpr int anyHead = 15 + 32;
        if (::inflateInit2(&m_stream, anyHead) != Z_OK) failTooLarge("There is not enough memory.");
    }
    ~ZlibUnpacker() override { ::inflateEnd(&m_stream); }

    Step step(std::string_view input, char* output, std::size_t room) override {
        m_stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
        m_stream.avail_in = static_cast<uInt>(input.size());
        m_stream.next_out = reinterpret_cast<Bytef*>(output);
        m_stream.avail_out = static_cast<uInt>(room);
        const int result = ::inflate(&m_stream, Z_NO_FLUSH);
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) failDamaged(damagedStream);
        return {input.size() - m_stream.avail_in, room - m_stream.avail_out, result == Z_STREAM_END};
    }

private:
    z_stream m_stream{};
};

class Bzip2Unpacker : public Unpacker {
public:
    Bzip2Unpacker() {
        if (::BZ2_bzDecompressInit(&m_stream, 0, 0) != BZ_OK) failTooLarge("There is not enough memory.");
    }
    ~Bzip2Unpacker() override { ::BZ2_bzDecompressEnd(&m_stream); }

    Step step(std::string_view input, char* output, std::size_t room) override {
        m_stream.next_in = const_cast<char*>(input.data());
        m_stream.avail_in = static_cast<unsigned>(input.size());
        m_stream.next_out = output;
        m_stream.avail_out = static_cast<unsigned>(room);
        const int result = ::BZ2_bzDecompress(&m_stream);
        if (result != BZ_OK && result != BZ_STREAM_END) failDamaged(damagedStream);
        return {input.size() - m_stream.avail_in, room - m_stream.avail_out, result == BZ_STREAM_END};
    }

private:
    bz_stream m_stream{};
};

class LzmaUnpacker : public Unpacker {
public:
    LzmaUnpacker() {
        if (::lzma_auto_decoder(&m_stream, mostMemory, 0) != LZMA_OK) failTooLarge("There is not enough memory.");
    }
    ~LzmaUnpacker() override { ::lzma_end(&m_stream); }

    Step step(std::string_view input, char* output, std::size_t room) override {
        m_stream.next_in = reinterpret_cast<const std::uint8_t*>(input.data());
        m_stream.avail_in = input.size();
        m_stream.next_out = reinterpret_cast<std::uint8_t*>(output);
        m_stream.avail_out = room;
        const lzma_ret result = ::lzma_code(&m_stream, LZMA_RUN);
        if (result != LZMA_OK && result != LZMA_STREAM_END && result != LZMA_BUF_ERROR) failDamaged(damagedStream);
        return {input.size() - m_stream.avail_in, room - m_stream.avail_out, result == LZMA_STREAM_END};
    }

private:
    lzma_stream m_stream = LZMA_STREAM_INIT;
};

std::unique_ptr<Unpacker> unpackerFor(Packing packing) {
    switch (packing) {
        case Packing::zlib:
            return std::make_unique<ZlibUnpacker>();
        case Packing::bzip2:
            return std::make_unique<Bzip2Unpacker>();
        case Packing::lzma:
            break;
    }
    return std::make_unique<LzmaUnpacker>();
}

/// Reads the packed source and gives what it unpacks to.
class UnpackedStream {
public:
    UnpackedStream(Packing packing, ByteSource packed)
        : m_packing(packing), m_packed(std::move(packed)), m_unpacker(unpackerFor(packing)), m_output(blockSize) {}

    std::string_view next() {
        while (!m_isEnd) {
            if (m_input.empty() && !m_hasAllInput) {
                m_input = m_packed();
                m_hasAllInput = m_input.empty();
            }
            const auto step = m_unpacker->step(m_input, m_output.data(), m_output.size());
            m_input.remove_prefix(step.taken);
            if (step.isEnd) endOfStream();
            if (step.given > 0) return {m_output.data(), step.given};
            if (!step.isEnd && step.taken == 0 && m_hasAllInput) failDamaged(damagedStream);
        }
        return {};
    }

private:
    /// Several streams may lie one behind the other, as gzip and bzip2 make them. What lies behind is read to its end
    /// in any case, so that its checksum is proved.
    void endOfStream() {
        if (m_input.empty() && !m_hasAllInput) {
            m_input = m_packed();
            m_hasAllInput = m_input.empty();
        }
        if (m_input.empty())
            m_isEnd = true;
        else
            m_unpacker = unpackerFor(m_packing);
    }

    Packing m_packing;
    ByteSource m_packed;
    std::unique_ptr<Unpacker> m_unpacker;
    std::vector<char> m_output;
    std::string_view m_input;
    bool m_hasAllInput = false;
    bool m_isEnd = false;
};

}  // namespace

ByteSource unpackedSource(Packing packing, ByteSource packed) {
    auto stream = std::make_shared<UnpackedStream>(packing, std::move(packed));
    return [stream] { return stream->next(); };
}

std::string unpackedBytes(Packing packing, std::string_view packed, std::uint64_t limit) {
    bool isGiven = false;
    const ByteSource blocks = unpackedSource(packing, [&]() -> std::string_view {
        if (isGiven) return {};
        isGiven = true;
        return packed;
    });
    std::string all;
    for (std::string_view block = blocks(); !block.empty(); block = blocks()) {
        if (block.size() > limit - all.size()) failTooLarge("Packed bytes unpack to more than they say.");
        all += block;
    }
    return all;
}

ByteSource recognizedSource(ByteSource packed) {
    const auto source = std::make_shared<ByteSource>(std::move(packed));
    // The first blocks are kept until there is enough of them to tell.
    const auto head = std::make_shared<std::string>();
    constexpr std::size_t longestMagic = 6;
    while (head->size() < longestMagic) {
        const std::string_view block = (*source)();
        if (block.empty()) break;
        *head += block;
    }
    const auto isHeadGiven = std::make_shared<bool>(false);
    ByteSource whole = [source, head, isHeadGiven]() -> std::string_view {
        if (*isHeadGiven) return (*source)();
        *isHeadGiven = true;
        return *head;
    };
    if (head->starts_with("\x1f\x8b")) return unpackedSource(Packing::zlib, std::move(whole));
    if (head->starts_with("BZh")) return unpackedSource(Packing::bzip2, std::move(whole));
    if (head->starts_with(std::string_view("\xfd"
                                           "7zXZ\0",
                                           longestMagic)))
        return unpackedSource(Packing::lzma, std::move(whole));
    if (head->starts_with("pbzx")) return pbzxSource(std::move(whole));
    return whole;
}

}  // namespace tarvik::packages
