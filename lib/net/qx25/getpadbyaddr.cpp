// Looking the PAD map entry of an X.25 address up.
#include "name_databases.h"

using namespace qx25;

namespace {

const x25_address *wanted_address;

// Every line is parsed whole: a number with too many digits ends the
// look-up even on a line of another address.
line_verdict parse_if_addressed(char *line) {
    line_verdict verdict = parse_pad_line(line);
    if (verdict != line_verdict::entry) return verdict;
    return equalx25(&pad.address, wanted_address) ? verdict : line_verdict::skip;
}

} // namespace

extern "C" {

pad_entry *getpadbyaddr(const x25_address *address) {
    if (address == nullptr) return nullptr;
    wanted_address = address;
    setpadent(0);
    bool found = padmap.next(parse_if_addressed);
    endpadent();
    return found ? &pad : nullptr;
}
}
