// Devices that two links both use: link discovery keeps only one of them.
#pragma once

#include "qx25.h"

#include <optional>
#include <string>

namespace qx25tool {

// The name of device `index` of the link as a link file names it ("wan0"),
// "?" when the device table does not know it.
std::string device_name(const link_values &link, int index);

// A device of `a` that `b` uses too (same kind, board and line), by its
// name; nullopt when they share none.
std::optional<std::string> shared_device(const link_values &a, const link_values &b);

} // namespace qx25tool
