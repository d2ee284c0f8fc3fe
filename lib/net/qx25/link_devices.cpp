// Device type table: the kinds of WAN and LAN device of the site, read from
// the boardconf file of the configuration directory.
#include "link_config.h"

#include "error_functions.h"
#include "messages.h"
#include "paths.h"
#include "text_file.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

using namespace qx25;

namespace {

// Rows that can hold a device; the last row of the table stays empty, so
// its type 0 ends every scan.
constexpr int device_rows = DEVICE_TYPE_ROWS - 1;

// Row 0 of a table that was never filled holds these marks. The comment
// pointer is a mark, not an allocation, and is never freed.
constexpr std::uintptr_t never_filled = 0xFFFFFFFE;
constexpr std::int32_t never_filled_mru = -2;

char *never_filled_comment() {
    return reinterpret_cast<char *>(never_filled);
}

bool is_never_filled(const device_type &row) {
    return reinterpret_cast<std::uintptr_t>(row.comment) == never_filled &&
           row.mru == never_filled_mru;
}

constexpr std::size_t line_size = 1024;
constexpr std::string_view blanks = " \t";
constexpr std::string_view keyword_ends = " \t\n";
constexpr std::string_view value_ends = "\n\r#";

struct boardconf_keyword {
    std::string_view word;
    boardconf_line code;
};

// Tested in this order; a word that begins with a keyword is that keyword.
constexpr boardconf_keyword boardconf_keywords[] = {
    {"WAN_DEVICE", BOARDCONF_WAN_DEVICE}, {"LAN_DEVICE", BOARDCONF_LAN_DEVICE},
    {"symbolic", BOARDCONF_SYMBOLIC},     {"lines", BOARDCONF_LINES},
    {"device", BOARDCONF_DEVICE},         {"mru", BOARDCONF_MRU},
    {"comment", BOARDCONF_COMMENT},       {"wanmod", BOARDCONF_WANMOD},
};

boardconf_line classify(std::string_view word) {
    for (const boardconf_keyword &keyword : boardconf_keywords)
        if (word.starts_with(keyword.word)) return keyword.code;
    return BOARDCONF_OTHER;
}

// Copies as much of the text as fits and clears the rest of the field, so
// the field always ends in a terminator.
template <std::size_t N> void copy_field(char (&field)[N], std::string_view text) {
    std::size_t count = std::min(text.size(), N - 1);
    std::memcpy(field, text.data(), count);
    std::memset(field + count, 0, N - count);
}

std::string_view first_word(std::string_view text) {
    return text.substr(0, text.find_first_of(blanks));
}

bool is_header(boardconf_line code) {
    return code == BOARDCONF_WAN_DEVICE || code == BOARDCONF_LAN_DEVICE;
}

// Starts a row for a WAN_DEVICE or LAN_DEVICE line. Fields the lines below
// do not set keep what an earlier reading left there.
device_type *start_row(device_type *table, int row, boardconf_line code) {
    if (row < 0) return nullptr;
    device_type &entry = table[row];
    entry.type = static_cast<std::uint8_t>(code);
    entry.valid = 1;
    copy_field(entry.wanmod, code == BOARDCONF_WAN_DEVICE ? "wanmod" : "s_ethr");
    return &entry;
}

// Replaces the row's comment with a heap copy of the value. False when the
// copy cannot be made; the row is then left without a comment.
bool store_comment(device_type &entry, std::string_view value) {
    if (entry.comment != never_filled_comment()) std::free(entry.comment);
    entry.comment = static_cast<char *>(std::malloc(value.size() + 1));
    if (entry.comment == nullptr) return false;
    std::memcpy(entry.comment, value.data(), value.size());
    entry.comment[value.size()] = '\0';
    return true;
}

// Stores the value of a keyword line into the row. False when reading has
// to stop.
bool store_value(device_type &entry, boardconf_line code, const char *value) {
    switch (code) {
    case BOARDCONF_SYMBOLIC:
        copy_field(entry.symbolic, first_word(value));
        break;
    case BOARDCONF_LINES:
        // Only the low eight bits fit the field.
        entry.lines = static_cast<std::uint8_t>(std::strtol(value, nullptr, 10));
        break;
    case BOARDCONF_DEVICE:
        copy_field(entry.device, first_word(value));
        break;
    case BOARDCONF_COMMENT:
        if (!store_comment(entry, value)) {
            report(__link_error_function, Msg::NoMemory);
            return false;
        }
        break;
    case BOARDCONF_MRU:
        entry.mru = static_cast<std::int32_t>(std::strtol(value, nullptr, 10));
        break;
    case BOARDCONF_WANMOD:
        copy_field(entry.wanmod, value);
        break;
    default:
        break;
    }
    return true;
}

} // namespace

extern "C" {

// Both tables start with row 0 marked as never filled and every other row
// empty.
device_type __config_linktype[DEVICE_TYPE_ROWS] = {
    {"notinit", "notinit", "notinit", 0xFE, 0xFE, 0xFF, reinterpret_cast<char *>(never_filled),
     never_filled_mru},
};
device_type linktype[DEVICE_TYPE_ROWS] = {
    {"notinit", "notinit", "notinit", 0xFE, 0xFE, 0xFF, reinterpret_cast<char *>(never_filled),
     never_filled_mru},
};

int match_line(char *line, char **value) {
    if (line == nullptr) return BOARDCONF_OTHER;
    std::string_view text(line);
    std::string_view word = text.substr(0, text.find_first_of(keyword_ends));
    boardconf_line code = classify(word);
    if (code == BOARDCONF_OTHER || is_header(code)) return code;

    std::size_t start = std::min(text.find_first_not_of(blanks, word.size()), text.size());
    std::size_t end = std::min(text.find_first_of(value_ends, start), text.size());
    line[end] = '\0';
    if (value != nullptr) *value = line + start;
    return code;
}

void process_info_file(FILE *stream, int *row, device_type *table) {
    if (stream == nullptr || row == nullptr || table == nullptr) return;
    char line[line_size];
    device_type *entry = *row >= 0 && *row < device_rows ? &table[*row] : nullptr;

    // What does not fit a line is dropped: the tail of a line is no line of
    // its own, so a long remark cannot turn into a keyword line.
    while (read_bounded_line(stream, line, sizeof line) != line_read::end) {
        if (line[0] == '#' || line[0] == '\0') continue;
        char *text = line + std::strspn(line, " \t");
        char *value = nullptr;
        auto code = static_cast<boardconf_line>(match_line(text, &value));
        if (is_header(code)) {
            // The rest of the file is not read: its lines would belong to
            // a device that has no row.
            if (++*row >= device_rows) {
                report(__link_error_function, Msg::TooManyDevices);
                return;
            }
            entry = start_row(table, *row, code);
            continue;
        }
        if (code == BOARDCONF_OTHER || entry == nullptr) continue;
        if (!store_value(*entry, code, value)) return;
    }
}

int fill_linktype_struct(device_type *table) {
    if (table == nullptr) return 0;
    if (is_never_filled(table[0]))
        for (int row = 0; row < device_rows; ++row)
            table[row].comment = nullptr;

    char path[PATH_MAX];
    int length = std::snprintf(path, sizeof path, "%s/boardconf", config_dir());
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof path) return 0;
    FILE *stream = open_regular_file(path);
    if (stream == nullptr) return 0;

    int row = -1;
    process_info_file(stream, &row, table);
    std::fclose(stream);
    return 1;
}

} // extern "C"
