#include "device_use.h"

#include "link_config.h"

#include <algorithm>

namespace qx25tool {

namespace {

int device_count(const link_values &link) {
    return std::min<int>(link.device_count, LINK_MAX_DEVICES);
}

} // namespace

std::string device_name(const link_values &link, int index) {
    char name[sizeof __config_linktype[0].device];
    int instance = 0;
    if (x25_device_instance(&link, index, name, &instance) != 0) return "?";
    return name + std::to_string(instance);
}

std::optional<std::string> shared_device(const link_values &a, const link_values &b) {
    for (int i = 0; i < device_count(a); ++i)
        for (int j = 0; j < device_count(b); ++j)
            if (a.device_type[i] == b.device_type[j] && a.device_board[i] == b.device_board[j] &&
                a.device_line[i] == b.device_line[j])
                return device_name(a, i);
    return std::nullopt;
}

} // namespace qx25tool
