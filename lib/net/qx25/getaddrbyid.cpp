// The subnetwork record of a link number, for address conversion: the
// calling address of a link comes from here.
#include "qx25.h"

extern "C" {

subnet_entry *getaddrbyid(uint32_t snid) {
    return getsubnetbyid(snid);
}
}
