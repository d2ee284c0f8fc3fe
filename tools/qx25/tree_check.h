// qx25 check without arguments: every file of the configuration tree, and
// the links against each other.
#pragma once

#include "findings.h"
#include "link_check.h"

#include <vector>

namespace qx25tool {

// boardconf: the device kinds, as the library reads them.
file_findings check_boardconf(const std::string &path);

// pvcmapconf: every circuit line strictly, against the links `configured`.
file_findings check_pvc_map(const std::string &path, const std::vector<int> &configured);

// world_networks.profile: the network profile table.
file_findings check_network_profiles(const std::string &path);

// The links against each other: devices and aliases used twice. The
// findings go to the later link's file.
void check_links_together(std::vector<checked_link> &links);

} // namespace qx25tool
