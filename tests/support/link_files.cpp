#include "link_files.h"

#include <cstdio>
#include <filesystem>

namespace qx25test {

void write_boardconf(const ConfigTree &tree) {
    tree.write("config/boardconf", "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tlines 2\n"
                                   "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n\tlines 1\n");
}

void copy_example_tree(const ConfigTree &tree) {
    namespace fs = std::filesystem;
    fs::copy(QX25_SOURCE_DIR "/examples/etc", tree.config_dir(), fs::copy_options::recursive);
    fs::copy(QX25_SOURCE_DIR "/examples/lib", tree.lib_dir(), fs::copy_options::recursive);
}

std::string write_link_file(const ConfigTree &tree, int number, std::string_view link_lines) {
    char name[64];
    std::snprintf(name, sizeof name, "config/config/link_config_%04d.cfg", number);
    std::string text = "IDENTIFICATION\n"
                       "\tPRODUCT_NAME\tQuenlark X.25\n"
                       "\tFILE_TYPE\tx25link\n"
                       "SECTION LINK\n";
    text += link_lines;
    return tree.write(name, text);
}

} // namespace qx25test
