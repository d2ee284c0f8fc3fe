// Collects what the library reports through its error functions.
#pragma once

#include <string>
#include <vector>

namespace qx25test {

// Messages received by the capturing functions, in order.
std::vector<std::string> &messages();

// Error functions that append to messages(); installable in any module.
int capture_message(const char *message);

// Installs capture_message in every module and clears the log.
void capture_all_messages();

// Redirects standard error into a file while it lives; text() returns what
// was written so far.
class CapturedStderr {
  public:
    CapturedStderr();
    ~CapturedStderr();
    CapturedStderr(const CapturedStderr &) = delete;
    CapturedStderr &operator=(const CapturedStderr &) = delete;
    std::string text();

  private:
    int saved_fd_;
    std::string path_;
};

} // namespace qx25test
