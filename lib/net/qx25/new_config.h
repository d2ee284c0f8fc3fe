// Internals of the configuration line reader shared with the link reader.
#pragma once

#include "qx25.h"

#include <cstddef>
#include <span>

extern "C" {

// Queues a copy of the line: the next x25_read_config_line on the same
// stream delivers it instead of reading the file.
void __unread_config_line(FILE *stream, const config_line *line);

// Stores one keyword line of the IDENTIFICATION block into the record.
void fill_identification(const config_line *line, config_identification *ids);
}

namespace qx25 {

// The buffer the link reader gives the stream of a link file: most files
// are read whole with one read.
inline constexpr std::size_t config_stream_buffer_size = 16384;

// x25_open_config_file, with `buffer`, when not empty, as the stream's
// buffer: it must outlive the stream.
FILE *open_config_stream(const char *name, config_identification *ids, int mode,
                         std::span<char> buffer);

// What a reader of logical lines wants of each.
enum class logical_line {
    split,   // every logical line, taken apart
    heading, // only IDENTIFICATION, SECTION and SUBSECTION lines
};

// Reads the rest of an open configuration stream in blocks instead of one
// physical line at a time, and gives the same logical lines as
// x25_read_config_line, pushed-back lines first. For a reader that passes
// over most of a file's lines: they are not taken apart.
class config_block_reader {
  public:
    explicit config_block_reader(FILE *stream);
    ~config_block_reader();
    config_block_reader(const config_block_reader &) = delete;
    config_block_reader &operator=(const config_block_reader &) = delete;

    // False when no block could be allocated: read line by line then.
    bool ready() const { return block_ != nullptr; }
    // As x25_read_config_line; with `heading`, keyword lines are passed
    // over, their comments dropped, and the next other line is delivered.
    int read(config_line *line, logical_line wanted);

  private:
    static constexpr std::size_t block_size = 16384;
    static constexpr std::size_t max_put_off = 64;

    // The next physical line, as fgets would read it, where it lies in the
    // block; false at the end of the file or on a read error.
    bool next_physical_line(const char *&start, std::size_t &length, config_line *line);
    // While only headings are wanted, the comment lines are not added to
    // the line's comments as they come: most are dropped at the next
    // keyword line. They are added before a heading, and before the part of
    // the block that holds them is reused.
    void put_off_comment(const char *start, std::size_t length, config_line *line);
    void add_put_off_comments(config_line *line);

    struct block_part {
        std::size_t start;
        std::size_t length;
    };

    FILE *stream_;
    char *block_;
    std::size_t held_ = 0; // bytes in the block
    std::size_t used_ = 0; // bytes of it taken
    bool at_end_ = false;
    int error_ = 0; // of the read that failed
    block_part put_off_[max_put_off];
    std::size_t put_off_count_ = 0;
};

} // namespace qx25
