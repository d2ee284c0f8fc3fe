// What a reading of a link file gave, laid out as a fixed list of parts, so
// that two readings can be compared value by value and comment by comment.
#pragma once

#include "command.h"

#include <cstddef>
#include <optional>
#include <span>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qx25tool {

struct record_part {
    std::string_view record; // "LINK", "X25", "LAPB subsection 2", "identification", ...
    std::string_view what;   // "values", "alias", "comments", "trailer", ...
    const char *keyword;     // the keyword whose comment this is, or null
    bool present;            // false for a text the record does not hold
    bool bytewise;           // a values block: compared byte by byte
    std::string bytes;
};

// Every part of the records, always in the same order: the identification,
// the section records with their comments (five slots of each kind of MLP
// subsection, empty or not) and the X.32 records. Pointers are left out of
// the values blocks (texts are parts of their own), and so are the link
// numbers the reader stamps into the X.32 records.
using record_parts = std::vector<record_part>;
record_parts parts_of(const link_records &records);

// Where two readings differ first ("X25 values, byte 12", "LINK alias"), or
// nullopt when they are the same.
std::optional<std::string> first_difference(const record_parts &a, const record_parts &b);

// Where `now` differs from `before` other than by holding what one of the
// `changed` readings holds there; nullopt when nowhere.
std::optional<std::string> stray_difference(const record_parts &before,
                                            std::span<const record_parts> changed,
                                            const record_parts &now);

} // namespace qx25tool
