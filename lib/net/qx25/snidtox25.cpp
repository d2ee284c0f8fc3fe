// Subnetwork number that prefixes an address text ("3." in "3.2342...").
#include "subnetwork_prefix.h"

extern "C" {

uint32_t snidtox25(const char *text) {
    const char *dot;
    return qx25::subnetwork_prefix(text, dot);
}

uint32_t linkidtox25(const char *text) {
    return snidtox25(text);
}
}
