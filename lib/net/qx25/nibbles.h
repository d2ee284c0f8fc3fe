// Packed digit strings: two nibbles a byte, the first in the high half.
#pragma once

#include <array>
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

// The value of each character as a hexadecimal digit in either case, or -1.
inline constexpr auto hex_values = [] {
    std::array<signed char, 256> table{};
    table.fill(-1);
    for (int c = '0'; c <= '9'; ++c)
        table[c] = static_cast<signed char>(c - '0');
    for (int c = 'A'; c <= 'F'; ++c)
        table[c] = static_cast<signed char>(c - 'A' + 10);
    for (int c = 'a'; c <= 'f'; ++c)
        table[c] = static_cast<signed char>(c - 'a' + 10);
    return table;
}();

// The value of a hexadecimal digit in either case, or -1.
inline int hex_value(char c) {
    return hex_values[static_cast<unsigned char>(c)];
}

// A NUL or white space. The visible ASCII characters are white space in no
// locale: only the others are asked about.
inline bool ends_text(char c) {
    auto code = static_cast<unsigned char>(c);
    if (code > ' ' && code < 0x7F) return false;
    return code == 0 || std::isspace(code);
}

} // namespace qx25
