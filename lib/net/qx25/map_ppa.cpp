// The physical point of attachment (PPA) of an LLC2 device: the LLC2
// driver's default directory holds a file per PPA, named "<anything>.<ppa>",
// whose devicename= and deviceinstance= lines name the device.
#include "qx25.h"

#include "text_file.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <cstdio>
#include <dirent.h>
#include <string_view>

// The test build points this at a directory of its own.
#ifndef QX25_LLC2_DEFAULT_DIR
#define QX25_LLC2_DEFAULT_DIR "/etc/llc2/default/"
#endif

using namespace qx25;

namespace {

constexpr const char *llc2_default_dir = QX25_LLC2_DEFAULT_DIR;
constexpr std::size_t ppa_line_size = 256;
constexpr std::string_view device_name_key = "devicename=";
constexpr std::string_view device_instance_key = "deviceinstance=";

// A decimal number as atoi reads it, held within the range of an int.
int decimal(const char *text) {
    long value = std::strtol(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

// Whether the file names the device and instance. The line after the last
// newline is never looked at: lines are examined only while the stream has
// not reached its end.
bool names_device(FILE *stream, const char *device, int instance) {
    bool name_matches = false;
    bool instance_matches = false;
    std::size_t device_length = std::strlen(device);
    char line[ppa_line_size];
    // A read error ends the file as its end does.
    line_read read = read_bounded_line(stream, line, sizeof line);
    while (read != line_read::end && !std::feof(stream)) {
        line[std::strcspn(line, "\n")] = '\0';
        line[std::strcspn(line, "#")] = '\0';
        std::string_view text(line + std::strspn(line, " "));
        if (text.starts_with(device_name_key)) {
            // Over the given name's length only: "elx" answers to "el".
            if (std::strncmp(text.data() + device_name_key.size(), device, device_length) == 0)
                name_matches = true;
        } else if (text.starts_with(device_instance_key)) {
            const char *value = text.data() + device_instance_key.size();
            if (*value != '\0' && decimal(value) == instance) instance_matches = true;
        }
        if (name_matches && instance_matches) break;
        read = read_bounded_line(stream, line, sizeof line);
    }
    return name_matches && instance_matches;
}

// The PPA a directory entry stands for, or -1.
int entry_ppa(const char *name, const char *device, int instance) {
    const char *dot = std::strrchr(name, '.');
    if (std::strlen(name) < 3 || dot == nullptr) return -1;
    char path[sizeof QX25_LLC2_DEFAULT_DIR + NAME_MAX];
    int length = std::snprintf(path, sizeof path, "%s%s", llc2_default_dir, name);
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof path) return -1;
    file_ptr stream(open_regular_file(path));
    if (!stream || !names_device(stream.get(), device, instance)) return -1;
    return decimal(dot + 1);
}

} // namespace

extern "C" {

int x25_device_to_ppa(const char *device, int instance) {
    if (device == nullptr) return -1;
    DIR *directory = ::opendir(llc2_default_dir);
    if (directory == nullptr) return -1;
    int ppa = -1;
    for (const dirent *entry = ::readdir(directory); entry != nullptr && ppa < 0;
         entry = ::readdir(directory))
        ppa = entry_ppa(entry->d_name, device, instance);
    ::closedir(directory);
    return ppa;
}
}
