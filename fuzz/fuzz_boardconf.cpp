// The device data file boardconf on any text, through the reader that
// fills a device type table: every row stays terminated and in range, and
// the comments it copies are released again.
#include "qx25.h"

#include "fuzz_support.h"
#include "link_config.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

using qx25fuzz::require;
using qx25fuzz::terminated;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), true);
    (void)ready;
    qx25fuzz::write_file("config/boardconf", data, size);

    auto table = std::make_unique<device_type[]>(DEVICE_TYPE_ROWS);
    require(fill_linktype_struct(table.get()) == 1, "boardconf was not read");
    for (int row = 0; row < DEVICE_TYPE_ROWS; ++row) {
        const device_type &entry = table[row];
        require(terminated(entry.symbolic) && terminated(entry.device) && terminated(entry.wanmod),
                "a device type field is not terminated");
        require(entry.type <= DEVICE_LAN, "a device type of no kind");
        if (entry.comment != nullptr) std::free(entry.comment);
    }
    return 0;
}
