// The shared reader of the line-oriented name databases.
#include "text_database.h"

#include "paths.h"

#include <algorithm>
#include <cstring>
#include <sys/types.h>

namespace qx25 {

const char *database_path(const char *name, char *buffer, std::size_t size) {
    // The separator is added even when the directory ends in one.
    int length = std::snprintf(buffer, size, "%s/%s", config_dir(), name);
    if (length < 0 || static_cast<std::size_t>(length) >= size) return nullptr;
    return buffer;
}

FILE *open_database_file(const char *name) {
    char path[4096];
    const char *file = database_path(name, path, sizeof path);
    return file != nullptr ? open_regular_file(file) : nullptr;
}

bool read_database_line(FILE *stream, char *line, std::size_t size, bool skip_empty) {
    while (read_bounded_line(stream, line, size) != line_read::end) {
        if (line[0] == '#') continue;
        if (skip_empty && line[0] == '\n') continue;
        return true;
    }
    return false;
}

bool cut_at_comment(char *line) {
    char *end = std::strpbrk(line, "#\n");
    if (end == nullptr) return false;
    *end = '\0';
    return true;
}

bool text_database::open() {
    if (stream_ != nullptr) return true;
    stream_ = open_database_file(file_name_);
    if (stream_ == nullptr) return false;
    std::setvbuf(stream_, buffer_, _IOFBF, sizeof buffer_);
    at_start_ = true;
    return true;
}

void text_database::start(int stay_open) {
    if (stream_ == nullptr) {
        open();
    } else {
        std::rewind(stream_);
        at_start_ = true;
    }
    if (stay_open != 0) stay_open_ = true;
}

void text_database::finish() {
    if (stream_ == nullptr || stay_open_) return;
    std::fclose(stream_);
    stream_ = nullptr;
}

namespace {

// Whether the parser's verdict on a line ends a search; `found` tells
// whether it ends with an entry.
bool ends_search(line_verdict verdict, bool &found) {
    found = verdict == line_verdict::entry;
    return verdict != line_verdict::skip;
}

} // namespace

bool text_database::next(parser parse) {
    if (!open()) return false;
    at_start_ = false;
    bool found;
    while (read_database_line(stream_, line, sizeof line, false))
        if (ends_search(parse(line), found)) return found;
    return false;
}

} // namespace qx25

namespace qx25 {

namespace {

// The block the look-ups by text read the file in.
constexpr std::size_t block_size = std::size_t{1} << 16;
char block[block_size];

// What read_database_line makes of a physical line of `length` characters
// (newline not counted): its first database_line_size - 1 characters, with
// the newline only when that is all of it and it ended in one.
void as_database_line(const char *text, std::size_t length, bool ends_in_newline, char *line) {
    std::size_t kept = std::min(length, database_line_size - 1);
    std::memcpy(line, text, kept);
    if (ends_in_newline && length < database_line_size - 1) line[kept++] = '\n';
    line[kept] = '\0';
}

} // namespace

bool text_database::next_holding(const char *needle, parser parse) {
    if (!open()) return false;
    const std::size_t needle_length = std::strlen(needle);
    off_t block_offset = at_start_ ? 0 : ftello(stream_); // of block[0] in the file
    at_start_ = false;
    std::size_t held = 0;
    for (;;) {
        std::size_t got = std::fread(block + held, 1, block_size - held, stream_);
        held += got;
        bool at_end = got == 0 || std::feof(stream_) || std::ferror(stream_);
        // The lines whole in the block; at the end of the file a last line
        // without newline counts too, but not one cut short by an error.
        const char *last_newline = static_cast<const char *>(::memrchr(block, '\n', held));
        std::size_t whole = last_newline != nullptr ? last_newline - block + 1 : 0;
        if (at_end && !std::ferror(stream_)) whole = held;
        if (whole == 0 && !at_end) {
            // A line longer than the block: read the ordinary way.
            if (fseeko(stream_, block_offset, SEEK_SET) != 0 ||
                !read_database_line(stream_, line, sizeof line, false))
                return false;
            block_offset = ftello(stream_);
            held = 0;
            bool found;
            if (std::strstr(line, needle) != nullptr && ends_search(parse(line), found))
                return found;
            continue;
        }

        // Every line that holds the needle, in file order.
        const char *region_end = block + whole;
        for (const char *from = block; from < region_end;) {
            const char *hit =
                static_cast<const char *>(::memmem(from, region_end - from, needle, needle_length));
            if (hit == nullptr) break;
            const char *start = static_cast<const char *>(::memrchr(from, '\n', hit - from));
            start = start != nullptr ? start + 1 : from;
            const char *newline =
                static_cast<const char *>(std::memchr(hit, '\n', region_end - hit));
            const char *end = newline != nullptr ? newline : region_end;
            from = newline != nullptr ? newline + 1 : region_end;
            if (*start == '#') continue;
            as_database_line(start, end - start, newline != nullptr, line);
            bool found;
            if (!ends_search(parse(line), found)) continue;
            // Where reading line by line would have stopped.
            if (found && stay_open_ &&
                fseeko(stream_, block_offset + (from - block), SEEK_SET) != 0)
                return false;
            return found;
        }
        if (at_end) return false;
        std::memmove(block, region_end, held - whole);
        block_offset += static_cast<off_t>(whole);
        held -= whole;
    }
}

} // namespace qx25
