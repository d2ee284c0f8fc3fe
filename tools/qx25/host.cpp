// qx25 host: one host of xhosts, found by name (or alias) or by address.
#include "command.h"

#include <iostream>

namespace qx25tool {

int run_host(const command &self, const arguments &args) {
    if (args.size() != 1) return usage_error(self, "one NAME or ADDRESS is taken");
    const char *wanted = args[0];
    if (!database_readable(self, "xhosts")) return exit_failure;
    const xhost_entry *host = getxhostbyname(wanted);
    if (host == nullptr) {
        x25_address address;
        if (stox25(wanted, &address, 0) == 0) host = getxhostbyaddr(&address, sizeof address, 1);
    }
    if (host == nullptr) {
        complain(self.name, "no host '" + std::string(wanted) + "' in " + database_file("xhosts"));
        return exit_failure;
    }
    std::cout << "address  " << address_text(*host->xh_addr) << '\n'
              << "name     " << host->xh_name << '\n'
              << "aliases  " << aliases_text(*host) << '\n';
    return exit_ok;
}

} // namespace qx25tool
