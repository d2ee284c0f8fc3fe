// Looking a host of "xhosts" up by its X.25 address.
#include "name_databases.h"

using namespace qx25;

namespace {

const x25_address *wanted_address;
int wanted_length;
int wanted_type;

line_verdict parse_if_addressed(char *line) {
    line_verdict verdict = parse_xhost_line(line);
    if (verdict != line_verdict::entry) return verdict;
    bool match = xhost.xh_addrtype == wanted_type && xhost.xh_length == wanted_length &&
                 equalx25(xhost.xh_addr, wanted_address);
    return match ? line_verdict::entry : line_verdict::skip;
}

} // namespace

extern "C" {

xhost_entry *getxhostbyaddr(const x25_address *address, int length, int type) {
    wanted_address = address;
    wanted_length = length;
    wanted_type = type;
    setxhostent(0);
    bool found = xhosts.next(parse_if_addressed);
    endxhostent();
    return found ? &xhost : nullptr;
}
}
