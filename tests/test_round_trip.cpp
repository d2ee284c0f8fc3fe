// Round trips of link configuration files through the reader and the writer.
// Over a generated set of valid configurations (LAN, WAN and MLP links, with
// comments everywhere the writer puts them back): reading a file, writing the
// records and reading the new file gives the same records, and writing those
// again gives the same file, apart from the MODIFIED_BY and FILE_DATE lines.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "link_file_generator.h"
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
using qx25test::generate_link_file;
using qx25test::generated_file;
using qx25test::link_kind;
using qx25test::messages;

namespace {

// ---- Reading and writing ------------------------------------------------------

// Everything one reading fills: the records of a link configuration, the
// X.32 records of the X25 section, the LAPB section and the five MLP
// subsections, and the mode report. Zeroed before reading; released after.
class link_records {
  public:
    link_records() {
        std::memset(&config, 0, sizeof config);
        std::memset(&x25_x32, 0, sizeof x25_x32);
        std::memset(&lapb_x32, 0, sizeof lapb_x32);
        std::memset(mlp_x32, 0, sizeof mlp_x32);
    }
    ~link_records() { qx25tool::release(&config); }
    link_records(const link_records &) = delete;
    link_records &operator=(const link_records &) = delete;

    int read(const std::string &path) {
        mode = 0;
        return x25_read_config_parameter_file_x32(
            path.c_str(), &config.ids, &config.link, &config.x25, &config.mlp, &config.lapb,
            &config.llc2, &config.wan, &x25_x32, &lapb_x32, mlp_x32, &mode);
    }

    // The records of the link's shape: MLP, or LAPB and WAN, or LLC2.
    int write(const std::string &path, link_kind kind) {
        return x25_write_config_parameter_file_x32(
            path.c_str(), &config.ids, &config.link, &config.x25,
            kind == link_kind::mlp ? &config.mlp : nullptr,
            kind == link_kind::wan ? &config.lapb : nullptr, &config.llc2, &config.wan, &x25_x32,
            &lapb_x32, mlp_x32);
    }

    link_config config;
    x32_record x25_x32;
    x32_record lapb_x32;
    x32_record mlp_x32[MLP_MAX_SUBSECTIONS];
    int mode = 0;
};

// ---- Comparing ----------------------------------------------------------------

std::string shown(const char *text) {
    if (text == nullptr) return "(none)";
    std::string quoted = "\"";
    for (const char *c = text; *c != '\0'; ++c)
        quoted += *c == '\n' ? std::string("\\n") : std::string(1, *c);
    return quoted + "\"";
}

// The differences found between two readings, in words.
class differences {
  public:
    void add(std::string text) { found_.push_back(std::move(text)); }

    static bool same(const char *first, const char *second) {
        return first == nullptr || second == nullptr ? first == second
                                                     : std::strcmp(first, second) == 0;
    }

    void text(const std::string &where, const char *first, const char *second) {
        if (!same(first, second))
            add(where + ": " + shown(first) + " read back as " + shown(second));
    }

    void bytes(const std::string &where, const void *first, const void *second, std::size_t size) {
        const auto *a = static_cast<const unsigned char *>(first);
        const auto *b = static_cast<const unsigned char *>(second);
        for (std::size_t i = 0; i < size; ++i) {
            if (a[i] == b[i]) continue;
            add(where + ": byte " + std::to_string(i) + " is " + std::to_string(a[i]) +
                ", read back as " + std::to_string(b[i]));
            return;
        }
    }

    template <typename Section>
    void comments(const std::string &where, const Section &first, const Section &second,
                  const config_keyword *names) {
        text(where + " header comments", first.section.comments, second.section.comments);
        text(where + " header trailer", first.section.trailer, second.section.trailer);
        for (std::size_t i = 0; i < std::size(first.keyword); ++i) {
            const config_comment &a = first.keyword[i];
            const config_comment &b = second.keyword[i];
            if (same(a.comments, b.comments) && same(a.trailer, b.trailer)) continue;
            std::string keyword = where + " " + names[i].name;
            text(keyword + " comments", a.comments, b.comments);
            text(keyword + " trailer", a.trailer, b.trailer);
        }
    }

    template <typename Section>
    void section(const std::string &where, const Section &first, const Section &second,
                 const config_keyword *names) {
        comments(where, first, second, names);
        bytes(where + " values", &first.values, &second.values, sizeof first.values);
    }

    bool empty() const { return found_.empty(); }
    const std::vector<std::string> &list() const { return found_; }

  private:
    std::vector<std::string> found_;
};

// The link values with the pointers left out, copied byte for byte: the
// alias and the description are compared as texts, and a reading attaches
// no PVCs.
void without_pointers(const link_values &values, link_values &copy) {
    std::memcpy(&copy, &values, sizeof copy);
    copy.subnet.name = nullptr;
    copy.subnet.description = nullptr;
    copy.pvcs = nullptr;
}

void compare(const link_records &first, const link_records &second, differences &found) {
    const link_config &a = first.config;
    const link_config &b = second.config;

    found.bytes("product name", a.ids.product_name, b.ids.product_name, sizeof a.ids.product_name);
    found.bytes("product version", a.ids.product_version, b.ids.product_version,
                sizeof a.ids.product_version);
    found.bytes("file type", a.ids.file_type, b.ids.file_type, sizeof a.ids.file_type);
    found.bytes("identification comments", a.ids.comments, b.ids.comments, sizeof a.ids.comments);

    found.comments("LINK", a.link, b.link, __LINK_functions);
    link_values link_a;
    link_values link_b;
    without_pointers(a.link.values, link_a);
    without_pointers(b.link.values, link_b);
    found.bytes("LINK values", &link_a, &link_b, sizeof link_a);
    found.text("LINK alias", a.link.values.subnet.name, b.link.values.subnet.name);
    found.text("LINK description", a.link.values.subnet.description,
               b.link.values.subnet.description);
    if (a.link.values.pvcs != nullptr || b.link.values.pvcs != nullptr)
        found.add("a reading attached PVCs");

    found.section("X25", a.x25, b.x25, __X25_functions);
    found.section("LAPB", a.lapb, b.lapb, __LAPB_functions);
    found.section("LLC2", a.llc2, b.llc2, __LLC2_functions);
    found.section("WAN", a.wan, b.wan, __WAN_functions);

    found.comments("MLP", a.mlp, b.mlp, __MLP_functions);
    found.bytes("MLP values", &a.mlp.values, &b.mlp.values, offsetof(mlp_values, lapb));
    for (int i = 0; i < MLP_MAX_SUBSECTIONS; ++i) {
        std::string position = std::to_string(i);
        const lapb_section *lapb_a = a.mlp.values.lapb[i];
        const lapb_section *lapb_b = b.mlp.values.lapb[i];
        if ((lapb_a == nullptr) != (lapb_b == nullptr))
            found.add("LAPB subsection " + position + " present in one reading only");
        else if (lapb_a != nullptr)
            found.section("LAPB subsection " + position, *lapb_a, *lapb_b, __LAPB_functions);
        const wan_section *wan_a = a.mlp.values.wan[i];
        const wan_section *wan_b = b.mlp.values.wan[i];
        if ((wan_a == nullptr) != (wan_b == nullptr))
            found.add("WAN subsection " + position + " present in one reading only");
        else if (wan_a != nullptr)
            found.section("WAN subsection " + position, *wan_a, *wan_b, __WAN_functions);
        found.bytes("X.32 of LAPB subsection " + position, &first.mlp_x32[i], &second.mlp_x32[i],
                    sizeof first.mlp_x32[i]);
    }
    found.bytes("X.32 of X25", &first.x25_x32, &second.x25_x32, sizeof first.x25_x32);
    found.bytes("X.32 of LAPB", &first.lapb_x32, &second.lapb_x32, sizeof first.lapb_x32);
    if (first.mode != second.mode)
        found.add("mode " + std::to_string(first.mode) + " read back as " +
                  std::to_string(second.mode));
}

// The comment and trailer texts a reading kept.
int kept_comments(const link_records &records) {
    int count = records.config.ids.comments[0] != '\0' ? 1 : 0;
    auto pairs = [&count](const auto &section) {
        count += (section.section.comments != nullptr) + (section.section.trailer != nullptr);
        for (const config_comment &pair : section.keyword)
            count += (pair.comments != nullptr) + (pair.trailer != nullptr);
    };
    const link_config &c = records.config;
    pairs(c.link);
    pairs(c.x25);
    pairs(c.mlp);
    pairs(c.lapb);
    pairs(c.llc2);
    pairs(c.wan);
    for (int i = 0; i < MLP_MAX_SUBSECTIONS; ++i) {
        if (c.mlp.values.lapb[i] != nullptr) pairs(*c.mlp.values.lapb[i]);
        if (c.mlp.values.wan[i] != nullptr) pairs(*c.mlp.values.wan[i]);
    }
    return count;
}

// A written file without its MODIFIED_BY and FILE_DATE lines, which name the
// user and the time of writing; `stamps` counts the lines left out.
std::string without_stamp(const std::string &file, int &stamps) {
    std::string kept;
    std::size_t start = 0;
    stamps = 0;
    while (start < file.size()) {
        std::size_t end = file.find('\n', start);
        end = end == std::string::npos ? file.size() : end + 1;
        std::string_view line(file.data() + start, end - start);
        if (line.starts_with("\tMODIFIED_BY\t") || line.starts_with("\tFILE_DATE\t"))
            ++stamps;
        else
            kept += line;
        start = end;
    }
    return kept;
}

// The first line in which two files differ, for the report.
std::string first_different_line(const std::string &first, const std::string &second) {
    std::size_t at = 0;
    while (at < first.size() && at < second.size() && first[at] == second[at])
        ++at;
    std::size_t start = first.rfind('\n', at == 0 ? 0 : at - 1);
    start = start == std::string::npos || at == 0 ? 0 : start + 1;
    auto line_of = [start](const std::string &text) {
        std::size_t end = text.find('\n', start);
        return shown(text.substr(start, end == std::string::npos ? end : end - start + 1).c_str());
    };
    return line_of(first) + " written again as " + line_of(second);
}

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
