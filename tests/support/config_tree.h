// A scratch configuration tree for one test: a configuration directory and a
// library data directory under a fresh temporary directory, named by
// X25CONFIGFILES and X25LIBFILES while the tree lives.
#pragma once

#include <string>
#include <string_view>

namespace qx25test {

class ConfigTree {
  public:
    ConfigTree();
    ~ConfigTree();
    ConfigTree(const ConfigTree &) = delete;
    ConfigTree &operator=(const ConfigTree &) = delete;

    const std::string &root() const { return root_; }
    std::string config_dir() const { return root_ + "/config"; }
    std::string lib_dir() const { return root_ + "/lib"; }

    // Writes a file below the root ("config/boardconf"), creating its
    // directories; returns its full path.
    std::string write(std::string_view relative, std::string_view content) const;

  private:
    std::string root_;
};

// Reads a whole file; an empty string when it cannot be read.
std::string read_file(const std::string &path);

} // namespace qx25test
