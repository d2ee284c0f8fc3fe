// The frame the four template kinds share: the working file names, the
// checks of the by-link operations, opening and writing the files, and the
// free-form scanning of the link-level templates. Each kind keeps its own
// lines, formats and messages.
#pragma once

#include "qx25.h"

#include "text_file.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>

extern "C" {

// "LINK" + the link number as at least three digits + "_working" + suffix
// (LINK007_working.x25). 0, or ENAMETOOLONG when the buffer is too small.
int create_default_linkfile(char *buffer, std::size_t size, int link_number, const char *suffix);

// $X25CONFIGFILES/template/ followed by create_default_linkfile's name.
// 0, or ENAMETOOLONG when the buffer is too small.
int __x25_template_create_working_filename(const char *suffix, int link_number, char *buffer,
                                           std::size_t size);

// Range checks of the X.25 template reader: 0 when low <= value <= high
// (check_value) or when the value is one of the listed ones (check_list);
// otherwise "The value %d on line %d\nis out of range" goes to the module's
// error function and the result is 1.
int check_value(int line, int value, int low, int high);
int check_list(int line, int value, int count, const int *listed);
}

namespace qx25 {

// Room for any template path the library forms.
inline constexpr std::size_t template_path_max = 4096;

// Link numbers a template file can be named after.
inline bool template_link_in_range(long link_number) {
    return link_number >= 0 && link_number <= 254;
}

// The errno of a failed open, or EBADF when none is set.
int open_failure();

// Closes a written template file: 0, or the system error number (EIO when
// none is set) when anything could not be written.
int finish_writing(FILE *stream);

// Opens a template file for reading, hands the stream to `read` and closes
// it: EINVAL for a null path or record, open_failure() when it cannot be
// opened, else what `read` returns.
template <typename Record>
int read_template_file(const char *path, Record *record, int (*read)(FILE *, Record &)) {
    if (path == nullptr || record == nullptr) return EINVAL;
    errno = 0;
    file_ptr stream(open_regular_file(path));
    if (!stream) return open_failure();
    errno = 0;
    return read(stream.get(), *record);
}

// Creates or truncates a template file and has `write` fill it: EINVAL for
// a null path or record, open_failure() when it cannot be created, the
// system error number (EIO when none) when writing it fails, else 0.
template <typename Record>
int write_template_file(const char *path, const Record *record,
                        void (*write)(FILE *, const Record &)) {
    if (path == nullptr || record == nullptr) return EINVAL;
    errno = 0;
    FILE *stream = create_regular_file(path);
    if (stream == nullptr) return open_failure();
    errno = 0;
    write(stream, *record);
    return finish_writing(stream);
}

// The by-link reader: EINVAL unless the link is 0..254 and the record is
// there; otherwise the result of reading the link's working file. When that
// fails and `store_link` is set, the link number goes into the record.
template <typename Record>
int read_working_template(int link_number, Record *record, const char *suffix,
                          int (*read_file)(const char *, Record *), bool store_link) {
    if (!template_link_in_range(link_number) || record == nullptr) return EINVAL;
    char path[template_path_max];
    int result = __x25_template_create_working_filename(suffix, link_number, path, sizeof path);
    if (result == 0) result = read_file(path, record);
    if (result != 0 && store_link) record->link = link_number;
    return result;
}

// The by-link writer: EINVAL for a null record or a record whose link
// number is outside 0..254, else the result of writing the working file.
template <typename Record>
int write_working_template(Record *record, const char *suffix,
                           int (*write_file)(const char *, Record *)) {
    if (record == nullptr || !template_link_in_range(record->link)) return EINVAL;
    char path[template_path_max];
    int result = __x25_template_create_working_filename(suffix, record->link, path, sizeof path);
    return result != 0 ? result : write_file(path, record);
}

// ---- Link-level templates: free-form numbers and Y/N tokens --------------

// Scans one "%hd " value into the field; a value that cannot be scanned
// leaves it as it was.
void scan_value(FILE *stream, uint16_t &field);
// The first non-blank character of the next token ("%1s"); 0 when there is
// none left.
char scan_flag(FILE *stream);

template <typename Record> using value_list = std::span<uint16_t Record::*const>;

template <typename Record>
void scan_values(FILE *stream, Record &record, value_list<Record> values) {
    for (uint16_t Record::*value : values)
        scan_value(stream, record.*value);
}

template <typename Record>
void print_values(FILE *stream, const Record &record, value_list<Record> values) {
    for (uint16_t Record::*value : values)
        std::fprintf(stream, "%d\n", record.*value);
}

// ---- What the tool shows of each kind --------------------------------------

// The name of each kind's template line `index` (0 for the first line),
// after the link configuration keyword it carries; null past the last line.
const char *x25_template_line_name(int index);
const char *lapb_template_line_name(int index);
const char *llc2_template_line_name(int index);
const char *wan_template_line_name(int index);

inline const char *name_at(std::span<const char *const> names, int index) {
    return index >= 0 && static_cast<std::size_t>(index) < names.size() ? names[index] : nullptr;
}

// The written form of each kind, to any stream.
void write_x25_template_lines(FILE *stream, const x25_template &record);
void write_lapb_template_lines(FILE *stream, const lapb_template &record);
void write_llc2_template_lines(FILE *stream, const llc2_template &record);
void write_wan_template_lines(FILE *stream, const wan_template &record);

} // namespace qx25
