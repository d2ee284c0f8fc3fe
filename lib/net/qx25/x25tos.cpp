// X.25 address to text: the inverse of stox25.
#include "qx25.h"

#include "nibbles.h"

#include <cstring>

using namespace qx25;

namespace {

// Most DTE digits each address class may write; classes 5 to 9 (MLP) are
// held only to what the record can carry.
int dte_limit(int address_class, bool &exact) {
    exact = false;
    switch (address_class) {
    case 1:
        exact = true;
        return 14;
    case 2:
    case 3:
        return 15;
    case 0:
    case 4:
        return 17;
    default:
        return 2 * sizeof(x25_address::dte);
    }
}

char dte_digit(int nibble, int address_class) {
    if (nibble <= 9) return static_cast<char>('0' + nibble);
    // Wildcards share their nibbles with E and F; only a checked class
    // that is not LAN writes them back as wildcards.
    if (address_class > 1) {
        if (nibble == 15) return '*';
        if (nibble == 14) return '?';
    }
    return static_cast<char>('A' + nibble - 10);
}

constexpr char hex_digits[] = "0123456789ABCDEF";

} // namespace

extern "C" {

int x25tos(const x25_address *address, char *text, unsigned int check) {
    if (text == nullptr || address == nullptr) return -1;
    int dte_len = address->dte_len;
    int ext_len = address->ext_len;
    if (dte_len > static_cast<int>(2 * sizeof address->dte) ||
        ext_len > static_cast<int>(2 * sizeof address->ext))
        return -1;

    // Room for any 32-bit number, not only the link numbers 0 to 9999.
    char subnetwork[16];
    if (x25tosnid(address->snid, subnetwork) < 0) return -1;

    int address_class = 0;
    if (check != 0 && address->snid != X25_NO_SNID) {
        address_class = getnettype(subnetwork);
        if (address_class < 0) return -1;
    }

    if (address->ext_type > X25_EXT_PVC) return -1;
    if (address->ext_type != X25_EXT_PVC && address_class == 2 && ext_len != 0) return -1;
    bool exact = false;
    int limit = dte_limit(address_class, exact);
    if (exact ? dte_len != limit : dte_len > limit) return -1;

    char *out = text;
    out = ::stpcpy(out, subnetwork);
    if (ext_len == 0 && dte_len == 0) return 0;
    if (subnetwork[0] != '\0') *out++ = '.';
    for (int i = 0; i < dte_len; ++i)
        *out++ = dte_digit(get_nibble(address->dte, i), address_class);

    *out++ = '.';
    if (address->ext_type == X25_EXT_PVC) {
        if (ext_len != 0) return -1;
        std::strcpy(out, "P");
        return 0;
    }
    if (ext_len == 0) {
        out[-1] = '\0';
        return 0;
    }
    *out++ = address->ext_type == X25_EXT_NON_NSAP ? 'X' : 'N';
    *out++ = '.';
    for (int i = 0; i < ext_len; ++i)
        *out++ = hex_digits[get_nibble(address->ext, i)];
    *out = '\0';
    return 0;
}
}
