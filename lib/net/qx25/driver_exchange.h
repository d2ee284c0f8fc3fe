// The exchange of tuning records with the stack's STREAMS drivers: open the
// device, one I_STR ioctl carrying the record, close. Linux has no STREAMS
// of its own, so the request block and the codes the drivers expect are
// defined here.
#pragma once

#include "qx25.h"

#include <cerrno>
#include <cstdint>
#include <cstring>

namespace qx25 {

// The STREAMS request block: a command for the driver, how long to wait for
// it in seconds, and the record it reads or fills.
struct strioctl {
    int ic_cmd;
    int ic_timout;
    int ic_len;
    char *ic_dp;
};

inline constexpr unsigned long I_STR = 0x5308;
inline constexpr int N_snconfig = 0x4E03; // X.25: take this tuning record
inline constexpr int N_snread = 0x4E04;   // X.25: return the tuning record
inline constexpr int L_SETTUNE = 0x4C03;  // LAPB, LLC2: take this tuning record
inline constexpr int L_GETTUNE = 0x4C04;  // LAPB, LLC2: return the tuning record
inline constexpr int driver_timeout = 30; // seconds

inline constexpr const char *x25_device = "/dev/x25";
inline constexpr const char *lapb_device = "/dev/lapb";
inline constexpr const char *llc2_device = "/dev/llc2";

// A driver command and the name its failure message gives it.
struct driver_command {
    int code;
    const char *name;
};
inline constexpr driver_command send_x25{N_snconfig, "N_snconfig"};
inline constexpr driver_command fetch_x25{N_snread, "N_snread"};
inline constexpr driver_command send_tuning{L_SETTUNE, "L_SETTUNE"};
inline constexpr driver_command fetch_tuning{L_GETTUNE, "L_GETTUNE"};

// Opens the device read-write, issues the command with the record and
// closes the device again. A failure is reported once through `report`
// ("unable to open ..." or "<command> ioctl failed on ...") and gives the
// system error number, or EINVAL when there is none or it has no text.
int exchange_with_driver(const char *device, driver_command command, void *record, int length,
                         x25_error_function report);

// The link-level drivers want the record kind in the first byte and the
// three reserved bytes after it zero, whichever way the record goes.
template <typename Record>
int exchange_link_tuning(Record *record, std::uint8_t kind, const char *device,
                         driver_command command, x25_error_function report) {
    if (record == nullptr) return EINVAL;
    record->kind = kind;
    std::memset(record->reserved, 0, sizeof record->reserved);
    return exchange_with_driver(device, command, record, static_cast<int>(sizeof *record), report);
}

} // namespace qx25
