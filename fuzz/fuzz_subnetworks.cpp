// The older subnetworks file on any text: every entry's texts are
// terminated, its address is one stox25 could have made, and the look-up
// by number finds a subnetwork the enumeration found.
#include "qx25.h"

#include "fuzz_support.h"

#include <cstdint>
#include <cstring>
#include <vector>

using qx25fuzz::require;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), true);
    (void)ready;
    qx25fuzz::write_file("config/subnetworks", data, size);

    std::vector<std::uint32_t> numbers;
    __setsubnetent(0);
    for (int entries = 0; entries < 10000; ++entries) {
        subnet_entry *entry = __getsubnetent();
        if (entry == nullptr) break;
        require(entry->address.dte_len <= 18 && entry->address.ext_len <= 40,
                "an address its record cannot hold");
        if (entry->name != nullptr) require(std::strlen(entry->name) < 1024, "a long name");
        if (entry->description != nullptr)
            require(std::strlen(entry->description) < 1024, "a long description");
        if (numbers.size() < 8) numbers.push_back(entry->address.snid);
    }
    __endsubnetent();

    for (std::uint32_t number : numbers) {
        subnet_entry *found = __get_subnet(number);
        require(found != nullptr && found->address.snid == number,
                "a subnetwork of the enumeration is not found by its number");
    }
    __get_subnet(size > 0 ? data[0] : 0);
    return 0;
}
