// The PAD map "padmapconf": the default call facilities of remote X.25
// addresses, one address a line. Enumeration and line parser.
#include "name_databases.h"

#include "nibbles.h"

#include <cstring>
#include <cstddef>

// The record's layout is fixed: programs built for the original system
// exchange it byte for byte.
static_assert(sizeof(pad_entry) == 452);
static_assert(offsetof(pad_entry, version) == 36);
static_assert(offsetof(pad_entry, fast_select) == 37);
static_assert(offsetof(pad_entry, reverse_charging) == 38);
static_assert(offsetof(pad_entry, local_packet_size) == 39);
static_assert(offsetof(pad_entry, remote_packet_size) == 40);
static_assert(offsetof(pad_entry, local_window_size) == 41);
static_assert(offsetof(pad_entry, remote_window_size) == 42);
static_assert(offsetof(pad_entry, t_digit_count) == 43);
static_assert(offsetof(pad_entry, t_digits) == 44);
static_assert(offsetof(pad_entry, cug_kind) == 52);
static_assert(offsetof(pad_entry, cug_number) == 53);
static_assert(offsetof(pad_entry, free_text) == 55);

namespace qx25 {

namespace {

constexpr int max_group_digits = 4;
constexpr int max_t_digits = 16;

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

bool at_field_end(char c) {
    return c == '\0' || is_blank(c);
}

// A decimal number at `p` (no digits reads as 0), held to a value no range
// here reaches; `p` moves past the digits.
int number_at(const char *&p) {
    int value = 0;
    for (; is_digit(*p); ++p)
        if (value < 1000) value = value * 10 + (*p - '0');
    return value;
}

// "<remote>/<local>", each within low..high; false when it is not.
bool read_pair(const char *&p, int low, int high, uint8_t &remote, uint8_t &local) {
    int first = number_at(p);
    if (*p != '/') return false;
    ++p;
    int second = number_at(p);
    if (first < low || first > high || second < low || second > high) return false;
    remote = static_cast<uint8_t>(first);
    local = static_cast<uint8_t>(second);
    return true;
}

// Facilities written together or separated by ",", up to the field's end.
bool read_facilities(const char *&p, pad_entry &entry) {
    while (!at_field_end(*p)) {
        switch (*p++) {
        case ',':
            break;
        case 'F':
        case 'f':
            entry.fast_select = 1;
            break;
        case 'R':
        case 'r':
            entry.reverse_charging = 1;
            break;
        case 'P':
        case 'p':
            if (!read_pair(p, 4, 12, entry.remote_packet_size, entry.local_packet_size))
                return false;
            break;
        case 'W':
        case 'w':
            if (!read_pair(p, 1, 127, entry.remote_window_size, entry.local_window_size))
                return false;
            break;
        default:
            return false;
        }
    }
    return true;
}

// Up to `limit` digits into packed BCD; the count, or -1 for one digit
// more than the limit.
int read_digits(const char *&p, uint8_t *bytes, int limit) {
    int count = 0;
    for (; is_digit(*p); ++p) {
        if (count == limit) return -1;
        put_nibble(bytes, count++, *p - '0');
    }
    return count;
}

// "G" or "B" and up to four digits, right-aligned in the two BCD bytes.
line_verdict read_group(const char *&p, pad_entry &entry) {
    switch (*p) {
    case 'G':
    case 'g':
        entry.cug_kind = PAD_CUG_G;
        break;
    case 'B':
    case 'b':
        entry.cug_kind = PAD_CUG_B;
        break;
    default:
        return line_verdict::skip;
    }
    ++p;
    uint8_t digits[2] = {};
    int count = read_digits(p, digits, max_group_digits);
    if (count < 0) return line_verdict::stop;
    for (int i = 0; i < count; ++i)
        put_nibble(entry.cug_number, max_group_digits - count + i, get_nibble(digits, i));
    return line_verdict::entry;
}

// "T" and up to sixteen digits, a multiple of four of them.
line_verdict read_t_digits(const char *&p, pad_entry &entry) {
    if (*p != 'T' && *p != 't') return line_verdict::skip;
    ++p;
    int count = read_digits(p, entry.t_digits, max_t_digits);
    if (count < 0) return line_verdict::stop;
    if (count % 4 != 0) return line_verdict::skip;
    entry.t_digit_count = static_cast<uint8_t>(count);
    return line_verdict::entry;
}

uint8_t version_of(std::size_t length, const char *field) {
    if (length != 2) return PAD_VERSION_OTHER;
    if (std::strncmp(field, "80", 2) == 0) return PAD_VERSION_80;
    if (std::strncmp(field, "84", 2) == 0) return PAD_VERSION_84;
    if (std::strncmp(field, "88", 2) == 0) return PAD_VERSION_88;
    return PAD_VERSION_OTHER;
}

// The fields after the address; `p` is just past the address's blank.
line_verdict read_fields(const char *p, pad_entry &entry) {
    // Version: read only when another field follows it.
    p = skip_blanks(p);
    std::size_t length = std::strcspn(p, " \t");
    if (p[length] == '\0') return line_verdict::entry;
    entry.version = version_of(length, p);
    p = skip_blanks(p + length);
    if (*p == '\0') return line_verdict::entry;

    if (*p == '-')
        ++p;
    else if (!read_facilities(p, entry))
        return line_verdict::skip;
    if (*p == '\0') return line_verdict::entry;
    p = skip_blanks(p);
    if (*p == '\0') return line_verdict::entry;

    if (*p == '-') {
        ++p;
    } else if (line_verdict verdict = read_group(p, entry); verdict != line_verdict::entry) {
        return verdict;
    }
    if (*p == '\0') return line_verdict::entry;
    p = skip_blanks(p);
    if (*p == '\0') return line_verdict::entry;

    if (*p == '-') {
        ++p;
    } else if (line_verdict verdict = read_t_digits(p, entry); verdict != line_verdict::entry) {
        return verdict;
    }
    if (*p == '\0') return line_verdict::entry;
    p = skip_blanks(p);
    if (*p == '\0') return line_verdict::entry;
    std::size_t text_length = ::strnlen(p, PAD_FREE_TEXT_MAX);
    std::memcpy(entry.free_text, p, text_length);
    entry.free_text[text_length] = '\0';
    return line_verdict::entry;
}

} // namespace

text_database padmap("padmapconf");
pad_entry pad;

line_verdict parse_pad_line(char *line) {
    if (!cut_at_comment(line)) return line_verdict::skip;
    pad = pad_entry{};
    // The address runs to the first blank or tab; a line with nothing after
    // its address is an entry of the address alone.
    char *rest = std::strpbrk(line, " \t");
    if (rest != nullptr) *rest++ = '\0';
    if (stox25(line, &pad.address, 0) != 0) return line_verdict::skip;
    if (rest == nullptr) return line_verdict::entry;
    return read_fields(rest, pad);
}

} // namespace qx25

using namespace qx25;

extern "C" {

void setpadent(int stay_open) {
    padmap.start(stay_open);
}

pad_entry *getpadent(void) {
    return padmap.next(parse_pad_line) ? &pad : nullptr;
}

void endpadent(void) {
    padmap.finish();
}
}
