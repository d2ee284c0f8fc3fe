// Every keyword of every section of a link configuration file, read one line
// at a time: the value it stores, what becomes of a value out of its range
// and of a malformed one, the exact messages reported, and the comment pair
// that keeps the line's comments.
//
// Each case reads a small file twice: once with only the lines that set the
// scene, once with the keyword line added. The keyword's field must then
// show the expected value, every other section must be as the first read
// left it, and only the keyword's own comment pair may hold comments.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <ostream>
#include <string>
#include <vector>

using qx25test::ConfigTree;
using qx25test::messages;

namespace {

using Messages = std::vector<std::string>;

// ---- Messages ----------------------------------------------------------------

const std::string timer_out_of_range = "Timer value out of range, 200.0 assumed\n";
const std::string delay_out_of_range = "Delay value out of range, 0.005 assumed\n";
const std::string no_lcn_range = "No LCN range found\n";
const std::string lcn_not_a_range = "LCN value must be a range n - m\n";
const std::string lcn_upper_below_lower = "LCN Upper value must be >= lower\n";
const std::string lan_network =
    "LAN link should normally have X.25 network configured as X25_LLC\n";
const std::string missing_device = "Missing device name in config file\n";
const std::string multiple_devices = "Links with multiple devices must use MLP protocol\n";
const std::string invalid_full_address = "Invalid FULL address\n";
const std::string unknown_protocol = "Unknown protocol"; // no newline: kept so

std::string unknown_device(const std::string &word) {
    return "Unknown device name <" + word + "> found\n";
}
std::string bad_address(const std::string &text) {
    return "Address " + text + " too long or invalid\n";
}
std::string bad_x32_text(const std::string &text) {
    return "Identity or Signature " + text + " too long or invalid\n";
}

// ---- Where a keyword is read -------------------------------------------------

enum class Where { link, x25, lapb, llc2, wan, mlp, mlp_lapb, mlp_wan };

const char *where_name(Where where) {
    switch (where) {
    case Where::link:
        return "link";
    case Where::x25:
        return "x25";
    case Where::lapb:
        return "lapb";
    case Where::llc2:
        return "llc2";
    case Where::wan:
        return "wan";
    case Where::mlp:
        return "mlp";
    case Where::mlp_lapb:
        return "mlp_lapb";
    case Where::mlp_wan:
        return "mlp_wan";
    }
    return "?";
}

// The lines that open the section (and subsection) of a keyword; a LINK
// keyword is read in the SECTION LINK every file starts with.
const char *section_lines(Where where) {
    switch (where) {
    case Where::link:
        return "";
    case Where::x25:
        return "SECTION\tX25\n";
    case Where::lapb:
        return "SECTION\tLAPB\n";
    case Where::llc2:
        return "SECTION\tLLC2\n";
    case Where::wan:
        return "SECTION\tWAN\n";
    case Where::mlp:
        return "SECTION\tMLP\n";
    case Where::mlp_lapb:
        return "SECTION\tMLP\nSUBSECTION\tLAPB\n";
    case Where::mlp_wan:
        return "SECTION\tMLP\nSUBSECTION\tWAN\n";
    }
    return "";
}

// The keyword table of the section a keyword is read in.
const config_keyword *keyword_table(Where where) {
    switch (where) {
    case Where::link:
        return __LINK_functions;
    case Where::x25:
        return __X25_functions;
    case Where::lapb:
    case Where::mlp_lapb:
        return __LAPB_functions;
    case Where::llc2:
        return __LLC2_functions;
    case Where::wan:
    case Where::mlp_wan:
        return __WAN_functions;
    case Where::mlp:
        return __MLP_functions;
    }
    return nullptr;
}

// ---- The records of one read -------------------------------------------------

struct Records {
    config_identification ids;
    link_section link;
    x25_section x25;
    mlp_section mlp;
    lapb_section lapb;
    llc2_section llc2;
    wan_section wan;
    x32_record x25_x32;
    x32_record lapb_x32;
    x32_record mlp_x32[MLP_MAX_SUBSECTIONS];
};

template <typename Section, typename Fn> void each_pair_of(Section &section, Fn &fn) {
    fn(section.section);
    for (config_comment &pair : section.keyword)
        fn(pair);
}

// Every comment pair of the records, the MLP subsections' included.
template <typename Fn> void for_each_pair(Records &r, Fn fn) {
    each_pair_of(r.link, fn);
    each_pair_of(r.x25, fn);
    each_pair_of(r.mlp, fn);
    each_pair_of(r.lapb, fn);
    each_pair_of(r.llc2, fn);
    each_pair_of(r.wan, fn);
    for (lapb_section *sub : r.mlp.values.lapb)
        if (sub != nullptr) each_pair_of(*sub, fn);
    for (wan_section *sub : r.mlp.values.wan)
        if (sub != nullptr) each_pair_of(*sub, fn);
}

// Frees what the reader allocated: comments, alias, description and the MLP
// subsection records.
void release(Records &r) {
    for_each_pair(r, [](config_comment &pair) {
        std::free(pair.comments);
        std::free(pair.trailer);
        pair.comments = pair.trailer = nullptr;
    });
    std::free(r.link.values.subnet.name);
    std::free(r.link.values.subnet.description);
    r.link.values.subnet.name = r.link.values.subnet.description = nullptr;
    for (lapb_section *&sub : r.mlp.values.lapb) {
        std::free(sub);
        sub = nullptr;
    }
    for (wan_section *&sub : r.mlp.values.wan) {
        std::free(sub);
        sub = nullptr;
    }
}

// The comment pair of a keyword: pair `index` of the record it is read into.
config_comment *keyword_pair(Records &r, Where where, int index) {
    switch (where) {
    case Where::link:
        return &r.link.keyword[index];
    case Where::x25:
        return &r.x25.keyword[index];
    case Where::lapb:
        return &r.lapb.keyword[index];
    case Where::llc2:
        return &r.llc2.keyword[index];
    case Where::wan:
        return &r.wan.keyword[index];
    case Where::mlp:
        return &r.mlp.keyword[index];
    case Where::mlp_lapb:
        return r.mlp.values.lapb[0] != nullptr ? &r.mlp.values.lapb[0]->keyword[index] : nullptr;
    case Where::mlp_wan:
        return r.mlp.values.wan[0] != nullptr ? &r.mlp.values.wan[0]->keyword[index] : nullptr;
    }
    return nullptr;
}

// What a field accessor sees: the values a keyword of that section may set.
// lapb, wan and x32 are those of the (sub)section the keyword is read in.
struct View {
    const link_values &link;
    const x25_template &x25;
    const lapb_template &lapb;
    const llc2_template &llc2;
    const wan_values &wan;
    const mlp_values &mlp;
    const x32_record &x32;
};

View view_of(const Records &r, Where where) {
    static const lapb_section no_lapb{};
    static const wan_section no_wan{};
    const lapb_section *lapb = &r.lapb;
    const wan_section *wan = &r.wan;
    const x32_record *x32 = &r.mlp_x32[0];
    if (where == Where::mlp_lapb)
        lapb = r.mlp.values.lapb[0] != nullptr ? r.mlp.values.lapb[0] : &no_lapb;
    if (where == Where::mlp_wan)
        wan = r.mlp.values.wan[0] != nullptr ? r.mlp.values.wan[0] : &no_wan;
    if (where == Where::x25) x32 = &r.x25_x32;
    if (where == Where::lapb) x32 = &r.lapb_x32;
    return {r.link.values, r.x25.values, lapb->values, r.llc2.values,
            wan->values,   r.mlp.values, *x32};
}

// ---- Fields as text ------------------------------------------------------------

template <typename T> std::string num(T value) {
    return std::to_string(static_cast<long long>(value));
}

std::string hex_bytes(const uint8_t *bytes, std::size_t count) {
    std::string text;
    char two[3];
    for (std::size_t i = 0; i < count; ++i) {
        std::snprintf(two, sizeof two, "%02X", bytes[i]);
        text += two;
    }
    return text;
}

std::string nibbles(const uint8_t *bytes, int count) {
    static const char digits[] = "0123456789ABCDEF";
    std::string text;
    for (int i = 0; i < count; ++i)
        text += digits[i % 2 == 0 ? bytes[i / 2] >> 4 : bytes[i / 2] & 0x0F];
    return text;
}

std::string number_list(const uint8_t *bytes, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += (i == 0 ? "" : ",") + num(bytes[i]);
    return text;
}

// A class map of 16 figures: the given ones, then zeros.
std::string class_map(std::vector<int> figures) {
    figures.resize(16, 0);
    std::string text;
    for (std::size_t i = 0; i < figures.size(); ++i)
        text += (i == 0 ? "" : ",") + num(figures[i]);
    return text;
}

using Field = std::string (*)(const View &);

#define FIELD(expr) +[](const View &v) { return num(v.expr); }

// "count mlp=flag net=type:" and one "type/line/board" per device.
std::string device_block(const View &v) {
    std::string text =
        num(v.link.device_count) + " mlp=" + num(v.link.mlp) + " net=" + num(v.link.net_type) + ":";
    for (int i = 0; i < v.link.device_count && i < LINK_MAX_DEVICES; ++i)
        text += " " + num(v.link.device_type[i]) + "/" + num(v.link.device_line[i]) + "/" +
                num(v.link.device_board[i]);
    return text;
}

std::string local_address(const View &v) {
    return std::string(v.link.local_address, ::strnlen(v.link.local_address, 18));
}

// "snid/DTE digits/extension type/extension digits".
std::string full_address(const View &v) {
    const x25_address &a = v.link.subnet.address;
    return num(a.snid) + "/" + nibbles(a.dte, a.dte_len) + "/" + num(a.ext_type) + "/" +
           nibbles(a.ext, a.ext_len);
}

std::string link_type(const View &v) {
    return "net=" + num(v.link.net_type) + " code=" + num(v.link.link_mode) +
           " network=" + num(v.x25.network) + " mlp=" + num(v.link.mlp);
}

std::string link_version(const View &v) {
    return "net=" + num(v.link.net_type) + " version=" + num(v.x25.version);
}

std::string link_mode(const View &v) {
    return "code=" + num(v.link.link_mode) + " plp=" + num(v.x25.plp_mode);
}

std::string link_protocol(const View &v) {
    return "code=" + num(v.link.link_mode) + " mlp=" + num(v.link.mlp) +
           " network=" + num(v.x25.network);
}

std::string text_or_none(const char *text) {
    return text != nullptr ? text : "(none)";
}
std::string alias(const View &v) {
    return text_or_none(v.link.subnet.name);
}
std::string description(const View &v) {
    return text_or_none(v.link.subnet.description);
}

std::string lcn(int low, int high, int count, int total) {
    return num(low) + "-" + num(high) + " n=" + num(count) + " total=" + num(total);
}
std::string pvc_range(const View &v) {
    const x25_lcn_block &b = v.x25.lcn;
    return lcn(b.pvc_low, b.pvc_high, b.pvc_count, b.total);
}
std::string inc_range(const View &v) {
    const x25_lcn_block &b = v.x25.lcn;
    return lcn(b.inc_low, b.inc_high, b.inc_count, b.total);
}
std::string out_range(const View &v) {
    const x25_lcn_block &b = v.x25.lcn;
    return lcn(b.out_low, b.out_high, b.out_count, b.total);
}
std::string two_range(const View &v) {
    const x25_lcn_block &b = v.x25.lcn;
    return lcn(b.two_low, b.two_high, b.two_count, b.total);
}

std::string dnic(const View &v) {
    return hex_bytes(v.x25.dnic, 2);
}

std::string dbit(const View &v) {
    char text[8];
    std::snprintf(text, sizeof text, "0x%02X", v.x25.dbit);
    return text;
}

std::string wmap(const View &v) {
    return number_list(v.x25.thclass_wmap, 16);
}
std::string pmap(const View &v) {
    return number_list(v.x25.thclass_pmap, 16);
}

// Bytes of a 32-byte X.32 field, trailing zero bytes left out.
std::string x32_bytes(const uint8_t (&field)[32]) {
    std::size_t used = sizeof field;
    while (used > 0 && field[used - 1] == 0)
        --used;
    return hex_bytes(field, used);
}

// "authen=flag id=length:bytes sign=length:bytes".
std::string x32(const View &v) {
    return "authen=" + num(v.x32.authen) + " id=" + num(v.x32.identity_len) + ":" +
           x32_bytes(v.x32.identity) + " sign=" + num(v.x32.signature_len) + ":" +
           x32_bytes(v.x32.signature);
}

std::string mlp_priorities(const View &v) {
    return number_list(v.link.mlp_priority, MLP_MAX_SUBSECTIONS);
}

std::string connect_proc(const View &v) {
    return num(v.wan.connect_proc) + " link_flags=" + num(v.link.flags);
}

// ---- The table ------------------------------------------------------------------

enum class Kind { good, out_of_range, malformed };

// One value of a keyword. `before` holds lines of the keyword's own section
// read before the keyword line, `link_lines` lines of SECTION LINK.
struct Case {
    Kind kind;
    std::string value;
    std::string expected;
    Messages messages = {};
    std::string before = {};
    std::string link_lines = {};
};

Case good(std::string value, std::string expected, std::string before = "",
          std::string link_lines = "") {
    return {Kind::good, std::move(value),  std::move(expected),
            {},         std::move(before), std::move(link_lines)};
}
Case out(std::string value, std::string expected, Messages reported = {}, std::string before = "",
         std::string link_lines = "") {
    return {Kind::out_of_range,  std::move(value),  std::move(expected),
            std::move(reported), std::move(before), std::move(link_lines)};
}
Case bad(std::string value, std::string expected, Messages reported = {}, std::string before = "",
         std::string link_lines = "") {
    return {Kind::malformed,     std::move(value),  std::move(expected),
            std::move(reported), std::move(before), std::move(link_lines)};
}

// One keyword: where it is read, its name and index in the section's keyword
// table, the field it sets (as text) and its cases.
struct Row {
    Where where;
    std::string name;
    int index;
    Field field;
    std::vector<Case> cases;
    bool keeps_comments = true;
};

// A flag: exactly y or n in either case sets or clears `bit` of a field
// whose value before is `base`; any other text leaves it.
Row flag(Where where, std::string name, int index, Field field, unsigned base, unsigned bit) {
    std::string set = num(base | bit);
    std::string clear = num(base & ~bit);
    std::string set_before = name + " y\n";
    return {where,
            name,
            index,
            field,
            {good("Y", set), good("y", set), good("n", clear, set_before), good("N", clear),
             bad("yes", set, {}, set_before), bad("no", set, {}, set_before),
             bad("maybe", num(base)), bad("", num(base))}};
}

// An X.25 timer: seconds to tenths, 0..32000 tenths, else 2000 reported.
Row x25_timer(std::string name, int index, Field field) {
    return {Where::x25,
            std::move(name),
            index,
            field,
            {good("180.5", "1805"), good("0.04", "0"), good("3200", "32000"),
             out("3200.1", "2000", {timer_out_of_range}), out("-0.2", "2000", {timer_out_of_range}),
             bad("soon", "0")}};
}

// A LAPB or LLC2 timer: seconds to tenths, kept within 0..32767 tenths.
Row link_timer(Where where, std::string name, int index, Field field, std::string old) {
    return {where,
            std::move(name),
            index,
            field,
            {good("2.5", "25"), good("3276.7", "32767"), good("0.04", "0"), out("3276.8", old),
             out("-0.2", old), bad("slow", "0")}};
}

// A LAPB or LLC2 count, kept within 0..high.
Row link_count(Where where, std::string name, int index, Field field, int high, std::string old) {
    return {where,
            std::move(name),
            index,
            field,
            {good(num(high), num(high)), good("0", "0"), good("3", "3"), out(num(high + 1), old),
             bad("x", "0")}};
}

// Both kinds of X.32 text: identity and signature.
Row x32_text(Where where, std::string name, int index, bool identity) {
    const std::string hex64 = "0123456789abcdef0123456789abcdef0123456789abcdef0123456789abcdef";
    const std::string packed64 = "0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF0123456789ABCDEF";
    auto shown = [identity](const std::string &length, const std::string &bytes) {
        return identity ? "authen=0 id=" + length + ":" + bytes + " sign=0:"
                        : "authen=0 id=0: sign=" + length + ":" + bytes;
    };
    std::string before = name + " 12\n";
    std::string too_long = hex64 + "12";
    return {where,
            name,
            index,
            x32,
            {good("0123456789abcdef", shown("8", "0123456789ABCDEF")),
             good("123", shown("1", "1230")), good(hex64, shown("32", packed64)),
             // 65 digits pass the check; the field holds the first 64.
             good(hex64 + "f", shown("32", packed64)),
             out(too_long, shown("0", "12"), {bad_x32_text(too_long)}, before),
             bad("12G4", shown("0", "12"), {bad_x32_text("12G4")}, before),
             bad("", shown("0", "12"), {}, before)},
            false};
}

Row x32_flag(Where where, std::string name, int index) {
    std::string set_before = name + " y\n";
    return {where,
            name,
            index,
            x32,
            {good("Y", "authen=1 id=0: sign=0:"), good("n", "authen=0 id=0: sign=0:", set_before),
             bad("yes", "authen=1 id=0: sign=0:", {}, set_before),
             bad("maybe", "authen=0 id=0: sign=0:")},
            false};
}

std::vector<Row> link_rows() {
    const Where W = Where::link;
    const std::string two_devices = "device wan0, wan1\n";
    return {
        {W,
         "device",
         0,
         device_block,
         {good("wan3", "1 mlp=0 net=0: 0/1/1"), good("wan3, eth0", "2 mlp=1 net=5: 0/1/1 1/0/0"),
          good("ETH2 WAN0", "2 mlp=1 net=5: 1/0/2 0/0/0"),
          good("wan", "1 mlp=0 net=0: 0/0/0", "device wan3\n"),
          out("wan0 wan1 wan2 wan3 wan4 wan5", "5 mlp=1 net=8: 0/0/0 0/1/0 0/0/1 0/1/1 0/0/2"),
          // A sixth word is not looked at, known or not.
          out("wan0 wan1 wan2 wan3 wan4 modem0", "5 mlp=1 net=8: 0/0/0 0/1/0 0/0/1 0/1/1 0/0/2"),
          bad("modem0", "0 mlp=0 net=0:", {unknown_device("modem0")}),
          bad("wan1, modem0", "1 mlp=0 net=0: 0/1/0", {unknown_device("modem0")}),
          bad("", "0 mlp=0 net=0:", {missing_device}, "device wan3\n")}},
        {W,
         "local_address",
         1,
         local_address,
         {good("0a1b2c3d4e5f", "0A1B2C3D4E5F"), good("0123456789abcdef0", "0123456789ABCDEF0"),
          // Positions are counted in the text as written, before "1" became "01".
          good("1:2:3", "01020"), good("", "", "local_address 1234\n"),
          out("0123456789ABCDEF01", "0123456789ABCDEF0", {bad_address("0123456789ABCDEF01")}),
          // At most 38 characters are taken from the text.
          out("0123456789abcdef0123456789abcdef0123456789", "0123456789ABCDEF0",
              {bad_address("0123456789abcdef0123456789abcdef012345")}),
          bad("12G4", "12", {bad_address("12G4")}),
          bad("08:00:2b:1:2:3", "08002B010203", {bad_address("08002b010203")}),
          bad("0800:2b", "", {bad_address("?")})}},
        {W,
         "full_address",
         2,
         full_address,
         {good("3.23421234567", "3/23421234567/0/"),
          good("23421234567.X.AB", "255/23421234567/1/AB"), good("3.2342.N.4711", "3/2342/0/4711"),
          out("3.123456789012345678", "3//0/", {invalid_full_address}),
          bad("3.12ZZ", "3/12/0/", {invalid_full_address})}},
        {W,
         "type",
         3,
         link_type,
         {good("LAN", "net=3 code=16 network=1 mlp=0"),
          good("lan", "net=3 code=15 network=1 mlp=0", "protocol LLC1\n"),
          good("WAN", "net=0 code=17 network=2 mlp=0", "type LAN\n"),
          good("wan", "net=1 code=0 network=2 mlp=0", "version 84\n"),
          good("WAN", "net=5 code=0 network=2 mlp=1", two_devices),
          good("WAN", "net=0 code=23 network=2 mlp=0", "protocol MLAPB\n"),
          good("Wan", "net=0 code=17 network=2 mlp=0", "protocol LLC2\n"),
          bad("ATM", "net=0 code=0 network=2 mlp=0"), bad("", "net=0 code=0 network=2 mlp=0"),
          bad("LANs", "net=0 code=0 network=2 mlp=0")}},
        {W,
         "version",
         4,
         link_version,
         {good("84", "net=1 version=1"), good("1980", "net=2 version=0"),
          good("1984", "net=1 version=1"), good("88", "net=0 version=2", "version 80\n"),
          good("80", "net=5 version=2", two_devices), good("80", "net=3 version=88", "type LAN\n"),
          out("85", "net=0 version=88"), out("2000", "net=2 version=0", {}, "version 80\n"),
          bad("X.25", "net=0 version=88"), bad("", "net=0 version=88")}},
        {W,
         "mode",
         5,
         link_mode,
         {good("DTE", "code=17 plp=1"), good("dce", "code=19 plp=0"),
          good("DCE", "code=20 plp=0", "protocol LAPBE\n"),
          good("DTE", "code=18 plp=1", "protocol LAPBE\nmode DCE\n"),
          good("DCE", "code=22 plp=0", "protocol LAP\n"),
          good("Dte", "code=21 plp=1", "protocol LAP\nmode DCE\n"),
          good("DCE", "code=25 plp=0", "protocol MLAPB\n"),
          good("DTE", "code=24 plp=1", "protocol MLAPBE\nmode DCE\n"),
          good("DCE", "code=16 plp=2", "type LAN\n"), bad("DTX", "code=0 plp=1"),
          bad("DTX", "code=19 plp=0", {}, "mode DCE\n"), bad("", "code=0 plp=1")}},
        {W,
         "protocol",
         6,
         link_protocol,
         {good("LAPB", "code=17 mlp=0 network=2"), good("lapbe", "code=18 mlp=0 network=2"),
          good("LAP", "code=21 mlp=0 network=2"),
          good("LAP", "code=22 mlp=0 network=2", "mode DCE\n"),
          good("MLAPB", "code=23 mlp=1 network=2"),
          good("MLAPBE", "code=26 mlp=1 network=2", "mode DCE\n"),
          good("LLC1", "code=15 mlp=0 network=1"),
          good("llc2", "code=16 mlp=0 network=1", "mode DCE\n"),
          good("LAPB", "code=17 mlp=0 network=4", "protocol LLC1\nversion 80\n"),
          good("LAPB", "code=17 mlp=0 network=3", "protocol LLC1\nversion 84\n"),
          good("LAPB", "code=17 mlp=0 network=2", "protocol LLC1\n"),
          good("LAPB", "code=17 mlp=0 network=2", "protocol MLAPB\n"),
          good("MLAPB", "code=23 mlp=1 network=2", two_devices),
          out("LAPB", "code=17 mlp=0 network=2", {multiple_devices}, two_devices),
          bad("HDLC", "code=0 mlp=0 network=2", {unknown_protocol}),
          bad("HDLC", "code=19 mlp=0 network=2", {unknown_protocol}, "mode DCE\n"),
          bad("", "code=0 mlp=0 network=2")}},
        {W,
         "alias",
         7,
         alias,
         {good("Paris office", "Paris office"), good("second", "second", "alias first\n"),
          bad("", "(none)"), bad("", "first", {}, "alias first\n")}},
        {W,
         "description",
         8,
         description,
         {good("Leased line to Paris", "Leased line to Paris"),
          good("second", "second", "description first\n"), bad("", "(none)"),
          bad("", "first", {}, "description first\n")}},
        {W,
         "max_lan_conns",
         9,
         FIELD(link.max_lan_conns),
         {good("12", "12"), good("300", "44"), good("256", "0"),
          bad("many", "0", {}, "max_lan_conns 7\n")}},
    };
}

std::vector<Row> x25_rows() {
    const Where X = Where::x25;
    const std::string modulo_8 = "modulo 8\n";
    const std::string auto_mode = "plpmode Auto\n";
    const std::string on_lan = "type LAN\n";
    // Defaults of a WAN link: two-way channels 512-575 only.
    const std::string no_channels = "0-0 n=0 total=64";
    const std::string wan_channels = "512-575 n=64 total=64";
    auto lcn_row = [&](std::string name, int index, Field field) -> Row {
        std::string before = name + " 1-10\n";
        return {X,
                name,
                index,
                field,
                {good("1-10", "1-10 n=10 total=74"), good("5 - 5", "5-5 n=1 total=65"),
                 good("0-0", no_channels, before), good("1\t32", "1-32 n=32 total=96"),
                 out("10-5", "1-10 n=10 total=74", {lcn_upper_below_lower}, before),
                 bad("7", "1-10 n=10 total=74", {lcn_not_a_range}, before),
                 bad("", no_channels, {no_lcn_range})}};
    };
    auto packet_row = [&](std::string name, int index, Field field, std::string old) -> Row {
        return {X,
                std::move(name),
                index,
                field,
                {good("12", "12"), good("7", "7"), good("10", "10"), out("13", old), out("6", old),
                 bad("big", old)}};
    };
    auto window_row = [&](std::string name, int index, Field field) -> Row {
        // The default modulo (the raw figure 8, not the modulo 8 code) allows
        // windows up to 128.
        return {X,
                std::move(name),
                index,
                field,
                {good("5", "5"), good("128", "128"), good("8", "8", modulo_8),
                 good("100", "100", "modulo 128\n"), out("9", "7", {}, modulo_8), out("129", "7"),
                 out("0", "7"), bad("wide", "7")}};
    };
    auto retry_row = [&](std::string name, int index, Field field) -> Row {
        return {X,
                name,
                index,
                field,
                {good("3", "3"), good("300", "44"), good("256", "0"),
                 bad("x", "0", {}, name + " 5\n")}};
    };
    auto delay_row = [&](std::string name, int index, Field field) -> Row {
        std::string before = name + " 0.25\n";
        return {X,
                name,
                index,
                field,
                {good("0.25", "250"), good("0.0004", "0"), good("32", "32000"),
                 out("33", "5", {delay_out_of_range}, before),
                 out("-0.002", "5", {delay_out_of_range}, before), bad("later", "0", {}, before)}};
    };
    auto class_row = [&](std::string name, int index, Field field, std::string old) -> Row {
        return {
            X,
            std::move(name),
            index,
            field,
            {good("15", "15"), good("0", "0"), good("9", "9"), out("16", old), bad("fast", "0")}};
    };
    auto facility = [&](std::string name, int index, unsigned bit) {
        return flag(X, std::move(name), index, FIELD(x25.facilities), X25_FAC_USE_NEGOTIATION, bit);
    };
    auto option = [&](std::string name, int index, unsigned bit) {
        return flag(X, std::move(name), index, FIELD(x25.options), 0, bit);
    };
    auto cug = [&](std::string name, int index, unsigned bit) {
        return flag(X, std::move(name), index, FIELD(x25.cug), X25_CUG_BASIC, bit);
    };
    const std::string forced_8 = "prty_pkt_forced_val 8\n";

    return {
        {X,
         "plpmode",
         0,
         FIELD(x25.plp_mode),
         {good("Auto", "2"), good("normal", "0", auto_mode, "mode DCE\n"),
          good("NORMAL", "1", auto_mode, "mode DTE\n"), good("Normal", "1", auto_mode),
          bad("Fast", "1", {}, auto_mode), bad("Fast", "1", {}, "", "mode DCE\n")}},
        lcn_row("pvc_range", 1, pvc_range),
        lcn_row("inc_range", 2, inc_range),
        lcn_row("out_range", 3, out_range),
        {X,
         "two_range",
         4,
         two_range,
         {good("1-4095", "1-4095 n=4095 total=4095"), good("1024-1087", "1024-1087 n=64 total=64"),
          good("0-0", "0-0 n=0 total=0"), out("575-512", wan_channels, {lcn_upper_below_lower}),
          bad("512", wan_channels, {lcn_not_a_range}), bad("", wan_channels, {no_lcn_range})}},
        {X,
         "modulo",
         5,
         FIELD(x25.modulo),
         {good("128", "32"), good("8", "16"), out("16", "32", {}, "modulo 128\n"), out("0", "8"),
          bad("eight", "8")}},
        facility("use_negotiation", 6, X25_FAC_USE_NEGOTIATION),
        facility("bar_negotiation", 7, X25_FAC_BAR_NEGOTIATION),
        {X,
         "src_addr_control",
         8,
         FIELD(x25.src_addr),
         {good("1", "1"), good("4", "4"), out("5", "2", {}, "src_addr_control 2\n"),
          out("0", "2", {}, "src_addr_control 2\n"), bad("x", "2", {}, "src_addr_control 2\n")}},
        facility("accept_revchg", 9, X25_FAC_ACCEPT_REVCHG),
        facility("prev_chg", 10, X25_FAC_PREV_CHG),
        facility("fast_select", 11, X25_FAC_FAST_SELECT),
        facility("fs_r_response", 12, X25_FAC_FS_R_RESPONSE),
        option("bar_nonpriv_listen", 13, X25_OPT_BAR_NONPRIV_LISTEN),
        packet_row("locmaxpktsize", 14, FIELD(x25.locmaxpktsize), "8"),
        packet_row("remmaxpktsize", 15, FIELD(x25.remmaxpktsize), "8"),
        packet_row("locdefpktsize", 16, FIELD(x25.locdefpktsize), "7"),
        packet_row("remdefpktsize", 17, FIELD(x25.remdefpktsize), "7"),
        window_row("locmaxwinsize", 18, FIELD(x25.locmaxwinsize)),
        window_row("remmaxwinsize", 19, FIELD(x25.remmaxwinsize)),
        {X,
         "locdefwinsize",
         20,
         FIELD(x25.locdefwinsize),
         {good("5", "5"), good("128", "128"), good("8", "8", modulo_8), out("9", "2", {}, modulo_8),
          out("129", "2"), out("0", "2"), bad("wide", "2")}},
        {X,
         "remdefwinsize",
         21,
         FIELD(x25.remdefwinsize),
         {good("5", "5"), good("128", "128"), good("8", "8", modulo_8), out("9", "2", {}, modulo_8),
          out("129", "2"), out("0", "2"), bad("wide", "2")}},
        {X,
         "maxnsdulength",
         22,
         FIELD(x25.max_nsdu),
         {good("32000", "32000"), good("1", "1"), out("32001", "576"), out("0", "576"),
          bad("max", "576")}},
        x25_timer("ackdelay", 23, FIELD(x25.ackdelay)),
        x25_timer("t20value", 24, FIELD(x25.t20value)),
        x25_timer("t21value", 25, FIELD(x25.t21value)),
        x25_timer("t22value", 26, FIELD(x25.t22value)),
        x25_timer("t23value", 27, FIELD(x25.t23value)),
        x25_timer("t24value", 28, FIELD(x25.t24value)),
        x25_timer("t25value", 29, FIELD(x25.t25value)),
        x25_timer("t26value", 30, FIELD(x25.t26value)),
        x25_timer("t28value", 31, FIELD(x25.t28value)),
        x25_timer("idlevalue", 32, FIELD(x25.idlevalue)),
        x25_timer("connectvalue", 33, FIELD(x25.connectvalue)),
        retry_row("r20value", 34, FIELD(x25.r20value)),
        retry_row("r22value", 35, FIELD(x25.r22value)),
        retry_row("r23value", 36, FIELD(x25.r23value)),
        retry_row("r28value", 37, FIELD(x25.r28value)),
        delay_row("localdelay", 38, FIELD(x25.localdelay)),
        delay_row("accessdelay", 39, FIELD(x25.accessdelay)),
        class_row("locmaxthclass", 40, FIELD(x25.locmaxthclass), "12"),
        class_row("remmaxthclass", 41, FIELD(x25.remmaxthclass), "12"),
        class_row("locdefthclass", 42, FIELD(x25.locdefthclass), "12"),
        class_row("remdefthclass", 43, FIELD(x25.remdefthclass), "12"),
        class_row("locminthclass", 44, FIELD(x25.locminthclass), "4"),
        class_row("remminthclass", 45, FIELD(x25.remminthclass), "4"),
        {X,
         "network",
         46,
         FIELD(x25.network),
         {good("PSS", "7"), good("x25_80", "4"), good("25", "25"), good("X25_LLC", "1", "", on_lan),
          out("PSS", "7", {lan_network}, "", on_lan), out("2", "2", {lan_network}, "", on_lan),
          bad("Nowhere", "0"), bad("Nowhere", "0", {lan_network}, "", on_lan)}},
        cug("sub_cug", 47, X25_CUG_SUB),
        cug("sub_pref_cug", 48, X25_CUG_SUB_PREF),
        cug("sub_cugoa", 49, X25_CUG_SUB_OA),
        cug("sub_cugia", 50, X25_CUG_SUB_IA),
        {X,
         "cug_format",
         51,
         FIELD(x25.cug),
         {good("basic", "16"), good("Extended", "32"), good("BASIC", "16", "cug_format extended\n"),
          good("extended", "33", "sub_cug y\n"), bad("both", "32", {}, "cug_format extended\n"),
          bad("", "16")}},
        cug("bar_cug_in", 52, X25_CUG_BAR_IN),
        facility("bar_incall", 53, X25_FAC_BAR_INCALL),
        facility("bar_outcall", 54, X25_FAC_BAR_OUTCALL),
        facility("sub_toa_npi_fmt", 55, X25_FAC_SUB_TOA_NPI_FMT),
        facility("bar_toa_npi_fmt", 56, X25_FAC_BAR_TOA_NPI_FMT),
        facility("sub_nui_override", 57, X25_FAC_SUB_NUI_OVERRIDE),
        facility("bar_call_x32_reg", 58, X25_FAC_BAR_CALL_X32_REG),
        option("acc_nodiag", 59, X25_OPT_ACC_NODIAG),
        option("use_diag", 60, X25_OPT_USE_DIAG),
        option("ccitt_clear_len", 61, X25_OPT_CCITT_CLEAR_LEN),
        option("bar_diag", 62, X25_OPT_BAR_DIAG),
        option("disc_nz_diag", 63, X25_OPT_DISC_NZ_DIAG),
        option("acc_hex_add", 64, X25_OPT_ACC_HEX_ADD),
        option("intl_prioritised", 65, X25_OPT_INTL_PRIORITISED),
        option("datapac_priority", 66, X25_OPT_DATAPAC_PRIORITY),
        option("iso_8882_mode", 67, X25_OPT_ISO_8882_MODE),
        option("send_x121_to_lan", 68, X25_OPT_SEND_X121_TO_LAN),
        option("insert_x121_from_lan", 69, X25_OPT_INSERT_X121_FROM_LAN),
        {X,
         "dnic",
         70,
         dnic,
         {good("2342", "2342"), good("0505", "0505"), good("9999", "9999"),
          out("12345", "2342", {}, "dnic 2342\n"), bad("none", "0000", {}, "dnic 2342\n")}},
        {X,
         "intl_addr_recogn",
         71,
         FIELD(x25.intl_addr_recogn),
         {good("4", "4"), good("0", "0", "intl_addr_recogn 3\n"),
          out("5", "3", {}, "intl_addr_recogn 3\n"), bad("x", "0", {}, "intl_addr_recogn 3\n")}},
        {X,
         "prty_encode_control",
         72,
         FIELD(x25.prty_encode),
         {good("2", "2"), good("1", "1"), out("3", "1", {}, "prty_encode_control 1\n"),
          bad("x", "0", {}, "prty_encode_control 1\n")}},
        {X,
         "prty_pkt_forced_val",
         73,
         FIELD(x25.prty_forced),
         {good("4", "4"), good("12", "12"), good("0", "0", forced_8), out("3", "8", {}, forced_8),
          out("13", "8", {}, forced_8), bad("x", "0", {}, forced_8)}},
        // The D-bit byte starts as 0xA5: clear, clear, zero, zero.
        {X,
         "dbit_accept_in",
         74,
         dbit,
         {good("zero", "0xA6"), good("CLEAR", "0xA5"),
          good("clear", "0xA5", "dbit_accept_in zero\n"), bad("reset", "0xA4"), bad("", "0xA4")}},
        {X,
         "dbit_accept_out",
         75,
         dbit,
         {good("zero", "0xA9"), good("Clear", "0xA5"), bad("reset", "0xA1"), bad("maybe", "0xA1")}},
        {X,
         "dbit_data_in",
         76,
         dbit,
         {good("reset", "0x95"), good("ZERO", "0xA5"), bad("clear", "0x85"), bad("", "0x85")}},
        {X,
         "dbit_data_out",
         77,
         dbit,
         {good("reset", "0x65"), good("zero", "0xA5"), bad("clear", "0x25"), bad("maybe", "0x25")}},
        {X,
         "thclass_neg_to_def",
         78,
         FIELD(x25.thclass_neg_to_def),
         {good("Y", "1"), good("n", "0", "thclass_neg_to_def y\n"),
          bad("yes", "1", {}, "thclass_neg_to_def y\n"), bad("maybe", "0")}},
        {X,
         "thclass_type",
         79,
         FIELD(x25.thclass_type),
         {good("3", "3"), good("0", "0", "thclass_type 2\n"), out("4", "2", {}, "thclass_type 2\n"),
          bad("x", "0", {}, "thclass_type 2\n")}},
        {X,
         "thclass_wmap",
         80,
         wmap,
         {good("1,2,3", class_map({1, 2, 3})), good("127 5", class_map({127, 5})),
          good("1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17",
               class_map({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16})),
          out("200,5", class_map({9, 5, 9}), {}, "thclass_wmap 9,9,9\n"),
          bad("x", class_map({0, 9}), {}, "thclass_wmap 9,9\n")}},
        {X,
         "thclass_pmap",
         81,
         pmap,
         {good("12,0,4", class_map({12, 0, 4})), good("5", class_map({5})),
          out("13,2", class_map({9, 2, 9}), {}, "thclass_pmap 9,9,9\n"),
          bad("x", class_map({0, 9}), {}, "thclass_pmap 9,9\n")}},
        x32_flag(X, "x25_x32_enable_authen", 82),
        x32_text(X, "x25_x32_sign", 83, false),
        x32_text(X, "x25_x32_identity", 84, true),
    };
}

// SECTION LAPB, and with where = mlp_lapb a SUBSECTION LAPB of MLP.
std::vector<Row> lapb_rows(Where L) {
    Row priority =
        L == Where::lapb
            // Outside MLP the priority goes nowhere and its comments are dropped.
            ? Row{L,
                  "mlp_priority",
                  11,
                  mlp_priorities,
                  {good("7", "0,0,0,0,0"), good("300", "0,0,0,0,0"), bad("x", "0,0,0,0,0")},
                  false} // In MLP it goes to the link record, for the subsection's position.
            : Row{L,
                  "mlp_priority",
                  11,
                  mlp_priorities,
                  {good("7", "7,0,0,0,0"), good("300", "44,0,0,0,0"), good("256", "0,0,0,0,0"),
                   bad("x", "0,0,0,0,0", {}, "mlp_priority 7\n")}};
    auto bit = [L](std::string name, int index, unsigned value) {
        return flag(L, std::move(name), index, FIELD(lapb.flags), 0, value);
    };
    return {
        link_count(L, "n2_count", 0, FIELD(lapb.n2_count), 32767, "10"),
        link_timer(L, "t1_timer", 1, FIELD(lapb.t1_timer), "60"),
        link_timer(L, "pf_timer", 2, FIELD(lapb.pf_timer), "7"),
        link_timer(L, "reject_timer", 3, FIELD(lapb.reject_timer), "25"),
        link_timer(L, "busy_timer", 4, FIELD(lapb.busy_timer), "100"),
        link_timer(L, "idle_timer", 5, FIELD(lapb.idle_timer), "250"),
        link_timer(L, "rr_ack_delay", 6, FIELD(lapb.rr_ack_delay), "4"),
        link_count(L, "unack_max", 7, FIELD(lapb.unack_max), 127, "3"),
        link_count(L, "local_win", 8, FIELD(lapb.local_win), 127, "7"),
        {L,
         "local_probe",
         9,
         FIELD(lapb.local_probe),
         {good("127", "127"), good("0", "0", "local_probe 5\n"), good("3", "3"),
          out("128", "5", {}, "local_probe 5\n"), bad("x", "0", {}, "local_probe 5\n")}},
        link_count(L, "max_iframe_len", 10, FIELD(lapb.max_iframe_len), 8199, "517"),
        priority,
        bit("ign_ua_error", 12, LAPB_IGN_UA_ERROR),
        bit("frmr_frmr_error", 13, LAPB_FRMR_FRMR_ERROR),
        bit("frmr_invrsp_error", 14, LAPB_FRMR_INVRSP_ERROR),
        bit("sframe_pbit", 15, LAPB_SFRAME_PBIT),
        bit("no_dm_adm", 16, LAPB_NO_DM_ADM),
        bit("sabm_in_x32", 17, LAPB_SABM_IN_X32),
        bit("iso8882", 18, LAPB_ISO8882),
        bit("initial_down", 19, LAPB_INITIAL_DOWN),
        x32_flag(L, "lapb_x32_enable_authen", 20),
        x32_text(L, "lapb_x32_sign", 21, false),
        x32_text(L, "lapb_x32_identity", 22, true),
    };
}

std::vector<Row> llc2_rows() {
    const Where C = Where::llc2;
    return {
        link_count(C, "n2_count", 0, FIELD(llc2.n2_count), 32767, "10"),
        link_timer(C, "t1_timer", 1, FIELD(llc2.t1_timer), "10"),
        link_timer(C, "pf_timer", 2, FIELD(llc2.pf_timer), "7"),
        link_timer(C, "reject_timer", 3, FIELD(llc2.reject_timer), "25"),
        link_timer(C, "busy_timer", 4, FIELD(llc2.busy_timer), "100"),
        link_timer(C, "idle_timer", 5, FIELD(llc2.idle_timer), "250"),
        link_timer(C, "rr_ack_delay", 6, FIELD(llc2.rr_ack_delay), "4"),
        link_count(C, "unack_max", 7, FIELD(llc2.unack_max), 127, "3"),
        link_count(C, "local_win", 8, FIELD(llc2.local_win), 127, "7"),
        {C,
         "local_probe",
         9,
         FIELD(llc2.local_probe),
         {good("127", "127"), good("0", "0", "local_probe 5\n"), good("3", "3"),
          out("128", "5", {}, "local_probe 5\n"), bad("x", "0", {}, "local_probe 5\n")}},
        link_count(C, "max_iframe_len", 10, FIELD(llc2.max_iframe_len), 4103, "263"),
        link_count(C, "xid_window", 11, FIELD(llc2.xid_window), 127, "7"),
        link_count(C, "xid_ndup", 12, FIELD(llc2.xid_ndup), 255, "2"),
        link_timer(C, "xid_tdup", 13, FIELD(llc2.xid_tdup), "5"),
    };
}

// SECTION WAN, and with where = mlp_wan a SUBSECTION WAN of MLP.
std::vector<Row> wan_rows(Where W) {
    // A WAN timer in tenths, kept within low..high; `mid` lies inside.
    auto timer = [W](std::string name, int index, Field field, std::string low, std::string high,
                     std::string mid, std::string above, std::string below) -> Row {
        auto tenths = [](const std::string &seconds) {
            return num(static_cast<long>(std::strtod(seconds.c_str(), nullptr) * 10 + 0.5));
        };
        std::string before = name + " " + mid + "\n";
        return {W,
                name,
                index,
                field,
                {good(low, tenths(low)), good(high, tenths(high)), good(mid, tenths(mid)),
                 out(above, tenths(mid), {}, before), out(below, tenths(mid), {}, before),
                 bad("x", tenths(mid), {}, before)}};
    };
    const std::string proc_x21 = "connect_proc X21\n";
    return {
        {W,
         "line_speed",
         0,
         FIELD(wan.tuning.line_speed),
         {good("9600", "9600"), good("2048000", "2048000"),
          good("external", "0", "line_speed 9600\n"), good("EXTERNAL", "0", "line_speed 9600\n"),
          bad("fast", "0", {}, "line_speed 9600\n")}},
        {W,
         "max_frame",
         1,
         FIELD(wan.tuning.max_frame),
         {good("4104", "4104"), good("0", "0"), good("1024", "1024"), out("4105", "520"),
          bad("x", "0")}},
        {W,
         "translate",
         2,
         FIELD(wan.flags),
         {good("y", "1"), good("Y", "1"), good("n", "0", "translate y\n"),
          bad("yes", "0", {}, "translate y\n"), bad("maybe", "0", {}, "translate y\n"),
          bad("", "0", {}, "translate y\n")}},
        {W,
         "connect_proc",
         3,
         connect_proc,
         {good("X21", "1 link_flags=1"), good("v25", "2 link_flags=1"),
          good("V25bis", "2 link_flags=1"), good("x21", "1 link_flags=1", "connect_proc V25\n"),
          bad("none", "0 link_flags=0", {}, proc_x21), bad("X2", "0 link_flags=0", {}, proc_x21),
          bad("", "0 link_flags=0", {}, proc_x21)}},
        timer("x21_t1", 4, FIELD(wan.x21_t1), "0.3", "3", "1.5", "3.1", "0.2"),
        timer("x21_t2", 5, FIELD(wan.x21_t2), "2", "20", "7.5", "20.1", "1.9"),
        timer("x21_t3a", 6, FIELD(wan.x21_t3a), "0.6", "6", "3", "6.1", "0.5"),
        timer("x21_t4b", 7, FIELD(wan.x21_t4b), "0.6", "6", "3", "6.1", "0.5"),
        timer("x21_t5", 8, FIELD(wan.x21_t5), "0.2", "2", "1", "2.1", "0.1"),
        timer("x21_t6", 9, FIELD(wan.x21_t6), "0.2", "2", "1", "2.1", "0.1"),
        // Shares the field of x21_t1; out of range it stores 6.0 seconds.
        {W,
         "v25_callreq",
         10,
         FIELD(wan.x21_t1),
         {good("10", "100"), good("6", "60"), good("30", "300"),
          out("50", "60", {}, "v25_callreq 10\n"), out("5.9", "60", {}, "v25_callreq 10\n"),
          bad("x", "60", {}, "v25_callreq 10\n")}},
    };
}

std::vector<Row> mlp_rows() {
    const Where M = Where::mlp;
    auto timer = [M](std::string name, int index, Field field) -> Row {
        std::string before = name + " 45.5\n";
        return {M,
                name,
                index,
                field,
                {good("300", "3000"), good("0.1", "1"), good("45.5", "455"),
                 out("300.1", "455", {}, before), out("0.04", "455", {}, before),
                 bad("x", "455", {}, before)}};
    };
    return {
        {M,
         "mlp_window",
         0,
         FIELD(mlp.mlp_win),
         {good("4095", "4095"), good("0", "0"), out("4096", "20", {}, "mlp_window 20\n"),
          bad("x", "0", {}, "mlp_window 20\n")}},
        {M,
         "mlp_guard",
         1,
         FIELD(mlp.guard),
         {good("4095", "4095"), good("0", "0"), out("4096", "20", {}, "mlp_guard 20\n"),
          bad("x", "0", {}, "mlp_guard 20\n")}},
        timer("mt1_val", 2, FIELD(mlp.mt1)),
        timer("mt2_val", 3, FIELD(mlp.mt2)),
        timer("mt3_val", 4, FIELD(mlp.mt3)),
        {M,
         "mn1_val",
         5,
         FIELD(mlp.mn1),
         {good("255", "255"), good("1", "1"), out("256", "20", {}, "mn1_val 20\n"),
          out("0", "20", {}, "mn1_val 20\n"), bad("x", "20", {}, "mn1_val 20\n")}},
    };
}

const std::vector<Row> &all_rows() {
    static const std::vector<Row> rows = [] {
        std::vector<Row> all;
        for (auto section_rows :
             {link_rows(), x25_rows(), lapb_rows(Where::lapb), llc2_rows(), wan_rows(Where::wan),
              mlp_rows(), lapb_rows(Where::mlp_lapb), wan_rows(Where::mlp_wan)})
            all.insert(all.end(), section_rows.begin(), section_rows.end());
        return all;
    }();
    return rows;
}

// ---- Reading a file --------------------------------------------------------------

const char *const boardconf = "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tlines 2\n"
                              "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n\tlines 1\n";
const char *const profiles = "1 X25_LLC LAN network\n2 X25_88 WAN 1988\n3 X25_84 WAN 1984\n"
                             "4 X25_80 WAN 1980\n7 PSS public network\n"
                             "25 X21_V25 circuit switched\n";

const char *const head = "IDENTIFICATION\n"
                         "\tPRODUCT_NAME\tQuenlark X.25\n"
                         "\tFILE_TYPE\tx25link\n"
                         "SECTION\tLINK\n";

// The keyword line, with a comment line before it and a trailing comment.
std::string keyword_line(const std::string &keyword, const std::string &value) {
    return "! before\n\t" + keyword + "\t" + value + "\t! after\n";
}

template <typename T> bool same_bytes(const T &a, const T &b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

class KeywordReading : public testing::Test {
  protected:
    void SetUp() override {
        qx25test::capture_all_messages();
        tree.write("config/boardconf", boardconf);
        tree.write("lib/world_networks.profile", profiles);
        // Zeroed records: the reader loads every section's defaults first.
        std::memset(&got, 0, sizeof got);
        std::memset(&scene, 0, sizeof scene);
    }

    void TearDown() override {
        release(got);
        release(scene);
    }

    int read(Records &r, const std::string &content) {
        std::string path = tree.write("link.cfg", content);
        int mode = 0;
        return x25_read_config_parameter_file_x32(path.c_str(), &r.ids, &r.link, &r.x25, &r.mlp,
                                                  &r.lapb, &r.llc2, &r.wan, &r.x25_x32, &r.lapb_x32,
                                                  r.mlp_x32, &mode);
    }

    // The comment pairs that hold any comment.
    std::vector<const config_comment *> pairs_with_comments(Records &r) {
        std::vector<const config_comment *> found;
        for_each_pair(r, [&found](config_comment &pair) {
            if (pair.comments != nullptr || pair.trailer != nullptr) found.push_back(&pair);
        });
        return found;
    }

    // Everything a keyword read in `where` has no business with is as the
    // read without the keyword line left it.
    void expect_rest_unchanged(Where where) {
        // A check that applies unless the keyword may change that block.
        auto unchanged_unless = [](bool may_change, bool same, const char *what) {
            if (!may_change) {
                EXPECT_TRUE(same) << what << " changed";
            }
        };
        bool link_may_change = where == Where::link || where == Where::wan ||
                               where == Where::mlp_lapb || where == Where::mlp_wan;
        unchanged_unless(link_may_change, same_bytes(got.link.values, scene.link.values),
                         "link values");
        unchanged_unless(where == Where::link || where == Where::x25,
                         same_bytes(got.x25.values, scene.x25.values), "X.25 values");
        unchanged_unless(where == Where::lapb, same_bytes(got.lapb.values, scene.lapb.values),
                         "LAPB values");
        unchanged_unless(where == Where::llc2, same_bytes(got.llc2.values, scene.llc2.values),
                         "LLC2 values");
        unchanged_unless(where == Where::wan, same_bytes(got.wan.values, scene.wan.values),
                         "WAN values");
        unchanged_unless(
            where == Where::mlp,
            std::memcmp(&got.mlp.values, &scene.mlp.values, offsetof(mlp_values, lapb)) == 0,
            "MLP values");
        unchanged_unless(where == Where::x25, same_bytes(got.x25_x32, scene.x25_x32),
                         "X.25 X.32 record");
        unchanged_unless(where == Where::lapb, same_bytes(got.lapb_x32, scene.lapb_x32),
                         "LAPB X.32 record");
        unchanged_unless(where == Where::mlp_lapb, same_bytes(got.mlp_x32, scene.mlp_x32),
                         "MLP X.32 records");
        for (int i = 0; i < MLP_MAX_SUBSECTIONS; ++i) {
            const lapb_section *lapb = got.mlp.values.lapb[i];
            const lapb_section *scene_lapb = scene.mlp.values.lapb[i];
            ASSERT_EQ(lapb == nullptr, scene_lapb == nullptr);
            if (lapb != nullptr)
                unchanged_unless(where == Where::mlp_lapb,
                                 same_bytes(lapb->values, scene_lapb->values),
                                 "LAPB subsection values");
            const wan_section *wan = got.mlp.values.wan[i];
            const wan_section *scene_wan = scene.mlp.values.wan[i];
            ASSERT_EQ(wan == nullptr, scene_wan == nullptr);
            if (wan != nullptr)
                unchanged_unless(where == Where::mlp_wan,
                                 same_bytes(wan->values, scene_wan->values),
                                 "WAN subsection values");
        }
    }

    // Reads the keyword line of one case (the keyword written as given) and
    // checks the field, the messages, the comments and the other records.
    void check(const Row &row, const Case &c, const std::string &keyword) {
        std::string setup = head + c.link_lines + section_lines(row.where) + c.before;
        ASSERT_EQ(read(scene, setup), 0);
        ASSERT_EQ(messages(), Messages{}) << "the lines that set the scene are not silent";
        ASSERT_EQ(read(got, setup + keyword_line(keyword, c.value)), 0);

        EXPECT_EQ(row.field(view_of(got, row.where)), c.expected)
            << "before the line: " << row.field(view_of(scene, row.where));
        EXPECT_EQ(messages(), c.messages);

        std::vector<const config_comment *> stored = pairs_with_comments(got);
        if (row.keeps_comments) {
            const config_comment *pair = keyword_pair(got, row.where, row.index);
            ASSERT_NE(pair, nullptr);
            EXPECT_EQ(stored, std::vector<const config_comment *>{pair})
                << "the comments are not (only) in pair " << row.index;
            EXPECT_STREQ(pair->comments, " before\n");
            EXPECT_STREQ(pair->trailer, " after");
        } else {
            EXPECT_TRUE(stored.empty()) << "the comments of " << row.name << " were kept";
        }
        expect_rest_unchanged(row.where);
    }

    ConfigTree tree;
    Records got;
    Records scene; // read without the keyword line
};

// ---- Every keyword, every case ------------------------------------------------------

struct Param {
    const Row *row;
    std::size_t case_no;
    bool upper_case; // the keyword written in capitals
};

// Shown by a failing test in place of the parameter's bytes.
void PrintTo(const Param &param, std::ostream *out) {
    const Row &row = *param.row;
    *out << where_name(row.where) << " " << row.name << " \"" << row.cases[param.case_no].value
         << "\"" << (param.upper_case ? " (keyword in capitals)" : "");
}

std::vector<Param> all_params() {
    std::vector<Param> params;
    for (const Row &row : all_rows()) {
        for (std::size_t i = 0; i < row.cases.size(); ++i)
            params.push_back({&row, i, false});
        params.push_back({&row, 0, true});
    }
    return params;
}

std::string param_name(const testing::TestParamInfo<Param> &info) {
    const Row &row = *info.param.row;
    const Case &c = row.cases[info.param.case_no];
    std::size_t same_kind = 0;
    for (std::size_t i = 0; i < info.param.case_no; ++i)
        if (row.cases[i].kind == c.kind) ++same_kind;
    const char *kind = c.kind == Kind::good           ? "good"
                       : c.kind == Kind::out_of_range ? "out_of_range"
                                                      : "malformed";
    std::string name = std::string(where_name(row.where)) + "_" + row.name + "_";
    if (info.param.upper_case) return name + "in_capitals";
    return name + kind + std::to_string(same_kind + 1);
}

class EveryKeyword : public KeywordReading, public testing::WithParamInterface<Param> {};

TEST_P(EveryKeyword, StoresTheValueReportsAndKeepsTheComments) {
    const Row &row = *GetParam().row;
    const Case &c = row.cases[GetParam().case_no];
    std::string keyword = row.name;
    if (GetParam().upper_case)
        for (char &ch : keyword)
            ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
    SCOPED_TRACE("SECTION " + std::string(where_name(row.where)) + ": " + keyword + " \"" +
                 c.value + "\"");
    check(row, c, keyword);
}

INSTANTIATE_TEST_SUITE_P(Keywords, EveryKeyword, testing::ValuesIn(all_params()), param_name);

// ---- The table itself ------------------------------------------------------------------

// Each section's rows name every keyword of its table once, at its index.
TEST(KeywordTable, CoversEveryKeywordOfEverySection) {
    const Where wheres[] = {Where::link, Where::x25, Where::lapb,     Where::llc2,
                            Where::wan,  Where::mlp, Where::mlp_lapb, Where::mlp_wan};
    const std::size_t sizes[] = {LINK_KEYWORDS, X25_KEYWORDS, LAPB_KEYWORDS, LLC2_KEYWORDS,
                                 WAN_KEYWORDS,  MLP_KEYWORDS, LAPB_KEYWORDS, WAN_KEYWORDS};
    for (std::size_t w = 0; w < std::size(wheres); ++w) {
        SCOPED_TRACE(where_name(wheres[w]));
        std::vector<std::string> names;
        for (const Row &row : all_rows()) {
            if (row.where != wheres[w]) continue;
            names.push_back(row.name);
            EXPECT_FALSE(row.cases.empty()) << row.name;
        }
        std::vector<std::string> table;
        for (const config_keyword *k = keyword_table(wheres[w]); k->name != nullptr; ++k) {
            EXPECT_EQ(k->index, static_cast<int>(table.size())) << k->name;
            table.push_back(k->name);
        }
        EXPECT_EQ(table.size(), sizes[w]);
        EXPECT_EQ(names, table);
    }
}

// ---- What one table row cannot show ---------------------------------------------------

class KeywordDetails : public KeywordReading {};

TEST_F(KeywordDetails, SecondLapbSubsectionUsesTheSecondPriorityAndX32Record) {
    std::string file = std::string(head) +
                       "SECTION\tMLP\nSUBSECTION\tLAPB\n\tn2_count\t3\nSUBSECTION\tLAPB\n" +
                       keyword_line("mlp_priority", "9") + "\tlapb_x32_enable_authen\ty\n" +
                       "\tlapb_x32_identity\t4711\n";
    ASSERT_EQ(read(got, file), 0);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(number_list(got.link.values.mlp_priority, 5), "0,9,0,0,0");
    ASSERT_NE(got.mlp.values.lapb[1], nullptr);
    EXPECT_EQ(pairs_with_comments(got),
              std::vector<const config_comment *>{&got.mlp.values.lapb[1]->keyword[11]});
    EXPECT_EQ(got.mlp_x32[0].authen, 0);
    EXPECT_EQ(got.mlp_x32[1].authen, 1);
    EXPECT_EQ(got.mlp_x32[1].identity_len, 2);
    EXPECT_EQ(hex_bytes(got.mlp_x32[1].identity, 2), "4711");
    EXPECT_EQ(got.lapb_x32.authen, 0);
}

TEST_F(KeywordDetails, X32KeywordsWithoutX32RecordsChangeNothing) {
    std::string setup = std::string(head) + "SECTION\tX25\n";
    std::string lapb = "SECTION\tLAPB\n";
    std::string mlp = "SECTION\tMLP\nSUBSECTION\tLAPB\n";
    std::string x32_lines = keyword_line("x25_x32_enable_authen", "y") +
                            keyword_line("x25_x32_sign", "0123") +
                            keyword_line("x25_x32_identity", "4567");
    std::string lapb_lines = keyword_line("lapb_x32_enable_authen", "y") +
                             keyword_line("lapb_x32_sign", "0123") +
                             keyword_line("lapb_x32_identity", "4567");
    ASSERT_EQ(read(scene, setup + lapb + mlp), 0);
    std::string path =
        tree.write("link.cfg", setup + x32_lines + lapb + lapb_lines + mlp + lapb_lines);
    int mode = 0;
    ASSERT_EQ(x25_read_config_parameter_file(path.c_str(), &got.ids, &got.link, &got.x25, &got.mlp,
                                             &got.lapb, &got.llc2, &got.wan, &mode),
              0);
    EXPECT_TRUE(messages().empty());
    EXPECT_TRUE(pairs_with_comments(got).empty());
    expect_rest_unchanged(Where::link);
    EXPECT_TRUE(same_bytes(got.link.values, scene.link.values));
    EXPECT_TRUE(same_bytes(got.x25.values, scene.x25.values));
}

TEST_F(KeywordDetails, CommentPairKeepsTheTextALaterLineLacks) {
    std::string file = std::string(head) + "SECTION\tX25\n" + "! first\n\tmodulo\t8\t! one\n" +
                       "\tmodulo\t128\t! two\n" + "! third\n\tmodulo\t77\n";
    ASSERT_EQ(read(got, file), 0);
    EXPECT_TRUE(messages().empty());
    EXPECT_EQ(got.x25.values.modulo, X25_MODULO_128);
    EXPECT_STREQ(got.x25.keyword[5].comments, " third\n");
    EXPECT_STREQ(got.x25.keyword[5].trailer, " two");
}

TEST_F(KeywordDetails, UnknownKeywordsAreReportedOnlyInLink) {
    std::string file = std::string(head) + keyword_line("speed", "9600") + "SECTION\tX25\n" +
                       keyword_line("speed", "9600") + "SECTION\tWAN\n" +
                       keyword_line("speed", "9600");
    ASSERT_EQ(read(got, file), 0);
    EXPECT_EQ(messages(), Messages{"Unknown LINK Keyword <speed>, skipped\n"});
    EXPECT_TRUE(pairs_with_comments(got).empty());
}

} // namespace
