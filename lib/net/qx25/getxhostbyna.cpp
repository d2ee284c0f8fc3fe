// Looking a host of "xhosts" up by its name or one of its aliases.
#include "name_databases.h"

#include <cstring>

using namespace qx25;

namespace {

const char *wanted_name;

// Only a line that holds the name somewhere can name the host, so the
// others are passed over without being parsed.
line_verdict parse_if_named(char *line) {
    if (std::strstr(line, wanted_name) == nullptr) return line_verdict::skip;
    line_verdict verdict = parse_xhost_line(line);
    if (verdict == line_verdict::entry && !xhost_has_name(xhost, wanted_name))
        return line_verdict::skip;
    return verdict;
}

} // namespace

extern "C" {

xhost_entry *getxhostbyname(const char *name) {
    if (name == nullptr) return nullptr;
    wanted_name = name;
    setxhostent(0);
    bool found = xhosts.next_holding(name, parse_if_named);
    endxhostent();
    return found ? &xhost : nullptr;
}
}
