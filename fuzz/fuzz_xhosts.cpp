// xhosts on any text: the enumeration returns entries whose texts are
// terminated, whose aliases stay within their bound and whose address is a
// record stox25 could have made; the look-ups by name and by address find
// what the enumeration found.
#include "qx25.h"

#include "fuzz_support.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

using qx25fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), true);
    (void)ready;
    qx25fuzz::write_file("config/xhosts", data, size);

    std::vector<std::string> names;
    std::vector<x25_address> addresses;
    setxhostent(0);
    for (int entries = 0; entries < 10000; ++entries) {
        xhost_entry *entry = getxhostent();
        if (entry == nullptr) break;
        require(entry->xh_name != nullptr && entry->xh_addr != nullptr,
                "an entry is missing parts");
        require(entry->xh_addrtype == 1 && entry->xh_length == 36, "an entry of another kind");
        int aliases = 0;
        for (char **alias = entry->xh_aliases; alias != nullptr && *alias != nullptr; ++alias)
            require(std::strlen(*alias) < 1024 && ++aliases <= XHOST_MAX_ALIASES,
                    "too many aliases");
        require(entry->xh_addr->dte_len <= 18 && entry->xh_addr->ext_len <= 40,
                "an address its record cannot hold");
        if (names.size() < 8) {
            names.emplace_back(entry->xh_name);
            addresses.push_back(*entry->xh_addr);
        }
    }
    endxhostent();

    for (std::size_t i = 0; i < names.size(); ++i) {
        xhost_entry *by_name = getxhostbyname(names[i].c_str());
        require(by_name != nullptr, "a host of the enumeration is not found by its name");
        xhost_entry *by_address = getxhostbyaddr(&addresses[i], 36, 1);
        require(by_address != nullptr && equalx25(by_address->xh_addr, &addresses[i]) == 1,
                "a host of the enumeration is not found by its address");
    }
    getxhostbyname(qx25fuzz::as_text(data, size < 64 ? size : 64).c_str());
    return 0;
}
