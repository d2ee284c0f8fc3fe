// Reading a link configuration file into records and comparing two
// readings: what the round trips of the test suite and of the fuzzing
// harness check.
#pragma once

#include "qx25.h"

#include "link_file_generator.h"

#include <cstddef>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace qx25test {

// The shape the writer gives a link of these values.
inline link_kind kind_of(const link_values &link) {
    if (link.mlp != 0) return link_kind::mlp;
    return link.net_type == NET_LAN ? link_kind::lan : link_kind::wan;
}

// Everything one reading fills: the records of a link configuration, the
// X.32 records of the X25 section, the LAPB section and the five MLP
// subsections, and the mode report. Zeroed before reading; released after.
class link_records {
  public:
    link_records();
    ~link_records();
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

// Releases what the configuration update left in the exported records (ids,
// cs, xs, ms, lbs, l2s, ws): every comment text, the alias, description and
// PVCs of the link, the MLP subsection records; then clears the records.
void release_static_records();

// A text as the reports show it: quoted, newlines as "\n", or "(none)".
std::string shown(const char *text);

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

// Adds every difference between two readings to `found`.
void compare(const link_records &first, const link_records &second, differences &found);

// Calls `visit` with every comment text a reading kept: the comments before
// the IDENTIFICATION block when there are any, then each comment and
// trailer text of each section record, subsections included.
void for_each_comment(const link_records &records, const std::function<void(const char *)> &visit);

// The comment and trailer texts a reading kept.
int kept_comments(const link_records &records);

// A written file without its MODIFIED_BY and FILE_DATE lines, which name the
// user and the time of writing; `stamps` counts the lines left out.
std::string without_stamp(const std::string &file, int &stamps);

// The first line in which two files differ, for the report.
std::string first_different_line(const std::string &first, const std::string &second);

} // namespace qx25test
