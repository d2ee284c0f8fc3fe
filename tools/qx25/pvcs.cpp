// qx25 pvcs: the permanent virtual circuits pvcmapconf gives the links.
#include "command.h"

#include "paths.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <vector>

namespace qx25tool {

namespace {

// Packet sizes are kept as indexes: 0 is 16 bytes, 8 is 4096.
std::string packet_size(int index) {
    return index >= 0 && index <= 8 ? std::to_string(16 << index) : "?";
}

std::string channel(unsigned lcn) {
    char text[16];
    std::snprintf(text, sizeof text, "%03X", lcn);
    return text;
}

} // namespace

int run_pvcs(const command &self, const arguments &args) {
    if (args.size() > 1) return usage_error(self, "at most one LINK is taken");
    bool one_link = args.size() == 1;
    int wanted = one_link ? link_number(args[0]) : 0;
    if (wanted < 0) return usage_error(self, "LINK must be a link number from 0 to 254");

    bool json = args.given("--json");
    bool failed = false;
    link_node *head = discover_links(self, &failed);
    if (head == nullptr && failed) return exit_failure;

    std::vector<std::vector<std::string>> rows;
    bool found = false;
    for (const link_node *node = head; node != nullptr; node = node->next) {
        const link_values &link = node->link.values;
        if (one_link && link.subnet.address.snid != unsigned(wanted)) continue;
        found = true;
        for (const pvc_entry *pvc = link.pvcs; pvc != nullptr; pvc = pvc->next)
            rows.push_back({std::to_string(pvc->link), channel(pvc->lcn),
                            packet_size(pvc->pktsize[0]), packet_size(pvc->pktsize[1]),
                            std::to_string(pvc->window[0]), std::to_string(pvc->window[1])});
    }
    release_links(head);

    if (one_link && !found) {
        complain(self.name, "link " + std::string(args[0]) + " is not configured");
        return exit_failure;
    }
    constexpr json_field fields[] = {
        {"link", json_kind::number},          {"lcn", json_kind::hex_number},
        {"packet_size_1", json_kind::number}, {"packet_size_2", json_kind::number},
        {"window_1", json_kind::number},      {"window_2", json_kind::number},
    };
    if (json) {
        print_json_rows("pvcs", fields, rows);
        return failed ? exit_failure : exit_ok;
    }
    if (rows.empty()) {
        if (one_link)
            std::cout << "no PVCs on link " << wanted << '\n';
        else
            std::cout << "no PVCs in " << qx25::config_dir() << "/pvcmapconf\n";
        return failed ? exit_failure : exit_ok;
    }
    constexpr column columns[] = {
        {"LINK", true},     {"LCN", true},     {"PKTSIZE1", true},
        {"PKTSIZE2", true}, {"WINDOW1", true}, {"WINDOW2", true},
    };
    print_table(columns, rows);
    return failed ? exit_failure : exit_ok;
}

} // namespace qx25tool
