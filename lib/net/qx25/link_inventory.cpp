// Link inventory: the older single-file list of links, x25conf, read into a
// chain of link nodes like the one link discovery builds. Each line names
// one device of one link; the subnetworks file gives the link's address,
// alias and description, and pvcmapconf its circuits.
#include "link_config.h"

#include "error_functions.h"
#include "messages.h"
#include "paths.h"
#include "text_file.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <strings.h>

using namespace qx25;

namespace {

constexpr std::size_t line_size = 1024;
constexpr std::string_view blanks = " \t";
constexpr std::string_view white_space = " \t\n\r\f\v";

constexpr int x25conf_fields = 9;
// Stored for a network type or link class that no row names.
constexpr std::uint8_t unknown_row = 255;
// Room for a report that names the x25conf path.
constexpr std::size_t path_report_size = PATH_MAX + 64;

bool same_word(std::string_view a, const char *b) {
    return a.size() == std::strlen(b) && strncasecmp(a.data(), b, a.size()) == 0;
}

// The device kind of the first field: 1 WAN, 2 LAN, 0 none.
std::uint8_t device_kind(std::string_view word) {
    if (same_word(word, "wans") || same_word(word, "wloop")) return DEVICE_WAN;
    if (same_word(word, "ethr")) return DEVICE_LAN;
    return DEVICE_END;
}

// The row of link_nettype with the name; the "?" row that ends the table is
// never a match (a field beginning with "?" ends the line before).
std::uint8_t net_type_index(std::string_view word) {
    for (int row = 0; row < net_type_rows - 1; ++row)
        if (same_word(word, link_nettype[row].name)) return static_cast<std::uint8_t>(row);
    return unknown_row;
}

std::uint8_t net_class_value(std::string_view word) {
    for (int row = 0; row < net_class_rows - 1; ++row)
        if (same_word(word, netclass[row].name))
            return static_cast<std::uint8_t>(netclass[row].value);
    return unknown_row;
}

// Decimal digits for a WAN device, hexadecimal digits for a LAN device.
bool address_of_kind(std::string_view text, std::uint8_t kind) {
    std::string_view digits = kind == DEVICE_LAN ? "0123456789ABCDEFabcdef" : "0123456789";
    if (kind != DEVICE_WAN && kind != DEVICE_LAN) return true; // the kind is at fault already
    return text.find_first_not_of(digits) == std::string_view::npos;
}

// The row of the device table whose symbolic name is the word, or -1.
int device_row(std::string_view word, const device_type *table) {
    for (int row = 0; row < DEVICE_TYPE_ROWS && table[row].type != DEVICE_END; ++row) {
        const char *symbolic = table[row].symbolic;
        if (word.size() == ::strnlen(symbolic, sizeof table[row].symbolic) &&
            strncasecmp(word.data(), symbolic, word.size()) == 0)
            return row;
    }
    return -1;
}

// A field as a C string for the decimal conversions.
int decimal_word(std::string_view word) {
    char text[32];
    std::size_t count = std::min(word.size(), sizeof text - 1);
    std::memcpy(text, word.data(), count);
    text[count] = '\0';
    return decimal_field(text);
}

// Stores one field (numbered from 1) and tells whether it passed.
bool store_x25conf_field(int field, std::string_view word, const device_type *table,
                         std::uint8_t &kind, link_values &link, x25conf_fault &fault) {
    switch (field) {
    case 1:
        kind = device_kind(word);
        fault = X25CONF_DEVICE_KIND;
        return kind != DEVICE_END;
    case 2:
        link.device_board[0] = static_cast<std::uint8_t>(decimal_word(word));
        return true;
    case 3:
        link.device_line[0] = static_cast<std::uint8_t>(decimal_word(word));
        return true;
    case 5:
        link.net_type = net_type_index(word);
        fault = X25CONF_NET_TYPE;
        return link.net_type != unknown_row;
    case 6:
        link.link_mode = net_class_value(word);
        fault = X25CONF_LINK_CLASS;
        return link.link_mode != unknown_row;
    case 8: {
        std::size_t count = std::min(word.size(), sizeof link.local_address - 1);
        std::memcpy(link.local_address, word.data(), count);
        link.local_address[count] = '\0';
        fault = X25CONF_LOCAL_ADDRESS;
        return address_of_kind(word, kind);
    }
    case 9: {
        int row = device_row(word, table);
        link.device_type[0] = static_cast<std::uint8_t>(std::max(row, 0));
        fault = row < 0 ? X25CONF_UNKNOWN_DEVICE : X25CONF_DEVICE_TYPE;
        return row >= 0 && table[row].type == kind;
    }
    case 4: // the link number: stored once the line is read
    case 7: // not used
        return true;
    default:
        fault = X25CONF_TOO_MANY_FIELDS;
        return false;
    }
}

// A heap copy of a text of the subnetworks file; null for none, for an
// empty text and when the copy cannot be made.
char *text_copy(const char *text) {
    if (text == nullptr || text[0] == '\0') return nullptr;
    std::size_t size = std::strlen(text) + 1;
    auto *copy = static_cast<char *>(std::malloc(size));
    if (copy != nullptr) std::memcpy(copy, text, size);
    return copy;
}

// Cuts the trailing white space of a line in place; its new length.
std::size_t trim_line(char *line) {
    std::string_view text(line);
    std::size_t end = text.find_last_not_of(white_space);
    std::size_t length = end == std::string_view::npos ? 0 : end + 1;
    line[length] = '\0';
    return length;
}

bool x25conf_path(char (&path)[PATH_MAX]) {
    int length = std::snprintf(path, sizeof path, "%s/x25conf", config_dir());
    return length >= 0 && static_cast<std::size_t>(length) < sizeof path;
}

link_node *append_node(link_node **head) {
    auto *node = static_cast<link_node *>(std::calloc(1, sizeof(link_node)));
    if (node == nullptr) {
        // A half-read inventory is of no use to the caller.
        report(__link_error_function, Msg::NoMemory);
        std::exit(1);
    }
    if (*head == nullptr) {
        *head = node;
        return node;
    }
    link_node *last = *head;
    while (last->next != nullptr)
        last = last->next;
    last->next = node;
    node->prev = last;
    return node;
}

} // namespace

extern "C" {

const net_class_row netclass[net_class_rows] = {
    {"LC_LLC1", 15},     {"LC_LLC2", 16},
    {"LC_LAPBDTE", 17},  {"LC_LAPBXDTE", 18},
    {"LC_LAPBDCE", 19},  {"LC_LAPBXDCE", 20},
    {"LC_LAPDTE", 21},   {"LC_LAPDCE", 22},
    {"LC_MLAPBDTE", 23}, {"LC_MLAPBXDTE", 24},
    {"LC_MLAPBDCE", 25}, {"LC_MLAPBXDCE", 26},
    {"LC_MLP", 27},      {"?", 0},
};

x25conf_check check_x25conf_line(const char *line, const device_type *table, link_values *link) {
    x25conf_check check{X25CONF_VALID, 0, 0, 0};
    if (line == nullptr || table == nullptr || link == nullptr) return check;
    std::string_view rest(line);
    std::uint8_t kind = DEVICE_END;
    for (;;) {
        std::size_t start = rest.find_first_not_of(blanks);
        if (start == std::string_view::npos) break;
        rest.remove_prefix(start);
        std::string_view word = rest.substr(0, rest.find_first_of(blanks));
        rest.remove_prefix(word.size());
        int field = ++check.fields;
        if (field == 4) check.link_number = decimal_word(word);
        if (word.front() == '?') {
            check.fault = X25CONF_QUESTION_MARK;
            check.field = field;
            return check;
        }
        x25conf_fault fault = X25CONF_VALID;
        if (!store_x25conf_field(field, word, table, kind, *link, fault) &&
            check.fault == X25CONF_VALID) {
            check.fault = fault;
            check.field = field;
        }
    }
    if (check.fault == X25CONF_VALID && check.fields < x25conf_fields) {
        check.fault = X25CONF_TOO_FEW_FIELDS;
        check.field = check.fields + 1;
    }
    return check;
}

void parse_x25conf(char *line, const device_type *table, link_values *link) {
    if (link == nullptr) return;
    link->device_type[0] = link->device_line[0] = link->device_board[0] = 0;
    link->device_count = 0;
    link->mlp = 0;
    std::memset(static_cast<void *>(&link->subnet), 0, sizeof link->subnet);
    link->mlp_priority[0] = 1; // the byte after the board numbers
    if (line == nullptr || table == nullptr || trim_line(line) == 0) return;

    x25conf_check check = check_x25conf_line(line, table, link);
    if (check.fault == X25CONF_QUESTION_MARK) return;
    link->device_count = check.fault == X25CONF_VALID ? 1 : 0;

    auto snid = static_cast<std::uint32_t>(check.link_number);
    if (const subnet_entry *entry = __get_subnet(snid); entry != nullptr) {
        link->subnet = *entry;
        link->subnet.name = text_copy(entry->name);
        link->subnet.description = text_copy(entry->description);
    }
    link->subnet.address.snid = snid;
}

int read_link_parameters(link_node **head) {
    if (head == nullptr) {
        report(__link_error_function, Msg::NullReadLinkParameters);
        return EINVAL;
    }
    *head = nullptr;
    if (fill_linktype_struct(linktype) == 0)
        return __link_error_function(message_text(Msg::NoBoardconf));

    char path[PATH_MAX];
    bool formed = x25conf_path(path);
    errno = 0;
    file_ptr stream(formed ? open_regular_file(path) : nullptr);
    if (!stream) {
        int error = !formed ? ENAMETOOLONG : errno != 0 ? errno : EBADF;
        report<path_report_size>(__link_error_function, Msg::ErrorOpeningFile, path);
        return error;
    }

    char line[line_size];
    for (line_read status;
         (status = read_bounded_line(stream.get(), line, sizeof line)) != line_read::end;) {
        if (line[0] == '#' || line[0] == '\n') continue;
        link_node *node = append_node(head);
        link_values &values = node->link.values;
        parse_x25conf(line, linktype, &values);
        // What was cut from an overlong line may have been part of a field:
        // such a line describes no device.
        if (status == line_read::too_long) values.device_count = 0;
        if (__device_used(&values, *head))
            report<path_report_size>(__link_error_function, Msg::DuplicateDevice, path);
    }
    stream.reset();
    __fill_PVC_lists(*head);
    return 0;
}

} // extern "C"
