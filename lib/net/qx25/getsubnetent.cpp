// The configured links as subnetworks: an enumeration over the chain that
// link discovery builds, in ascending link number.
#include "name_databases.h"

#include "link_config.h"

#include <cstdlib>
#include <cstddef>

static_assert(offsetof(subnet_entry, name) == sizeof(x25_address) + (sizeof(void *) == 8 ? 4 : 0));
static_assert(sizeof(void *) != 4 || sizeof(subnet_entry) == 44);
static_assert(sizeof(x25_address) == 36);

using namespace qx25;

namespace {

subnet_entry subnetentry;
link_node *initial_data; // the chain, null when none is held
link_node *cur_data;     // the next link to deliver, null at the end
link_node *delivered;    // the link subnetentry was copied from

// The texts of the record a look-up returned: taken from the chain before
// it was freed, released at the next call into the enumeration.
char *kept_name;
char *kept_description;

void release_kept_texts() {
    std::free(kept_name);
    std::free(kept_description);
    kept_name = nullptr;
    kept_description = nullptr;
}

void free_chain() {
    for (link_node *node = initial_data; node != nullptr;) {
        link_node *next = node->next;
        __release_link_section(&node->link);
        std::free(node);
        node = next;
    }
    initial_data = nullptr;
    cur_data = nullptr;
    delivered = nullptr;
}

void build_chain() {
    free_chain();
    if (x25_find_link_parameters(&initial_data) != 0) initial_data = nullptr;
    cur_data = initial_data;
}

} // namespace

namespace qx25 {

subnet_entry *find_subnet(bool (*accept)(const subnet_entry &entry, const void *key),
                          const void *key) {
    setsubnetent();
    subnet_entry *found = nullptr;
    for (subnet_entry *entry = getsubnetent(); entry != nullptr; entry = getsubnetent()) {
        if (accept(*entry, key)) {
            found = entry;
            break;
        }
    }
    if (found != nullptr) {
        // The record points into the node; the node's texts move to the
        // kept ones so that freeing the chain leaves them alone.
        subnet_entry &texts = delivered->link.values.subnet;
        kept_name = texts.name;
        kept_description = texts.description;
        texts.name = nullptr;
        texts.description = nullptr;
    }
    endsubnetent();
    return found;
}

} // namespace qx25

extern "C" {

void setsubnetent(void) {
    release_kept_texts();
    build_chain();
}

subnet_entry *getsubnetent(void) {
    release_kept_texts();
    subnetentry = subnet_entry{};
    if (initial_data == nullptr) {
        build_chain();
        if (initial_data == nullptr) return nullptr;
    }
    if (cur_data == nullptr) return nullptr;
    delivered = cur_data;
    subnetentry = delivered->link.values.subnet;
    cur_data = delivered->next;
    return &subnetentry;
}

void endsubnetent(void) {
    free_chain();
}
}
