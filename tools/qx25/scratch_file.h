// A private file in the temporary directory, for texts the tool has the
// library read: it reads link files by name only.
#pragma once

#include <string>
#include <string_view>

namespace qx25tool {

class scratch_file {
  public:
    scratch_file();
    ~scratch_file();
    scratch_file(const scratch_file &) = delete;
    scratch_file &operator=(const scratch_file &) = delete;

    // Makes the file hold `content`, under a new name; false (errno set)
    // when it cannot.
    bool hold(std::string_view content);
    // Empty until the file has been made.
    const std::string &path() const { return path_; }

  private:
    std::string path_;
};

} // namespace qx25tool
