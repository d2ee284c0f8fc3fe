#include "backup.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qx25tool {

namespace {

// A descriptor closed when the object goes.
class descriptor {
  public:
    explicit descriptor(int fd) : fd_(fd) {}
    ~descriptor() {
        if (fd_ >= 0) ::close(fd_);
    }
    descriptor(const descriptor &) = delete;
    descriptor &operator=(const descriptor &) = delete;
    int get() const { return fd_; }
    // Closes now; false when the close reported an error.
    bool close() {
        int fd = fd_;
        fd_ = -1;
        return ::close(fd) == 0;
    }

  private:
    int fd_;
};

std::string failure(const std::string &what, const std::string &path) {
    return what + " " + path + ": " + std::strerror(errno);
}

bool write_all(int fd, const char *data, std::size_t size) {
    while (size > 0) {
        ssize_t written = ::write(fd, data, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

// Copies the contents of one descriptor to another.
bool copy_contents(int from, int to) {
    char buffer[65536];
    for (;;) {
        ssize_t got = ::read(from, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return false;
        if (got == 0) return true;
        if (!write_all(to, buffer, static_cast<std::size_t>(got))) return false;
    }
}

} // namespace

std::string backup_name(const std::string &path) {
    return path + ".BAK";
}

std::string copy_file(const std::string &from, const std::string &to) {
    descriptor source(::open(from.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (source.get() < 0 || ::fstat(source.get(), &status) != 0)
        return failure("cannot read", from);
    if (!S_ISREG(status.st_mode)) return "cannot copy " + from + ": not a regular file";

    std::string temporary = to + ".XXXXXX";
    descriptor target(::mkstemp(temporary.data()));
    if (target.get() < 0) return failure("cannot create a file beside", to);
    bool copied = copy_contents(source.get(), target.get()) &&
                  ::fchmod(target.get(), status.st_mode & 07777) == 0 && ::fsync(target.get()) == 0;
    std::string error = copied ? std::string() : failure("cannot write", temporary);
    if (!target.close() && error.empty()) error = failure("cannot write", temporary);
    if (error.empty() && std::rename(temporary.c_str(), to.c_str()) != 0)
        error = failure("cannot rename " + temporary + " to", to);
    if (!error.empty()) ::unlink(temporary.c_str());
    return error;
}

} // namespace qx25tool
