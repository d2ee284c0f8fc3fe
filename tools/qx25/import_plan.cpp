#include "import_plan.h"

#include "link_config.h"
#include "paths.h"
#include "text_file.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <strings.h>

namespace qx25tool {

namespace {

// Highest link number a link file can carry.
constexpr int last_link_number = 254;
constexpr int x25conf_fields = 9;
// The link class without a frame protocol.
constexpr int link_class_mlp = 27;
constexpr std::size_t line_size = 1024;

// A line of x25conf that describes a link, as the library reads it.
struct legacy_line {
    int number;
    std::string text; // without its trailing white space
    bool too_long;
};

// The link lines of x25conf, skipped and cut as the library skips and cuts
// them, so that the n-th line here is the n-th node of the inventory.
std::vector<legacy_line> legacy_lines() {
    std::vector<legacy_line> lines;
    std::string path = std::string(qx25::config_dir()) + "/x25conf";
    qx25::file_ptr stream(qx25::open_regular_file(path.c_str()));
    if (!stream) return lines;
    char line[line_size];
    int number = 0;
    for (qx25::line_read status; (status = qx25::read_bounded_line(
                                      stream.get(), line, sizeof line)) != qx25::line_read::end;) {
        ++number;
        if (line[0] == '#' || line[0] == '\n') continue;
        std::string text = line;
        text.erase(text.find_last_not_of(" \t\n\r\f\v") + 1);
        lines.push_back({number, text, status == qx25::line_read::too_long});
    }
    return lines;
}

// Field n (from 1) of a line.
std::string field_word(const std::string &text, int field) {
    std::string_view rest(text);
    for (int n = 1;; ++n) {
        std::size_t start = rest.find_first_not_of(" \t");
        if (start == std::string_view::npos) return "";
        rest.remove_prefix(start);
        std::string_view word = rest.substr(0, rest.find_first_of(" \t"));
        if (n == field) return std::string(word);
        rest.remove_prefix(word.size());
    }
}

const char *kind_name(int type) {
    return type == DEVICE_LAN ? "LAN" : "WAN";
}

std::string fault_text(const x25conf_check &check, const std::string &text) {
    std::string word = "'" + field_word(text, check.field) + "'";
    int kind = strcasecmp(field_word(text, 1).c_str(), "ethr") == 0 ? DEVICE_LAN : DEVICE_WAN;
    std::string field = "field " + std::to_string(check.field) + ": ";
    switch (check.fault) {
    case X25CONF_DEVICE_KIND:
        return field + "device kind " + word + " is not wans, wloop or ethr";
    case X25CONF_NET_TYPE:
        return field + "unknown network type " + word;
    case X25CONF_LINK_CLASS:
        return field + "unknown link class " + word;
    case X25CONF_LOCAL_ADDRESS:
        return field + "local address " + word + " is not " +
               (kind == DEVICE_LAN ? "hexadecimal" : "decimal") + " for a " + kind_name(kind) +
               " device";
    case X25CONF_UNKNOWN_DEVICE:
        return field + "no device " + word + " in boardconf";
    case X25CONF_DEVICE_TYPE:
        return field + "device " + word + " is not a " + kind_name(kind) + " device";
    case X25CONF_QUESTION_MARK:
        return field + word + " leaves the link unset";
    case X25CONF_TOO_FEW_FIELDS:
        return field + "missing: the line has " + std::to_string(check.fields) + " fields, " +
               std::to_string(x25conf_fields) + " are needed";
    case X25CONF_TOO_MANY_FIELDS:
        return field + word + " is one too many: " + std::to_string(x25conf_fields) +
               " fields are needed";
    default:
        return "invalid";
    }
}

bool same_device(const legacy_device &a, const legacy_device &b) {
    return a.row == b.row && a.board == b.board && a.line == b.line;
}

// What another line of the same link must repeat; empty when it does.
std::string disagreement(const link_values &first, const link_values &other) {
    if (first.net_type != other.net_type) return "network type";
    if (first.link_mode != other.link_mode) return "link class";
    if (std::strcmp(first.local_address, other.local_address) != 0) return "local address";
    return "";
}

class planner {
  public:
    void take(const link_values &link, const legacy_line &line);
    import_plan plan;

  private:
    void refuse(const legacy_line &line, const std::string &why) {
        plan.problems.push_back("x25conf line " + std::to_string(line.number) + ": " + why);
    }
    // Devices of the links taken so far, with their lines.
    std::vector<std::pair<legacy_device, int>> used_;
};

void planner::take(const link_values &link, const legacy_line &line) {
    if (line.too_long)
        return refuse(line, "longer than " + std::to_string(line_size - 1) + " characters");
    if (link.device_count == 0) {
        link_values scratch{};
        return refuse(
            line, fault_text(check_x25conf_line(line.text.c_str(), linktype, &scratch), line.text));
    }
    if (link.link_mode == link_class_mlp)
        return refuse(line, "field 6: link class 'LC_MLP' names no frame protocol; "
                            "an MLP link takes LC_MLAPBDTE, LC_MLAPBXDTE, LC_MLAPBDCE "
                            "or LC_MLAPBXDCE");
    auto number = static_cast<std::int32_t>(link.subnet.address.snid);
    if (number < 0 || number > last_link_number)
        return refuse(line, "field 4: link number " + std::to_string(number) + " is not 0 to " +
                                std::to_string(last_link_number));

    legacy_device device{link.device_type[0], link.device_board[0], link.device_line[0]};
    for (const auto &[other, other_line] : used_)
        if (same_device(device, other))
            return refuse(line, "device " + legacy_device_name(device) +
                                    " is already used by line " + std::to_string(other_line));

    auto same_link = std::find_if(plan.links.begin(), plan.links.end(),
                                  [&](const planned_link &p) { return p.number == number; });
    if (same_link == plan.links.end()) {
        plan.links.push_back({number, {line.number}, &link, {device}});
    } else {
        std::string differs = disagreement(*same_link->first, link);
        if (!differs.empty())
            return refuse(line, "link " + std::to_string(number) + " has another " + differs +
                                    " on line " + std::to_string(same_link->lines.front()));
        if (same_link->devices.size() >= LINK_MAX_DEVICES)
            return refuse(line, "link " + std::to_string(number) + " already has " +
                                    std::to_string(LINK_MAX_DEVICES) + " devices");
        same_link->lines.push_back(line.number);
        same_link->devices.push_back(device);
    }
    used_.push_back({device, line.number});
}

} // namespace

std::string legacy_device_name(const legacy_device &device) {
    const device_type &type = linktype[std::clamp(device.row, 0, DEVICE_TYPE_ROWS - 1)];
    int lines = type.lines != 0 ? type.lines : 1;
    return std::string(type.device, ::strnlen(type.device, sizeof type.device)) +
           std::to_string(device.board * lines + device.line);
}

import_plan plan_import(const link_node *head) {
    std::vector<legacy_line> lines = legacy_lines();
    planner sorter;
    std::size_t index = 0;
    for (const link_node *node = head; node != nullptr; node = node->next, ++index) {
        // The file changed under the reader: its later lines are not known.
        legacy_line line = index < lines.size() ? lines[index] : legacy_line{0, "", true};
        sorter.take(node->link.values, line);
    }
    return sorter.plan;
}

} // namespace qx25tool
