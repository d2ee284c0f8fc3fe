#include "captured_messages.h"

#include "qx25.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <unistd.h>

#include "config_tree.h"

namespace qx25test {

std::vector<std::string> &messages() {
    static std::vector<std::string> log;
    return log;
}

int capture_message(const char *message) {
    messages().emplace_back(message);
    return 0;
}

void capture_all_messages() {
    messages().clear();
    x25_set_config_error_function(capture_message);
    x25_set_parse_error_function(capture_message);
    set_llc2_template_error_function(capture_message);
    set_lapb_template_error_function(capture_message);
    set_x25_template_error_function(capture_message);
    set_wan_template_error_function(capture_message);
    set_link_error_function(capture_message);
}

CapturedStderr::CapturedStderr() {
    char pattern[] = "/tmp/qx25-stderr-XXXXXX";
    int fd = ::mkstemp(pattern);
    if (fd < 0) throw std::runtime_error("mkstemp failed");
    path_ = pattern;
    std::fflush(stderr);
    saved_fd_ = ::dup(STDERR_FILENO);
    ::dup2(fd, STDERR_FILENO);
    ::close(fd);
}

CapturedStderr::~CapturedStderr() {
    std::fflush(stderr);
    ::dup2(saved_fd_, STDERR_FILENO);
    ::close(saved_fd_);
    ::unlink(path_.c_str());
}

std::string CapturedStderr::text() {
    std::fflush(stderr);
    return read_file(path_);
}

} // namespace qx25test
