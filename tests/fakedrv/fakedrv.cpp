// A stand-in for the stack's STREAMS drivers, preloaded into a process
// (LD_PRELOAD) so that the library's exchange with /dev/x25, /dev/lapb and
// /dev/llc2 can be tested where no such driver exists.
//
// It takes over open, ioctl and close for exactly those three devices and
// passes every other call through. It checks every request as the drivers
// would, keeps one tuning record per link and layer so that what was sent
// comes back, and logs every event. Told through the environment:
//
//   QX25_FAKEDRV_STATE        directory that keeps the records across
//                             processes (without it they live in memory)
//   QX25_FAKEDRV_LOG          file to append one line per event to
//   QX25_FAKEDRV_OPEN_ERRNO   refuse every open with this error number
//   QX25_FAKEDRV_IOCTL_ERRNO  fail every valid request with this error
//                             number (0 too)
//
// A request the drivers would not understand is a violation: it is logged,
// shown on standard error as "fakedrv: ..." and fails with EPROTO.
#undef _FORTIFY_SOURCE

#include "driver_exchange.h"

#include <array>
#include <cerrno>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <string>
#include <sys/types.h>

namespace {

using qx25::strioctl;

struct layer {
    const char *device;
    const char *name;
    int length;
    qx25::driver_command send;
    qx25::driver_command fetch;
    int kind;        // the record kind byte, or -1 when the record has none
    int link_offset; // where the record keeps its link number
};

constexpr layer layers[] = {
    {qx25::x25_device, "x25", 140, qx25::send_x25, qx25::fetch_x25, -1, 0},
    {qx25::lapb_device, "lapb", 32, qx25::send_tuning, qx25::fetch_tuning, 19, 4},
    {qx25::llc2_device, "llc2", 36, qx25::send_tuning, qx25::fetch_tuning, 35, 4},
};
constexpr int layer_count = 3;
constexpr int links = 255;
constexpr int max_record = 140;
constexpr int x25_mark_offset = 130; // 255 in a record sent to /dev/x25

// ---- The real calls -----------------------------------------------------------

template <typename Function> Function next(const char *name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

using open_function = int (*)(const char *, int, ...);
using openat_function = int (*)(int, const char *, int, ...);
using open_2_function = int (*)(const char *, int);
using openat_2_function = int (*)(int, const char *, int);
using ioctl_function = int (*)(int, unsigned long, ...);
using close_function = int (*)(int);

// ---- Events -------------------------------------------------------------------

void log_event(const char *format, ...) __attribute__((format(printf, 1, 2)));
void log_event(const char *format, ...) {
    const char *path = std::getenv("QX25_FAKEDRV_LOG");
    if (path == nullptr || *path == '\0') return;
    FILE *log = std::fopen(path, "a");
    if (log == nullptr) return;
    va_list arguments;
    va_start(arguments, format);
    std::vfprintf(log, format, arguments);
    va_end(arguments);
    std::fputc('\n', log);
    std::fclose(log);
}

int violation(const char *what, const layer &device) {
    log_event("violation: %s on %s", what, device.device);
    std::fprintf(stderr, "fakedrv: %s on %s\n", what, device.device);
    errno = EPROTO;
    return -1;
}

// An error number the environment names, if it names one.
bool chosen_errno(const char *variable, int &error) {
    const char *value = std::getenv(variable);
    if (value == nullptr || *value == '\0') return false;
    error = std::atoi(value);
    return true;
}

// ---- Records --------------------------------------------------------------------

struct stored_record {
    bool present = false;
    unsigned char bytes[max_record] = {};
};
stored_record memory[layer_count][links];

std::string state_file(const layer &device, int link) {
    return std::string(std::getenv("QX25_FAKEDRV_STATE")) + "/" + device.name + "." +
           std::to_string(link);
}

bool keeps_state() {
    const char *directory = std::getenv("QX25_FAKEDRV_STATE");
    return directory != nullptr && *directory != '\0';
}

void save(int index, int link, const unsigned char *record) {
    const layer &device = layers[index];
    if (keeps_state()) {
        FILE *file = std::fopen(state_file(device, link).c_str(), "wb");
        if (file == nullptr) return;
        std::fwrite(record, 1, static_cast<std::size_t>(device.length), file);
        std::fclose(file);
        return;
    }
    memory[index][link].present = true;
    std::memcpy(memory[index][link].bytes, record, static_cast<std::size_t>(device.length));
}

bool load(int index, int link, unsigned char *record) {
    const layer &device = layers[index];
    auto length = static_cast<std::size_t>(device.length);
    if (keeps_state()) {
        FILE *file = std::fopen(state_file(device, link).c_str(), "rb");
        if (file == nullptr) return false;
        unsigned char bytes[max_record];
        bool whole = std::fread(bytes, 1, length, file) == length;
        std::fclose(file);
        if (whole) std::memcpy(record, bytes, length);
        return whole;
    }
    if (!memory[index][link].present) return false;
    std::memcpy(record, memory[index][link].bytes, length);
    return true;
}

// ---- Devices --------------------------------------------------------------------

// The layer of each open descriptor of a device, plus one; 0 for others.
std::array<std::uint8_t, 4096> open_devices{};

int layer_of_path(const char *path) {
    for (int index = 0; index < layer_count; ++index)
        if (path != nullptr && std::strcmp(path, layers[index].device) == 0) return index;
    return -1;
}

int layer_of_fd(int fd) {
    if (fd < 0 || static_cast<std::size_t>(fd) >= open_devices.size()) return -1;
    return open_devices[static_cast<std::size_t>(fd)] - 1;
}

int open_device(int index, int flags) {
    const layer &device = layers[index];
    log_event("open %s", device.device);
    if ((flags & O_ACCMODE) != O_RDWR) {
        violation("open not read-write", device);
        errno = EACCES;
        return -1;
    }
    int error = 0;
    if (chosen_errno("QX25_FAKEDRV_OPEN_ERRNO", error)) {
        log_event("open %s refused: errno %d", device.device, error);
        errno = error;
        return -1;
    }
    static auto real_open = next<open_function>("open");
    int fd = real_open("/dev/null", O_RDWR | (flags & O_CLOEXEC));
    if (fd < 0) return fd;
    if (static_cast<std::size_t>(fd) >= open_devices.size()) {
        next<close_function>("close")(fd);
        errno = EMFILE;
        return -1;
    }
    open_devices[static_cast<std::size_t>(fd)] = static_cast<std::uint8_t>(index + 1);
    return fd;
}

int device_request(int index, unsigned long request, void *argument) {
    const layer &device = layers[index];
    if (request != qx25::I_STR) return violation("request is not I_STR", device);
    auto *block = static_cast<strioctl *>(argument);
    if (block == nullptr) return violation("no strioctl block", device);
    bool sending = block->ic_cmd == device.send.code;
    if (!sending && block->ic_cmd != device.fetch.code) return violation("unknown command", device);
    if (block->ic_timout != qx25::driver_timeout)
        return violation("time-out is not 30 seconds", device);
    if (block->ic_len != device.length) return violation("wrong record length", device);
    if (block->ic_dp == nullptr) return violation("no record", device);

    auto *record = reinterpret_cast<unsigned char *>(block->ic_dp);
    if (device.kind >= 0 && record[0] != device.kind) return violation("wrong record kind", device);
    if (device.kind >= 0 && (record[1] != 0 || record[2] != 0 || record[3] != 0))
        return violation("reserved bytes not zero", device);
    if (sending && device.kind < 0 && record[x25_mark_offset] != 255)
        return violation("byte 130 not 255", device);

    std::int32_t link;
    std::memcpy(&link, record + device.link_offset, sizeof link);
    const char *command = sending ? device.send.name : device.fetch.name;
    log_event("ioctl %s %s link %d", device.device, command, link);

    int error = 0;
    if (chosen_errno("QX25_FAKEDRV_IOCTL_ERRNO", error)) {
        log_event("ioctl %s %s failed: errno %d", device.device, command, error);
        errno = error;
        return -1;
    }
    if (link < 0 || link >= links) {
        log_event("ioctl %s %s failed: no link %d", device.device, command, link);
        errno = ENXIO;
        return -1;
    }
    if (sending) {
        save(index, link, record);
        return 0;
    }
    if (!load(index, link, record)) {
        log_event("ioctl %s %s failed: no record of link %d", device.device, command, link);
        errno = ENXIO;
        return -1;
    }
    return 0;
}

bool wants_mode(int flags) {
    return (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
}

__attribute__((destructor)) void report_open_devices() {
    for (std::size_t fd = 0; fd < open_devices.size(); ++fd)
        if (open_devices[fd] != 0) log_event("left open: %s", layers[open_devices[fd] - 1].device);
}

} // namespace

// ---- The calls taken over -----------------------------------------------------

extern "C" {

#define FAKEDRV_OPEN(name)                                                                         \
    int name(const char *path, int flags, ...) {                                                   \
        mode_t mode = 0;                                                                           \
        if (wants_mode(flags)) {                                                                   \
            va_list arguments;                                                                     \
            va_start(arguments, flags);                                                            \
            mode = va_arg(arguments, mode_t);                                                      \
            va_end(arguments);                                                                     \
        }                                                                                          \
        if (int index = layer_of_path(path); index >= 0) return open_device(index, flags);         \
        static auto real = next<open_function>(#name);                                             \
        return real(path, flags, mode);                                                            \
    }

#define FAKEDRV_OPENAT(name)                                                                       \
    int name(int directory, const char *path, int flags, ...) {                                    \
        mode_t mode = 0;                                                                           \
        if (wants_mode(flags)) {                                                                   \
            va_list arguments;                                                                     \
            va_start(arguments, flags);                                                            \
            mode = va_arg(arguments, mode_t);                                                      \
            va_end(arguments);                                                                     \
        }                                                                                          \
        if (int index = layer_of_path(path); index >= 0) return open_device(index, flags);         \
        static auto real = next<openat_function>(#name);                                           \
        return real(directory, path, flags, mode);                                                 \
    }

FAKEDRV_OPEN(open)
FAKEDRV_OPEN(open64)
FAKEDRV_OPENAT(openat)
FAKEDRV_OPENAT(openat64)

// The forms the fortified headers call.
#define FAKEDRV_OPEN_2(name)                                                                       \
    int name(const char *path, int flags) {                                                        \
        if (int index = layer_of_path(path); index >= 0) return open_device(index, flags);         \
        static auto real = next<open_2_function>(#name);                                           \
        return real(path, flags);                                                                  \
    }

#define FAKEDRV_OPENAT_2(name)                                                                     \
    int name(int directory, const char *path, int flags) {                                         \
        if (int index = layer_of_path(path); index >= 0) return open_device(index, flags);         \
        static auto real = next<openat_2_function>(#name);                                         \
        return real(directory, path, flags);                                                       \
    }

FAKEDRV_OPEN_2(__open_2)
FAKEDRV_OPEN_2(__open64_2)
FAKEDRV_OPENAT_2(__openat_2)
FAKEDRV_OPENAT_2(__openat64_2)

int ioctl(int fd, unsigned long request, ...) {
    va_list arguments;
    va_start(arguments, request);
    void *argument = va_arg(arguments, void *);
    va_end(arguments);
    if (int index = layer_of_fd(fd); index >= 0) return device_request(index, request, argument);
    static auto real = next<ioctl_function>("ioctl");
    return real(fd, request, argument);
}

int close(int fd) {
    if (int index = layer_of_fd(fd); index >= 0) {
        log_event("close %s", layers[index].device);
        open_devices[static_cast<std::size_t>(fd)] = 0;
    }
    static auto real = next<close_function>("close");
    return real(fd);
}

} // extern "C"
