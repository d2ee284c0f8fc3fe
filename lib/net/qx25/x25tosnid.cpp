// Text form of a subnetwork (link) number.
#include "qx25.h"

#include <charconv>

namespace {

// The number in decimal, as "%lu" writes it: no more than its digits and
// the terminator are written.
void write_decimal(uint32_t number, char *text) {
    constexpr int most_digits = 10; // of a 32-bit number
    char *end = std::to_chars(text, text + most_digits, number).ptr;
    *end = '\0';
}

} // namespace

extern "C" {

int x25tosnid(uint32_t snid, char *text) {
    if (text == nullptr) return -1;
    if (snid == X25_NO_SNID)
        text[0] = '\0';
    else
        write_decimal(snid, text);
    return 1;
}

int x25tolinkid(uint32_t snid, char *text) {
    if (text == nullptr) return -1;
    write_decimal(snid, text);
    return 1;
}
}
