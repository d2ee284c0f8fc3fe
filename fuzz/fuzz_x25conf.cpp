// The older single-file link list x25conf on any text, read into a chain of
// link nodes: one node a link line, each list doubly linked, a valid node
// with one device and an invalid one with none, every text terminated, and
// every node and copy released again.
#include "qx25.h"

#include "fuzz_support.h"
#include "release.h"

#include <cstdint>
#include <cstring>

using qx25fuzz::require;
using qx25fuzz::terminated;

namespace {

const char *const subnetworks = "1\tsitelan\tSite LAN\n2\tpdn\tLeased line to the PDN\n"
                                "3\tpdnmlp\tMultilink to the PDN\n";

void check_node(const link_node &node) {
    const link_values &values = node.link.values;
    require(values.device_count <= 1, "an imported link with more than one device");
    require(terminated(values.local_address), "a local address is not terminated");
    if (values.subnet.name != nullptr)
        require(std::strlen(values.subnet.name) < 1024, "a long alias");
    if (values.subnet.description != nullptr)
        require(std::strlen(values.subnet.description) < 1024, "a long description");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), qx25fuzz::write_boardconf(),
                               qx25fuzz::write_file("config/subnetworks", subnetworks), true);
    (void)ready;
    qx25fuzz::write_file("config/x25conf", data, size);

    link_node *head = nullptr;
    require(read_link_parameters(&head) == 0, "x25conf was not read");
    const link_node *previous = nullptr;
    for (const link_node *node = head; node != nullptr; node = node->next) {
        require(node->prev == previous, "the chain is broken backwards");
        check_node(*node);
        previous = node;
    }
    qx25tool::release(head);
    return 0;
}
