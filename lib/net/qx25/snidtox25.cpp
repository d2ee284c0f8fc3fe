// Subnetwork number that prefixes an address text ("3." in "3.2342...").
#include "qx25.h"

namespace {

// 1 to 4 digits and a "."; digits followed by ".X" or ".N" are a DTE
// address with an extension marker instead.
uint32_t leading_subnetwork(const char *text) {
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
    return value;
}

} // namespace

extern "C" {

uint32_t snidtox25(const char *text) {
    return leading_subnetwork(text);
}

uint32_t linkidtox25(const char *text) {
    return leading_subnetwork(text);
}
}
