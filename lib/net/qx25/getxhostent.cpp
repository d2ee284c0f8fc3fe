// The hosts database "xhosts": an X.25 address, a host name and aliases a
// line. Enumeration and line parser; the look-ups live beside it.
#include "name_databases.h"

#include <cstring>
#include <cstddef>

static_assert(offsetof(xhost_entry, xh_addrtype) == 2 * sizeof(void *));
static_assert(offsetof(xhost_entry, xh_length) == 2 * sizeof(void *) + 4);
static_assert(offsetof(xhost_entry, xh_addr) == 2 * sizeof(void *) + 8);

namespace qx25 {

namespace {

x25_address xhostaddr;
char *xhost_aliases[XHOST_MAX_ALIASES + 1];

constexpr const char *separators = " ,\t";

bool is_separator(char c) {
    return c == ' ' || c == ',' || c == '\t';
}

// Ends the word at `p` at its first separator; the position after it, or
// null when the word runs to the end of the text.
char *end_word(char *p) {
    char *end = std::strpbrk(p, separators);
    if (end == nullptr) return nullptr;
    *end = '\0';
    return end + 1;
}

} // namespace

text_database xhosts("xhosts");
xhost_entry xhost;

line_verdict parse_xhost_line(char *line) {
    if (!cut_at_comment(line)) return line_verdict::skip;
    // The address is everything before the first blank or tab: no leading
    // white space is skipped, and an address alone is no entry.
    char *name = std::strpbrk(line, " \t");
    if (name == nullptr) return line_verdict::skip;
    *name++ = '\0';
    if (stox25(line, &xhostaddr, 0) != 0) return line_verdict::skip;

    xhost.xh_addrtype = 1;
    xhost.xh_length = sizeof(x25_address);
    xhost.xh_addr = &xhostaddr;
    xhost.xh_aliases = xhost_aliases;

    if (is_separator(*name)) name += std::strspn(name, separators);
    xhost.xh_name = name;
    int count = 0;
    for (char *p = end_word(name); p != nullptr && *p != '\0';) {
        if (is_separator(*p)) {
            ++p;
            continue;
        }
        // Aliases past the array's room are read over and dropped.
        if (count < XHOST_MAX_ALIASES) xhost_aliases[count++] = p;
        p = end_word(p);
    }
    xhost_aliases[count] = nullptr;
    return line_verdict::entry;
}

bool xhost_has_name(const xhost_entry &entry, const char *name) {
    if (std::strcmp(entry.xh_name, name) == 0) return true;
    for (char **alias = entry.xh_aliases; *alias != nullptr; ++alias)
        if (std::strcmp(*alias, name) == 0) return true;
    return false;
}

} // namespace qx25

using namespace qx25;

extern "C" {

void setxhostent(int stay_open) {
    xhosts.start(stay_open);
}

xhost_entry *getxhostent(void) {
    return xhosts.next(parse_xhost_line) ? &xhost : nullptr;
}

void endxhostent(void) {
    xhosts.finish();
}
}
