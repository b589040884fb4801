#include "Practice/Packages/CpioWriter.h"

namespace tarvik::Practice {

namespace {

std::string octal(std::uint64_t number, std::size_t digits) {
    std::string text(digits, '0');
    for (auto digit = text.rbegin(); digit != text.rend(); ++digit, number >>= 3)
        *digit = static_cast<char>('0' + (number & 7));
    return text;
}

std::string entry(const CpioWriter::Item& item, unsigned inode) {
    std::string text = "070707" + octal(1, 6) + octal(inode, 6) + octal(item.mode, 6) + octal(item.user, 6) +
                       octal(item.group, 6) + octal(item.names, 6) + octal(0, 6) +
                       octal(static_cast<std::uint64_t>(item.modified), 11) + octal(item.path.size() + 1, 6) +
                       octal(item.bytes.size(), 11);
    text += item.path;
    text += '\0';
    text += item.bytes;
    return text;
}

}  // namespace

void CpioWriter::add(const Item& item) {
    m_bytes += entry(item, item.inode ? item.inode : ++m_count);
}

std::string CpioWriter::bytes() const {
    return m_bytes + entry({.path = "TRAILER!!!", .mode = 0, .modified = 0}, 0);
}

}  // namespace tarvik::Practice
