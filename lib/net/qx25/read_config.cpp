// Link configuration reader: reads one link configuration file, section by
// section, into the section records, with every comment kept per keyword.
#include "link_config.h"

#include "error_functions.h"
#include "messages.h"
#include "new_config.h"
#include "numeric_locale.h"
#include "paths.h"

#include <cctype>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>
#include <strings.h>

using namespace qx25;

extern "C" {

const config_keyword section_map[] = {
    {"link", SECTION_LINK}, {"x25", SECTION_X25}, {"llc2", SECTION_LLC2}, {"lapb", SECTION_LAPB},
    {"wan", SECTION_WAN},   {"mlp", SECTION_MLP}, {nullptr, -1},
};

const config_keyword __LINK_functions[] = {
    {"device", 0},      {"local_address", 1}, {"full_address", 2}, {"type", 3},
    {"version", 4},     {"mode", 5},          {"protocol", 6},     {"alias", 7},
    {"description", 8}, {"max_lan_conns", 9}, {nullptr, -1},
};

const config_keyword __X25_functions[] = {
    {"plpmode", 0},
    {"pvc_range", 1},
    {"inc_range", 2},
    {"out_range", 3},
    {"two_range", 4},
    {"modulo", 5},
    {"use_negotiation", 6},
    {"bar_negotiation", 7},
    {"src_addr_control", 8},
    {"accept_revchg", 9},
    {"prev_chg", 10},
    {"fast_select", 11},
    {"fs_r_response", 12},
    {"bar_nonpriv_listen", 13},
    {"locmaxpktsize", 14},
    {"remmaxpktsize", 15},
    {"locdefpktsize", 16},
    {"remdefpktsize", 17},
    {"locmaxwinsize", 18},
    {"remmaxwinsize", 19},
    {"locdefwinsize", 20},
    {"remdefwinsize", 21},
    {"maxnsdulength", 22},
    {"ackdelay", 23},
    {"t20value", 24},
    {"t21value", 25},
    {"t22value", 26},
    {"t23value", 27},
    {"t24value", 28},
    {"t25value", 29},
    {"t26value", 30},
    {"t28value", 31},
    {"idlevalue", 32},
    {"connectvalue", 33},
    {"r20value", 34},
    {"r22value", 35},
    {"r23value", 36},
    {"r28value", 37},
    {"localdelay", 38},
    {"accessdelay", 39},
    {"locmaxthclass", 40},
    {"remmaxthclass", 41},
    {"locdefthclass", 42},
    {"remdefthclass", 43},
    {"locminthclass", 44},
    {"remminthclass", 45},
    {"network", 46},
    {"sub_cug", 47},
    {"sub_pref_cug", 48},
    {"sub_cugoa", 49},
    {"sub_cugia", 50},
    {"cug_format", 51},
    {"bar_cug_in", 52},
    {"bar_incall", 53},
    {"bar_outcall", 54},
    {"sub_toa_npi_fmt", 55},
    {"bar_toa_npi_fmt", 56},
    {"sub_nui_override", 57},
    {"bar_call_x32_reg", 58},
    {"acc_nodiag", 59},
    {"use_diag", 60},
    {"ccitt_clear_len", 61},
    {"bar_diag", 62},
    {"disc_nz_diag", 63},
    {"acc_hex_add", 64},
    {"intl_prioritised", 65},
    {"datapac_priority", 66},
    {"iso_8882_mode", 67},
    {"send_x121_to_lan", 68},
    {"insert_x121_from_lan", 69},
    {"dnic", 70},
    {"intl_addr_recogn", 71},
    {"prty_encode_control", 72},
    {"prty_pkt_forced_val", 73},
    {"dbit_accept_in", 74},
    {"dbit_accept_out", 75},
    {"dbit_data_in", 76},
    {"dbit_data_out", 77},
    {"thclass_neg_to_def", 78},
    {"thclass_type", 79},
    {"thclass_wmap", 80},
    {"thclass_pmap", 81},
    {"x25_x32_enable_authen", 82},
    {"x25_x32_sign", 83},
    {"x25_x32_identity", 84},
    {nullptr, -1},
};

const config_keyword __LAPB_functions[] = {
    {"n2_count", 0},       {"t1_timer", 1},           {"pf_timer", 2},
    {"reject_timer", 3},   {"busy_timer", 4},         {"idle_timer", 5},
    {"rr_ack_delay", 6},   {"unack_max", 7},          {"local_win", 8},
    {"local_probe", 9},    {"max_iframe_len", 10},    {"mlp_priority", 11},
    {"ign_ua_error", 12},  {"frmr_frmr_error", 13},   {"frmr_invrsp_error", 14},
    {"sframe_pbit", 15},   {"no_dm_adm", 16},         {"sabm_in_x32", 17},
    {"iso8882", 18},       {"initial_down", 19},      {"lapb_x32_enable_authen", 20},
    {"lapb_x32_sign", 21}, {"lapb_x32_identity", 22}, {nullptr, -1},
};

const config_keyword __LLC2_functions[] = {
    {"n2_count", 0},   {"t1_timer", 1},    {"pf_timer", 2},        {"reject_timer", 3},
    {"busy_timer", 4}, {"idle_timer", 5},  {"rr_ack_delay", 6},    {"unack_max", 7},
    {"local_win", 8},  {"local_probe", 9}, {"max_iframe_len", 10}, {"xid_window", 11},
    {"xid_ndup", 12},  {"xid_tdup", 13},   {nullptr, -1},
};

const config_keyword __WAN_functions[] = {
    {"line_speed", 0}, {"max_frame", 1}, {"translate", 2},    {"connect_proc", 3},
    {"x21_t1", 4},     {"x21_t2", 5},    {"x21_t3a", 6},      {"x21_t4b", 7},
    {"x21_t5", 8},     {"x21_t6", 9},    {"v25_callreq", 10}, {nullptr, -1},
};

const config_keyword __MLP_functions[] = {
    {"mlp_window", 0}, {"mlp_guard", 1}, {"mt1_val", 2}, {"mt2_val", 3},
    {"mt3_val", 4},    {"mn1_val", 5},   {nullptr, -1},
};

} // extern "C"

namespace {

// ---- Value forms ----------------------------------------------------------

// How a keyword's value is converted and where it goes in the values block.
enum class form : uint8_t {
    number,  // leading decimal digits, kept when within low..high
    low_8,   // leading decimal digits, low 8 bits, no check
    tenths,  // seconds with a fraction, in tenths, kept when within low..high
    flag,    // exactly y or n: sets or clears the bits of `low`
    special, // handled by the section's own code
};

struct keyword_rule {
    form kind;
    uint16_t offset; // in the values block
    uint8_t width;   // bytes: 1, 2 or 4
    int32_t low;     // range, or the flag bits
    int32_t high;
};

#define QX25_FIELD(type, field) offsetof(type, field), sizeof(type::field)

constexpr keyword_rule rule(form kind, std::size_t offset, std::size_t width, int32_t low = 0,
                            int32_t high = 0) {
    return {kind, static_cast<uint16_t>(offset), static_cast<uint8_t>(width), low, high};
}
constexpr keyword_rule special() {
    return {form::special, 0, 0, 0, 0};
}

long leading_number(const char *text) {
    return std::strtol(text, nullptr, 10);
}

// The value a flag keyword asks for: 1 for y, 0 for n, -1 for anything else.
int flag_value(const char *text) {
    if ((text[0] == 'y' || text[0] == 'Y') && text[1] == '\0') return 1;
    if ((text[0] == 'n' || text[0] == 'N') && text[1] == '\0') return 0;
    return -1;
}

// Seconds read as a fraction, in tenths, rounded; false when the text holds
// no usable number or the result lies outside low..high.
bool tenths_value(const char *text, int32_t low, int32_t high, long &result) {
    double value = std::strtod(text, nullptr) * 10.0 + 0.5;
    if (!(value > -2147483648.0 && value < 2147483648.0)) return false;
    result = static_cast<long>(value);
    return result >= low && result <= high;
}

void store(void *values, const keyword_rule &r, long value) {
    auto *field = static_cast<unsigned char *>(values) + r.offset;
    switch (r.width) {
    case 1: {
        auto narrow = static_cast<uint8_t>(value);
        std::memcpy(field, &narrow, 1);
        break;
    }
    case 2: {
        auto narrow = static_cast<uint16_t>(value);
        std::memcpy(field, &narrow, 2);
        break;
    }
    default: {
        auto narrow = static_cast<uint32_t>(value);
        std::memcpy(field, &narrow, 4);
        break;
    }
    }
}

long load(const void *values, const keyword_rule &r) {
    const auto *field = static_cast<const unsigned char *>(values) + r.offset;
    switch (r.width) {
    case 1:
        return *field;
    case 2: {
        uint16_t value;
        std::memcpy(&value, field, 2);
        return value;
    }
    default: {
        uint32_t value;
        std::memcpy(&value, field, 4);
        return value;
    }
    }
}

// Applies a rule that needs no knowledge of its section; false for special
// rules.
bool apply_rule(void *values, const keyword_rule &r, const char *text) {
    long value;
    switch (r.kind) {
    case form::number:
        value = leading_number(text);
        if (value >= r.low && value <= r.high) store(values, r, value);
        return true;
    case form::low_8:
        store(values, r, leading_number(text) & 0xFF);
        return true;
    case form::tenths:
        if (tenths_value(text, r.low, r.high, value)) store(values, r, value);
        return true;
    case form::flag: {
        int wanted = flag_value(text);
        if (wanted == 1) store(values, r, load(values, r) | r.low);
        if (wanted == 0) store(values, r, load(values, r) & ~static_cast<long>(r.low));
        return true;
    }
    case form::special:
        break;
    }
    return false;
}

// ---- Keyword tables of rules, in keyword-table order ------------------------

using X = x25_template;
constexpr keyword_rule x25_rules[X25_KEYWORDS] = {
    special(), // plpmode
    special(), // pvc_range
    special(), // inc_range
    special(), // out_range
    special(), // two_range
    special(), // modulo
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_USE_NEGOTIATION),
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_BAR_NEGOTIATION),
    rule(form::number, QX25_FIELD(X, src_addr), 1, 4), // src_addr_control
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_ACCEPT_REVCHG),
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_PREV_CHG),
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_FAST_SELECT),
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_FS_R_RESPONSE),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_BAR_NONPRIV_LISTEN),
    rule(form::number, QX25_FIELD(X, locmaxpktsize), 7, 12),
    rule(form::number, QX25_FIELD(X, remmaxpktsize), 7, 12),
    rule(form::number, QX25_FIELD(X, locdefpktsize), 7, 12),
    rule(form::number, QX25_FIELD(X, remdefpktsize), 7, 12),
    special(), // locmaxwinsize: the range depends on the modulo
    special(), // remmaxwinsize
    special(), // locdefwinsize
    special(), // remdefwinsize
    rule(form::number, QX25_FIELD(X, max_nsdu), 1, 32000), // maxnsdulength
    special(),                                             // ackdelay ... connectvalue: timers
    special(),
    special(),
    special(),
    special(),
    special(),
    special(),
    special(),
    special(),
    special(),
    special(),
    rule(form::low_8, QX25_FIELD(X, r20value)),
    rule(form::low_8, QX25_FIELD(X, r22value)),
    rule(form::low_8, QX25_FIELD(X, r23value)),
    rule(form::low_8, QX25_FIELD(X, r28value)),
    special(), // localdelay
    special(), // accessdelay
    rule(form::number, QX25_FIELD(X, locmaxthclass), 0, 15),
    rule(form::number, QX25_FIELD(X, remmaxthclass), 0, 15),
    rule(form::number, QX25_FIELD(X, locdefthclass), 0, 15),
    rule(form::number, QX25_FIELD(X, remdefthclass), 0, 15),
    rule(form::number, QX25_FIELD(X, locminthclass), 0, 15),
    rule(form::number, QX25_FIELD(X, remminthclass), 0, 15),
    special(), // network
    rule(form::flag, QX25_FIELD(X, cug), X25_CUG_SUB),
    rule(form::flag, QX25_FIELD(X, cug), X25_CUG_SUB_PREF),
    rule(form::flag, QX25_FIELD(X, cug), X25_CUG_SUB_OA),
    rule(form::flag, QX25_FIELD(X, cug), X25_CUG_SUB_IA),
    special(), // cug_format
    rule(form::flag, QX25_FIELD(X, cug), X25_CUG_BAR_IN),
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_BAR_INCALL),
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_BAR_OUTCALL),
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_SUB_TOA_NPI_FMT),
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_BAR_TOA_NPI_FMT),
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_SUB_NUI_OVERRIDE),
    rule(form::flag, QX25_FIELD(X, facilities), X25_FAC_BAR_CALL_X32_REG),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_ACC_NODIAG),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_USE_DIAG),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_CCITT_CLEAR_LEN),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_BAR_DIAG),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_DISC_NZ_DIAG),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_ACC_HEX_ADD),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_INTL_PRIORITISED),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_DATAPAC_PRIORITY),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_ISO_8882_MODE),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_SEND_X121_TO_LAN),
    rule(form::flag, QX25_FIELD(X, options), X25_OPT_INSERT_X121_FROM_LAN),
    special(), // dnic
    rule(form::number, QX25_FIELD(X, intl_addr_recogn), 0, 4),
    rule(form::number, QX25_FIELD(X, prty_encode), 0, 2), // prty_encode_control
    special(),                                            // prty_pkt_forced_val
    special(),                                            // dbit_accept_in
    special(),                                            // dbit_accept_out
    special(),                                            // dbit_data_in
    special(),                                            // dbit_data_out
    special(),                                            // thclass_neg_to_def
    rule(form::number, QX25_FIELD(X, thclass_type), 0, 3),
    special(), // thclass_wmap
    special(), // thclass_pmap
    special(), // x25_x32_enable_authen
    special(), // x25_x32_sign
    special(), // x25_x32_identity
};

enum x25_keyword_index {
    X25_PLPMODE = 0,
    X25_PVC_RANGE = 1,
    X25_TWO_RANGE = 4,
    X25_MODULO = 5,
    X25_LOCMAXWINSIZE = 18,
    X25_REMDEFWINSIZE = 21,
    X25_ACKDELAY = 23,
    X25_CONNECTVALUE = 33,
    X25_LOCALDELAY = 38,
    X25_ACCESSDELAY = 39,
    X25_NETWORK = 46,
    X25_CUG_FORMAT = 51,
    X25_DNIC = 70,
    X25_PRTY_PKT_FORCED_VAL = 73,
    X25_DBIT_ACCEPT_IN = 74,
    X25_DBIT_DATA_OUT = 77,
    X25_THCLASS_NEG_TO_DEF = 78,
    X25_THCLASS_WMAP = 80,
    X25_THCLASS_PMAP = 81,
    X25_X32_ENABLE_AUTHEN = 82,
    X25_X32_SIGN = 83,
    X25_X32_IDENTITY = 84,
};

// Link and LAN/WAN rules shared by the LAPB and LLC2 sections: the two
// records have the same fields up to max_iframe_len.
using L = lapb_template;
using C = llc2_template;
constexpr int32_t counter_max = 32767;

constexpr keyword_rule lapb_rules[LAPB_KEYWORDS] = {
    rule(form::number, QX25_FIELD(L, n2_count), 0, counter_max),
    rule(form::tenths, QX25_FIELD(L, t1_timer), 0, counter_max),
    rule(form::tenths, QX25_FIELD(L, pf_timer), 0, counter_max),
    rule(form::tenths, QX25_FIELD(L, reject_timer), 0, counter_max),
    rule(form::tenths, QX25_FIELD(L, busy_timer), 0, counter_max),
    rule(form::tenths, QX25_FIELD(L, idle_timer), 0, counter_max),
    rule(form::tenths, QX25_FIELD(L, rr_ack_delay), 0, counter_max),
    rule(form::number, QX25_FIELD(L, unack_max), 0, 127),
    rule(form::number, QX25_FIELD(L, local_win), 0, 127),
    rule(form::number, QX25_FIELD(L, local_probe), 0, 127),
    rule(form::number, QX25_FIELD(L, max_iframe_len), 0, 8199),
    special(), // mlp_priority
    rule(form::flag, QX25_FIELD(L, flags), LAPB_IGN_UA_ERROR),
    rule(form::flag, QX25_FIELD(L, flags), LAPB_FRMR_FRMR_ERROR),
    rule(form::flag, QX25_FIELD(L, flags), LAPB_FRMR_INVRSP_ERROR),
    rule(form::flag, QX25_FIELD(L, flags), LAPB_SFRAME_PBIT),
    rule(form::flag, QX25_FIELD(L, flags), LAPB_NO_DM_ADM),
    rule(form::flag, QX25_FIELD(L, flags), LAPB_SABM_IN_X32),
    rule(form::flag, QX25_FIELD(L, flags), LAPB_ISO8882),
    rule(form::flag, QX25_FIELD(L, flags), LAPB_INITIAL_DOWN),
    special(), // lapb_x32_enable_authen
    special(), // lapb_x32_sign
    special(), // lapb_x32_identity
};

enum lapb_keyword_index {
    LAPB_MLP_PRIORITY = 11,
    LAPB_X32_ENABLE_AUTHEN = 20,
    LAPB_X32_SIGN = 21,
    LAPB_X32_IDENTITY = 22,
};

constexpr keyword_rule llc2_rules[LLC2_KEYWORDS] = {
    rule(form::number, QX25_FIELD(C, n2_count), 0, counter_max),
    rule(form::tenths, QX25_FIELD(C, t1_timer), 0, counter_max),
    rule(form::tenths, QX25_FIELD(C, pf_timer), 0, counter_max),
    rule(form::tenths, QX25_FIELD(C, reject_timer), 0, counter_max),
    rule(form::tenths, QX25_FIELD(C, busy_timer), 0, counter_max),
    rule(form::tenths, QX25_FIELD(C, idle_timer), 0, counter_max),
    rule(form::tenths, QX25_FIELD(C, rr_ack_delay), 0, counter_max),
    rule(form::number, QX25_FIELD(C, unack_max), 0, 127),
    rule(form::number, QX25_FIELD(C, local_win), 0, 127),
    rule(form::number, QX25_FIELD(C, local_probe), 0, 127),
    rule(form::number, QX25_FIELD(C, max_iframe_len), 0, 4103),
    rule(form::number, QX25_FIELD(C, xid_window), 0, 127),
    rule(form::number, QX25_FIELD(C, xid_ndup), 0, 255),
    rule(form::tenths, QX25_FIELD(C, xid_tdup), 0, counter_max),
};

using W = wan_values;
constexpr keyword_rule wan_rules[WAN_KEYWORDS] = {
    special(), // line_speed
    rule(form::number, offsetof(W, tuning.max_frame), sizeof(uint16_t), 0, 4104),
    special(), // translate
    special(), // connect_proc
    rule(form::tenths, QX25_FIELD(W, x21_t1), 3, 30),
    rule(form::tenths, QX25_FIELD(W, x21_t2), 20, 200),
    rule(form::tenths, QX25_FIELD(W, x21_t3a), 6, 60),
    rule(form::tenths, QX25_FIELD(W, x21_t4b), 6, 60),
    rule(form::tenths, QX25_FIELD(W, x21_t5), 2, 20),
    rule(form::tenths, QX25_FIELD(W, x21_t6), 2, 20),
    special(), // v25_callreq
};

enum wan_keyword_index {
    WAN_LINE_SPEED = 0,
    WAN_TRANSLATE = 2,
    WAN_CONNECT_PROC = 3,
    WAN_V25_CALLREQ = 10,
};

using M = mlp_values;
constexpr keyword_rule mlp_rules[MLP_KEYWORDS] = {
    rule(form::number, QX25_FIELD(M, mlp_win), 0, 4095),
    rule(form::number, QX25_FIELD(M, guard), 0, 4095),
    rule(form::tenths, QX25_FIELD(M, mt1), 1, 3000),
    rule(form::tenths, QX25_FIELD(M, mt2), 1, 3000),
    rule(form::tenths, QX25_FIELD(M, mt3), 1, 3000),
    rule(form::number, QX25_FIELD(M, mn1), 1, 255),
};

#undef QX25_FIELD

int keyword_index(const config_keyword *table, const char *keyword) {
    // The first letter rules out most rows before a whole comparison.
    auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    int first = lower(keyword[0]);
    for (const config_keyword *row = table; row->name != nullptr; ++row)
        if (lower(row->name[0]) == first && strcasecmp(row->name, keyword) == 0) return row->index;
    return -1;
}

// ---- Section handlers -------------------------------------------------------

bool is_mlp_net_type(int net_type) {
    return net_type >= NET_MLP1 && net_type <= NET_MLP5;
}
bool is_wan_net_type(int net_type) {
    return net_type == NET_WAN88 || net_type == NET_WAN84 || net_type == NET_WAN80;
}

void set_network(x25_section *x25, int network) {
    if (x25 != nullptr) x25->values.network = static_cast<uint8_t>(network);
}

void copy_text(char *&slot, const char *text) {
    if (text[0] == '\0') return;
    std::free(slot);
    std::size_t length = std::strlen(text);
    slot = static_cast<char *>(std::malloc(length + 1));
    if (slot != nullptr) std::memcpy(slot, text, length + 1);
}

void link_type(const char *text, link_values &link, x25_section *x25) {
    if (strcasecmp(text, "LAN") == 0) {
        link.net_type = NET_LAN;
        if (link.link_mode != LC_LLC1 && link.link_mode != LC_LLC2) link.link_mode = LC_LLC2;
        set_network(x25, 1);
    } else if (strcasecmp(text, "WAN") == 0) {
        if (x25 != nullptr && x25->values.network <= 1) x25->values.network = 2;
        if (link.link_mode == LC_LLC1 || link.link_mode == LC_LLC2) link.link_mode = LC_LAPBDTE;
        if (is_wan_net_type(link.net_type)) {
            link.mlp = 0;
        } else if (is_mlp_net_type(link.net_type)) {
            link.mlp = 1;
        } else {
            link.net_type = NET_WAN88;
            link.mlp = 0;
        }
    }
}

void link_version(const char *text, link_values &link, x25_section *x25) {
    if (link.net_type == NET_LAN) return;
    if (link.mlp != 0 || is_mlp_net_type(link.net_type)) {
        if (x25 != nullptr) x25->values.version = 2;
        return;
    }
    struct version_row {
        long year, short_year;
        uint8_t net_type, version;
    };
    constexpr version_row versions[] = {
        {1980, 80, NET_WAN80, 0}, {1984, 84, NET_WAN84, 1}, {1988, 88, NET_WAN88, 2}};
    long number = leading_number(text);
    for (const version_row &row : versions) {
        if (number != row.year && number != row.short_year) continue;
        link.net_type = row.net_type;
        if (x25 != nullptr) x25->values.version = row.version;
    }
}

void link_protocol(const char *text, link_values &link, x25_section *x25) {
    parse_link_protocol(text, &link);
    if (x25 == nullptr) return;
    int code = link.link_mode;
    if (code == LC_LLC1 || code == LC_LLC2) {
        x25->values.network = 1;
    } else if (code >= LC_LAPBDTE && code <= LC_MLAPBXDCE && x25->values.network == 1) {
        x25->values.network = link.net_type == NET_WAN80 ? 4 : link.net_type == NET_WAN84 ? 3 : 2;
    }
}

void link_keyword(int index, const config_line &line, link_section &link, x25_section *x25) {
    link_values &values = link.values;
    const char *text = line.value;
    switch (index) {
    case 0:
        parse_device(text, &values);
        break;
    case 1:
        parse_local_addr(text, &values);
        break;
    case 2:
        parse_full_addr(text, &values);
        break;
    case 3:
        link_type(text, values, x25);
        break;
    case 4:
        link_version(text, values, x25);
        break;
    case 5:
        parse_link_mode(text, &values, x25 != nullptr ? &x25->values : nullptr);
        break;
    case 6:
        link_protocol(text, values, x25);
        break;
    case 7:
        copy_text(values.subnet.name, text);
        break;
    case 8:
        copy_text(values.subnet.description, text);
        break;
    case 9:
        values.max_lan_conns = static_cast<uint8_t>(leading_number(text) & 0xFF);
        break;
    }
    copy_comments(&link.keyword[index], &line);
}

void set_window(x25_template &x25, int index, const char *text) {
    long size = leading_number(text);
    long high = x25.modulo == X25_MODULO_8 ? 8 : 128;
    if (size < 1 || size > high) return;
    uint8_t *windows[] = {&x25.locmaxwinsize, &x25.remmaxwinsize, &x25.locdefwinsize,
                          &x25.remdefwinsize};
    *windows[index - X25_LOCMAXWINSIZE] = static_cast<uint8_t>(size);
}

void set_timer(x25_template &x25, int index, const char *text) {
    int16_t *timers[] = {&x25.ackdelay, &x25.t20value,  &x25.t21value,    &x25.t22value,
                         &x25.t23value, &x25.t24value,  &x25.t25value,    &x25.t26value,
                         &x25.t28value, &x25.idlevalue, &x25.connectvalue};
    *timers[index - X25_ACKDELAY] = static_cast<int16_t>(parse_timer(std::strtod(text, nullptr)));
}

void set_dnic(x25_template &x25, const char *text) {
    long value = leading_number(text);
    if (value < 0 || value > 9999) return;
    char first[3] = {text[0], text[0] != '\0' ? text[1] : '\0', '\0'};
    x25.dnic[0] = static_cast<uint8_t>(std::strtol(first, nullptr, 16));
    x25.dnic[1] =
        static_cast<uint8_t>(std::strlen(text) > 2 ? std::strtol(text + 2, nullptr, 16) : 0);
}

void set_dbit(x25_template &x25, int index, const char *text) {
    struct dbit_row {
        const char *high_word; // sets the high bit of the pair
        const char *low_word;  // sets the low bit
    };
    constexpr dbit_row rows[] = {
        {"zero", "clear"}, {"zero", "clear"}, {"zero", "reset"}, {"zero", "reset"}};
    int shift = 2 * (index - X25_DBIT_ACCEPT_IN);
    const dbit_row &row = rows[index - X25_DBIT_ACCEPT_IN];
    x25.dbit = static_cast<uint8_t>(x25.dbit & ~(3 << shift));
    if (strcasecmp(text, row.high_word) == 0)
        x25.dbit = static_cast<uint8_t>(x25.dbit | 2 << shift);
    if (strcasecmp(text, row.low_word) == 0) x25.dbit = static_cast<uint8_t>(x25.dbit | 1 << shift);
}

// Up to 16 numbers, each followed by one separator character.
void set_class_map(uint8_t (&map)[16], const char *text, long high) {
    const char *end = text + std::strlen(text);
    const char *p = text;
    for (int i = 0; i < 16 && p < end; ++i) {
        char *after;
        long value = std::strtol(p, &after, 10);
        if (value >= 0 && value <= high) map[i] = static_cast<uint8_t>(value);
        p = after + 1;
    }
}

// X.32 keywords keep no comments; false for every other keyword.
bool x32_keyword(int flag_index, int index, const char *text, x32_record *x32) {
    if (index < flag_index || index > flag_index + 2) return false;
    if (x32 == nullptr) return true;
    if (index == flag_index) {
        int wanted = flag_value(text);
        if (wanted >= 0) x32->authen = static_cast<uint8_t>(wanted);
    } else if (index == flag_index + 1) {
        parse_x32_text_field(text, x32->signature, &x32->signature_len);
    } else {
        parse_x32_text_field(text, x32->identity, &x32->identity_len);
    }
    return true;
}

void x25_keyword(int index, const config_line &line, x25_section &x25, const link_section &link,
                 x32_record *x32) {
    x25_template &v = x25.values;
    const char *text = line.value;
    if (x32_keyword(X25_X32_ENABLE_AUTHEN, index, text, x32)) return;

    if (!apply_rule(&v, x25_rules[index], text)) {
        if (index == X25_PLPMODE) {
            v.plp_mode = static_cast<uint8_t>(get_plp_mode(text, link.values.link_mode));
        } else if (index >= X25_PVC_RANGE && index <= X25_TWO_RANGE) {
            constexpr int which[] = {LCN_PVC, LCN_INCOMING, LCN_OUTGOING, LCN_TWO_WAY};
            parse_lcns(&v.lcn, text, which[index - X25_PVC_RANGE]);
        } else if (index == X25_MODULO) {
            long modulo = leading_number(text);
            if (modulo == 8) v.modulo = X25_MODULO_8;
            if (modulo == 128) v.modulo = X25_MODULO_128;
        } else if (index >= X25_LOCMAXWINSIZE && index <= X25_REMDEFWINSIZE) {
            set_window(v, index, text);
        } else if (index >= X25_ACKDELAY && index <= X25_CONNECTVALUE) {
            set_timer(v, index, text);
        } else if (index == X25_LOCALDELAY || index == X25_ACCESSDELAY) {
            auto delay = static_cast<uint16_t>(parse_delay(std::strtod(text, nullptr)));
            (index == X25_LOCALDELAY ? v.localdelay : v.accessdelay) = delay;
        } else if (index == X25_NETWORK) {
            int network = network_number(text);
            if (network == 0) network = static_cast<int>(leading_number(text));
            v.network = static_cast<uint8_t>(network);
            if (link.values.net_type == NET_LAN && v.network != 1)
                report(__parse_error_function, Msg::LanNetworkNotLlc);
        } else if (index == X25_CUG_FORMAT) {
            if (strcasecmp(text, "basic") == 0)
                v.cug = static_cast<uint8_t>((v.cug | X25_CUG_BASIC) & ~X25_CUG_EXTENDED);
            if (strcasecmp(text, "extended") == 0)
                v.cug = static_cast<uint8_t>((v.cug | X25_CUG_EXTENDED) & ~X25_CUG_BASIC);
        } else if (index == X25_DNIC) {
            set_dnic(v, text);
        } else if (index == X25_PRTY_PKT_FORCED_VAL) {
            long value = leading_number(text);
            if (value == 0 || (value >= 4 && value <= 12))
                v.prty_forced = static_cast<uint8_t>(value);
        } else if (index >= X25_DBIT_ACCEPT_IN && index <= X25_DBIT_DATA_OUT) {
            set_dbit(v, index, text);
        } else if (index == X25_THCLASS_NEG_TO_DEF) {
            int wanted = flag_value(text);
            if (wanted >= 0) v.thclass_neg_to_def = static_cast<uint8_t>(wanted);
        } else if (index == X25_THCLASS_WMAP) {
            set_class_map(v.thclass_wmap, text, 127);
        } else if (index == X25_THCLASS_PMAP) {
            set_class_map(v.thclass_pmap, text, 12);
        }
    }
    copy_comments(&x25.keyword[index], &line);
}

// `position` is the MLP subsection's, or -1 for a SECTION LAPB.
void lapb_keyword(int index, const config_line &line, lapb_section &lapb, link_section &link,
                  int position, x32_record *x32) {
    if (x32_keyword(LAPB_X32_ENABLE_AUTHEN, index, line.value, x32)) return;
    if (index == LAPB_MLP_PRIORITY) {
        if (position < 0) return;
        link.values.mlp_priority[position] =
            static_cast<uint8_t>(leading_number(line.value) & 0xFF);
    } else {
        apply_rule(&lapb.values, lapb_rules[index], line.value);
    }
    copy_comments(&lapb.keyword[index], &line);
}

void llc2_keyword(int index, const config_line &line, llc2_section &llc2) {
    apply_rule(&llc2.values, llc2_rules[index], line.value);
    copy_comments(&llc2.keyword[index], &line);
}

void wan_keyword(int index, const config_line &line, wan_section &wan, link_section &link) {
    wan_values &v = wan.values;
    const char *text = line.value;
    if (!apply_rule(&v, wan_rules[index], text)) {
        if (index == WAN_LINE_SPEED) {
            v.tuning.line_speed = parse_speed(text);
        } else if (index == WAN_TRANSLATE) {
            // Unlike the other flags: anything but y turns it off.
            bool on = (text[0] == 'y' || text[0] == 'Y') && text[1] == '\0';
            v.flags = static_cast<uint16_t>(on ? v.flags | 1 : v.flags & ~1);
        } else if (index == WAN_CONNECT_PROC) {
            v.connect_proc = strncasecmp(text, "X21", 3) == 0   ? 1
                             : strncasecmp(text, "V25", 3) == 0 ? 2
                                                                : 0;
            if (v.connect_proc != 0)
                link.values.flags |= LINK_FLAG_CALL_PROCEDURE;
            else
                link.values.flags &= static_cast<uint16_t>(~LINK_FLAG_CALL_PROCEDURE);
        } else if (index == WAN_V25_CALLREQ) {
            long tenths;
            v.x21_t1 = static_cast<uint16_t>(tenths_value(text, 60, 300, tenths) ? tenths : 60);
        }
    }
    copy_comments(&wan.keyword[index], &line);
}

void mlp_keyword(int index, const config_line &line, mlp_section &mlp) {
    apply_rule(&mlp.values, mlp_rules[index], line.value);
    copy_comments(&mlp.keyword[index], &line);
}

// ---- The reader -------------------------------------------------------------

enum class subsection { none, lapb, wan };

struct reader {
    const char *file_name; // qualified
    int link_number;
    link_section *link;
    x25_section *x25;
    mlp_section *mlp;
    lapb_section *lapb;
    llc2_section *llc2;
    wan_section *wan;
    x32_record *x25_x32;
    x32_record *lapb_x32;
    x32_record *mlp_x32; // five, one per LAPB subsection
    int *mode;

    int section = 0; // a section code, 0 for none
    subsection sub = subsection::none;
    lapb_section *current_lapb = nullptr;
    wan_section *current_wan = nullptr;
    int lapb_count = 0;
    int wan_count = 0;

    void section_line(const config_line &line);
    void subsection_line(const config_line &line);
    void keyword_line(const config_line &line);
    template <typename Section>
    Section *new_subsection(Section *(&slots)[MLP_MAX_SUBSECTIONS], int &count, Msg too_many,
                            Msg no_memory, void (*defaults)(Section &));
};

// The section's name: the value without the blanks a hand edit may leave.
std::string_view section_name(const char *value) {
    std::string_view name(value);
    while (!name.empty() && (name.back() == ' ' || name.back() == '\t'))
        name.remove_suffix(1);
    return name;
}

int section_code(std::string_view name) {
    for (const config_keyword *row = section_map; row->name != nullptr; ++row)
        if (name.size() == std::strlen(row->name) &&
            strncasecmp(row->name, name.data(), name.size()) == 0)
            return row->index;
    return 0;
}

void reader::section_line(const config_line &line) {
    int code = section_code(section_name(line.value));
    section = code;
    config_comment *pair = nullptr;
    switch (code) {
    case SECTION_LINK:
        pair = &link->section;
        break;
    case SECTION_X25:
        pair = x25 != nullptr ? &x25->section : nullptr;
        break;
    case SECTION_LLC2:
        pair = llc2 != nullptr ? &llc2->section : nullptr;
        if (llc2 != nullptr) *mode = 3;
        break;
    case SECTION_LAPB:
        pair = lapb != nullptr ? &lapb->section : nullptr;
        // After MLP subsections, the file's own SECTION LAPB fills the
        // caller's record again, as it does in a file without MLP.
        current_lapb = lapb;
        if (lapb != nullptr) *mode = 4;
        break;
    case SECTION_WAN:
        pair = wan != nullptr ? &wan->section : nullptr;
        current_wan = wan;
        break;
    case SECTION_MLP:
        pair = mlp != nullptr ? &mlp->section : nullptr;
        if (mlp != nullptr) *mode = 6;
        lapb_count = wan_count = 0;
        sub = subsection::none;
        break;
    default:
        report(__parse_error_function, Msg::UnknownSection, line.value);
        return;
    }
    if (pair == nullptr) {
        section = 0;
        return;
    }
    copy_comments(pair, &line);
}

template <typename Section>
Section *reader::new_subsection(Section *(&slots)[MLP_MAX_SUBSECTIONS], int &count, Msg too_many,
                                Msg no_memory, void (*defaults)(Section &)) {
    if (count == MLP_MAX_SUBSECTIONS) {
        report(__parse_error_function, too_many, MLP_MAX_SUBSECTIONS);
        return slots[MLP_MAX_SUBSECTIONS - 1];
    }
    Section *&slot = slots[count];
    if (slot == nullptr) {
        slot = static_cast<Section *>(std::calloc(1, sizeof(Section)));
        if (slot == nullptr) {
            report(__parse_error_function, no_memory);
            return nullptr;
        }
        defaults(*slot);
    }
    ++count;
    return slot;
}

void reader::subsection_line(const config_line &line) {
    if (mlp == nullptr) return;
    if (section != SECTION_MLP) {
        report(__parse_error_function, Msg::UnexpectedSubsection, line.value);
        section = 0;
        return;
    }
    std::string_view name = section_name(line.value);
    auto named = [&](const char *word) {
        return name.size() == std::strlen(word) && strncasecmp(word, name.data(), name.size()) == 0;
    };
    if (named("lapb")) {
        bool fresh = lapb_count < MLP_MAX_SUBSECTIONS;
        lapb_section *record = new_subsection<lapb_section>(
            mlp->values.lapb, lapb_count, Msg::TooManyLapbSubsections, Msg::NoMemoryLapb,
            [](lapb_section &s) { load_lapb_defaults(&s.values); });
        if (record == nullptr) return;
        current_lapb = record;
        sub = subsection::lapb;
        if (fresh) copy_comments(&record->section, &line);
    } else if (named("wan")) {
        bool fresh = wan_count < MLP_MAX_SUBSECTIONS;
        wan_section *record = new_subsection<wan_section>(
            mlp->values.wan, wan_count, Msg::TooManyWanSubsections, Msg::NoMemoryWan,
            [](wan_section &s) { load_wan_defaults(&s.values); });
        if (record == nullptr) return;
        current_wan = record;
        sub = subsection::wan;
        if (fresh) copy_comments(&record->section, &line);
    } else {
        report(__parse_error_function, Msg::SubsectionNotForMlp, line.value);
        sub = subsection::none;
    }
}

void reader::keyword_line(const config_line &line) {
    const char *keyword = line.keyword;
    int index;
    switch (section) {
    case 0:
        return;
    case SECTION_LINK:
        index = keyword_index(__LINK_functions, keyword);
        if (index < 0)
            report(__parse_error_function, Msg::UnknownLinkKeyword, keyword);
        else
            link_keyword(index, line, *link, x25);
        return;
    case SECTION_X25:
        if ((index = keyword_index(__X25_functions, keyword)) < 0) return;
        x25_keyword(index, line, *x25, *link, x25_x32);
        if (x25_x32 != nullptr) x25_x32->link = link_number;
        return;
    case SECTION_LLC2:
        if ((index = keyword_index(__LLC2_functions, keyword)) >= 0)
            llc2_keyword(index, line, *llc2);
        return;
    case SECTION_LAPB:
        if ((index = keyword_index(__LAPB_functions, keyword)) < 0 || current_lapb == nullptr)
            return;
        lapb_keyword(index, line, *current_lapb, *link, -1, lapb_x32);
        if (lapb_x32 != nullptr) lapb_x32->link = link_number;
        return;
    case SECTION_WAN:
        if ((index = keyword_index(__WAN_functions, keyword)) >= 0 && current_wan != nullptr)
            wan_keyword(index, line, *current_wan, *link);
        return;
    case SECTION_MLP:
        if (sub == subsection::lapb) {
            if ((index = keyword_index(__LAPB_functions, keyword)) < 0) return;
            int position = lapb_count - 1;
            x32_record *x32 = mlp_x32 != nullptr ? &mlp_x32[position] : nullptr;
            lapb_keyword(index, line, *current_lapb, *link, position, x32);
            if (x32 != nullptr) x32->link = link_number;
        } else if (sub == subsection::wan) {
            if ((index = keyword_index(__WAN_functions, keyword)) >= 0)
                wan_keyword(index, line, *current_wan, *link);
        } else if ((index = keyword_index(__MLP_functions, keyword)) >= 0) {
            mlp_keyword(index, line, *mlp);
        }
        return;
    default:
        report(__parse_error_function, Msg::KeywordInUnknownSection, keyword);
    }
}

void load_defaults(link_section &link, x25_section *x25, mlp_section *mlp, lapb_section *lapb,
                   llc2_section *llc2, wan_section *wan) {
    if (link.values.net_type > 10) link.values.net_type = 0;
    if (x25 != nullptr && x25->values.max_nsdu == 0)
        load_x25_defaults(&x25->values, link.values.net_type < net_type_rows &&
                                            link_nettype[link.values.net_type].address_class == 1);
    if (lapb != nullptr && lapb->values.max_iframe_len == 0) load_lapb_defaults(&lapb->values);
    if (wan != nullptr && wan->values.tuning.max_frame == 0) load_wan_defaults(&wan->values);
    if (llc2 != nullptr && llc2->values.max_iframe_len == 0) load_llc2_defaults(&llc2->values);
    if (mlp != nullptr && mlp->values.mlp_win == 0) load_mlp_defaults(&mlp->values);
}

int read_file(reader &r, config_identification *ids) {
    load_defaults(*r.link, r.x25, r.mlp, r.lapb, r.llc2, r.wan);

    errno = 0;
    // The stream's buffer: a link file is read with one or two reads, and
    // the C library does not ask the file system for a size of its own.
    char buffer[config_stream_buffer_size];
    FILE *stream = open_config_stream(r.file_name, ids, *r.mode, buffer);
    if (stream == nullptr) {
        if (*r.mode == X25_CONFIG_SILENT) return 0;
        return errno != 0 ? errno : EBADF;
    }

    *r.mode = 0;
    config_line line{};
    int result;
    // Lines are read one at a time while they go to a record. From the
    // first section that no record takes, the rest of the file is read in
    // blocks, and the keyword lines of such sections are not even taken
    // apart: a reader asking for SECTION LINK alone passes over most of
    // the file.
    std::optional<config_block_reader> blocks;
    for (;;) {
        line.comments[0] = '\0';
        line.trailer[0] = '\0';
        if (blocks)
            result =
                blocks->read(&line, r.section == 0 ? logical_line::heading : logical_line::split);
        else
            result = x25_read_config_line(stream, &line);
        if (result != 0) break;
        switch (line.kind) {
        case CONFIG_LINE_IDENTIFICATION:
            report(__parse_error_function, Msg::UnexpectedIdentification);
            r.section = 0;
            break;
        case CONFIG_LINE_SECTION:
            r.section_line(line);
            break;
        case CONFIG_LINE_SUBSECTION:
            r.subsection_line(line);
            break;
        default:
            r.keyword_line(line);
            continue;
        }
        if (r.section == 0 && !blocks) {
            blocks.emplace(stream);
            if (!blocks->ready()) blocks.reset();
        }
    }
    if (result != -1)
        report<config_path_max + 64>(__parse_error_function, Msg::ErrorReadingFile, r.file_name);
    std::fclose(stream);
    return 0;
}

int read_named_file(const char *name, int link_number, config_identification *ids,
                    link_section *link, x25_section *x25, mlp_section *mlp, lapb_section *lapb,
                    llc2_section *llc2, wan_section *wan, x32_record *x25_x32, x32_record *lapb_x32,
                    x32_record *mlp_x32, int *mode) {
    numeric_locale_c numbers_with_a_point;
    if (link == nullptr || mode == nullptr) return EINVAL;
    char path[config_path_max];
    if (__qualify_working_filename(path, sizeof path, name) != 0) return ENAMETOOLONG;
    reader r{path, link_number, link, x25, mlp, lapb, llc2, wan, x25_x32, lapb_x32, mlp_x32, mode};
    return read_file(r, ids);
}

} // namespace

extern "C" {

int __config_create_working_filename(const char *suffix, int link_number, char *buffer,
                                     std::size_t size) {
    int length = std::snprintf(buffer, size, "link_config_%.4d%s" /* at least four digits */,
                               link_number, suffix);
    return length >= 0 && static_cast<std::size_t>(length) < size ? 0 : ENAMETOOLONG;
}

int __qualify_working_filename(char *buffer, std::size_t size, const char *name) {
    if (size == 0) return ENAMETOOLONG;
    buffer[0] = '\0';
    if (name == nullptr || name[0] == '\0') return 0;
    std::string_view text(name);
    bool as_is = text.starts_with("/") || text.starts_with("./") || text.starts_with("../");
    int length = as_is ? std::snprintf(buffer, size, "%s", name)
                       : std::snprintf(buffer, size, "%s/config/%s", config_dir(), name);
    return length >= 0 && static_cast<std::size_t>(length) < size ? 0 : ENAMETOOLONG;
}

int x25_read_config_parameter_file_x32(const char *name, config_identification *ids,
                                       link_section *link, x25_section *x25, mlp_section *mlp,
                                       lapb_section *lapb, llc2_section *llc2, wan_section *wan,
                                       x32_record *x25_x32, x32_record *lapb_x32,
                                       x32_record *mlp_x32, int *mode) {
    int link_number = link != nullptr ? static_cast<int>(link->values.subnet.address.snid) : 0;
    return read_named_file(name, link_number, ids, link, x25, mlp, lapb, llc2, wan, x25_x32,
                           lapb_x32, mlp_x32, mode);
}

int x25_read_config_parameter_file(const char *name, config_identification *ids, link_section *link,
                                   x25_section *x25, mlp_section *mlp, lapb_section *lapb,
                                   llc2_section *llc2, wan_section *wan, int *mode) {
    return x25_read_config_parameter_file_x32(name, ids, link, x25, mlp, lapb, llc2, wan, nullptr,
                                              nullptr, nullptr, mode);
}

int x25_read_config_parameters_x32(int link_number, config_identification *ids, link_section *link,
                                   x25_section *x25, mlp_section *mlp, lapb_section *lapb,
                                   llc2_section *llc2, wan_section *wan, x32_record *x25_x32,
                                   x32_record *lapb_x32, x32_record *mlp_x32, int *mode) {
    if (link_number < 0 || ids == nullptr || link == nullptr) return EINVAL;
    char name[64];
    if (__config_create_working_filename(".cfg", link_number, name, sizeof name) != 0)
        return EINVAL;
    int result = read_named_file(name, link_number, ids, link, x25, mlp, lapb, llc2, wan, x25_x32,
                                 lapb_x32, mlp_x32, mode);
    if (result == 0) {
        link->values.subnet.address.snid = static_cast<uint32_t>(link_number);
        if (x25 != nullptr) x25->values.link = link_number;
    }
    return result;
}

int x25_read_config_parameters(int link_number, config_identification *ids, link_section *link,
                               x25_section *x25, mlp_section *mlp, lapb_section *lapb,
                               llc2_section *llc2, wan_section *wan, int *mode) {
    return x25_read_config_parameters_x32(link_number, ids, link, x25, mlp, lapb, llc2, wan,
                                          nullptr, nullptr, nullptr, mode);
}

} // extern "C"
