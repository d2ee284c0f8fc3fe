#include "atomic_file.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace qx25tool {

namespace {

// The pieces of what failed, then the reason errno gives; errno is taken
// before anything else can change it.
template <typename... Pieces> std::string because(const Pieces &...pieces) {
    int error = errno;
    std::string text;
    ((text += pieces), ...);
    return text + ": " + std::strerror(error);
}

std::string directory_of(const std::string &path) {
    std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

std::string base_of(const std::string &path) {
    std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

// A new file in a directory, removed again unless it is renamed.
class new_file {
  public:
    explicit new_file(std::string pattern) : path_(std::move(pattern)) {}
    ~new_file() {
        if (fd_ >= 0) ::close(fd_);
        if (made_ && !renamed_) ::unlink(path_.c_str());
    }
    new_file(const new_file &) = delete;
    new_file &operator=(const new_file &) = delete;

    // Makes the file, holding `text` with the mode and owner of `like` and
    // synced to disk; what went wrong, or empty.
    std::string make(std::string_view text, const struct stat &like, const std::string &target) {
        std::string directory = directory_of(path_);
        fd_ = ::mkostemp(path_.data(), O_CLOEXEC);
        if (fd_ < 0) return because("cannot create a file in ", directory);
        made_ = true;
        for (std::size_t done = 0; done < text.size();) {
            ssize_t written = ::write(fd_, text.data() + done, text.size() - done);
            if (written < 0 && errno == EINTR) continue;
            if (written == 0) errno = ENOSPC;
            if (written <= 0) return because("cannot write ", path_);
            done += static_cast<std::size_t>(written);
        }
        // Changing the owner may clear set-id bits: the mode comes after it.
        struct stat own {};
        if (::fstat(fd_, &own) != 0) return because("cannot read the status of ", path_);
        if ((own.st_uid != like.st_uid || own.st_gid != like.st_gid) &&
            ::fchown(fd_, like.st_uid, like.st_gid) != 0)
            return because("cannot give ", path_, " the owner of ", target);
        if (::fchmod(fd_, like.st_mode & 07777) != 0)
            return because("cannot give ", path_, " the mode of ", target);
        if (::fsync(fd_) != 0) return because("cannot sync ", path_);
        int fd = fd_;
        fd_ = -1;
        if (::close(fd) != 0) return because("cannot close ", path_);
        return {};
    }

    std::string rename_to(const std::string &target) {
        if (::rename(path_.c_str(), target.c_str()) != 0)
            return because("cannot rename ", path_, " to ", target);
        renamed_ = true;
        return {};
    }

  private:
    std::string path_;
    int fd_ = -1;
    bool made_ = false;
    bool renamed_ = false;
};

std::string sync_directory(const std::string &directory) {
    int fd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0) return because("cannot open the directory ", directory);
    std::string failure;
    if (::fsync(fd) != 0) failure = because("cannot sync the directory ", directory);
    ::close(fd);
    return failure;
}

} // namespace

replacement replace_file(const std::string &path, std::string_view text, const struct stat &like,
                         const std::string &backup, std::string_view previous) {
    std::string directory = directory_of(path);
    // Hidden names that no reader of the directory takes for a link file.
    std::string stem = directory + "/." + base_of(path);
    replacement result;
    new_file fresh(stem + ".new.XXXXXX");
    if (result.failure = fresh.make(text, like, path); !result.failure.empty()) return result;
    if (!backup.empty()) {
        new_file kept(stem + ".bak.XXXXXX");
        if (result.failure = kept.make(previous, like, path); !result.failure.empty())
            return result;
        if (result.failure = kept.rename_to(backup); !result.failure.empty()) return result;
    }
    if (result.failure = fresh.rename_to(path); !result.failure.empty()) return result;
    result.replaced = true;
    result.failure = sync_directory(directory);
    return result;
}

} // namespace qx25tool
