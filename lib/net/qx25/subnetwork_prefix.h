// The subnetwork number that prefixes an address text ("3." in "3.2342..."),
// shared by snidtox25 and stox25, which also needs where it ends.
#pragma once

#include "qx25.h"

namespace qx25 {

// 1 to 4 digits and a "."; digits followed by ".X" or ".N" are a DTE
// address with an extension marker instead. X25_NO_SNID when the text has
// no subnetwork number; else the number, with `dot` set to its ".".
inline uint32_t subnetwork_prefix(const char *text, const char *&dot) {
    if (text == nullptr || *text < '0' || *text > '9') return X25_NO_SNID;
    uint32_t value = 0;
    int digits = 0;
    while (digits < 4 && *text >= '0' && *text <= '9') {
        value = value * 10 + static_cast<uint32_t>(*text++ - '0');
        ++digits;
    }
    if (*text != '.') return X25_NO_SNID;
    char marker = text[1];
    if (marker == 'X' || marker == 'x' || marker == 'N' || marker == 'n') return X25_NO_SNID;
    dot = text;
    return value;
}

} // namespace qx25
