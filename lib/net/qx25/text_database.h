// The line-oriented name databases (xhosts, subnetworks, padmapconf,
// x29profile) share one reader: it forms the file's path in the
// configuration directory, opens, rewinds and closes the file with the
// stay-open rule, reads bounded lines and skips comment lines. Each database
// brings only its file name and its line parser.
#pragma once

#include "text_file.h"

#include <cstddef>
#include <cstdio>

namespace qx25 {

// A database line: at most 1023 characters and its newline.
inline constexpr std::size_t database_line_size = 1025;

// What a line parser makes of one line.
enum class line_verdict {
    skip,  // not an entry: read on
    entry, // the line gave an entry
    stop,  // the enumeration ends here (no entry)
};

// The path of a database file: the configuration directory, "/" and the
// name. Null when it does not fit the buffer.
const char *database_path(const char *name, char *buffer, std::size_t size);

// Opens a database file of the configuration directory for reading, or null.
FILE *open_database_file(const char *name);

// Reads the next line that does not begin with "#" (and, when asked, is not
// empty) into `line`. A line longer than the buffer keeps its head, without
// newline; its tail never becomes a line. False at end of file.
bool read_database_line(FILE *stream, char *line, std::size_t size, bool skip_empty);

// The first of "#" and newline in the line is replaced by the end of the
// text; false when the line holds neither (a last line without newline, or
// the head of an over-long line).
bool cut_at_comment(char *line);

inline bool is_blank(char c) {
    return c == ' ' || c == '\t';
}
inline char *skip_blanks(char *p) {
    while (is_blank(*p))
        ++p;
    return p;
}
inline const char *skip_blanks(const char *p) {
    while (is_blank(*p))
        ++p;
    return p;
}

// One database file with its enumeration state: the stream (null when
// closed), the stay-open flag and the line buffer that entries point into.
// Lives in static storage, one per database, as the enumerations are
// process-wide.
class text_database {
  public:
    using parser = line_verdict (*)(char *line);

    constexpr explicit text_database(const char *file_name) : file_name_(file_name) {}
    text_database(const text_database &) = delete;
    text_database &operator=(const text_database &) = delete;

    // set...ent: opens the file when it is closed, else rewinds it; a
    // non-zero flag keeps the file open from then on.
    void start(int stay_open);
    // end...ent: closes the file unless it is kept open.
    void finish();
    // get...ent: opens the file when needed, then hands lines to the parser
    // until it accepts one (true) or refuses to go on or the file ends
    // (false).
    bool next(parser parse);
    // next(), for a parser that accepts no line without `needle` in it:
    // the file is read in large blocks and only the lines that hold the
    // needle are handed to the parser, each as next() would hand it over.
    // The file is left where next() would leave it.
    bool next_holding(const char *needle, parser parse);

    // The line last read; the entries of the database point into it.
    char line[database_line_size] = {};

  private:
    // Opens the file when it is closed; false when it cannot be opened.
    bool open();

    const char *file_name_;
    FILE *stream_ = nullptr;
    bool stay_open_ = false;
    bool at_start_ = false; // nothing read since the file was opened or rewound
    // The stream's buffer: one stream at a time per database, and given
    // here, the C library does not ask the file system for a size of its own.
    char buffer_[BUFSIZ] = {};
};

} // namespace qx25
