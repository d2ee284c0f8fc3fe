#include "scratch_file.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>

namespace fs = std::filesystem;

namespace qx25tool {

scratch_file::scratch_file() = default;

scratch_file::~scratch_file() {
    if (!path_.empty()) ::unlink(path_.c_str());
}

bool scratch_file::hold(std::string_view content) {
    // A new file each time: some file systems flush a file that was
    // truncated and written again when it is closed, which is slow.
    if (!path_.empty()) ::unlink(path_.c_str());
    path_.clear();
    std::error_code ignored;
    fs::path directory = fs::temp_directory_path(ignored);
    if (directory.empty()) directory = "/tmp";
    std::string pattern = fs::absolute(directory, ignored).string() + "/qx25-XXXXXX";
    int fd = ::mkostemp(pattern.data(), O_CLOEXEC);
    if (fd < 0) return false;
    path_ = pattern;
    std::size_t done = 0;
    while (done < content.size()) {
        ssize_t written = ::write(fd, content.data() + done, content.size() - done);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) break;
        done += static_cast<std::size_t>(written);
    }
    int saved = errno;
    bool closed = ::close(fd) == 0;
    if (done != content.size()) errno = saved != 0 ? saved : EIO;
    return closed && done == content.size();
}

} // namespace qx25tool
