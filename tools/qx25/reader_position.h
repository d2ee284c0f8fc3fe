// Following a link file as the library's reader does, line by line: which
// section's record the keyword lines go to. Shared by the edits of qx25 set
// and the findings of qx25 check.
#pragma once

#include "qx25.h"

#include <string>
#include <string_view>
#include <vector>

namespace qx25tool {

// The keyword table of a section code (SECTION_LINK ... SECTION_MLP).
const config_keyword *keywords_of(int section);

// The word in upper case.
std::string upper(std::string_view word);

// The section code of a SECTION or SUBSECTION line's value as the reader
// finds it: the name without the blanks and tabs after it, in any case; 0
// for none.
int section_code(std::string_view name);

// Which record the reader gives the keyword lines that follow the lines read
// so far, with every record given: it follows SECTION, SUBSECTION and
// IDENTIFICATION lines as the reader does.
class reader_position {
  public:
    void follow(const config_line &line);

    int section() const { return section_; }
    // SECTION_LAPB or SECTION_WAN inside SECTION MLP, else 0.
    int subsection() const { return section_ == SECTION_MLP ? subsection_ : 0; }
    // The position of the current subsection among those of its kind, from 0.
    int position() const;
    // The keyword table of the record keyword lines now go to; null while
    // they go to none (before the first section, after an unknown one).
    const config_keyword *keywords() const;

  private:
    int section_ = 0;
    int subsection_ = 0;
    int lapb_count_ = 0;
    int wan_count_ = 0;
};

// The messages with every `from` in them replaced by `to`: the library names
// the scratch file it read, the tool the file it stands for.
std::vector<std::string> renamed(std::vector<std::string> messages, const std::string &from,
                                 std::string_view to);

} // namespace qx25tool
