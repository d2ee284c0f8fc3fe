// Packed digit strings: two nibbles a byte, the first in the high half.
#pragma once

#include <cctype>
#include <cstdint>

namespace qx25 {

inline void put_nibble(std::uint8_t *bytes, int index, int value) {
    std::uint8_t &byte = bytes[index / 2];
    if (index % 2 == 0)
        byte = static_cast<std::uint8_t>((byte & 0x0F) | (value << 4));
    else
        byte = static_cast<std::uint8_t>((byte & 0xF0) | (value & 0x0F));
}

inline int get_nibble(const std::uint8_t *bytes, int index) {
    std::uint8_t byte = bytes[index / 2];
    return index % 2 == 0 ? byte >> 4 : byte & 0x0F;
}

// The value of a hexadecimal digit in either case, or -1.
inline int hex_value(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

inline bool ends_text(char c) {
    return c == '\0' || std::isspace(static_cast<unsigned char>(c));
}

} // namespace qx25
