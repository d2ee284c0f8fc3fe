// Text form of a subnetwork (link) number.
#include "qx25.h"

#include <cstdio>

extern "C" {

int x25tosnid(uint32_t snid, char *text) {
    if (text == nullptr) return -1;
    if (snid == X25_NO_SNID)
        text[0] = '\0';
    else
        std::sprintf(text, "%lu", static_cast<unsigned long>(snid));
    return 1;
}

int x25tolinkid(uint32_t snid, char *text) {
    if (text == nullptr) return -1;
    std::sprintf(text, "%lu", static_cast<unsigned long>(snid));
    return 1;
}
}
