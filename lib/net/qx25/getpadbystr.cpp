// The call string of a host name or an X.25 address: the called address,
// then " +" and the calling address of its link, then the facilities of its
// PAD map entry.
#include "qx25.h"

#include <cstring>

namespace {

// Room for the longest call string: two addresses, the separators and the
// longest facility text.
char call_string[512];

char *append(char *end, const char *text) {
    return ::stpcpy(end, text);
}

} // namespace

extern "C" {

char *getpadbystr(const char *text) {
    call_string[0] = '\0';
    if (text == nullptr) return nullptr;

    x25_address called;
    if (const xhost_entry *host = getxhostbyname(text))
        called = *host->xh_addr;
    else if (stox25(text, &called, 1) != 0)
        return nullptr;

    char piece[256];
    if (x25tos(&called, piece, 0) != 0) return call_string;
    char *end = append(call_string, piece);

    const subnet_entry *subnet = getaddrbyid(called.snid);
    if (subnet != nullptr && subnet->address.dte_len != 0 &&
        x25tos(&subnet->address, piece, 0) == 0) {
        end = append(end, " +");
        end = append(end, piece);
    }

    const pad_entry *entry = getpadbyaddr(&called);
    if (entry != nullptr && padtos(entry, piece) == 0) {
        end = append(end, " ");
        append(end, piece);
    }
    return call_string;
}
}
