// qx25 networks: the network profile table of world_networks.profile.
#include "command.h"

#include "link_config.h"

#include <cstdio>

namespace qx25tool {

int run_networks(const command &self, const arguments &args) {
    if (!args.empty()) return usage_error(self, "no arguments are taken");
    if (max_profiles == 0) read_profile_file(); // reports through the parse error function
    if (max_profiles == 0) return exit_failure;
    std::printf("%6s  %-16s  %s\n", "NUMBER", "NAME", "DESCRIPTION");
    for (int i = 0; i < max_profiles; ++i) {
        const network_profile &profile = profile_types[i];
        if (profile.number == 0) continue; // a slot used up by a line without a number
        std::printf("%6d  %-16s  %s\n", profile.number, profile.name, profile.description);
    }
    return exit_ok;
}

} // namespace qx25tool
