// Link configuration files for tests that need configured links: the
// device table and one file per link in a ConfigTree.
#pragma once

#include "config_tree.h"

#include <string>
#include <string_view>

namespace qx25test {

// A boardconf with WAN devices wan0..wan9 (two lines a board) and LAN
// devices eth0..eth9.
void write_boardconf(const ConfigTree &tree);

// The example tree of the sources (examples/etc and examples/lib) copied
// into the tree's configuration and library data directories.
void copy_example_tree(const ConfigTree &tree);

// config/link_config_NNNN.cfg with an IDENTIFICATION block, SECTION LINK
// and the given keyword lines; returns its path.
std::string write_link_file(const ConfigTree &tree, int number, std::string_view link_lines);

} // namespace qx25test
