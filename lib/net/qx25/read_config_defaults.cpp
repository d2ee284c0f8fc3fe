// Protocol defaults and network profiles.
//
// A section of a link configuration starts from the defaults loaded here; its
// keywords then change what they name. The network profiles are the public
// networks listed in world_networks.profile of the library data directory,
// read once per process on the first look-up.
#include "link_config.h"

#include "error_functions.h"
#include "messages.h"
#include "paths.h"
#include "text_file.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <strings.h>

using namespace qx25;

namespace {

// ---- X.25 defaults ---------------------------------------------------------

// What an X.25 section's defaults depend on: whether the link is a LAN link.
struct x25_variant {
    uint8_t network;
    uint8_t version;
    uint8_t plp_mode;
    int16_t two_low, two_high;
    int16_t idle;
};

// The version is deliberately the year itself (84, 88), not the 0-2 code a
// VERSION keyword stores: a section without that keyword has always carried
// the year.
constexpr x25_variant lan_x25 = {1, 84, X25_PLP_AUTO, 1, 4095, 600};
constexpr x25_variant wan_x25 = {2, 88, X25_PLP_NORMAL, 512, 575, 0};

// Only two-way channels by default. Their count is that of the range itself
// (4095 on a LAN, 64 elsewhere) rather than 4096 less the lower bound, which
// agrees with the range only on a LAN: a section that changes none of its
// ranges still hands the driver counts that match them.
void load_lcn_defaults(x25_lcn_block &lcn, const x25_variant &variant) {
    lcn.pvc_low = lcn.pvc_high = 0;
    lcn.inc_low = lcn.inc_high = 0;
    lcn.out_low = lcn.out_high = 0;
    lcn.two_low = variant.two_low;
    lcn.two_high = variant.two_high;
    lcn.pvc_count = 0;
    lcn.inc_count = 0;
    lcn.two_count = static_cast<uint16_t>(variant.two_high - variant.two_low + 1);
    lcn.out_count = 0;
    lcn.total = static_cast<int16_t>(lcn.pvc_count + lcn.inc_count + lcn.two_count + lcn.out_count);
}

// Packet sizes are powers of two (7: 128 bytes, 8: 256 bytes).
void load_packet_defaults(x25_template &v) {
    // Deliberately the plain figure 8, not the X25_MODULO_8 flag value: the
    // value a section without a MODULO keyword has always carried.
    v.modulo = 8;
    v.locmaxpktsize = v.remmaxpktsize = 8;
    v.locdefpktsize = v.remdefpktsize = 7;
    v.locmaxwinsize = v.remmaxwinsize = 7;
    v.locdefwinsize = v.remdefwinsize = 2;
    v.max_nsdu = 576;
}

// Tenths of a second. T28 and R28 belong to the registration procedure and
// keep whatever the record already holds.
void load_timer_defaults(x25_template &v, const x25_variant &variant) {
    v.ackdelay = 5;
    v.t20value = 1800;
    v.t21value = 2000;
    v.t22value = 1800;
    v.t23value = 1800;
    v.t24value = 750;
    v.t25value = 1500;
    v.t26value = 1800;
    v.idlevalue = variant.idle;
    v.connectvalue = 2000;
    v.r20value = v.r22value = v.r23value = 1;
    v.localdelay = 5;
    v.accessdelay = 5;
}

// Accepted D-bit packets are cleared; D-bit data is zeroed both ways.
constexpr uint8_t default_dbit = X25_DBIT_ACCEPT_IN_CLEAR | X25_DBIT_ACCEPT_OUT_CLEAR |
                                 X25_DBIT_DATA_IN_ZERO | X25_DBIT_DATA_OUT_ZERO;
static_assert(default_dbit == 0xA5);

void load_facility_defaults(x25_template &v) {
    v.locmaxthclass = v.remmaxthclass = 12;
    v.locdefthclass = v.remdefthclass = 12;
    v.locminthclass = v.remminthclass = 4;
    v.cug = X25_CUG_BASIC;
    v.facilities = X25_FAC_USE_NEGOTIATION;
    v.options = 0;
    v.intl_addr_recogn = 0;
    v.dnic[0] = v.dnic[1] = 0;
    v.prty_encode = 0;
    v.prty_forced = 0;
    v.src_addr = 0;
    v.dbit = default_dbit;
    v.thclass_neg_to_def = 0;
    v.thclass_type = 0;
    std::memset(v.thclass_wmap, 0, sizeof v.thclass_wmap);
    std::memset(v.thclass_pmap, 0, sizeof v.thclass_pmap);
}

// ---- Network profiles ------------------------------------------------------

constexpr std::string_view profile_file_name = "world_networks.profile";
constexpr const char *unknown_network = "<Unknown>";

// Profile lines are read through a buffer of this size: a longer line is
// split, its remainder being read as a line of its own.
constexpr int profile_line_size = 128;

// What profile lines scan into. The fields are not cleared between lines and
// sscanf leaves a field it does not reach as it was: a line whose number does
// not scan (a blank line included) stores the previous line's number, name and
// description again, and a line without a description keeps the previous
// line's. Both text fields are as wide as a line, so no scan can overrun them;
// they are cut to the entry's widths when stored.
struct profile_scan {
    int number = 0;
    char name[profile_line_size] = "";
    char description[profile_line_size] = "";
};

// Copies at most N - 1 characters and clears the rest of the field.
template <std::size_t N> void store_text(char (&field)[N], const char *text) {
    std::size_t count = ::strnlen(text, N - 1);
    std::memcpy(field, text, count);
    std::memset(field + count, 0, N - count);
}

// The field widths are those of the scan buffers, less their terminators.
static_assert(profile_line_size == 128);
void scan_profile_line(const char *line, profile_scan &scan) {
    std::sscanf(line, "%d %127s %127[^\n]", &scan.number, scan.name, scan.description);
}

void store_profile(network_profile &entry, const profile_scan &scan) {
    entry.number = static_cast<int16_t>(scan.number);
    store_text(entry.name, scan.name);
    store_text(entry.description, scan.description);
}

// The profile file's path: the directory and the file name with a "/" always
// put between them. False when the path does not fit, `path` then holding as
// much of it as does.
bool profile_path(char (&path)[PATH_MAX]) {
    int length =
        std::snprintf(path, sizeof path, "%s/%.*s", lib_dir(),
                      static_cast<int>(profile_file_name.size()), profile_file_name.data());
    return length >= 0 && static_cast<std::size_t>(length) < sizeof path;
}

void load_profiles_once() {
    if (max_profiles == 0) read_profile_file();
}

// A stored network number as the 32-bit value callers pass: sign-extended, so
// a profile number of -3 is found by (uint32_t)-3.
uint32_t widened(int16_t number) {
    return static_cast<uint32_t>(static_cast<int32_t>(number));
}

// LAPB and LLC2 share their first eleven values; they differ in the T1
// timer and the longest I-frame.
template <typename LinkLevel>
void load_link_level_defaults(LinkLevel &v, uint16_t t1_timer, uint16_t max_iframe_len) {
    v.n2_count = 10;
    v.t1_timer = t1_timer;
    v.pf_timer = 7;
    v.reject_timer = 25;
    v.busy_timer = 100;
    v.idle_timer = 250;
    v.rr_ack_delay = 4;
    v.unack_max = 3;
    v.local_win = 7;
    v.local_probe = 0;
    v.max_iframe_len = max_iframe_len;
}

} // namespace

extern "C" {

network_profile profile_types[max_network_profiles];
int max_profiles = 0;

// ---- Protocol defaults -----------------------------------------------------

void load_x25_defaults(x25_template *values, uint32_t lan) {
    if (values == nullptr) return;
    const x25_variant &variant = lan != 0 ? lan_x25 : wan_x25;
    values->network = variant.network;
    values->version = variant.version;
    values->plp_mode = variant.plp_mode;
    load_lcn_defaults(values->lcn, variant);
    load_packet_defaults(*values);
    load_timer_defaults(*values, variant);
    load_facility_defaults(*values);
}

void load_lapb_defaults(lapb_template *values) {
    if (values == nullptr) return;
    load_link_level_defaults(*values, 60, 517);
    values->flags = 0;
}

void load_llc2_defaults(llc2_template *values) {
    if (values == nullptr) return;
    load_link_level_defaults(*values, 10, 263);
    values->xid_window = 7;
    values->xid_ndup = 2;
    values->xid_tdup = 5;
}

// The subsection lists are the reader's, not defaults: they stay as they are.
void load_mlp_defaults(mlp_values *values) {
    if (values == nullptr) return;
    values->mlp_win = 10;
    values->guard = 10;
    values->mt1 = 600;
    values->mt2 = 600;
    values->mt3 = 20;
    values->mn1 = 10;
}

void load_wan_defaults(wan_values *values) {
    if (values == nullptr) return;
    values->tuning.line_speed = 0; // external clock
    values->tuning.max_frame = 520;
    values->flags = 0;
    values->line_option = 1;
    values->connect_proc = 0;
    values->x21_t1 = 3;
    values->x21_t2 = 20;
    values->x21_t3a = 6;
    values->x21_t4b = 6;
    values->x21_t5 = 2;
    values->x21_t6 = 2;
}

// ---- Network profiles ------------------------------------------------------

// Reads the next profile line into `line` (profile_line_size bytes), cut at
// its first "#". Comment lines ("#" first) are skipped; each line read while
// skipping, the one that ends the run included, adds one to `counter`.
// 0 at the end of the file or on a read error, which is reported.
int get_entry(FILE *stream, char *line, int16_t *counter) {
    errno = 0;
    bool read = std::fgets(line, profile_line_size, stream) != nullptr;
    if (read && line[0] == '#') {
        do {
            read = std::fgets(line, profile_line_size, stream) != nullptr;
            if (read) ++*counter;
        } while (read && line[0] == '#');
    }
    if (!read) {
        if (std::feof(stream)) return 0;
        // The second figure was once the counter's address, which told the
        // reader nothing; the counter's value at least grows with the
        // comment lines skipped.
        report(__parse_error_function, Msg::ProfileReadError, errno, static_cast<int>(*counter));
        return 0;
    }
    if (char *mark = std::strchr(line, '#')) *mark = '\0';
    return 1;
}

// Fills profile_types from the profile file. Every line read takes a slot,
// whether or not it gives an entry: a line whose number is 0 leaves its slot
// as it was, and such lines count towards the table's size like any other.
// A file that cannot be opened is reported and leaves max_profiles at 0, so
// the next look-up tries again.
void read_profile_file(void) {
    char path[PATH_MAX];
    FILE *stream = profile_path(path) ? open_regular_file(path) : nullptr;
    if (stream == nullptr) {
        report(__parse_error_function, Msg::ErrorOpeningFile, static_cast<const char *>(path));
        return;
    }

    int16_t counter = 0;
    max_profiles = 0;
    profile_scan scan;
    char line[profile_line_size];
    while (max_profiles < max_network_profiles && get_entry(stream, line, &counter) != 0) {
        scan_profile_line(line, scan);
        if (scan.number != 0) store_profile(profile_types[max_profiles], scan);
        ++max_profiles;
    }
    std::fclose(stream);
}

// The number of the first network of that name, ignoring case; 0 for none.
// An empty name names no network, so it never matches an empty slot.
int network_number(const char *name) {
    load_profiles_once();
    if (name == nullptr || *name == '\0') return 0;
    for (int i = 0; i < max_profiles; ++i) {
        const network_profile &entry = profile_types[i];
        if (entry.number != 0 && strncasecmp(entry.name, name, sizeof entry.name) == 0)
            return entry.number;
    }
    return 0;
}

// The name of the first network of that number. Number 0 is no network: it
// would otherwise find the first empty slot.
const char *__network_name(uint32_t number) {
    load_profiles_once();
    for (int i = 0; i < max_profiles; ++i) {
        const network_profile &entry = profile_types[i];
        if (entry.number != 0 && widened(entry.number) == number) return entry.name;
    }
    return unknown_network;
}

} // extern "C"
