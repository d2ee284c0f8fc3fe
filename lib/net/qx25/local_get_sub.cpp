// The older subnetworks file: a subnetwork address (usually just its
// number), an alias name and a description a line. Read by the import of a
// legacy configuration.
#include "name_databases.h"

#include <cstring>

namespace qx25 {

namespace {

// A first field shorter than this, without ".", is a bare subnetwork
// number: "3" is read as "3.".
constexpr std::size_t bare_number_limit = 4;
char bare_number[bare_number_limit + 1];

} // namespace

text_database subnetworks_file("subnetworks");
subnet_entry subnetworks_file_entry;

line_verdict parse_subnetwork_line(char *line) {
    if (!cut_at_comment(line)) return line_verdict::skip;
    char *field = skip_blanks(line);
    char *rest = std::strpbrk(field, " \t");
    if (rest != nullptr) *rest++ = '\0';

    subnet_entry &entry = subnetworks_file_entry;
    entry = subnet_entry{};
    const char *address = field;
    std::size_t length = std::strlen(field);
    if (length < bare_number_limit && std::strchr(field, '.') == nullptr) {
        std::memcpy(bare_number, field, length);
        std::memcpy(bare_number + length, ".", 2);
        address = bare_number;
    }
    if (stox25(address, &entry.address, 0) != 0) return line_verdict::skip;

    entry.name = nullptr;
    entry.description = nullptr;
    if (rest == nullptr) return line_verdict::entry;
    entry.name = skip_blanks(rest);
    char *end = std::strpbrk(entry.name, " \t");
    if (end == nullptr) return line_verdict::entry;
    *end = '\0';
    entry.description = skip_blanks(end + 1);
    return line_verdict::entry;
}

} // namespace qx25

using namespace qx25;

namespace {

uint32_t wanted_snid;

line_verdict parse_if_numbered(char *line) {
    line_verdict verdict = parse_subnetwork_line(line);
    if (verdict != line_verdict::entry) return verdict;
    return subnetworks_file_entry.address.snid == wanted_snid ? verdict : line_verdict::skip;
}

} // namespace

extern "C" {

void __setsubnetent(int stay_open) {
    subnetworks_file.start(stay_open);
}

subnet_entry *__getsubnetent(void) {
    return subnetworks_file.next(parse_subnetwork_line) ? &subnetworks_file_entry : nullptr;
}

void __endsubnetent(void) {
    subnetworks_file.finish();
}

subnet_entry *__get_subnet(uint32_t snid) {
    wanted_snid = snid;
    __setsubnetent(0);
    bool found = subnetworks_file.next(parse_if_numbered);
    __endsubnetent();
    return found ? &subnetworks_file_entry : nullptr;
}
}
