#include "fuzz_support.h"

#include "qx25.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace qx25fuzz {

namespace {

int read_whole_message(const char *message) {
    require(message != nullptr, "an error function received a null message");
    // Read to its end: an unterminated or freed text is caught here.
    volatile std::size_t length = std::strlen(message);
    (void)length;
    return 0;
}

// QX25FUZZ_KEEP=1 keeps the tree, so that the files of a finding can be
// looked at; its path is printed.
void remove_tree() {
    if (const char *keep = std::getenv("QX25FUZZ_KEEP"); keep != nullptr && *keep == '1') {
        std::fprintf(stderr, "qx25fuzz: files kept in %s\n", tree_root().c_str());
        return;
    }
    std::error_code ignored;
    std::filesystem::remove_all(tree_root(), ignored);
}

// Memory-backed when the machine has it: the harnesses write a file for
// nearly every input.
std::string make_root() {
    std::string base = std::filesystem::is_directory("/dev/shm") ? "/dev/shm" : "/tmp";
    std::string pattern = base + "/qx25fuzz.XXXXXX";
    if (mkdtemp(pattern.data()) == nullptr) {
        std::perror("qx25fuzz: mkdtemp");
        std::abort();
    }
    std::filesystem::create_directories(pattern + "/config/config");
    std::filesystem::create_directories(pattern + "/config/template");
    std::filesystem::create_directories(pattern + "/lib");
    setenv("X25CONFIGFILES", (pattern + "/config").c_str(), 1);
    setenv("X25LIBFILES", (pattern + "/lib").c_str(), 1);
    return pattern;
}

} // namespace

const std::string &tree_root() {
    static const std::string root = make_root();
    static const bool removed_at_exit = std::atexit(remove_tree) == 0;
    (void)removed_at_exit;
    return root;
}

std::string write_file(std::string_view relative, std::string_view content) {
    std::string path = tree_root() + "/" + std::string(relative);
    FILE *stream = std::fopen(path.c_str(), "wb");
    require(stream != nullptr, "a scratch file cannot be created");
    require(std::fwrite(content.data(), 1, content.size(), stream) == content.size(),
            "a scratch file cannot be written");
    require(std::fclose(stream) == 0, "a scratch file cannot be closed");
    return path;
}

std::string write_file(std::string_view relative, const std::uint8_t *data, std::size_t size) {
    return write_file(relative, std::string_view(reinterpret_cast<const char *>(data), size));
}

void write_boardconf() {
    write_file("config/boardconf", "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tlines 2\n"
                                   "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n\tlines 1\n");
}

std::string as_text(const std::uint8_t *data, std::size_t size) {
    std::string text(reinterpret_cast<const char *>(data), size);
    return text.substr(0, text.find('\0'));
}

void silence_messages() {
    x25_set_config_error_function(read_whole_message);
    x25_set_parse_error_function(read_whole_message);
    set_llc2_template_error_function(read_whole_message);
    set_lapb_template_error_function(read_whole_message);
    set_x25_template_error_function(read_whole_message);
    set_wan_template_error_function(read_whole_message);
    set_link_error_function(read_whole_message);
}

void require(bool condition, const char *what) {
    if (condition) return;
    std::fprintf(stderr, "qx25fuzz: %s (files in %s)\n", what, tree_root().c_str());
    std::abort();
}

} // namespace qx25fuzz
