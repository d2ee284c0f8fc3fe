// Text to X.25 address: [snid "."] DTE digits ["." ("N"|"X") "." extension | ".P"].
#include "qx25.h"

#include "nibbles.h"
#include "subnetwork_prefix.h"

#include <cstring>

using namespace qx25;

namespace {

constexpr int lan_class = 1;
constexpr int x25_1980_class = 2;
constexpr unsigned max_dte_nibbles = 2 * sizeof(x25_address::dte);
constexpr unsigned max_ext_nibbles = 2 * sizeof(x25_address::ext);
constexpr unsigned lan_dte_nibbles = 14; // 12 of MAC address, 2 of LSAP
constexpr int pvc_dte_nibbles = 3;

// Result of an address that stops after its subnetwork number: fine, except
// on a LAN link, which needs a MAC address.
int subnetwork_only(int address_class) {
    return address_class == lan_class ? -1 : 0;
}

// Reads the DTE digits at `p`; returns the position after them, or null when
// the digits break the rules of the address class. The record is zero:
// each digit goes into its half of the byte.
const char *parse_dte(const char *p, x25_address *address, int address_class) {
    unsigned count = 0;
    bool wildcard = false;
    for (; count < max_dte_nibbles; ++count, ++p) {
        int value = hex_value(*p);
        if (value < 0) {
            if (*p != '*' && *p != '?') break;
            value = *p == '*' ? 15 : 14;
            wildcard = true;
        }
        address->dte[count / 2] |= static_cast<uint8_t>(count % 2 == 0 ? value << 4 : value);
    }
    if (address_class == lan_class) {
        if (count != lan_dte_nibbles || wildcard) return nullptr;
    } else if (count > 17) {
        return nullptr;
    }
    address->dte_len = static_cast<uint8_t>(count);
    return p;
}

int parse_extension(const char *p, x25_address *address, int address_class) {
    if (ends_text(*p)) {
        address->ext_type = X25_EXT_NSAP; // a bare marker is accepted and forgotten
        return 0;
    }
    if (address_class == x25_1980_class) return -1;
    unsigned count = 0;
    for (int value; count < max_ext_nibbles && (value = hex_value(*p)) >= 0; ++p, ++count)
        address->ext[count / 2] |= static_cast<uint8_t>(count % 2 == 0 ? value << 4 : value);
    if (!ends_text(*p)) return -1;
    address->ext_len = static_cast<uint8_t>(count);
    return 0;
}

// The part after the DTE digits and their ".": the extension marker.
int parse_marker(const char *p, x25_address *address, int address_class) {
    char marker = *p;
    if (ends_text(marker)) return 0;
    if (marker < '.' || marker > 'x') return -1;
    if (marker == '.') return parse_extension(p + 1, address, address_class);
    if (hex_value(marker) >= 0) return parse_extension(p, address, address_class);
    switch (marker) {
    case 'N':
    case 'n':
    case 'X':
    case 'x':
        address->ext_type = (marker == 'X' || marker == 'x') ? X25_EXT_NON_NSAP : X25_EXT_NSAP;
        if (p[1] == '\0') return parse_extension(p + 1, address, address_class);
        if (p[1] != '.') return -1;
        return parse_extension(p + 2, address, address_class);
    case 'P':
    case 'p':
        address->ext_type = X25_EXT_PVC;
        return p[1] == '\0' && address->dte_len == pvc_dte_nibbles ? 0 : -1;
    default:
        return -1;
    }
}

} // namespace

extern "C" {

int stox25(const char *text, x25_address *address, unsigned int check) {
    if (text == nullptr || address == nullptr) return -1;
    std::memset(address, 0, sizeof *address);
    address->ext_type = X25_EXT_NSAP;
    // The subnetwork number's "." is the first one of the text.
    const char *dot = nullptr;
    address->snid = subnetwork_prefix(text, dot);
    bool has_snid = address->snid != X25_NO_SNID;

    int address_class = 0;
    if (check != 0 && has_snid) {
        address_class = getnettype(text);
        if (address_class < 0) address_class = 0;
    }

    const char *p = text;
    if (has_snid) {
        p = dot + 1;
        if (ends_text(*p)) return subnetwork_only(address_class);
    } else if (ends_text(*p)) {
        return subnetwork_only(address_class);
    }

    if (*p != '.') {
        p = parse_dte(p, address, address_class);
        if (p == nullptr) return -1;
    } else if (address_class == lan_class) {
        return -1;
    }

    if (ends_text(*p)) return 0;
    if (*p != '.') return -1;
    return parse_marker(p + 1, address, address_class);
}
}
