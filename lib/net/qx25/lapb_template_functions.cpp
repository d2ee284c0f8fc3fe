// The LAPB template: the tuning record of /dev/lapb, its free-form template
// file of eleven numbers and six Y/N flags, and the exchange with the driver.
#include "driver_exchange.h"
#include "error_functions.h"
#include "template_file.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>

// Exchanged byte for byte with the driver: the offsets are the interface.
static_assert(sizeof(lapb_template) == 32);
static_assert(offsetof(lapb_template, kind) == 0);
static_assert(offsetof(lapb_template, reserved) == 1);
static_assert(offsetof(lapb_template, link) == 4);
static_assert(offsetof(lapb_template, n2_count) == 8);
static_assert(offsetof(lapb_template, t1_timer) == 10);
static_assert(offsetof(lapb_template, pf_timer) == 12);
static_assert(offsetof(lapb_template, reject_timer) == 14);
static_assert(offsetof(lapb_template, busy_timer) == 16);
static_assert(offsetof(lapb_template, idle_timer) == 18);
static_assert(offsetof(lapb_template, rr_ack_delay) == 20);
static_assert(offsetof(lapb_template, unack_max) == 22);
static_assert(offsetof(lapb_template, local_win) == 24);
static_assert(offsetof(lapb_template, local_probe) == 26);
static_assert(offsetof(lapb_template, max_iframe_len) == 28);
static_assert(offsetof(lapb_template, flags) == 30);

namespace {

using namespace qx25;

constexpr std::uint8_t lapb_kind = 19;
constexpr const char *suffix = ".lapb";

constexpr uint16_t lapb_template::*lapb_values[] = {
    &lapb_template::n2_count,     &lapb_template::t1_timer,       &lapb_template::pf_timer,
    &lapb_template::reject_timer, &lapb_template::busy_timer,     &lapb_template::idle_timer,
    &lapb_template::rr_ack_delay, &lapb_template::unack_max,      &lapb_template::local_win,
    &lapb_template::local_probe,  &lapb_template::max_iframe_len,
};

// The flags the file carries, in file order; LAPB_ISO8882 and
// LAPB_INITIAL_DOWN are not among them and keep their values.
constexpr std::uint16_t lapb_flags[] = {
    LAPB_IGN_UA_ERROR, LAPB_FRMR_FRMR_ERROR, LAPB_FRMR_INVRSP_ERROR,
    LAPB_SFRAME_PBIT,  LAPB_NO_DM_ADM,       LAPB_SABM_IN_X32,
};

constexpr const char *line_names[] = {
    "n2_count",       "t1_timer",     "pf_timer",        "reject_timer",      "busy_timer",
    "idle_timer",     "rr_ack_delay", "unack_max",       "local_win",         "local_probe",
    "max_iframe_len", "ign_ua_error", "frmr_frmr_error", "frmr_invrsp_error", "sframe_pbit",
    "no_dm_adm",      "sabm_in_x32",
};
static_assert(std::size(line_names) == std::size(lapb_values) + std::size(lapb_flags));

int read_lapb_lines(FILE *stream, lapb_template &record) {
    scan_values<lapb_template>(stream, record, lapb_values);
    // A flag token that is missing or is not "Y" clears its flag.
    for (std::uint16_t flag : lapb_flags) {
        record.flags = static_cast<std::uint16_t>(scan_flag(stream) == 'Y' ? record.flags | flag
                                                                           : record.flags & ~flag);
    }
    return 0;
}

void write_lines(FILE *stream, const lapb_template &record) {
    print_values<lapb_template>(stream, record, lapb_values);
    for (std::uint16_t flag : lapb_flags)
        std::fputs((record.flags & flag) != 0 ? "Y\n" : "N\n", stream);
}

} // namespace

namespace qx25 {

const char *lapb_template_line_name(int index) {
    return name_at(line_names, index);
}

void write_lapb_template_lines(FILE *stream, const lapb_template &record) {
    write_lines(stream, record);
}

} // namespace qx25

extern "C" {

int read_lapb_template_parameters(int link_number, lapb_template *record) {
    return read_working_template(link_number, record, suffix, read_lapb_template_parameter_file,
                                 true);
}

int read_lapb_template_parameter_file(const char *path, lapb_template *record) {
    return read_template_file(path, record, read_lapb_lines);
}

int write_lapb_template_parameters(lapb_template *record) {
    return write_working_template(record, suffix, write_lapb_template_parameter_file);
}

int write_lapb_template_parameter_file(const char *path, lapb_template *record) {
    return write_template_file<lapb_template>(path, record, write_lines);
}

int put_lapb_template_parameters(lapb_template *record) {
    return exchange_link_tuning(record, lapb_kind, lapb_device, send_tuning,
                                __lapb_template_error_function);
}

int get_lapb_template_parameters(int link_number, lapb_template *record) {
    if (record != nullptr) record->link = link_number;
    return exchange_link_tuning(record, lapb_kind, lapb_device, fetch_tuning,
                                __lapb_template_error_function);
}

} // extern "C"
