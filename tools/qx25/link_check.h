// The findings of one link file: what the library's reader reports, each
// message placed on the line that made it, and what the reader passes over
// or cuts without a word. The facts qx25 check compares across links are
// kept with them.
#pragma once

#include "command.h"
#include "findings.h"

#include <memory>

namespace qx25tool {

struct checked_link {
    file_findings findings;
    int number = -1; // from the file's name, -1 when it is no link file name
    // The records the reader makes of it; null when it cannot be read.
    std::unique_ptr<link_records> records;
    // The lines (from 1) of the last device, alias and full_address lines of
    // its SECTION LINK; 0 where there is none.
    std::size_t device_line = 0, alias_line = 0, address_line = 0;
};

// Checks the link file named `name` (as the reader places it) at `path`.
checked_link check_link_file(const std::string &name, const std::string &path);

} // namespace qx25tool
