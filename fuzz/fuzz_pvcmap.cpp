// pvcmapconf on any text, read onto a chain of four links: every circuit
// hangs on the link it names, each list is doubly linked in both
// directions, packet size indexes stay in their table, and every record is
// released again.
#include "qx25.h"

#include "fuzz_support.h"
#include "link_config.h"

#include <cstdint>
#include <cstdlib>
#include <memory>

using qx25fuzz::require;

namespace {

constexpr std::uint32_t link_numbers[] = {0, 1, 7, 254};
constexpr int links = sizeof link_numbers / sizeof link_numbers[0];

void check_circuits(const link_node &node) {
    const pvc_entry *previous = nullptr;
    for (const pvc_entry *record = node.link.values.pvcs; record != nullptr;
         record = record->next) {
        require(record->prev == previous, "a circuit list is broken backwards");
        require(static_cast<std::uint32_t>(record->link) == node.link.values.subnet.address.snid,
                "a circuit hangs on another link");
        require(record->lcn <= 0xFF, "a channel number kept more than 8 bits");
        require(record->pktsize[0] <= 8 && record->pktsize[1] <= 8,
                "a packet size index is outside its table");
        previous = record;
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), true);
    (void)ready;
    qx25fuzz::write_file("config/pvcmapconf", data, size);

    auto chain = std::make_unique<link_node[]>(links);
    for (int i = 0; i < links; ++i) {
        chain[i].link.values.subnet.address.snid = link_numbers[i];
        chain[i].prev = i > 0 ? &chain[i - 1] : nullptr;
        chain[i].next = i + 1 < links ? &chain[i + 1] : nullptr;
    }
    __fill_PVC_lists(&chain[0]);
    for (int i = 0; i < links; ++i) {
        check_circuits(chain[i]);
        free_link_item(&chain[i].link.values);
    }
    return 0;
}
