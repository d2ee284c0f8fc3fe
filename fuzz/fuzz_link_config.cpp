// Whole link configuration files: any text through the reader, then the
// writer, then the reader again. Whatever the first reading made of the
// text, a file the writer wrote reads back to records that are written and
// read back the same again. (The written file itself may change once: a
// comment the first reading kept without its newline, as behind a NUL byte,
// is read back with one, and a short comment is written with a blank line
// after its newline.) Records holding a comment text that the writer does
// not put back as comment lines are left out: see written_back_as_comments.
#include "qx25.h"

#include "fuzz_support.h"
#include "link_records.h"

#include <cstdint>
#include <cstdio>
#include <algorithm>
#include <string>
#include <string_view>

using qx25fuzz::require;
using qx25test::link_records;

namespace {

const char *const profiles = "1 X25_LLC LAN network\n2 X25_88 WAN 1988\n3 X25_84 WAN 1984\n"
                             "4 X25_80 WAN 1980\n7 PSS public network\n";

// Whether the writer puts a comment text back as comment lines only. A
// text of up to 60 characters is written as one "!" line with any newline
// inside it printed as it stands, and so is what remains of a longer text
// once 60 or fewer characters are left: a newline inside such a piece
// starts a line without "!", which the reader does not take for a comment.
// Two short comment lines in a row are such a text. A piece that ends at a
// newline is written whole however long it is, and one of more than 125
// characters makes a line the reader takes in two.
bool written_back_as_comments(const char *text) {
    constexpr std::size_t whole_piece = 60;
    constexpr std::size_t shortest_cut = 61;
    constexpr std::size_t longest_piece = 80;
    constexpr std::size_t longest_comment_line = 125;
    std::string_view rest(text);
    while (rest.size() > whole_piece) {
        if (std::size_t newline = rest.find('\n'); newline != std::string_view::npos) {
            // "!", the piece and its newline must fit a line of 127.
            if (newline > longest_comment_line) return false;
            rest.remove_prefix(newline + 1);
            continue;
        }
        std::size_t scan = std::min(longest_piece, rest.size());
        std::size_t cut = shortest_cut;
        while (cut < scan && rest[cut] != ' ' && rest[cut] != '\t')
            ++cut;
        rest.remove_prefix(cut < scan ? cut + 1 : scan);
    }
    std::size_t newline = rest.find('\n');
    return newline == std::string_view::npos || newline + 1 == rest.size();
}

bool every_comment_written_back(const link_records &records) {
    bool kept = true;
    qx25test::for_each_comment(
        records, [&kept](const char *text) { kept = kept && written_back_as_comments(text); });
    return kept;
}

void report(const qx25test::differences &found) {
    for (const std::string &difference : found.list())
        std::fprintf(stderr, "qx25fuzz: %s\n", difference.c_str());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), qx25fuzz::write_boardconf(),
                               qx25fuzz::write_file("lib/world_networks.profile", profiles), true);
    (void)ready;
    std::string input = qx25fuzz::write_file("config/config/input.cfg", data, size);
    std::string first_file = qx25fuzz::tree_root() + "/config/config/first.cfg";
    std::string second_file = qx25fuzz::tree_root() + "/config/config/second.cfg";

    link_records read_input;
    if (read_input.read(input) != 0) return 0;
    if (!every_comment_written_back(read_input)) return 0;
    qx25test::link_kind kind = qx25test::kind_of(read_input.config.link.values);
    if (read_input.write(first_file, kind) != 0) return 0;

    link_records first;
    require(first.read(first_file) == 0, "a written file cannot be read");
    if (!every_comment_written_back(first)) return 0;
    require(first.write(second_file, kind) == 0, "records read from a written file are refused");
    link_records second;
    require(second.read(second_file) == 0, "a file written twice cannot be read");

    qx25test::differences found;
    compare(first, second, found);
    report(found);
    require(found.empty(), "a written file does not read back to the same records");

    return 0;
}
