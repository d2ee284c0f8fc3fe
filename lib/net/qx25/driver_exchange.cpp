// The exchange of tuning records with the STREAMS drivers.
#include "driver_exchange.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace qx25 {

namespace {

// The system's text for an error number; empty for none, and for a number
// the system has no text for.
const char *error_text(int error) {
    if (error == 0 || strerrorname_np(error) == nullptr) return "";
    return std::strerror(error);
}

// Reports a failure of the exchange, "<what> <device>", the error text and
// a hint, and gives its result.
int failed(x25_error_function report, const char *what, const char *device, int error) {
    // One message at a time, as the drivers' callers have always had it.
    static char message[256];
    const char *text = error_text(error);
    std::snprintf(message, sizeof message, "%s %s\n%s\nX.25 may not be running.\n", what, device,
                  text);
    report(message);
    return *text != '\0' ? error : EINVAL;
}

} // namespace

int exchange_with_driver(const char *device, driver_command command, void *record, int length,
                         x25_error_function report) {
    errno = 0;
    int fd = ::open(device, O_RDWR | O_CLOEXEC);
    if (fd == -1) return failed(report, "unable to open", device, errno);

    strioctl request{command.code, driver_timeout, length, static_cast<char *>(record)};
    errno = 0;
    int result = ::ioctl(fd, I_STR, &request);
    int error = errno;
    ::close(fd);
    if (result == -1) {
        char what[64];
        std::snprintf(what, sizeof what, "%s ioctl failed on", command.name);
        return failed(report, what, device, error);
    }
    return 0;
}

} // namespace qx25
