// qx25 subnets: the configured links as the subnetworks database gives
// them, in link order.
#include "command.h"

#include <iostream>

namespace qx25tool {

int run_subnets(const command &self, const arguments &args) {
    if (!args.empty()) return usage_error(self, "no arguments are taken");
    collect_messages(); // link discovery reports the files it cannot use
    std::vector<std::vector<std::string>> rows;
    setsubnetent();
    while (const subnet_entry *subnet = getsubnetent()) {
        const x25_address &address = subnet->address;
        rows.push_back({std::to_string(address.snid), subnet->name != nullptr ? subnet->name : "-",
                        address.dte_len != 0 || address.ext_len != 0 ? address_text(address) : "-",
                        subnet->description != nullptr ? subnet->description : ""});
    }
    endsubnetent();
    bool reported = complain_all(self.name, take_messages());
    if (args.given("--json")) {
        constexpr json_field fields[] = {{"subnet", json_kind::number},
                                         {"name", json_kind::text_or_null},
                                         {"address", json_kind::text_or_null},
                                         {"description", json_kind::text_or_null}};
        print_json_rows("subnets", fields, rows);
        return reported ? exit_failure : exit_ok;
    }
    if (rows.empty()) {
        std::cout << "no subnetworks in " << database_file("config") << '\n';
        return reported ? exit_failure : exit_ok;
    }
    constexpr column columns[] = {
        {"SUBNET", true}, {"NAME", false}, {"ADDRESS", false}, {"DESCRIPTION", false}};
    print_table(columns, rows);
    return reported ? exit_failure : exit_ok;
}

} // namespace qx25tool
