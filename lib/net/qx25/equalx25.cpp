// Comparison of X.25 addresses.
#include "qx25.h"

#include "nibbles.h"

#include <algorithm>
#include <cstring>

extern "C" {

int x25add_equal(const uint8_t *a, const uint8_t *b, int nibbles) {
    if (nibbles <= 0) return 1;
    if (std::memcmp(a, b, static_cast<std::size_t>(nibbles / 2)) != 0) return 0;
    if (nibbles % 2 != 0 && (a[nibbles / 2] >> 4) != (b[nibbles / 2] >> 4)) return 0;
    return 1;
}

int equalx25(const x25_address *a, const x25_address *b) {
    if (a == nullptr || b == nullptr) return 0;
    if (a->snid != b->snid || a->ext_type != b->ext_type || a->dte_len != b->dte_len ||
        a->ext_len != b->ext_len)
        return 0;
    // Lengths beyond the fields come only from hand-made records; compare
    // what the fields hold rather than read past them.
    int ext_nibbles = std::min<int>(a->ext_len, 2 * sizeof a->ext);
    int dte_nibbles = std::min<int>(a->dte_len, 2 * sizeof a->dte);
    return x25add_equal(a->ext, b->ext, ext_nibbles) && x25add_equal(a->dte, b->dte, dte_nibbles);
}
}
