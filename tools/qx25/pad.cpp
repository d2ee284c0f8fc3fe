// qx25 pad: the entries of the PAD map, with their facilities as a PAD user
// types them.
#include "command.h"

#include <iostream>

namespace qx25tool {

namespace {

std::vector<std::string> row_of(const command &self, const pad_entry &entry) {
    char facilities[256];
    bool written = false;
    // padtos explains a refusal on standard error itself.
    with_messages_named(self.name, [&] { written = padtos(&entry, facilities) == 0; });
    return {address_text(entry.address), written ? facilities : "?"};
}

} // namespace

int run_pad(const command &self, const arguments &args) {
    if (args.size() > 1) return usage_error(self, "at most one ADDRESS is taken");
    if (!database_readable(self, "padmapconf")) return exit_failure;
    std::vector<std::vector<std::string>> rows;
    if (args.size() == 1) {
        x25_address address;
        if (stox25(args[0], &address, 0) != 0)
            return usage_error(self, "invalid X.25 address '" + std::string(args[0]) + "'");
        const pad_entry *entry = getpadbyaddr(&address);
        if (entry == nullptr) {
            complain(self.name,
                     "no entry for " + std::string(args[0]) + " in " + database_file("padmapconf"));
            return exit_failure;
        }
        rows.push_back(row_of(self, *entry));
    } else {
        setpadent(0);
        while (const pad_entry *entry = getpadent())
            rows.push_back(row_of(self, *entry));
        endpadent();
        if (rows.empty() && !args.given("--json")) {
            std::cout << "no entries in " << database_file("padmapconf") << '\n';
            return exit_ok;
        }
    }
    constexpr column columns[] = {{"ADDRESS", false}, {"FACILITIES", false}};
    constexpr json_field fields[] = {{"address", json_kind::text}, {"facilities", json_kind::text}};
    if (args.given("--json"))
        print_json_rows("pad", fields, rows);
    else
        print_table(columns, rows);
    return exit_ok;
}

} // namespace qx25tool
