// Keyword value parsers of the link configuration reader: devices, local
// and full addresses, link mode and protocol, packet level mode, logical
// channel ranges, timers, delays, line speed and the X.32 texts.
#include "link_config.h"

#include "error_functions.h"
#include "messages.h"
#include "nibbles.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <strings.h>

using namespace qx25;

namespace {

constexpr int mlp1_class = 5;

bool is_dce_code(int code) {
    return code == LC_LAPBDCE || code == LC_LAPBXDCE || code == LC_LAPDCE || code == LC_MLAPBDCE ||
           code == LC_MLAPBXDCE;
}

bool is_lan_code(int code) {
    return code == LC_LLC1 || code == LC_LLC2;
}

bool equals_ignoring_case(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// Instance numbers are digits at the end of a device word; a long run of
// digits saturates instead of overflowing.
int instance_number(std::string_view digits) {
    int value = 0;
    for (char c : digits)
        value = std::min(value * 10 + (c - '0'), 9999999);
    return value;
}

int find_device_row(std::string_view name) {
    for (int row = 0; row < DEVICE_TYPE_ROWS && __config_linktype[row].type != DEVICE_END; ++row) {
        const char *device = __config_linktype[row].device;
        if (equals_ignoring_case(name,
                                 {device, ::strnlen(device, sizeof __config_linktype[row].device)}))
            return row;
    }
    return -1;
}

// Mode code changes of the DTE and DCE keywords: from -> to. Codes not listed
// become the side's plain LAPB code; the LAN codes never change.
struct mode_change {
    int from;
    int to;
};
constexpr mode_change to_dte[] = {{17, 17}, {18, 18}, {21, 21}, {23, 23}, {24, 24},
                                  {19, 17}, {20, 18}, {22, 21}, {25, 23}, {26, 24}};
constexpr mode_change to_dce[] = {{19, 19}, {20, 20}, {22, 22}, {25, 25}, {26, 26},
                                  {17, 19}, {18, 20}, {21, 22}, {23, 25}, {24, 26}};

template <std::size_t N> int changed_code(const mode_change (&changes)[N], int code, int fallback) {
    for (const mode_change &change : changes)
        if (change.from == code) return change.to;
    return fallback;
}

struct protocol_codes {
    const char *name;
    int dte;
    int dce;
};
constexpr protocol_codes protocols[] = {
    {"LAP", LC_LAPDTE, LC_LAPDCE},
    {"LAPB", LC_LAPBDTE, LC_LAPBDCE},
    {"LAPBE", LC_LAPBXDTE, LC_LAPBXDCE},
    {"MLAPB", LC_MLAPBDTE, LC_MLAPBDCE},
    {"MLAPBE", LC_MLAPBXDTE, LC_MLAPBXDCE},
    {"LLC1", LC_LLC1, LC_LLC1},
    {"LLC2", LC_LLC2, LC_LLC2},
};

} // namespace

extern "C" {

int load_config_linktype_on_demand(void) {
    // A row 0 that was never opened (the "notinit" image, or zeros) means
    // the table has not been read yet.
    if (__config_linktype[0].valid == 1) return 1;
    return fill_linktype_struct(__config_linktype);
}

int parse_device(const char *text, link_values *link) {
    if (text == nullptr || text[0] == '\0') {
        report(__parse_error_function, Msg::MissingDeviceName);
        link->device_count = 0;
        return 1;
    }
    if (!load_config_linktype_on_demand()) {
        report(__parse_error_function, Msg::NoDeviceData);
        link->device_count = 0;
        return 1;
    }

    link->device_count = 0;
    std::string_view rest(text);
    while (link->device_count < LINK_MAX_DEVICES) {
        std::size_t start = rest.find_first_not_of(", ");
        if (start == std::string_view::npos) break;
        rest.remove_prefix(start);
        std::string_view word = rest.substr(0, rest.find_first_of(", "));
        rest.remove_prefix(word.size());

        std::size_t digits = word.size();
        while (digits > 0 && word[digits - 1] >= '0' && word[digits - 1] <= '9')
            --digits;
        std::string_view name = word.substr(0, digits);
        int row = find_device_row(name);
        if (row < 0) {
            char word_text[256];
            std::size_t length = std::min(word.size(), sizeof word_text - 1);
            std::memcpy(word_text, word.data(), length);
            word_text[length] = '\0';
            report(__parse_error_function, Msg::UnknownDeviceName, word_text);
            return 1;
        }
        int instance = instance_number(word.substr(digits));
        // A device kind without a line count has one line per board.
        int lines = __config_linktype[row].lines;
        int index = link->device_count++;
        link->device_type[index] = static_cast<uint8_t>(row);
        link->device_line[index] = static_cast<uint8_t>(lines != 0 ? instance % lines : instance);
        link->device_board[index] = static_cast<uint8_t>(lines != 0 ? instance / lines : 0);
    }
    if (link->device_count >= 2) {
        link->mlp = 1;
        link->net_type = static_cast<uint8_t>(get_net_type(mlp1_class + link->device_count - 1));
    }
    return 0;
}

int x25_device_instance(const link_values *link, int index, char *name, int *instance) {
    if (link == nullptr || name == nullptr || instance == nullptr) return EINVAL;
    if (index < 0 || index >= DEVICE_TYPE_ROWS - 1) return EINVAL;
    // The bound is the size of the device table, not of the device block:
    // indexes past the fifth device read on through the link record's
    // following bytes, as they always have, but never past the record.
    const auto *bytes = reinterpret_cast<const uint8_t *>(link);
    static_assert(offsetof(link_values, device_board) + DEVICE_TYPE_ROWS < sizeof(link_values));
    int row = bytes[offsetof(link_values, device_type) + index];
    int line = bytes[offsetof(link_values, device_line) + index];
    int board = bytes[offsetof(link_values, device_board) + index];
    if (row >= DEVICE_TYPE_ROWS) return EINVAL;
    const device_type &type = __config_linktype[row];
    std::size_t length = ::strnlen(type.device, sizeof type.device - 1);
    std::memcpy(name, type.device, length);
    name[length] = '\0';
    *instance = board * type.lines + line;
    return 0;
}

int get_net_type(int address_class) {
    for (int row = 0; row < net_type_rows; ++row)
        if (link_nettype[row].address_class == address_class) return row;
    return net_type_rows - 1;
}

int convert_mac_addr(char *text) {
    if (std::strchr(text, ':') == nullptr) return 1;
    // Groups of one character grow by one, so the result may be longer.
    char converted[128];
    std::size_t out = 0;
    std::string_view rest(text);
    int result = 1;
    while (out + 3 < sizeof converted) {
        std::string_view group = rest.substr(0, rest.find(':'));
        if (group.size() == 2) {
            converted[out++] = group[0];
            converted[out++] = group[1];
        } else if (group.size() == 1) {
            converted[out++] = '0';
            converted[out++] = group[0];
        } else {
            converted[out++] = '?';
            result = 0;
            break;
        }
        if (group.size() == rest.size()) break;
        rest.remove_prefix(group.size() + 1);
    }
    converted[out] = '\0';
    std::memcpy(text, converted, out + 1);
    return result;
}

void parse_local_addr(const char *text, link_values *link) {
    if (text == nullptr || text[0] == '\0') {
        std::memset(link->local_address, 0, sizeof link->local_address);
        return;
    }
    // Room for 38 characters and what converting colon groups adds.
    char address[128];
    std::size_t length = ::strnlen(text, 38);
    std::memcpy(address, text, length);
    address[length] = '\0';
    convert_mac_addr(address);

    constexpr std::size_t max_digits = sizeof link->local_address - 1;
    for (std::size_t i = 0; i < length; ++i) {
        unsigned char c = static_cast<unsigned char>(address[i]);
        if (i >= max_digits || !std::isxdigit(c)) {
            link->local_address[std::min(i, max_digits)] = '\0';
            report(__parse_error_function, Msg::AddressInvalid, address);
            return;
        }
        link->local_address[i] = static_cast<char>(std::toupper(c));
    }
    link->local_address[length] = '\0';
}

void parse_full_addr(const char *text, link_values *link) {
    if (stox25(text, &link->subnet.address, 0) != 0)
        report(__parse_error_function, Msg::InvalidFullAddress);
}

void parse_link_mode(const char *text, link_values *link, x25_template *x25) {
    bool dte = strcasecmp(text, "DTE") == 0;
    bool dce = strcasecmp(text, "DCE") == 0;
    if (!dte && !dce) return;
    if (x25 != nullptr && x25->plp_mode != X25_PLP_AUTO)
        x25->plp_mode = dte ? X25_PLP_NORMAL : X25_PLP_DCE;
    int code = link->link_mode;
    if (is_lan_code(code)) {
        if (x25 != nullptr) x25->plp_mode = X25_PLP_AUTO;
        return;
    }
    link->link_mode = static_cast<uint8_t>(dte ? changed_code(to_dte, code, LC_LAPBDTE)
                                               : changed_code(to_dce, code, LC_LAPBDCE));
}

void parse_link_protocol(const char *text, link_values *link) {
    if (text == nullptr || text[0] == '\0') return;
    const protocol_codes *found = nullptr;
    for (const protocol_codes &protocol : protocols)
        if (strcasecmp(text, protocol.name) == 0) found = &protocol;
    if (found == nullptr) {
        // The catalog entry exists, but this report has always passed the
        // fixed text, without a newline.
        (void)message_text(Msg::UnknownProtocol);
        __parse_error_function("Unknown protocol");
        return;
    }
    int code = is_dce_code(link->link_mode) ? found->dce : found->dte;
    link->link_mode = static_cast<uint8_t>(code);
    link->mlp = code >= LC_MLAPBDTE && code <= LC_MLAPBXDCE ? 1 : 0;
    if (link->device_count > 1 && link->mlp == 0)
        report(__parse_error_function, Msg::MultipleDevicesNeedMlp);
}

int get_plp_mode(const char *text, int mode_code) {
    if (strcasecmp(text, "Auto") == 0) return X25_PLP_AUTO;
    if (strcasecmp(text, "Normal") == 0 && mode_code >= LC_LLC1 && mode_code <= LC_MLAPBXDCE)
        return is_dce_code(mode_code) ? X25_PLP_DCE : X25_PLP_NORMAL;
    return X25_PLP_NORMAL;
}

void parse_lcns(x25_lcn_block *block, const char *text, int which) {
    long bounds[2];
    int words = 0;
    std::string_view rest(text);
    while (words < 2) {
        std::size_t start = rest.find_first_not_of(" \t-");
        if (start == std::string_view::npos) break;
        rest.remove_prefix(start);
        std::string_view word = rest.substr(0, rest.find_first_of(" \t-"));
        char digits[32];
        std::size_t length = std::min(word.size(), sizeof digits - 1);
        std::memcpy(digits, word.data(), length);
        digits[length] = '\0';
        bounds[words++] = std::strtol(digits, nullptr, 10);
        rest.remove_prefix(word.size());
    }
    if (words == 0) return report(__parse_error_function, Msg::NoLcnRange);
    if (words == 1) return report(__parse_error_function, Msg::LcnNotARange);
    if (bounds[1] < bounds[0]) return report(__parse_error_function, Msg::LcnUpperBelowLower);

    auto low = static_cast<int16_t>(bounds[0]);
    auto high = static_cast<int16_t>(bounds[1]);
    auto count = static_cast<uint16_t>(high == 0 ? 0 : high - low + 1);
    switch (which) {
    case LCN_PVC:
        block->pvc_low = low, block->pvc_high = high, block->pvc_count = count;
        break;
    case LCN_INCOMING:
        block->inc_low = low, block->inc_high = high, block->inc_count = count;
        break;
    case LCN_OUTGOING:
        block->out_low = low, block->out_high = high, block->out_count = count;
        break;
    case LCN_TWO_WAY:
        block->two_low = low, block->two_high = high, block->two_count = count;
        break;
    default:
        return;
    }
    block->total = static_cast<int16_t>(block->pvc_count + block->inc_count + block->two_count +
                                        block->out_count);
}

// Rounds a value given in seconds to the unit of its field; false when the
// result would lie outside 0..32000 (tested before converting, so that huge
// values and NaN cannot overflow).
static bool scaled(double seconds, double factor, int &result) {
    double value = seconds * factor + 0.5;
    if (!(value > -1.0 && value < 32001.0)) return false;
    result = static_cast<int>(value);
    return true;
}

int parse_timer(double seconds) {
    int tenths;
    if (scaled(seconds, 10.0, tenths)) return tenths;
    report(__parse_error_function, Msg::TimerOutOfRange);
    return 2000;
}

int parse_delay(double seconds) {
    int milliseconds;
    if (scaled(seconds, 1000.0, milliseconds)) return milliseconds;
    report(__parse_error_function, Msg::DelayOutOfRange);
    return 5;
}

uint32_t parse_speed(const char *text) {
    if (strcasecmp(text, "external") == 0) return 0;
    return static_cast<uint32_t>(std::strtoul(text, nullptr, 10));
}

void str_to_bcd(uint8_t *destination, const char *text, int count) {
    for (int i = 0; i < count; ++i) {
        int value = hex_value(text[i]);
        put_nibble(destination, i, value < 0 ? 0 : value);
    }
    if (count % 2 != 0) put_nibble(destination, count, 0);
}

void parse_x32_text_field(const char *text, uint8_t *destination, uint8_t *length) {
    constexpr int field_digits = 64; // 32 bytes
    int count = static_cast<int>(::strnlen(text, 1024));
    if (count == 0) {
        *length = 0;
        return;
    }
    for (int i = 0; i < count; ++i) {
        if (i > field_digits || hex_value(text[i]) < 0) {
            report(__parse_error_function, Msg::X32TextInvalid, text);
            *length = 0;
            return;
        }
    }
    // 65 digits pass the check; the field holds 64 of them.
    str_to_bcd(destination, text, std::min(count, field_digits));
    *length = static_cast<uint8_t>(std::min(count, field_digits) / 2);
}
}
