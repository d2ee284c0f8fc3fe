// Looking a configured link up by its subnetwork (link) number.
#include "name_databases.h"

using namespace qx25;

namespace {

bool has_number(const subnet_entry &entry, const void *snid) {
    return entry.address.snid == *static_cast<const uint32_t *>(snid);
}

} // namespace

extern "C" {

subnet_entry *getsubnetbyid(uint32_t snid) {
    return find_subnet(has_number, &snid);
}
}
