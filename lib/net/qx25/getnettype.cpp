// Address class of a link: the class column of the network type table at
// the network type that SECTION LINK of the link's file gives.
#include "link_config.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

extern "C" {

const net_type_row link_nettype[net_type_rows] = {
    {"WAN88", 4}, {"WAN84", 3}, {"WAN80", 2}, {"LAN", 1},  {"MLP1", 5},
    {"MLP2", 6},  {"MLP3", 7},  {"MLP4", 8},  {"MLP5", 9}, {"?", 0},
};

int getnettype(const char *text) {
    if (text == nullptr) return -1;
    // The leading number, as atoi reads it ("3.1234" names link 3).
    long number = std::strtol(text, nullptr, 10);
    if (number >= 255 || number < INT_MIN) return -1;

    // A link without a file has no class; asking silently keeps address
    // conversion free of messages about it.
    config_identification identification{};
    link_section link{};
    int mode = X25_CONFIG_SILENT;
    int result = x25_read_config_parameters(static_cast<int>(number), &identification, &link,
                                            nullptr, nullptr, nullptr, nullptr, nullptr, &mode);
    bool opened = mode != X25_CONFIG_SILENT;
    int index = link.values.net_type;
    __release_link_section(&link);
    if (result != 0 || !opened || index >= net_type_rows) return -1;
    int address_class = link_nettype[index].address_class;
    return address_class != 0 ? address_class : -1;
}
}
