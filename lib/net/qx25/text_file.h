// Opening and reading the text files of the library. Every file the library
// expects is a regular file: a FIFO, a device or a directory in its place is
// refused at once instead of blocking the caller or being read as a file.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>

namespace qx25 {

struct file_closer {
    void operator()(FILE *stream) const { std::fclose(stream); }
};
using file_ptr = std::unique_ptr<FILE, file_closer>;

// fopen(path, "r") for a regular file. Anything else gives null with errno
// EISDIR for a directory and EINVAL for a FIFO, socket or device; the open
// itself never waits for a writer.
FILE *open_regular_file(const char *path);

// fopen(path, "w") for a regular file or a new one: created with mode 0666
// less the umask, truncated when it exists. Anything else is refused as by
// open_regular_file, and is neither truncated nor waited on.
FILE *create_regular_file(const char *path);

enum class line_read { ok, too_long, end };

// Reads one physical line, newline included, into a buffer of `size` bytes
// (at least 2). A line of up to size - 1 characters with its newline is read
// whole (the newline is dropped when it alone does not fit). A longer line is
// read to its end, its first size - 1 characters kept, and reported as too
// long: its tail never becomes a line of its own.
line_read read_bounded_line(FILE *stream, char *line, std::size_t size);

} // namespace qx25
