// Opening and reading the text files of the library.
#include "text_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qx25 {

namespace {

// Keeps the descriptor when it is a regular file; otherwise closes it and
// sets errno to say what stood there.
bool keep_if_regular(int fd) {
    struct stat status {};
    if (fstat(fd, &status) != 0) {
        int saved = errno;
        close(fd);
        errno = saved;
        return false;
    }
    if (!S_ISREG(status.st_mode)) {
        close(fd);
        errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    return true;
}

// Turns blocking back on for a descriptor opened with O_NONBLOCK as its
// only status flag (clearing them all does it in one call); closes it on
// failure.
bool blocking_again(int fd) {
    if (fcntl(fd, F_SETFL, 0) == -1) {
        int saved = errno;
        close(fd);
        errno = saved;
        return false;
    }
    return true;
}

FILE *stream_of(int fd, const char *mode) {
    FILE *stream = fdopen(fd, mode);
    if (stream == nullptr) {
        int saved = errno;
        close(fd);
        errno = saved;
    }
    return stream;
}

} // namespace

FILE *open_regular_file(const char *path) {
    // Without O_NONBLOCK, opening a FIFO would wait for a writer. Reading a
    // regular file never waits, so the flag can stay: it has no effect on
    // regular files, and one system call a file is saved.
    int fd = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (fd == -1 || !keep_if_regular(fd)) return nullptr;
    return stream_of(fd, "r");
}

FILE *create_regular_file(const char *path) {
    // Truncated only once it is known to be a regular file.
    int fd = open(path, O_WRONLY | O_CREAT | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, 0666);
    if (fd == -1 || !keep_if_regular(fd) || !blocking_again(fd)) return nullptr;
    if (ftruncate(fd, 0) != 0) {
        int saved = errno;
        close(fd);
        errno = saved;
        return nullptr;
    }
    return stream_of(fd, "w");
}

line_read read_bounded_line(FILE *stream, char *line, std::size_t size) {
    // fgets does the bulk of the work. A line may hold NUL bytes, so the
    // last byte, which fgets sets only when it fills the buffer, tells
    // whether the line may go on.
    line[size - 1] = '\n';
    // The library is for one thread at a time: no stream locking per line.
    if (::fgets_unlocked(line, static_cast<int>(size), stream) == nullptr) return line_read::end;
    if (line[size - 1] != '\0' || line[size - 2] == '\n') return line_read::ok;
    // The buffer is full: a newline right after it is dropped, anything
    // else makes the line too long, and its rest is skipped.
    bool fits = true;
    for (int c = getc_unlocked(stream); c != EOF && c != '\n'; c = getc_unlocked(stream))
        fits = false;
    return fits ? line_read::ok : line_read::too_long;
}

} // namespace qx25
