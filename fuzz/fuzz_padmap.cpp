// padmapconf on any text: every entry the enumeration returns has its free
// text terminated and its reserved bytes zero, padtos writes it within 256
// bytes, and the look-up by address finds an entry with that address.
#include "qx25.h"

#include "fuzz_support.h"

#include <cstdint>
#include <cstring>
#include <memory>
#include <vector>

using qx25fuzz::require;
using qx25fuzz::terminated;

namespace {

constexpr std::size_t pad_text_size = 256;

bool reserved_clear(const pad_entry &entry) {
    for (std::uint8_t byte : entry.reserved)
        if (byte != 0) return false;
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), true);
    (void)ready;
    qx25fuzz::write_file("config/padmapconf", data, size);

    std::vector<x25_address> addresses;
    auto text = std::make_unique<char[]>(pad_text_size);
    setpadent(0);
    for (int entries = 0; entries < 10000; ++entries) {
        pad_entry *entry = getpadent();
        if (entry == nullptr) break;
        require(terminated(entry->free_text), "the free text is not terminated");
        require(reserved_clear(*entry), "the reserved bytes are not zero");
        require(entry->address.dte_len <= 18 && entry->address.ext_len <= 40,
                "an address its record cannot hold");
        if (padtos(entry, text.get()) == 0)
            require(std::strlen(text.get()) < pad_text_size, "padtos wrote past 255 characters");
        if (addresses.size() < 8) addresses.push_back(entry->address);
    }
    endpadent();

    for (const x25_address &address : addresses) {
        pad_entry *found = getpadbyaddr(&address);
        require(found != nullptr && equalx25(&found->address, &address) == 1,
                "an entry of the enumeration is not found by its address");
    }
    getpadbystr(qx25fuzz::as_text(data, size < 80 ? size : 80).c_str());
    return 0;
}
