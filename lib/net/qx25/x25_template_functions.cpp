// The X.25 packet level template: the tuning record of /dev/x25, its
// template file of 80 value lines, and the exchange with the driver.
#include "driver_exchange.h"
#include "error_functions.h"
#include "template_file.h"
#include "text_file.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <type_traits>
#include <utility>

// The record is exchanged byte for byte with the driver, which reads it
// little-endian: every offset is part of the interface.
static_assert(std::endian::native == std::endian::little);
static_assert(sizeof(x25_template) == 140);
static_assert(offsetof(x25_template, link) == 0);
static_assert(offsetof(x25_template, network) == 4);
static_assert(offsetof(x25_template, version) == 5);
static_assert(offsetof(x25_template, plp_mode) == 6);
static_assert(offsetof(x25_template, reserved_7) == 7);
static_assert(offsetof(x25_template, lcn.pvc_low) == 8);
static_assert(offsetof(x25_template, lcn.pvc_high) == 10);
static_assert(offsetof(x25_template, lcn.inc_low) == 12);
static_assert(offsetof(x25_template, lcn.inc_high) == 14);
static_assert(offsetof(x25_template, lcn.two_low) == 16);
static_assert(offsetof(x25_template, lcn.two_high) == 18);
static_assert(offsetof(x25_template, lcn.out_low) == 20);
static_assert(offsetof(x25_template, lcn.out_high) == 22);
static_assert(offsetof(x25_template, lcn.pvc_count) == 24);
static_assert(offsetof(x25_template, lcn.inc_count) == 26);
static_assert(offsetof(x25_template, lcn.two_count) == 28);
static_assert(offsetof(x25_template, lcn.out_count) == 30);
static_assert(offsetof(x25_template, lcn.total) == 32);
static_assert(offsetof(x25_template, modulo) == 34);
static_assert(offsetof(x25_template, locmaxpktsize) == 35);
static_assert(offsetof(x25_template, remmaxpktsize) == 36);
static_assert(offsetof(x25_template, locdefpktsize) == 37);
static_assert(offsetof(x25_template, remdefpktsize) == 38);
static_assert(offsetof(x25_template, locmaxwinsize) == 39);
static_assert(offsetof(x25_template, remmaxwinsize) == 40);
static_assert(offsetof(x25_template, locdefwinsize) == 41);
static_assert(offsetof(x25_template, remdefwinsize) == 42);
static_assert(offsetof(x25_template, reserved_43) == 43);
static_assert(offsetof(x25_template, max_nsdu) == 44);
static_assert(offsetof(x25_template, ackdelay) == 46);
static_assert(offsetof(x25_template, t20value) == 48);
static_assert(offsetof(x25_template, t21value) == 50);
static_assert(offsetof(x25_template, t22value) == 52);
static_assert(offsetof(x25_template, t23value) == 54);
static_assert(offsetof(x25_template, t24value) == 56);
static_assert(offsetof(x25_template, t25value) == 58);
static_assert(offsetof(x25_template, t26value) == 60);
static_assert(offsetof(x25_template, t28value) == 62);
static_assert(offsetof(x25_template, idlevalue) == 64);
static_assert(offsetof(x25_template, connectvalue) == 66);
static_assert(offsetof(x25_template, r20value) == 68);
static_assert(offsetof(x25_template, r22value) == 69);
static_assert(offsetof(x25_template, r23value) == 70);
static_assert(offsetof(x25_template, r28value) == 71);
static_assert(offsetof(x25_template, localdelay) == 72);
static_assert(offsetof(x25_template, accessdelay) == 74);
static_assert(offsetof(x25_template, locmaxthclass) == 76);
static_assert(offsetof(x25_template, remmaxthclass) == 77);
static_assert(offsetof(x25_template, locdefthclass) == 78);
static_assert(offsetof(x25_template, remdefthclass) == 79);
static_assert(offsetof(x25_template, locminthclass) == 80);
static_assert(offsetof(x25_template, remminthclass) == 81);
static_assert(offsetof(x25_template, cug) == 82);
static_assert(offsetof(x25_template, reserved_83) == 83);
static_assert(offsetof(x25_template, facilities) == 84);
static_assert(offsetof(x25_template, options) == 86);
static_assert(offsetof(x25_template, intl_addr_recogn) == 88);
static_assert(offsetof(x25_template, dnic) == 89);
static_assert(offsetof(x25_template, dnic[1]) == 90);
static_assert(offsetof(x25_template, prty_encode) == 91);
static_assert(offsetof(x25_template, prty_forced) == 92);
static_assert(offsetof(x25_template, src_addr) == 93);
static_assert(offsetof(x25_template, dbit) == 94);
static_assert(offsetof(x25_template, thclass_neg_to_def) == 95);
static_assert(offsetof(x25_template, thclass_type) == 96);
static_assert(offsetof(x25_template, thclass_wmap) == 97);
static_assert(offsetof(x25_template, thclass_pmap) == 113);
static_assert(offsetof(x25_template, reserved_129) == 129);
static_assert(offsetof(x25_template, driver_flag) == 130);
static_assert(offsetof(x25_template, reserved_131) == 131);

namespace {

using namespace qx25;

constexpr int template_lines = 80;
constexpr std::size_t line_size = 128; // lines of at most 127 characters
constexpr int versions[] = {80, 84, 88};
constexpr int moduli[] = {8, 128};

// ---- Where a line's value goes --------------------------------------------

enum class width : std::uint8_t { u8, s16, u16 };

struct field {
    std::uint16_t offset;
    width size;
};

// The width of a field, or of the entries of an array field.
template <typename Field> constexpr width width_of() {
    using T = std::remove_all_extents_t<Field>;
    static_assert(sizeof(T) <= 2);
    if constexpr (sizeof(T) == 1) return width::u8;
    return std::is_signed_v<T> ? width::s16 : width::u16;
}

#define X25_FIELD(member)                                                                          \
    field {                                                                                        \
        offsetof(x25_template, member),                                                            \
            width_of<std::remove_cvref_t<decltype(std::declval<x25_template &>().member)>>()       \
    }

unsigned char *bytes_of(x25_template &record, field target) {
    return reinterpret_cast<unsigned char *>(&record) + target.offset;
}

int load(const x25_template &record, field target) {
    const unsigned char *at = reinterpret_cast<const unsigned char *>(&record) + target.offset;
    switch (target.size) {
    case width::u8:
        return *at;
    case width::s16: {
        std::int16_t value;
        std::memcpy(&value, at, sizeof value);
        return value;
    }
    case width::u16: {
        std::uint16_t value;
        std::memcpy(&value, at, sizeof value);
        return value;
    }
    }
    return 0;
}

void store(x25_template &record, field target, int value) {
    unsigned char *at = bytes_of(record, target);
    if (target.size == width::u8) {
        *at = static_cast<std::uint8_t>(value);
    } else {
        auto bits = static_cast<std::uint16_t>(value);
        std::memcpy(at, &bits, sizeof bits);
    }
}

// ---- Bounds: fixed, or taken from a value the file gave before ------------

using bound = int (*)(const x25_template &);

template <int N> int fixed(const x25_template &) {
    return N;
}
// A value read from an earlier line.
template <std::uint8_t x25_template::*Field> int earlier(const x25_template &t) {
    return t.*Field;
}
// Windows of modulo 8 reach 7, those of modulo 128 reach 127.
int window_limit(const x25_template &t) {
    return t.modulo == X25_MODULO_8 ? 7 : 127;
}
int window_map_limit(const x25_template &t) {
    return std::min(t.locmaxwinsize, t.remmaxwinsize);
}
int packet_map_limit(const x25_template &t) {
    return std::min(t.locmaxpktsize, t.remmaxpktsize);
}

// ---- The 80 lines -----------------------------------------------------------

enum class rule : std::uint8_t {
    decimal,       // a decimal number in low..high
    hexadecimal,   // a hexadecimal number in low..high
    version,       // 80, 84 or 88, kept as the index 0, 1 or 2
    modulo,        // 8 or 128, kept as 16 or 32
    yes_no,        // sets the flag `bit` when the value begins with "Y"
    yes_no_value,  // 1 when the value begins with "Y", else 0
    cug_format,    // 0 sets the basic format flag, 1 the extended one
    dnic,          // four digits, kept as two hexadecimal bytes
    dbit,          // 0..2 into the 2-bit field at shift `bit`, crossed
    default_class, // checked now, and again once the minimum is known
    class_map,     // sixteen numbers in low..high, one separator after each
};

struct template_line {
    const char *name;
    rule kind;
    field target;
    bound low = fixed<0>;
    bound high = fixed<0>;
    std::uint16_t bit = 0;
};

constexpr template_line number(const char *name, field target, bound low, bound high) {
    return {name, rule::decimal, target, low, high};
}
constexpr template_line channel(const char *name, field target) {
    return {name, rule::hexadecimal, target, fixed<0>, fixed<4095>};
}
constexpr template_line timer(const char *name, field target) {
    return number(name, target, fixed<0>, fixed<32000>);
}
constexpr template_line retries(const char *name, field target) {
    return number(name, target, fixed<1>, fixed<255>);
}
constexpr template_line flag(const char *name, field target, std::uint16_t bit) {
    return {name, rule::yes_no, target, fixed<0>, fixed<0>, bit};
}
constexpr template_line dbit(const char *name, std::uint16_t shift) {
    return {name, rule::dbit, X25_FIELD(dbit), fixed<0>, fixed<2>, shift};
}

constexpr field cug = X25_FIELD(cug);
constexpr field facilities = X25_FIELD(facilities);
constexpr field options = X25_FIELD(options);

constexpr template_line x25_lines[template_lines] = {
    number("network", X25_FIELD(network), fixed<1>, fixed<25>),
    {"version", rule::version, X25_FIELD(version)},
    number("plpmode", X25_FIELD(plp_mode), fixed<0>, fixed<2>),
    channel("pvc_range low", X25_FIELD(lcn.pvc_low)),
    channel("pvc_range high", X25_FIELD(lcn.pvc_high)),
    channel("inc_range low", X25_FIELD(lcn.inc_low)),
    channel("inc_range high", X25_FIELD(lcn.inc_high)),
    channel("two_range low", X25_FIELD(lcn.two_low)),
    channel("two_range high", X25_FIELD(lcn.two_high)),
    channel("out_range low", X25_FIELD(lcn.out_low)),
    channel("out_range high", X25_FIELD(lcn.out_high)),
    {"modulo", rule::modulo, X25_FIELD(modulo)},
    number("locmaxpktsize", X25_FIELD(locmaxpktsize), fixed<7>, fixed<12>),
    number("remmaxpktsize", X25_FIELD(remmaxpktsize), fixed<7>, fixed<12>),
    number("locdefpktsize", X25_FIELD(locdefpktsize), fixed<7>,
           earlier<&x25_template::locmaxpktsize>),
    number("remdefpktsize", X25_FIELD(remdefpktsize), fixed<7>,
           earlier<&x25_template::remmaxpktsize>),
    number("locmaxwinsize", X25_FIELD(locmaxwinsize), fixed<2>, window_limit),
    number("remmaxwinsize", X25_FIELD(remmaxwinsize), fixed<2>, window_limit),
    number("locdefwinsize", X25_FIELD(locdefwinsize), fixed<2>,
           earlier<&x25_template::locmaxwinsize>),
    number("remdefwinsize", X25_FIELD(remdefwinsize), fixed<2>,
           earlier<&x25_template::remmaxwinsize>),
    number("maxnsdulength", X25_FIELD(max_nsdu), fixed<1>, fixed<32000>),
    number("ackdelay", X25_FIELD(ackdelay), fixed<1>, fixed<32000>),
    timer("t20value", X25_FIELD(t20value)),
    timer("t21value", X25_FIELD(t21value)),
    timer("t22value", X25_FIELD(t22value)),
    timer("t23value", X25_FIELD(t23value)),
    timer("t24value", X25_FIELD(t24value)),
    timer("t25value", X25_FIELD(t25value)),
    timer("t26value", X25_FIELD(t26value)),
    timer("idlevalue", X25_FIELD(idlevalue)),
    timer("connectvalue", X25_FIELD(connectvalue)),
    retries("r20value", X25_FIELD(r20value)),
    retries("r22value", X25_FIELD(r22value)),
    retries("r23value", X25_FIELD(r23value)),
    number("localdelay", X25_FIELD(localdelay), fixed<0>, fixed<32000>),
    number("accessdelay", X25_FIELD(accessdelay), fixed<0>, fixed<3200>),
    number("locmaxthclass", X25_FIELD(locmaxthclass), fixed<0>, fixed<15>),
    number("remmaxthclass", X25_FIELD(remmaxthclass), fixed<0>, fixed<15>),
    {"locdefthclass", rule::default_class, X25_FIELD(locdefthclass), fixed<0>,
     earlier<&x25_template::locmaxthclass>},
    {"remdefthclass", rule::default_class, X25_FIELD(remdefthclass), fixed<0>,
     earlier<&x25_template::remmaxthclass>},
    number("locminthclass", X25_FIELD(locminthclass), fixed<0>,
           earlier<&x25_template::locmaxthclass>),
    number("remminthclass", X25_FIELD(remminthclass), fixed<0>,
           earlier<&x25_template::remmaxthclass>),
    flag("sub_cug", cug, X25_CUG_SUB),
    flag("sub_pref_cug", cug, X25_CUG_SUB_PREF),
    flag("sub_cugoa", cug, X25_CUG_SUB_OA),
    flag("sub_cugia", cug, X25_CUG_SUB_IA),
    {"cug_format", rule::cug_format, cug, fixed<0>, fixed<1>},
    flag("bar_cug_in", cug, X25_CUG_BAR_IN),
    flag("use_negotiation", facilities, X25_FAC_USE_NEGOTIATION),
    flag("bar_negotiation", facilities, X25_FAC_BAR_NEGOTIATION),
    flag("fast_select", facilities, X25_FAC_FAST_SELECT),
    flag("fs_r_response", facilities, X25_FAC_FS_R_RESPONSE),
    flag("accept_revchg", facilities, X25_FAC_ACCEPT_REVCHG),
    flag("prev_chg", facilities, X25_FAC_PREV_CHG),
    flag("bar_incall", facilities, X25_FAC_BAR_INCALL),
    flag("bar_outcall", facilities, X25_FAC_BAR_OUTCALL),
    flag("sub_toa_npi_fmt", facilities, X25_FAC_SUB_TOA_NPI_FMT),
    flag("bar_toa_npi_fmt", facilities, X25_FAC_BAR_TOA_NPI_FMT),
    flag("sub_nui_override", facilities, X25_FAC_SUB_NUI_OVERRIDE),
    flag("acc_nodiag", options, X25_OPT_ACC_NODIAG),
    flag("use_diag", options, X25_OPT_USE_DIAG),
    flag("ccitt_clear_len", options, X25_OPT_CCITT_CLEAR_LEN),
    flag("bar_diag", options, X25_OPT_BAR_DIAG),
    flag("disc_nz_diag", options, X25_OPT_DISC_NZ_DIAG),
    flag("acc_hex_add", options, X25_OPT_ACC_HEX_ADD),
    flag("bar_nonpriv_listen", options, X25_OPT_BAR_NONPRIV_LISTEN),
    number("intl_addr_recogn", X25_FIELD(intl_addr_recogn), fixed<0>, fixed<3>),
    flag("intl_prioritised", options, X25_OPT_INTL_PRIORITISED),
    {"dnic", rule::dnic, X25_FIELD(dnic), fixed<0>, fixed<9999>},
    number("prty_encode_control", X25_FIELD(prty_encode), fixed<0>, fixed<2>),
    number("prty_pkt_forced_val", X25_FIELD(prty_forced), fixed<0>, fixed<12>),
    number("src_addr_control", X25_FIELD(src_addr), fixed<0>, fixed<3>),
    dbit("dbit_accept_in", 0),
    dbit("dbit_accept_out", 2),
    dbit("dbit_data_in", 4),
    dbit("dbit_data_out", 6),
    {"thclass_neg_to_def", rule::yes_no_value, X25_FIELD(thclass_neg_to_def)},
    number("thclass_type", X25_FIELD(thclass_type), fixed<0>, fixed<3>),
    {"thclass_wmap", rule::class_map, X25_FIELD(thclass_wmap), fixed<0>, window_map_limit},
    {"thclass_pmap", rule::class_map, X25_FIELD(thclass_pmap), fixed<0>, packet_map_limit},
};

#undef X25_FIELD

// Lines (1-based) where reading does more than store one value.
constexpr int last_channel_line = 11;
constexpr int first_flag_line = 43;
constexpr int last_minimum_class_line = 42;
constexpr int map_entries = 16;

// ---- Reading ----------------------------------------------------------------

// A number as atoi reads it; a number beyond the range of int saturates
// instead of overflowing.
int number_in(const char *text, int base) {
    long value = std::strtol(text, nullptr, base);
    return static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
}

bool is_yes(const char *text) {
    return text[0] == 'Y';
}

// The next value of the file, or null at its end. A line whose first
// character is "#" is a comment line; elsewhere everything from the first
// "#" on is cut off and leading blanks are removed. `line_number` counts
// every physical line read, comment lines too, so messages name real lines.
// A line longer than the buffer keeps its first 127 characters.
const char *next_value(FILE *stream, char (&line)[line_size], int &line_number) {
    for (;;) {
        if (read_bounded_line(stream, line, sizeof line) == line_read::end) return nullptr;
        ++line_number;
        if (line[0] == '#') continue;
        if (char *comment = std::strchr(line, '#')) *comment = '\0';
        return line + std::strspn(line, " \t");
    }
}

// The bytes of a DNIC: the first two characters and the characters from the
// third on, each read as a hexadecimal byte.
void store_dnic(x25_template &record, const char *text) {
    char first[3] = {};
    std::size_t length = ::strnlen(text, 2);
    std::memcpy(first, text, length);
    record.dnic[0] = static_cast<std::uint8_t>(std::strtol(first, nullptr, 16));
    record.dnic[1] = static_cast<std::uint8_t>(std::strtol(text + length, nullptr, 16));
}

// File value 1 is kept as bit pattern 2 and file value 2 as pattern 1.
constexpr std::uint8_t crossed_dbit[] = {0, 2, 1};

// Sixteen decimal numbers, each followed by one separator character.
bool take_class_map(x25_template &record, const template_line &line, const char *text,
                    int line_number) {
    unsigned char *entries = bytes_of(record, line.target);
    for (int i = 0; i < map_entries; ++i) {
        char *end = nullptr;
        long value = std::strtol(text, &end, 10);
        int entry = static_cast<int>(std::clamp<long>(value, INT_MIN, INT_MAX));
        if (check_value(line_number, entry, line.low(record), line.high(record)) != 0) return false;
        entries[i] = static_cast<std::uint8_t>(entry);
        text = *end != '\0' ? end + 1 : end;
    }
    return true;
}

// A default throughput class read but not yet stored.
struct pending_class {
    int value = 0;
    int line_number = 0;
};

// Checks and stores the value of one line; false when it was out of range
// (and reported).
bool take_value(x25_template &record, const template_line &line, const char *text, int line_number,
                pending_class &pending) {
    auto in_range = [&](int value) {
        return check_value(line_number, value, line.low(record), line.high(record)) == 0;
    };
    int value = number_in(text, line.kind == rule::hexadecimal ? 16 : 10);
    switch (line.kind) {
    case rule::decimal:
    case rule::hexadecimal:
        if (!in_range(value)) return false;
        store(record, line.target, value);
        return true;
    case rule::version:
        if (check_list(line_number, value, static_cast<int>(std::size(versions)), versions) != 0)
            return false;
        store(record, line.target,
              static_cast<int>(std::find(std::begin(versions), std::end(versions), value) -
                               std::begin(versions)));
        return true;
    case rule::modulo:
        if (check_list(line_number, value, static_cast<int>(std::size(moduli)), moduli) != 0)
            return false;
        store(record, line.target, value == 8 ? X25_MODULO_8 : X25_MODULO_128);
        return true;
    case rule::yes_no: {
        int flags = load(record, line.target);
        store(record, line.target, is_yes(text) ? flags | line.bit : flags & ~line.bit);
        return true;
    }
    case rule::yes_no_value:
        store(record, line.target, is_yes(text) ? 1 : 0);
        return true;
    case rule::cug_format:
        if (!in_range(value)) return false;
        store(record, line.target,
              load(record, line.target) | (value == 0 ? X25_CUG_BASIC : X25_CUG_EXTENDED));
        return true;
    case rule::dnic:
        if (!in_range(value)) return false;
        store_dnic(record, text);
        return true;
    case rule::dbit:
        if (!in_range(value)) return false;
        store(record, line.target, load(record, line.target) | crossed_dbit[value] << line.bit);
        return true;
    case rule::default_class:
        if (!in_range(value)) return false;
        pending = {value, line_number};
        return true;
    case rule::class_map:
        return take_class_map(record, line, text, line_number);
    }
    return false;
}

// The default throughput classes, checked again against the minimum classes
// read after them, then stored.
struct class_recheck {
    int line_index;
    bound low, high;
};
constexpr class_recheck default_class_rechecks[] = {
    {38, earlier<&x25_template::locminthclass>, earlier<&x25_template::locmaxthclass>},
    {39, earlier<&x25_template::remminthclass>, earlier<&x25_template::remmaxthclass>},
};

bool settle_default_classes(x25_template &record, const pending_class (&pending)[template_lines]) {
    for (const class_recheck &recheck : default_class_rechecks) {
        const pending_class &held = pending[recheck.line_index];
        if (check_value(held.line_number, held.value, recheck.low(record), recheck.high(record)) !=
            0)
            return false;
        store(record, x25_lines[recheck.line_index].target, held.value);
    }
    return true;
}

// A range's channel count: 0 when its low bound is 0.
std::uint16_t channels(std::int16_t low, std::int16_t high) {
    return static_cast<std::uint16_t>(low == 0 ? 0 : high - low + 1);
}

void count_channels(x25_lcn_block &lcn) {
    lcn.pvc_count = channels(lcn.pvc_low, lcn.pvc_high);
    lcn.inc_count = channels(lcn.inc_low, lcn.inc_high);
    lcn.two_count = channels(lcn.two_low, lcn.two_high);
    lcn.out_count = channels(lcn.out_low, lcn.out_high);
    lcn.total =
        static_cast<std::int16_t>(lcn.pvc_count + lcn.inc_count + lcn.two_count + lcn.out_count);
}

// The result of a file that ends before its last line: EINVAL, or the
// system error number when reading failed.
int end_of_file(FILE *stream) {
    if (std::ferror(stream) == 0) return EINVAL;
    return errno != 0 ? errno : EIO;
}

int read_x25_lines(FILE *stream, x25_template &record) {
    char line[line_size];
    int line_number = 0;
    pending_class pending[template_lines];
    for (int index = 0; index < template_lines; ++index) {
        int file_line = index + 1;
        if (file_line == first_flag_line) {
            // The flag words are rebuilt from the file: bits it does not
            // carry end up cleared. The D-bit byte is only added to.
            record.cug = 0;
            record.facilities = 0;
            record.options = 0;
        }
        const char *text = next_value(stream, line, line_number);
        if (text == nullptr) return end_of_file(stream);
        if (!take_value(record, x25_lines[index], text, line_number, pending[index])) return 1;
        if (file_line == last_channel_line) count_channels(record.lcn);
        if (file_line == last_minimum_class_line && !settle_default_classes(record, pending))
            return 1;
    }
    return 0;
}

// ---- Writing ------------------------------------------------------------------

void write_line(FILE *stream, const x25_template &record, const template_line &line) {
    int value = load(record, line.target);
    switch (line.kind) {
    case rule::decimal:
    case rule::default_class:
        std::fprintf(stream, "%d\n", value);
        return;
    case rule::hexadecimal:
        std::fprintf(stream, "%3.3x\n", static_cast<unsigned>(value));
        return;
    case rule::version:
        // An index outside the table is written as 0, which no reader takes.
        std::fprintf(stream, "%d\n",
                     value < static_cast<int>(std::size(versions)) ? versions[value] : 0);
        return;
    case rule::modulo:
        std::fputs(value == X25_MODULO_8 ? "8\n" : "128\n", stream);
        return;
    case rule::yes_no:
        std::fputs((value & line.bit) != 0 ? "Y\n" : "N\n", stream);
        return;
    case rule::yes_no_value:
        std::fputs(value != 0 ? "Y\n" : "N\n", stream);
        return;
    case rule::cug_format:
        std::fputs((value & X25_CUG_BASIC) != 0 ? "0\n" : "1\n", stream);
        return;
    case rule::dnic:
        // "%.2x" writes what "%02.2x" does: two digits at least.
        std::fprintf(stream, "%.2x%.2x\n", record.dnic[0], record.dnic[1]);
        return;
    case rule::dbit: {
        int bits = record.dbit >> line.bit;
        std::fputs((bits & 1) != 0 ? "2\n" : (bits & 2) != 0 ? "1\n" : "0\n", stream);
        return;
    }
    case rule::class_map: {
        const unsigned char *entries =
            reinterpret_cast<const unsigned char *>(&record) + line.target.offset;
        for (int i = 0; i < map_entries; ++i)
            std::fprintf(stream, i + 1 < map_entries ? "%d." : "%d\n", entries[i]);
        return;
    }
    }
}

void write_lines(FILE *stream, const x25_template &record) {
    for (const template_line &line : x25_lines)
        write_line(stream, record, line);
}

constexpr const char *suffix = ".x25";

// The message of a value out of range; one at a time.
int out_of_range(int line, int value) {
    static char message[64];
    std::snprintf(message, sizeof message, "The value %d on line %d\nis out of range", value, line);
    __x25_template_error_function(message);
    return 1;
}

} // namespace

namespace qx25 {

const char *x25_template_line_name(int index) {
    return index >= 0 && index < template_lines ? x25_lines[index].name : nullptr;
}

void write_x25_template_lines(FILE *stream, const x25_template &record) {
    write_lines(stream, record);
}

} // namespace qx25

extern "C" {

int check_value(int line, int value, int low, int high) {
    return low <= value && value <= high ? 0 : out_of_range(line, value);
}

int check_list(int line, int value, int count, const int *listed) {
    for (int i = 0; i < count; ++i)
        if (listed[i] == value) return 0;
    return out_of_range(line, value);
}

int read_x25_template_parameters(int link_number, x25_template *record) {
    return read_working_template(link_number, record, suffix, read_x25_template_parameter_file,
                                 true);
}

int read_x25_template_parameter_file(const char *path, x25_template *record) {
    return read_template_file(path, record, read_x25_lines);
}

int write__x25_template_parameters(x25_template *record) {
    return write_working_template(record, suffix, write__x25_template_parameter_file);
}

int write__x25_template_parameter_file(const char *path, x25_template *record) {
    return write_template_file<x25_template>(path, record, write_lines);
}

int put__x25_template_parameters(x25_template *record) {
    if (record == nullptr) return EINVAL;
    // The driver takes a record marked 255 here; a record it refused is
    // left as it was.
    std::uint8_t mark = record->driver_flag;
    record->driver_flag = 255;
    int result = exchange_with_driver(x25_device, send_x25, record, sizeof *record,
                                      __x25_template_error_function);
    if (result != 0) record->driver_flag = mark;
    return result;
}

int get__x25_template_parameters(int link_number, x25_template *record) {
    if (record == nullptr) return EINVAL;
    record->link = link_number;
    return exchange_with_driver(x25_device, fetch_x25, record, sizeof *record,
                                __x25_template_error_function);
}

} // extern "C"
