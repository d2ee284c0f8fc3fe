// The frame the template kinds share: working file names, opening and
// closing, and the scanning of the free-form link-level templates.
#include "template_file.h"

#include "paths.h"

#include <cerrno>
#include <cstdio>

extern "C" {

int create_default_linkfile(char *buffer, std::size_t size, int link_number, const char *suffix) {
    // "%.3d" writes what "%03.3d" does: at least three digits.
    int length = std::snprintf(buffer, size, "LINK%.3d_working%s", link_number, suffix);
    return length >= 0 && static_cast<std::size_t>(length) < size ? 0 : ENAMETOOLONG;
}

int __x25_template_create_working_filename(const char *suffix, int link_number, char *buffer,
                                           std::size_t size) {
    int length = std::snprintf(buffer, size, "%s/template/", qx25::config_dir());
    if (length < 0 || static_cast<std::size_t>(length) >= size) return ENAMETOOLONG;
    return create_default_linkfile(buffer + length, size - static_cast<std::size_t>(length),
                                   link_number, suffix);
}

} // extern "C"

namespace qx25 {

int open_failure() {
    return errno != 0 ? errno : EBADF;
}

int finish_writing(FILE *stream) {
    auto failure = [] { return errno != 0 ? errno : EIO; };
    int result = std::ferror(stream) != 0 ? failure() : 0;
    if (std::fclose(stream) != 0 && result == 0) result = failure();
    return result;
}

void scan_value(FILE *stream, uint16_t &field) {
    short value = 0;
    // The bits of the 16-bit value are kept as they come, sign or not.
    if (std::fscanf(stream, "%hd ", &value) == 1) field = static_cast<uint16_t>(value);
}

char scan_flag(FILE *stream) {
    char token[2] = "";
    return std::fscanf(stream, "%1s", token) == 1 ? token[0] : '\0';
}

} // namespace qx25
