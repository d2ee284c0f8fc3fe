// Scratch configuration trees for the benchmarks: a configuration directory
// and a library data directory under a fresh temporary directory, named by
// X25CONFIGFILES and X25LIBFILES while the tree lives, and the generated
// files the benchmarks read (xhosts, padmapconf, link files).
#pragma once

#include "qx25.h"

#include <string>
#include <string_view>

namespace qx25bench {

class bench_tree {
  public:
    bench_tree();
    ~bench_tree();
    bench_tree(const bench_tree &) = delete;
    bench_tree &operator=(const bench_tree &) = delete;

    // X25CONFIGFILES; the link files are in its "config" sub-directory.
    const std::string &root() const { return root_; }
    std::string path(std::string_view relative) const {
        return root_ + "/" + std::string(relative);
    }

    // Writes a file below the root, creating its directories; its full path.
    std::string write(std::string_view relative, std::string_view content) const;

  private:
    std::string root_;
};

// The address, name and aliases of host i of a generated xhosts file. Every
// host has its own address; host i is on link i % 255.
std::string host_address(int i);
std::string host_name(int i);

// An xhosts file of `count` hosts, with a comment line every 50 lines.
std::string xhosts_text(int count);
// A padmapconf file with an entry for each of the first `count` hosts.
std::string padmap_text(int count);

// Writes `count` fully populated link files (links 0 to count - 1, LAN, WAN
// and MLP in turn, every keyword and comments), each on devices of its own,
// with the boardconf, the network profiles and two PVCs a link that they
// need.
void write_links(const bench_tree &tree, int count);

// The text of link file i as write_links writes it.
std::string link_text(int i);

// Releases a chain that link discovery built.
void release_chain(link_node *head);

} // namespace qx25bench
