// qx25 networks: the network profile table of world_networks.profile.
#include "command.h"

#include "link_config.h"

#include <cstdio>

namespace qx25tool {

int run_networks(const command &self, const arguments &args) {
    if (!args.empty()) return usage_error(self, "no arguments are taken");
    if (max_profiles == 0) read_profile_file(); // reports through the parse error function
    if (max_profiles == 0) return exit_failure;
    if (args.given("--json")) {
        table_rows rows;
        for (int i = 0; i < max_profiles; ++i)
            if (profile_types[i].number != 0)
                rows.push_back({std::to_string(profile_types[i].number), profile_types[i].name,
                                profile_types[i].description});
        constexpr json_field fields[] = {{"number", json_kind::number},
                                         {"name", json_kind::text},
                                         {"description", json_kind::text_or_null}};
        print_json_rows("networks", fields, rows);
        return exit_ok;
    }
    std::printf("%6s  %-16s  %s\n", "NUMBER", "NAME", "DESCRIPTION");
    for (int i = 0; i < max_profiles; ++i) {
        const network_profile &profile = profile_types[i];
        if (profile.number == 0) continue; // a slot used up by a line without a number
        std::printf("%6d  %-16s  %s\n", profile.number, profile.name, profile.description);
    }
    return exit_ok;
}

} // namespace qx25tool
