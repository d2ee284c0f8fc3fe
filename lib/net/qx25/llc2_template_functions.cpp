// The LLC2 template: the tuning record of /dev/llc2, its free-form template
// file of fourteen numbers, and the exchange with the driver.
#include "driver_exchange.h"
#include "error_functions.h"
#include "template_file.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>

// Exchanged byte for byte with the driver: the offsets are the interface.
static_assert(sizeof(llc2_template) == 36);
static_assert(offsetof(llc2_template, kind) == 0);
static_assert(offsetof(llc2_template, reserved) == 1);
static_assert(offsetof(llc2_template, link) == 4);
static_assert(offsetof(llc2_template, n2_count) == 8);
static_assert(offsetof(llc2_template, t1_timer) == 10);
static_assert(offsetof(llc2_template, pf_timer) == 12);
static_assert(offsetof(llc2_template, reject_timer) == 14);
static_assert(offsetof(llc2_template, busy_timer) == 16);
static_assert(offsetof(llc2_template, idle_timer) == 18);
static_assert(offsetof(llc2_template, rr_ack_delay) == 20);
static_assert(offsetof(llc2_template, unack_max) == 22);
static_assert(offsetof(llc2_template, local_win) == 24);
static_assert(offsetof(llc2_template, local_probe) == 26);
static_assert(offsetof(llc2_template, max_iframe_len) == 28);
static_assert(offsetof(llc2_template, xid_window) == 30);
static_assert(offsetof(llc2_template, xid_ndup) == 32);
static_assert(offsetof(llc2_template, xid_tdup) == 34);

namespace {

using namespace qx25;

constexpr std::uint8_t llc2_kind = 35;
constexpr const char *suffix = ".llc2";

constexpr uint16_t llc2_template::*llc2_values[] = {
    &llc2_template::n2_count,     &llc2_template::t1_timer,       &llc2_template::pf_timer,
    &llc2_template::reject_timer, &llc2_template::busy_timer,     &llc2_template::idle_timer,
    &llc2_template::rr_ack_delay, &llc2_template::unack_max,      &llc2_template::local_win,
    &llc2_template::local_probe,  &llc2_template::max_iframe_len, &llc2_template::xid_window,
    &llc2_template::xid_ndup,     &llc2_template::xid_tdup,
};

constexpr const char *line_names[] = {
    "n2_count",       "t1_timer",     "pf_timer",  "reject_timer", "busy_timer",
    "idle_timer",     "rr_ack_delay", "unack_max", "local_win",    "local_probe",
    "max_iframe_len", "xid_window",   "xid_ndup",  "xid_tdup",
};
static_assert(std::size(line_names) == std::size(llc2_values));

int read_llc2_lines(FILE *stream, llc2_template &record) {
    scan_values<llc2_template>(stream, record, llc2_values);
    return 0;
}

void write_lines(FILE *stream, const llc2_template &record) {
    print_values<llc2_template>(stream, record, llc2_values);
}

} // namespace

namespace qx25 {

const char *llc2_template_line_name(int index) {
    return name_at(line_names, index);
}

void write_llc2_template_lines(FILE *stream, const llc2_template &record) {
    write_lines(stream, record);
}

} // namespace qx25

extern "C" {

int read_llc2_template_parameters(int link_number, llc2_template *record) {
    return read_working_template(link_number, record, suffix, read_llc2_template_parameter_file,
                                 true);
}

int read_llc2_template_parameter_file(const char *path, llc2_template *record) {
    return read_template_file(path, record, read_llc2_lines);
}

int write_llc2_template_parameters(llc2_template *record) {
    return write_working_template(record, suffix, write_llc2_template_parameter_file);
}

int write_llc2_template_parameter_file(const char *path, llc2_template *record) {
    return write_template_file<llc2_template>(path, record, write_lines);
}

int put_llc2_template_parameters(llc2_template *record) {
    return exchange_link_tuning(record, llc2_kind, llc2_device, send_tuning,
                                __llc2_template_error_function);
}

int get_llc2_template_parameters(int link_number, llc2_template *record) {
    if (record != nullptr) record->link = link_number;
    return exchange_link_tuning(record, llc2_kind, llc2_device, fetch_tuning,
                                __llc2_template_error_function);
}

} // extern "C"
