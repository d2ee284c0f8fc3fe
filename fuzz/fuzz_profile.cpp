// world_networks.profile on any text: the table of network profiles it
// fills stays within its rows and every name in it is terminated and can be
// looked up both ways.
#include "qx25.h"

#include "fuzz_support.h"
#include "link_config.h"

#include <cstdint>
#include <cstring>
#include <string>

using qx25fuzz::require;
using qx25fuzz::terminated;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), true);
    (void)ready;
    qx25fuzz::write_file("lib/world_networks.profile", data, size);

    read_profile_file();
    require(max_profiles >= 0 && max_profiles <= max_network_profiles,
            "the profile count left the table");
    for (int i = 0; i < max_profiles; ++i) {
        const network_profile &profile = profile_types[i];
        require(terminated(profile.name) && terminated(profile.description),
                "a profile field is not terminated");
        const char *name = __network_name(static_cast<std::uint32_t>(profile.number));
        require(name != nullptr && std::strlen(name) < sizeof profile.name + 16,
                "a network has no name");
        network_number(profile.name);
    }
    network_number(qx25fuzz::as_text(data, size < 40 ? size : 40).c_str());
    return 0;
}
