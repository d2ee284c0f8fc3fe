#include "config_tree.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace qx25test {

ConfigTree::ConfigTree() {
    std::string pattern = (fs::temp_directory_path() / "qx25-test-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    root_ = pattern;
    fs::create_directories(config_dir() + "/config");
    fs::create_directories(lib_dir());
    ::setenv("X25CONFIGFILES", config_dir().c_str(), 1);
    ::setenv("X25LIBFILES", lib_dir().c_str(), 1);
}

ConfigTree::~ConfigTree() {
    std::error_code ignored;
    fs::remove_all(root_, ignored);
    ::unsetenv("X25CONFIGFILES");
    ::unsetenv("X25LIBFILES");
}

std::string ConfigTree::write(std::string_view relative, std::string_view content) const {
    fs::path path = fs::path(root_) / relative;
    fs::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    return path.string();
}

std::string read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

} // namespace qx25test
