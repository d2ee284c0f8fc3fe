// Round trips of link configuration files through the reader and the writer.
// Over a generated set of valid configurations (LAN, WAN and MLP links, with
// comments everywhere the writer puts them back): reading a file, writing the
// records and reading the new file gives the same records, and writing those
// again gives the same file, apart from the MODIFIED_BY and FILE_DATE lines.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_file_generator.h"
#include "link_records.h"
#include "release.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

using qx25test::ConfigTree;
using qx25test::differences;
using qx25test::first_different_line;
using qx25test::generate_link_file;
using qx25test::generated_file;
using qx25test::link_kind;
using qx25test::link_records;
using qx25test::messages;
using qx25test::shown;
using qx25test::without_stamp;

namespace {

// ---- The round trip -------------------------------------------------------------

// Removes the files of one round when the round ends, so that each round
// writes new files: rewriting a file in place makes some file systems flush
// it on closing, which is slow.
struct removed_at_end {
    std::vector<std::string> paths;
    ~removed_at_end() {
        for (const std::string &path : paths)
            std::remove(path.c_str());
    }
};

class RoundTrip : public testing::Test {
  protected:
    void SetUp() override {
        tree.write("config/boardconf", qx25test::generated_boardconf);
        tree.write("lib/world_networks.profile", qx25test::generated_profiles);
        qx25test::capture_all_messages();
    }

    // Reads F0 into R1, writes R1 to F1, reads F1 into R2, compares R1 with
    // R2, writes R2 to F2 and compares F1 with F2; the differences found.
    differences round_trip(link_kind kind, const generated_file &file) {
        differences found;
        messages().clear();
        std::string f0 = tree.write("work/f0.cfg", file.text);
        std::string f1 = tree.root() + "/work/f1.cfg";
        std::string f2 = tree.root() + "/work/f2.cfg";
        removed_at_end scratch{{f0, f1, f2}};

        link_records r1;
        if (int result = r1.read(f0); result != 0)
            found.add("reading the generated file gives " + std::to_string(result));
        if (int kept = kept_comments(r1); kept != file.kept_comments)
            found.add("the reader kept " + std::to_string(kept) + " comment texts of " +
                      std::to_string(file.kept_comments));
        if (r1.mode != file.mode) found.add("the mode report is " + std::to_string(r1.mode));
        if (r1.config.link.values.device_count != file.devices)
            found.add("the reader found " + std::to_string(r1.config.link.values.device_count) +
                      " devices");
        for (const std::string &message : messages())
            found.add("reading reported " + shown(message.c_str()));
        if (!found.empty()) return found;

        if (int result = r1.write(f1, kind); result != 0)
            found.add("writing the records gives " + std::to_string(result));
        link_records r2;
        if (int result = r2.read(f1); result != 0)
            found.add("reading the written file gives " + std::to_string(result));
        compare(r1, r2, found);
        if (int result = r2.write(f2, kind); result != 0)
            found.add("writing the records read back gives " + std::to_string(result));
        for (const std::string &message : messages())
            found.add("the round trip reported " + shown(message.c_str()));

        int stamps1 = 0;
        int stamps2 = 0;
        std::string written1 = without_stamp(qx25test::read_file(f1), stamps1);
        std::string written2 = without_stamp(qx25test::read_file(f2), stamps2);
        if (stamps1 != 2 || stamps2 != 2)
            found.add("the written files have " + std::to_string(stamps1) + " and " +
                      std::to_string(stamps2) + " MODIFIED_BY and FILE_DATE lines");
        if (written1 != written2)
            found.add("the second writing differs: " + first_different_line(written1, written2));
        return found;
    }

    // Generates `count` configurations from index `first` on and takes each
    // round; the first failures are shown in full.
    void run(link_kind kind, std::uint32_t first, int count) {
        int failures = 0;
        for (std::uint32_t index = first; index < first + static_cast<std::uint32_t>(count);
             ++index) {
            generated_file file = generate_link_file(kind, qx25test::first_seed + index);
            differences found = round_trip(kind, file);
            if (found.empty()) continue;
            if (++failures > 3) continue;
            std::string report;
            for (std::size_t i = 0; i < found.list().size() && i < 40; ++i)
                report += "  " + found.list()[i] + "\n";
            ADD_FAILURE() << qx25test::kind_name(kind) << " configuration " << index
                          << " (std::mt19937 seeded with " << qx25test::first_seed + index
                          << ") fails:\n"
                          << report << "The generated file:\n"
                          << file.text;
        }
        EXPECT_EQ(failures, 0) << "of " << count << " " << qx25test::kind_name(kind)
                               << " configurations";
    }

    ConfigTree tree;
};

// Configurations 0 to 299: LAN links.
TEST_F(RoundTrip, LanLinks) {
    run(link_kind::lan, 0, 300);
}

// Configurations 300 to 649: WAN links.
TEST_F(RoundTrip, WanLinks) {
    run(link_kind::wan, 300, 350);
}

// Configurations 650 to 999: MLP links of two to five devices.
TEST_F(RoundTrip, MlpLinks) {
    run(link_kind::mlp, 650, 350);
}

// The writer prints a comment of at most 60 characters on one "!" line as it
// stands, newlines included, and the last 60 characters or less of a longer
// one too. Where such a piece holds several lines, the lines after its first
// are no comment lines any more: reading the file again takes the next of
// them as a keyword line, which gets the comment lines before it, and the
// keyword that had the comment has none.
TEST_F(RoundTrip, ShortCommentLinesAreNotPutBackAsComments) {
    const std::string long_line =
        "This leased line runs to the head office; the carrier looks after it.";
    ASSERT_GT(long_line.size() + 1, qx25test::whole_comment);
    std::string text = "IDENTIFICATION\n"
                       "\tPRODUCT_NAME\tQuenlark X.25\n"
                       "\tFILE_TYPE\tx25link\n"
                       "SECTION LINK\n"
                       "\tdevice\twan0\n";
    text += "!" + long_line + "\n";
    text += "!tail one\n"
            "!tail two\n"
            "\ttype\tWAN\n"
            "\tprotocol\tLAPB\n"
            "SECTION LAPB\n"
            "SECTION WAN\n"
            "SECTION X25\n"
            "\ttwo_range\t1-100\n"
            "!first line\n"
            "!second line\n"
            "\tmodulo\t128\n";
    std::string f0 = tree.write("work/short.cfg", text);
    std::string f1 = tree.root() + "/work/short_written.cfg";

    link_records r1;
    ASSERT_EQ(r1.read(f0), 0);
    EXPECT_STREQ(r1.config.link.keyword[3].comments,
                 (long_line + "\ntail one\ntail two\n").c_str());
    EXPECT_STREQ(r1.config.x25.keyword[5].comments, "first line\nsecond line\n");
    EXPECT_TRUE(messages().empty());

    ASSERT_EQ(r1.write(f1, link_kind::wan), 0);
    std::string written = qx25test::read_file(f1);
    // 88 characters: the first line on its own, the last 18 as one piece.
    EXPECT_NE(written.find("\n!" + long_line + "\n!tail one\ntail two\n\n\ttype\t\tWAN\n"),
              std::string::npos)
        << written;
    // 23 characters: one piece.
    EXPECT_NE(
        written.find("\n\ttwo_range\t\t1-100\n!first line\nsecond line\n\n\tmodulo\t\t\t128\n"),
        std::string::npos)
        << written;

    link_records r2;
    ASSERT_EQ(r2.read(f1), 0);
    // "tail two" is an unknown LINK keyword that took the comments with it;
    // "second line" is a keyword that SECTION X25 ignores without a word.
    EXPECT_EQ(messages(), std::vector<std::string>{"Unknown LINK Keyword <tail>, skipped\n"});
    EXPECT_EQ(r2.config.link.keyword[3].comments, nullptr);
    EXPECT_EQ(r2.config.x25.keyword[5].comments, nullptr);
    EXPECT_EQ(r2.config.x25.values.modulo, X25_MODULO_128);
    EXPECT_EQ(r2.config.x25.values.lcn.two_low, 1);
    EXPECT_EQ(r2.config.x25.values.lcn.two_high, 100);
}

} // namespace
