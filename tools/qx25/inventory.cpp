// qx25 inventory: the device kinds, the links and the PVCs in one view, with
// what does not fit together flagged: a device boardconf does not know, a
// device two links use, a link file that cannot be read, a PVC of no link.
#include "command.h"
#include "json_writer.h"

#include "link_config.h"
#include "messages.h"
#include "paths.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

namespace fs = std::filesystem;

namespace qx25tool {

namespace {

// A link file as the inventory found it: read into a node, or not.
struct inventory_link {
    int number;
    std::string file;
    link_node *node = nullptr; // null when the file could not be read
    std::vector<std::string> flags;
};

// The device names a report of the reader carries, for a message whose
// catalog text has one "%s": the text around it must match.
bool named_in(const std::string &message, qx25::Msg number, std::string &name) {
    std::string_view format = qx25::message_text(number);
    while (!format.empty() && format.back() == '\n')
        format.remove_suffix(1);
    std::size_t at = format.find("%s");
    if (at == std::string_view::npos) return false;
    std::string_view before = format.substr(0, at), after = format.substr(at + 2);
    std::string_view text = message;
    if (text.size() < before.size() + after.size() || !text.starts_with(before) ||
        !text.ends_with(after))
        return false;
    name = text.substr(before.size(), text.size() - before.size() - after.size());
    return true;
}

// Flags what the reader said about the link's devices.
void flag_device_reports(inventory_link &link, const std::vector<std::string> &messages) {
    std::string missing = qx25::message_text(qx25::Msg::MissingDeviceName);
    while (!missing.empty() && missing.back() == '\n')
        missing.pop_back();
    for (const std::string &message : messages) {
        std::string name;
        if (named_in(message, qx25::Msg::UnknownDeviceName, name))
            link.flags.push_back("unknown device " + name);
        else if (message == missing)
            link.flags.push_back("no device");
    }
}

// Every link file of the config directory, read one by one as link
// discovery reads it, in link order. What the reader says is shown.
std::vector<inventory_link> read_links(const command &self) {
    std::vector<inventory_link> links;
    std::error_code error;
    for (const fs::directory_entry &entry :
         fs::directory_iterator(std::string(qx25::config_dir()) + "/config", error)) {
        std::string name = entry.path().filename().string();
        int number = valid_filename(name.c_str());
        if (number < 0) continue;
        take_messages();
        inventory_link link{number, name, nullptr, {}};
        process_dp(name.c_str(), &link.node);
        std::vector<std::string> messages = take_messages();
        for (const std::string &message : messages)
            complain(self.name, name + ": " + message);
        flag_device_reports(link, messages);
        if (link.node == nullptr) link.flags.push_back("not read");
        links.push_back(std::move(link));
    }
    if (error) complain(self.name, "cannot read " + std::string(qx25::config_dir()) + "/config");
    std::sort(links.begin(), links.end(),
              [](const inventory_link &a, const inventory_link &b) { return a.number < b.number; });
    return links;
}

// The nodes read, chained in link order.
link_node *chain(std::vector<inventory_link> &links) {
    link_node *head = nullptr;
    link_node *last = nullptr;
    for (inventory_link &link : links) {
        if (link.node == nullptr) continue;
        link.node->prev = last;
        (last != nullptr ? last->next : head) = link.node;
        last = link.node;
    }
    return head;
}

std::vector<std::string> device_names(const link_values &values) {
    std::vector<std::string> names;
    int count = std::min<int>(values.device_count, LINK_MAX_DEVICES);
    for (int i = 0; i < count; ++i) {
        char name[sizeof __config_linktype[0].device];
        int instance = 0;
        if (x25_device_instance(&values, i, name, &instance) == 0)
            names.push_back(name + std::to_string(instance));
    }
    return names;
}

std::string joined(const std::vector<std::string> &items, const char *separator) {
    std::string text;
    for (const std::string &item : items)
        text += (text.empty() ? "" : separator) + item;
    return text;
}

// Flags both links of every device two links use.
void flag_shared_devices(std::vector<inventory_link> &links) {
    for (inventory_link &link : links) {
        if (link.node == nullptr) continue;
        for (const inventory_link &other : links) {
            if (other.node == nullptr || &other == &link) continue;
            for (const std::string &name : device_names(link.node->link.values)) {
                std::vector<std::string> others = device_names(other.node->link.values);
                if (std::find(others.begin(), others.end(), name) != others.end())
                    link.flags.push_back("device " + name + " also used by link " +
                                         std::to_string(other.number));
            }
        }
    }
}

std::string address_of(const x25_address &address) {
    if (address.dte_len == 0 && address.ext_len == 0) return "-";
    char text[X25_ADDRESS_TEXT_MAX];
    return x25tos(&address, text, 0) == 0 ? text : "?";
}

std::string text_or_dash(const char *text) {
    return text != nullptr && text[0] != '\0' ? text : "-";
}

const char *kind_name(int type) {
    return type == DEVICE_WAN ? "WAN" : type == DEVICE_LAN ? "LAN" : "?";
}

constexpr column device_columns[] = {{"ROW", true},   {"SYMBOLIC", false}, {"DEVICE", false},
                                     {"KIND", false}, {"LINES", true},     {"USED BY", false}};
constexpr json_field device_fields[] = {
    {"row", json_kind::number}, {"symbolic", json_kind::text}, {"device", json_kind::text},
    {"kind", json_kind::text},  {"lines", json_kind::number},  {"used_by", json_kind::list, ", "}};

table_rows device_rows(const std::vector<inventory_link> &links) {
    table_rows rows;
    for (int row = 0; row < DEVICE_TYPE_ROWS && __config_linktype[row].type != DEVICE_END; ++row) {
        const device_type &d = __config_linktype[row];
        std::vector<std::string> users;
        for (const inventory_link &link : links) {
            if (link.node == nullptr) continue;
            const link_values &values = link.node->link.values;
            std::vector<std::string> names = device_names(values);
            for (std::size_t i = 0; i < names.size(); ++i)
                if (values.device_type[i] == row)
                    users.push_back(names[i] + " link " + std::to_string(link.number));
        }
        rows.push_back(
            {std::to_string(row), std::string(d.symbolic, ::strnlen(d.symbolic, sizeof d.symbolic)),
             std::string(d.device, ::strnlen(d.device, sizeof d.device)), kind_name(d.type),
             std::to_string(d.lines), users.empty() ? "-" : joined(users, ", ")});
    }
    return rows;
}

constexpr column link_columns[] = {{"LINK", true},     {"FILE", false},    {"ALIAS", false},
                                   {"DEVICES", false}, {"ADDRESS", false}, {"PVCS", true},
                                   {"FLAGS", false}};
constexpr json_field link_fields[] = {
    {"link", json_kind::number},          {"file", json_kind::text},
    {"alias", json_kind::text_or_null},   {"devices", json_kind::list},
    {"address", json_kind::text_or_null}, {"pvcs", json_kind::number},
    {"flags", json_kind::list, "; "}};

table_rows link_rows(const std::vector<inventory_link> &links) {
    table_rows rows;
    for (const inventory_link &link : links) {
        std::string flags = link.flags.empty() ? "-" : joined(link.flags, "; ");
        if (link.node == nullptr) {
            rows.push_back({std::to_string(link.number), link.file, "-", "-", "-", "0", flags});
            continue;
        }
        const link_values &values = link.node->link.values;
        int pvcs = 0;
        for (const pvc_entry *pvc = values.pvcs; pvc != nullptr; pvc = pvc->next)
            ++pvcs;
        std::vector<std::string> names = device_names(values);
        rows.push_back({std::to_string(link.number), link.file, text_or_dash(values.subnet.name),
                        names.empty() ? "-" : joined(names, ","), address_of(values.subnet.address),
                        std::to_string(pvcs), flags});
    }
    return rows;
}

constexpr column pvc_columns[] = {
    {"LINK", true},     {"LCN", true},     {"PKTSIZE1", true},
    {"PKTSIZE2", true}, {"WINDOW1", true}, {"WINDOW2", true},
};
constexpr json_field pvc_fields[] = {
    {"link", json_kind::number},          {"lcn", json_kind::hex_number},
    {"packet_size_1", json_kind::number}, {"packet_size_2", json_kind::number},
    {"window_1", json_kind::number},      {"window_2", json_kind::number},
};

table_rows pvc_rows(const link_node *head) {
    table_rows rows;
    for (const link_node *node = head; node != nullptr; node = node->next)
        for (const pvc_entry *pvc = node->link.values.pvcs; pvc != nullptr; pvc = pvc->next) {
            char lcn[16];
            std::snprintf(lcn, sizeof lcn, "%03X", pvc->lcn);
            auto size = [](int index) { return std::to_string(16 << std::clamp(index, 0, 8)); };
            rows.push_back({std::to_string(pvc->link), lcn, size(pvc->pktsize[0]),
                            size(pvc->pktsize[1]), std::to_string(pvc->window[0]),
                            std::to_string(pvc->window[1])});
        }
    return rows;
}

void print_inventory(const std::vector<inventory_link> &links, const link_node *head) {
    std::cout << "Devices of " << qx25::config_dir() << "/boardconf:\n";
    print_table(device_columns, device_rows(links));
    std::cout << "\nLinks of " << qx25::config_dir() << "/config:\n";
    if (links.empty())
        std::cout << "no links\n";
    else
        print_table(link_columns, link_rows(links));
    std::cout << "\nPVCs of " << qx25::config_dir() << "/pvcmapconf:\n";
    table_rows pvcs = pvc_rows(head);
    if (pvcs.empty())
        std::cout << "no PVCs\n";
    else
        print_table(pvc_columns, pvcs);
}

void print_inventory_json(const std::vector<inventory_link> &links, const link_node *head) {
    json_writer json(std::cout);
    json.begin_object();
    write_json_rows(json, "devices", device_fields, device_rows(links));
    write_json_rows(json, "links", link_fields, link_rows(links));
    write_json_rows(json, "pvcs", pvc_fields, pvc_rows(head));
    json.end();
}

} // namespace

int run_inventory(const command &self, const arguments &args) {
    if (!args.empty()) return usage_error(self, "no arguments are taken");
    collect_messages();
    if (!fill_linktype_struct(__config_linktype)) {
        complain(self.name, std::string("cannot read ") + qx25::config_dir() + "/boardconf");
        return exit_failure;
    }
    bool boardconf_reports = complain_all(self.name, take_messages());
    std::vector<inventory_link> links = read_links(self);
    flag_shared_devices(links);
    link_node *head = chain(links);
    __fill_PVC_lists(head);
    bool unattached = complain_all(self.name, take_messages());

    if (args.given("--json"))
        print_inventory_json(links, head);
    else
        print_inventory(links, head);

    bool flagged = boardconf_reports || unattached ||
                   std::any_of(links.begin(), links.end(),
                               [](const auto &link) { return !link.flags.empty(); });
    release_links(head);
    return flagged ? exit_failure : exit_ok;
}

} // namespace qx25tool
