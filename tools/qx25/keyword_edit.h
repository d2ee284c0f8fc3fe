// The edit behind qx25 set: one keyword of one section of a link file given
// a new value by changing the value of its line, or by adding one line, and
// nothing else. The line is found with the library's line reader and the
// value is judged by the library's reader itself.
#pragma once

#include "record_parts.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qx25tool {

// A section of a link file, or a subsection of its SECTION MLP.
struct edit_target {
    int section;                    // SECTION_LINK ... SECTION_MLP
    int subsection;                 // 0, or SECTION_LAPB / SECTION_WAN inside SECTION MLP
    int position;                   // of the subsection of its kind, from 0
    std::string title;              // "X25", "LAPB subsection 2"
    const config_keyword *keywords; // the section's keyword table

    bool operator==(const edit_target &other) const {
        return section == other.section && subsection == other.subsection &&
               position == other.position;
    }
};

// "link", "x25", "llc2", "lapb", "wan", "mlp", or "lapb1" to "lapb5" and
// "wan1" to "wan5" for the subsections of SECTION MLP, in any case.
std::optional<edit_target> target_named(std::string_view name);

// The keyword of the target's table as the table spells it, or null.
const char *keyword_named(const edit_target &target, std::string_view name);

// Why a value cannot stand on a keyword line as it is, or nullopt.
std::optional<std::string> value_problem(std::string_view value);

// changed: the file is to take the new text. unchanged: the file reads the
// same with the value (it holds it already, or a later line sets again what
// the value sets). refused: the value or the file cannot take the edit.
enum class edit_outcome { changed, unchanged, refused };

struct keyword_edit {
    edit_outcome outcome = edit_outcome::refused;
    // Refused: what the library reported about the value, or else why not.
    std::vector<std::string> messages;
    std::string reason;

    // Unchanged and changed: the file's value for the keyword, if it has a
    // line for it.
    std::optional<std::string> old_value;

    // Changed: the new text, the line (from 1) changed or added, and what
    // the library reads from the new text.
    std::string new_text;
    std::size_t line = 0;
    bool added = false;
    record_parts expected;
    std::vector<std::string> expected_messages;
};

// Plans giving `keyword` of `target` the value in the link file `text`,
// named `file_name` in what the library reports. The value must be one the
// reader takes without a message; the new text must read as the old one
// with the keyword's value, and no other, changed, and without new
// messages. Nothing is written.
keyword_edit plan_keyword_edit(std::string_view text, std::string_view file_name,
                               const edit_target &target, const char *keyword,
                               std::string_view value);

// What the library reads from a link file: its records and messages.
struct reading {
    int result = 0;
    record_parts parts;
    std::vector<std::string> messages;
};
reading read_link_file(const std::string &path);

} // namespace qx25tool
