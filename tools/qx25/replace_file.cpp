#include "replace_file.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace qx25tool {

namespace {

int system_error() {
    return errno != 0 ? errno : EIO;
}

// The mode the new file takes: the old file's, or what creating it anew
// would give.
mode_t mode_for(const std::string &path) {
    struct stat old;
    if (::stat(path.c_str(), &old) == 0) return old.st_mode & 07777;
    mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

int flush_to_disk(const char *path) {
    int fd = ::open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0) return system_error();
    int result = ::fsync(fd) == 0 ? 0 : system_error();
    if (::close(fd) != 0 && result == 0) result = system_error();
    return result;
}

std::string directory_of(const std::string &path) {
    std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

} // namespace

int replace_file(const std::string &path, const std::function<int(const char *)> &write) {
    std::string fresh = path + ".new-XXXXXX";
    int fd = ::mkstemp(fresh.data());
    if (fd < 0) return system_error();
    ::close(fd);

    errno = 0;
    int result = write(fresh.c_str());
    if (result == 0) result = flush_to_disk(fresh.c_str());
    if (result == 0 && ::chmod(fresh.c_str(), mode_for(path)) != 0) result = system_error();
    if (result == 0 && ::rename(fresh.c_str(), path.c_str()) != 0) result = system_error();
    if (result != 0) {
        ::unlink(fresh.c_str());
        return result;
    }
    // The rename is on the disk once the directory is.
    flush_to_disk(directory_of(path).c_str());
    return 0;
}

} // namespace qx25tool
