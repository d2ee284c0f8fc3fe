// qx25 ppa: the PPA number of an LLC2 device and instance.
#include "command.h"

#include <climits>
#include <cstdlib>
#include <iostream>

namespace qx25tool {

int run_ppa(const command &self, const arguments &args) {
    if (args.size() != 2) return usage_error(self, "DEVICE and INSTANCE are taken");
    if (!is_number(args[1])) return usage_error(self, "INSTANCE must be a number");
    unsigned long instance = std::strtoul(args[1], nullptr, 10);
    if (instance > INT_MAX) return usage_error(self, "INSTANCE is too large");
    int ppa = x25_device_to_ppa(args[0], static_cast<int>(instance));
    if (ppa < 0) {
        complain(self.name, "no PPA for " + std::string(args[0]) + " instance " + args[1] +
                                " in /etc/llc2/default/");
        return exit_failure;
    }
    std::cout << ppa << '\n';
    return exit_ok;
}

} // namespace qx25tool
