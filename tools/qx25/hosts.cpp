// qx25 hosts: every host of xhosts, in file order.
#include "command.h"

#include <iostream>

namespace qx25tool {

int run_hosts(const command &self, const arguments &args) {
    if (!args.empty()) return usage_error(self, "no arguments are taken");
    if (!database_readable(self, "xhosts")) return exit_failure;
    std::vector<std::vector<std::string>> rows;
    setxhostent(0);
    while (const xhost_entry *host = getxhostent())
        rows.push_back({address_text(*host->xh_addr), host->xh_name, aliases_text(*host)});
    endxhostent();
    if (args.given("--json")) {
        constexpr json_field fields[] = {{"address", json_kind::text},
                                         {"name", json_kind::text},
                                         {"aliases", json_kind::list, " "}};
        print_json_rows("hosts", fields, rows);
        return exit_ok;
    }
    if (rows.empty()) {
        std::cout << "no hosts in " << database_file("xhosts") << '\n';
        return exit_ok;
    }
    constexpr column columns[] = {{"ADDRESS", false}, {"NAME", false}, {"ALIASES", false}};
    print_table(columns, rows);
    return exit_ok;
}

} // namespace qx25tool
