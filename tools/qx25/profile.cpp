// qx25 profile: the X.29 profile x29profile gives an address.
#include "command.h"

#include <iostream>

namespace qx25tool {

namespace {

std::string kind_text(int kind) {
    switch (kind) {
    case X29_PROFILE_S:
        return "S";
    case X29_PROFILE_C:
        return "C";
    case X29_PROFILE_P:
        return "P";
    default:
        return "V" + std::to_string(kind - X29_PROFILE_V);
    }
}

} // namespace

int run_profile(const command &self, const arguments &args) {
    if (args.size() != 1) return usage_error(self, "one ADDRESS is taken");
    if (!database_readable(self, "x29profile")) return exit_failure;
    x29_profile profile{};
    if (stox25(args[0], &profile.address, 0) != 0)
        return usage_error(self, "invalid X.25 address '" + std::string(args[0]) + "'");
    if (find_x29profile(&profile) == 0) {
        complain(self.name,
                 "no profile for " + std::string(args[0]) + " in " + database_file("x29profile"));
        return exit_failure;
    }
    std::cout << "address  " << address_text(profile.address) << '\n'
              << "kind     " << kind_text(profile.kind) << '\n'
              << "T        " << int(profile.parameters[0]) << '\n';
    std::vector<std::vector<std::string>> rows;
    for (int number = 1; number < X29_PARAMETERS; ++number)
        if (profile.parameter_set[number] != 0)
            rows.push_back({std::to_string(number), std::to_string(profile.parameters[number])});
    if (rows.empty()) return exit_ok;
    std::cout << '\n';
    constexpr column columns[] = {{"PARAMETER", true}, {"VALUE", true}};
    print_table(columns, rows);
    return exit_ok;
}

} // namespace qx25tool
