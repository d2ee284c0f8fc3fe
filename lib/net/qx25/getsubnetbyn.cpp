// Looking a configured link up by its alias name.
#include "name_databases.h"

#include <cstring>

using namespace qx25;

namespace {

bool has_name(const subnet_entry &entry, const void *name) {
    return entry.name != nullptr && std::strcmp(entry.name, static_cast<const char *>(name)) == 0;
}

} // namespace

extern "C" {

subnet_entry *getsubnetbyname(const char *name) {
    if (name == nullptr) return nullptr;
    return find_subnet(has_name, name);
}
}
