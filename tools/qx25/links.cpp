// qx25 links: the links link discovery finds, one a line.
#include "command.h"
#include "device_use.h"
#include "release.h"

#include "link_config.h"
#include "paths.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace qx25tool {

namespace {

// Type and X.25 version of each network type (link_values.net_type).
struct network_kind {
    const char *type;
    const char *version;
};

network_kind kind_of(int net_type) {
    switch (net_type) {
    case NET_WAN88:
        return {"WAN", "1988"};
    case NET_WAN84:
        return {"WAN", "1984"};
    case NET_WAN80:
        return {"WAN", "1980"};
    case NET_LAN:
        return {"LAN", "1988"};
    case NET_MLP1:
    case NET_MLP2:
    case NET_MLP3:
    case NET_MLP4:
    case NET_MLP5:
        return {"MLP", "1988"};
    default:
        return {"?", "?"};
    }
}

const char *protocol_of(int link_mode) {
    switch (link_mode) {
    case LC_LLC1:
        return "LLC1";
    case LC_LLC2:
        return "LLC2";
    case LC_LAPBDTE:
    case LC_LAPBDCE:
        return "LAPB";
    case LC_LAPBXDTE:
    case LC_LAPBXDCE:
        return "LAPBE";
    case LC_LAPDTE:
    case LC_LAPDCE:
        return "LAP";
    case LC_MLAPBDTE:
    case LC_MLAPBDCE:
        return "MLAPB";
    case LC_MLAPBXDTE:
    case LC_MLAPBXDCE:
        return "MLAPBE";
    default:
        return "?";
    }
}

const char *side_of(int link_mode) {
    switch (link_mode) {
    case LC_LAPBDCE:
    case LC_LAPBXDCE:
    case LC_LAPDCE:
    case LC_MLAPBDCE:
    case LC_MLAPBXDCE:
        return "DCE";
    default:
        return "DTE";
    }
}

// The link's devices as the link file names them, "wan0,wan1"; "-" for none.
std::string devices_of(const link_values &link) {
    std::string text;
    int count = link.device_count < LINK_MAX_DEVICES ? link.device_count : LINK_MAX_DEVICES;
    for (int i = 0; i < count; ++i) {
        std::string name = device_name(link, i);
        if (name == "?") continue;
        text += (text.empty() ? "" : ",") + name;
    }
    return text.empty() ? "-" : text;
}

std::string address_of(const x25_address &address) {
    if (address.dte_len == 0 && address.ext_len == 0) return "-";
    char text[X25_ADDRESS_TEXT_MAX];
    return x25tos(&address, text, 0) == 0 ? text : "?";
}

int pvc_count(const link_values &link) {
    int count = 0;
    for (const pvc_entry *pvc = link.pvcs; pvc != nullptr; pvc = pvc->next)
        ++count;
    return count;
}

std::string text_or_dash(const char *text) {
    return text != nullptr && text[0] != '\0' ? text : "-";
}

void release_device_comments() {
    for (device_type &row : __config_linktype) {
        std::free(row.comment);
        row.comment = nullptr;
    }
}

} // namespace

std::vector<std::pair<int, std::string>> link_files() {
    std::vector<std::pair<int, std::string>> files;
    std::error_code error;
    for (const fs::directory_entry &entry :
         fs::directory_iterator(std::string(qx25::config_dir()) + "/config", error)) {
        std::string name = entry.path().filename().string();
        if (int number = valid_filename(name.c_str()); number >= 0)
            files.emplace_back(number, std::move(name));
    }
    std::sort(files.begin(), files.end());
    return files;
}

link_node *discover_links(const command &self, bool *failed) {
    collect_messages();
    link_node *head = nullptr;
    int result = x25_find_link_parameters(&head);
    std::vector<std::string> messages = take_messages();
    complain_all(self.name, messages);
    // A link file the reader could not read, or one that names a device of
    // another link, is reported and left out: the list is not the whole
    // configuration, and the command fails after showing what it has.
    *failed = result != 0 || !messages.empty();
    if (result != 0 && messages.empty()) complain(self.name, std::strerror(result));
    if (result != 0) {
        release_links(head);
        return nullptr;
    }
    // A missing pvcmapconf means no PVCs; one that is there but cannot be
    // read is passed over by the library without a word.
    if (std::string unreadable =
            unreadable_file(std::string(qx25::config_dir()) + "/pvcmapconf", true);
        !unreadable.empty()) {
        complain(self.name, unreadable);
        *failed = true;
    }
    for (const auto &[number, name] : link_files()) {
        const link_node *node = head;
        while (node != nullptr && node->link.values.subnet.address.snid != unsigned(number))
            node = node->next;
        std::string path = std::string(qx25::config_dir()) + "/config/" + name;
        if (node == nullptr) {
            complain(self.name, path + " is left out");
            *failed = true;
        } else if (number > 254) {
            complain(self.name,
                     path + ": link number " + std::to_string(number) + " is outside 0..254");
            *failed = true;
        }
    }
    return head;
}

void release_links(link_node *head) {
    while (head != nullptr) {
        link_node *next = head->next;
        release(&head->link); // every comment text, the alias and the description
        free_link_item(&head->link.values);
        std::free(head);
        head = next;
    }
    release_device_comments();
}

int run_links(const command &self, const arguments &args) {
    if (!args.empty()) return usage_error(self, "no arguments are taken");
    bool json = args.given("--json");
    bool failed = false;
    link_node *head = discover_links(self, &failed);
    if (head == nullptr && !json) {
        if (!failed) std::cout << "no links in " << qx25::config_dir() << "/config\n";
        return failed ? exit_failure : exit_ok;
    }

    constexpr column columns[] = {
        {"LINK", true},      {"ALIAS", false},       {"TYPE", false},    {"VERSION", false},
        {"PROTOCOL", false}, {"MODE", false},        {"DEVICES", false}, {"ADDRESS", false},
        {"PVCS", true},      {"DESCRIPTION", false},
    };
    std::vector<std::vector<std::string>> rows;
    for (const link_node *node = head; node != nullptr; node = node->next) {
        const link_values &link = node->link.values;
        network_kind kind = kind_of(link.net_type);
        rows.push_back({std::to_string(link.subnet.address.snid), text_or_dash(link.subnet.name),
                        kind.type, kind.version, protocol_of(link.link_mode),
                        side_of(link.link_mode), devices_of(link), address_of(link.subnet.address),
                        std::to_string(pvc_count(link)),
                        link.subnet.description != nullptr ? link.subnet.description : ""});
    }
    constexpr json_field fields[] = {
        {"link", json_kind::number},   {"alias", json_kind::text_or_null},
        {"type", json_kind::text},     {"version", json_kind::text},
        {"protocol", json_kind::text}, {"mode", json_kind::text},
        {"devices", json_kind::list},  {"address", json_kind::text_or_null},
        {"pvcs", json_kind::number},   {"description", json_kind::text_or_null},
    };
    if (json)
        print_json_rows("links", fields, rows);
    else
        print_table(columns, rows);
    release_links(head);
    return failed ? exit_failure : exit_ok;
}

} // namespace qx25tool
