// Whole link configuration files: any text through the reader, then the
// writer, then the reader again. Whatever the first reading made of the
// text, a file the writer wrote reads back to records that are written and
// read back the same again. (The written file itself may change once: a
// comment the first reading kept without its newline, as behind a NUL byte,
// is read back with one, and a short comment is written with a blank line
// after its newline.)
#include "qx25.h"

#include "fuzz_support.h"
#include "link_records.h"

#include <cstdint>
#include <cstdio>
#include <string>

using qx25fuzz::require;
using qx25test::link_records;

namespace {

const char *const boardconf = "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tlines 2\n"
                              "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n\tlines 1\n";

const char *const profiles = "1 X25_LLC LAN network\n2 X25_88 WAN 1988\n3 X25_84 WAN 1984\n"
                             "4 X25_80 WAN 1980\n7 PSS public network\n";

void report(const qx25test::differences &found) {
    for (const std::string &difference : found.list())
        std::fprintf(stderr, "qx25fuzz: %s\n", difference.c_str());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready =
        (qx25fuzz::silence_messages(), qx25fuzz::write_file("config/boardconf", boardconf),
         qx25fuzz::write_file("lib/world_networks.profile", profiles), true);
    (void)ready;
    std::string input = qx25fuzz::write_file("config/config/input.cfg", data, size);
    std::string first_file = qx25fuzz::tree_root() + "/config/config/first.cfg";
    std::string second_file = qx25fuzz::tree_root() + "/config/config/second.cfg";

    link_records read_input;
    if (read_input.read(input) != 0) return 0;
    qx25test::link_kind kind = qx25test::kind_of(read_input.config.link.values);
    if (read_input.write(first_file, kind) != 0) return 0;

    link_records first;
    require(first.read(first_file) == 0, "a written file cannot be read");
    require(first.write(second_file, kind) == 0, "records read from a written file are refused");
    link_records second;
    require(second.read(second_file) == 0, "a file written twice cannot be read");

    qx25test::differences found;
    compare(first, second, found);
    report(found);
    require(found.empty(), "a written file does not read back to the same records");

    return 0;
}
