// What qx25 import makes of x25conf: the links to write, each with the
// lines it came from, and a report for every line that is left out.
#pragma once

#include "qx25.h"

#include <string>
#include <vector>

namespace qx25tool {

// One device of a link: a row of the inventory's device table, a board and
// a line.
struct legacy_device {
    int row;
    int board;
    int line;
};

// A link of x25conf: the values of its first line, the devices of all its
// lines (several lines for one link make an MLP link).
struct planned_link {
    int number;
    std::vector<int> lines; // x25conf line numbers, in file order
    const link_values *first;
    std::vector<legacy_device> devices;
};

struct import_plan {
    std::vector<planned_link> links;   // in order of first appearance
    std::vector<std::string> problems; // "x25conf line N: ..." for each line left out
};

// Sorts the nodes read_link_parameters gave into links and problems. The
// nodes must stay alive while the plan is used.
import_plan plan_import(const link_node *head);

// The name a link file gives a device ("wan1").
std::string legacy_device_name(const legacy_device &device);

} // namespace qx25tool
