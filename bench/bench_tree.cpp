#include "bench_tree.h"

#include "link_config.h"
#include "link_file_generator.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace qx25bench {

namespace {

const char *const boardconf = "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tlines 2\n"
                              "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n\tlines 1\n"
                              "WAN_DEVICE\n\tsymbolic SYNC\n\tdevice syn\n\tlines 8\n";

bool is_keyword_line(const std::string &line, std::string_view keyword) {
    std::size_t start = line.find_first_not_of(" \t");
    if (start == std::string::npos || line.size() - start < keyword.size()) return false;
    for (std::size_t i = 0; i < keyword.size(); ++i)
        if (std::tolower(static_cast<unsigned char>(line[start + i])) != keyword[i]) return false;
    std::size_t after = start + keyword.size();
    return after == line.size() || line[after] == ' ' || line[after] == '\t';
}

// The generated file with its device line replaced by devices no other link
// of the tree uses: eth<i> on a LAN link, wan<i> on a WAN link, and syn<5i>
// onwards on an MLP link.
std::string with_own_devices(const qx25test::generated_file &file, qx25test::link_kind kind,
                             int i) {
    std::string devices;
    if (kind == qx25test::link_kind::lan)
        devices = "eth" + std::to_string(i);
    else if (kind == qx25test::link_kind::wan)
        devices = "wan" + std::to_string(i);
    else
        for (int d = 0; d < file.devices; ++d)
            devices += (d > 0 ? " syn" : "syn") + std::to_string(5 * i + d);

    std::string text;
    std::size_t at = 0;
    bool replaced = false;
    while (at < file.text.size()) {
        std::size_t end = file.text.find('\n', at);
        end = end == std::string::npos ? file.text.size() : end + 1;
        std::string line = file.text.substr(at, end - at);
        if (!replaced && is_keyword_line(line, "device")) {
            line = "\tdevice\t\t" + devices + "\n";
            replaced = true;
        }
        text += line;
        at = end;
    }
    return text;
}

} // namespace

bench_tree::bench_tree() {
    std::string pattern = (std::filesystem::temp_directory_path() / "qx25-bench-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    root_ = pattern;
    std::filesystem::create_directories(root_ + "/config");
    std::filesystem::create_directories(root_ + "/lib");
    ::setenv("X25CONFIGFILES", root_.c_str(), 1);
    ::setenv("X25LIBFILES", (root_ + "/lib").c_str(), 1);
}

bench_tree::~bench_tree() {
    std::error_code ignored;
    std::filesystem::remove_all(root_, ignored);
}

std::string bench_tree::write(std::string_view relative, std::string_view content) const {
    std::string file = path(relative);
    std::filesystem::create_directories(std::filesystem::path(file).parent_path());
    std::ofstream out(file, std::ios::binary | std::ios::trunc);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    return file;
}

std::string host_address(int i) {
    return std::to_string(i % 255) + ".2342" + std::to_string(1000000 + i);
}

std::string host_name(int i) {
    return "host" + std::to_string(i);
}

std::string xhosts_text(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        if (i % 50 == 0) text += "# hosts from " + std::to_string(i) + "\n";
        text += host_address(i) + "\t" + host_name(i) + "\talias" + std::to_string(i) + ",h" +
                std::to_string(i) + ".example\n";
    }
    return text;
}

std::string padmap_text(int count) {
    std::string text = "# PAD map of the benchmark hosts\n";
    for (int i = 0; i < count; ++i)
        text += host_address(i) + " 84 P7/7,W2/2,R G12 T3110 remote login " + host_name(i) + "\n";
    return text;
}

std::string link_text(int i) {
    constexpr qx25test::link_kind kinds[] = {qx25test::link_kind::lan, qx25test::link_kind::wan,
                                             qx25test::link_kind::mlp};
    qx25test::link_kind kind = kinds[i % 3];
    auto seed = qx25test::first_seed + static_cast<std::uint32_t>(i);
    return with_own_devices(qx25test::generate_link_file(kind, seed), kind, i);
}

void write_links(const bench_tree &tree, int count) {
    tree.write("boardconf", boardconf);
    tree.write("lib/world_networks.profile", qx25test::generated_profiles);
    std::string pvcs = "# link lcn packet sizes windows\n";
    for (int i = 0; i < count; ++i) {
        char name[48];
        std::snprintf(name, sizeof name, "config/link_config_%04d.cfg", i);
        tree.write(name, link_text(i));
        pvcs += std::to_string(i) + "\t1\t128\t128\t2\t2\n" + std::to_string(i) +
                "\t2\t256\t256\t3\t3\n";
    }
    tree.write("pvcmapconf", pvcs);
}

void release_chain(link_node *head) {
    while (head != nullptr) {
        link_node *next = head->next;
        __release_link_section(&head->link);
        std::free(head);
        head = next;
    }
}

} // namespace qx25bench
