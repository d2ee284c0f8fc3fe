// X.29 profiles: "x29profile" gives remote addresses the PAD profile to
// load (a kind and X.3 parameter values); "paddconf" is opened for the PAD
// programs, which read it themselves.
#include "qx25.h"

#include "text_database.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <cstddef>

static_assert(offsetof(x29_profile, address) == 8);
static_assert(offsetof(x29_profile, kind) == 44);
static_assert(offsetof(x29_profile, parameters) == 45);
static_assert(offsetof(x29_profile, parameter_set) == 68);

using namespace qx25;

namespace {

// The profile lines are read into a buffer of this size (1023 characters
// and the terminator); callers of read_x29profile pass at least as much.
constexpr std::size_t profile_line_size = 1024;
constexpr int first_parameter = 1;
constexpr int last_parameter = 22;

int decimal(const char *text) {
    long value = std::strtol(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

// "P<number>#<value>": the value of one X.3 parameter (no "#": value 0).
void apply_parameter(const char *item, x29_profile &profile) {
    int number = decimal(item + 1);
    const char *hash = std::strchr(item, '#');
    int value = hash != nullptr ? decimal(hash + 1) : 0;
    if (number < first_parameter || number > last_parameter) return;
    profile.parameters[number] = static_cast<uint8_t>(value);
    profile.parameter_set[number] = 1;
}

void apply_item(const char *item, x29_profile &profile) {
    switch (item[0]) {
    case 'C':
        profile.kind = X29_PROFILE_C;
        break;
    case 'S':
        profile.kind = X29_PROFILE_S;
        break;
    case 'V':
        // The kind is the low byte of n + 3, computed without overflow for
        // any n the text holds.
        profile.kind = static_cast<uint8_t>(static_cast<unsigned>(decimal(item + 1)) +
                                            static_cast<unsigned>(X29_PROFILE_V));
        break;
    case 'P':
    case 'p':
        profile.kind = X29_PROFILE_P;
        apply_parameter(item, profile);
        break;
    case 'T':
    case 't':
        profile.parameters[0] = decimal(item + 1) != 0 ? 1 : 0;
        break;
    default:
        break;
    }
}

// The next ":"-separated item of the text, as strtok gives it: empty items
// are passed over; null at the end. `rest` moves past the item.
char *next_item(char *&rest) {
    rest += std::strspn(rest, ":");
    if (*rest == '\0') return nullptr;
    char *item = rest;
    rest += std::strcspn(rest, ":");
    if (*rest != '\0') *rest++ = '\0';
    return item;
}

} // namespace

extern "C" {

FILE *open_x29profile(void) {
    return open_database_file("x29profile");
}

FILE *open_paddconf(void) {
    return open_database_file("paddconf");
}

int read_x29profile(char *line, FILE *stream) {
    if (line == nullptr || stream == nullptr) return 0;
    return read_database_line(stream, line, profile_line_size, true) ? 1 : 0;
}

char *parse_load_profile(char *text, x29_profile *profile) {
    if (text == nullptr || profile == nullptr) return nullptr;
    char *rest = skip_blanks(text);
    char *item;
    while ((item = next_item(rest)) != nullptr && item[0] != '\n')
        apply_item(item, *profile);
    return item;
}

int find_x29profile(x29_profile *profile) {
    if (profile == nullptr) return 0;
    file_ptr stream(open_x29profile());
    if (!stream) return 0;
    char line[profile_line_size];
    while (read_x29profile(line, stream.get())) {
        char *rest = std::strpbrk(line, " \t");
        if (rest == nullptr) continue;
        *rest++ = '\0';
        x25_address address;
        if (stox25(line, &address, 0) != 0 || !equalx25(&address, &profile->address)) continue;
        parse_load_profile(rest, profile);
        return 1;
    }
    return 0;
}
}
