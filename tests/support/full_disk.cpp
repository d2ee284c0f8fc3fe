#include "full_disk.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace qx25test {

namespace {

// Exit statuses of the child besides 0.
constexpr int no_namespace = 3;
constexpr int not_filled = 4;

bool write_all(int fd, const std::string &text) {
    std::size_t done = 0;
    while (done < text.size()) {
        ssize_t written = ::write(fd, text.data() + done, text.size() - done);
        if (written <= 0) return false;
        done += static_cast<std::size_t>(written);
    }
    return true;
}

// Writes a filler file until the file system refuses a single byte more.
bool fill(const std::string &directory) {
    int fd = ::open((directory + "/.filler").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (fd < 0) return false;
    std::vector<char> block(4096, 'f');
    while (::write(fd, block.data(), block.size()) > 0) {
    }
    while (::write(fd, block.data(), 1) > 0) {
    }
    bool full = errno == ENOSPC;
    ::close(fd);
    return full;
}

[[noreturn]] void run_child(int out, const std::string &directory,
                            const std::function<void()> &prepare,
                            const std::function<std::string()> &operation) {
    if (::unshare(CLONE_NEWNS) != 0 ||
        ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("tmpfs", directory.c_str(), "tmpfs", 0, "size=64k") != 0)
        std::_Exit(no_namespace);
    prepare();
    if (!fill(directory)) std::_Exit(not_filled);
    std::string report = operation();
    std::_Exit(write_all(out, report) ? 0 : 1);
}

} // namespace

std::optional<std::string> on_full_disk(const std::string &directory,
                                        const std::function<void()> &prepare,
                                        const std::function<std::string()> &operation) {
    std::filesystem::create_directories(directory);
    int pipe_ends[2];
    if (::pipe(pipe_ends) != 0) return std::nullopt;
    std::fflush(nullptr);
    pid_t child = ::fork();
    if (child == 0) {
        ::close(pipe_ends[0]);
        run_child(pipe_ends[1], directory, prepare, operation);
    }
    ::close(pipe_ends[1]);
    std::string report;
    char buffer[4096];
    for (ssize_t got; (got = ::read(pipe_ends[0], buffer, sizeof buffer)) > 0;)
        report.append(buffer, static_cast<std::size_t>(got));
    ::close(pipe_ends[0]);
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child) return std::nullopt;
    if (WIFEXITED(status) && WEXITSTATUS(status) == no_namespace) return std::nullopt;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return "the full-disk child failed with status " + std::to_string(status);
    return report;
}

} // namespace qx25test
