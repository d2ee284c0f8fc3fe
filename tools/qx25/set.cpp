// qx25 set: gives one keyword of one section of a link a new value and
// rewrites the link's file through the configuration update.
//
// The value is read by the library itself: the link is read into records,
// then a small file holding only that section and that keyword is read into
// the same records, which changes that keyword and nothing else. The changed
// section then replaces the file's own; the previous file is kept as
// FILE.BAK first.
#include "command.h"
#include "release.h"

#include "link_config.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <strings.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace qx25tool {

namespace {

// Highest link number a link file written by number can carry.
constexpr unsigned long last_link_number = 254;

// The reader reads physical lines of at most this many characters.
constexpr std::size_t longest_line = 127;

struct section_info {
    unsigned code;
    const char *title; // as the file has it
    const config_keyword *keywords;
};

std::optional<section_info> section_named(const char *name) {
    for (const config_keyword *row = section_map; row->name != nullptr; ++row) {
        if (strcasecmp(row->name, name) != 0) continue;
        switch (row->index) {
        case SECTION_LINK:
            return section_info{SECTION_LINK, "LINK", __LINK_functions};
        case SECTION_X25:
            return section_info{SECTION_X25, "X25", __X25_functions};
        case SECTION_LLC2:
            return section_info{SECTION_LLC2, "LLC2", __LLC2_functions};
        case SECTION_LAPB:
            return section_info{SECTION_LAPB, "LAPB", __LAPB_functions};
        case SECTION_WAN:
            return section_info{SECTION_WAN, "WAN", __WAN_functions};
        case SECTION_MLP:
            return section_info{SECTION_MLP, "MLP", __MLP_functions};
        }
    }
    return std::nullopt;
}

// The keyword as the table spells it, or null.
const char *keyword_named(const config_keyword *table, const char *name) {
    for (const config_keyword *row = table; row->name != nullptr; ++row)
        if (strcasecmp(row->name, name) == 0) return row->name;
    return nullptr;
}

bool is_x32_keyword(std::string_view keyword) {
    return keyword.starts_with("x25_x32_") || keyword.starts_with("lapb_x32_");
}

// The kind of link a file describes, as the writer and the update see it.
enum class link_kind { lan, wan, mlp };

link_kind kind_of(const link_values &link) {
    if (link.mlp != 0) return link_kind::mlp;
    return link.net_type == NET_LAN ? link_kind::lan : link_kind::wan;
}

const char *kind_name(link_kind kind) {
    switch (kind) {
    case link_kind::lan:
        return "a LAN link";
    case link_kind::mlp:
        return "an MLP link";
    default:
        return "a WAN link";
    }
}

// Whether the update can replace this section of this link's file. The
// reader names the last link-level section it read by its section code.
bool section_of_link(unsigned code, link_kind kind, int mode) {
    switch (code) {
    case SECTION_LLC2:
        return kind == link_kind::lan && mode == SECTION_LLC2;
    case SECTION_LAPB:
        return kind == link_kind::wan && mode == SECTION_LAPB;
    case SECTION_WAN:
        return kind == link_kind::wan;
    case SECTION_MLP:
        return kind == link_kind::mlp;
    default:
        return true;
    }
}

void *section_record(link_config &config, unsigned code) {
    switch (code) {
    case SECTION_LINK:
        return &config.link;
    case SECTION_X25:
        return &config.x25;
    case SECTION_LLC2:
        return &config.llc2;
    case SECTION_LAPB:
        return &config.lapb;
    case SECTION_WAN:
        return &config.wan;
    default:
        return &config.mlp;
    }
}

// The reader loads defaults into a record whose marker field is 0, taking
// it for a fresh one. While the guard lives a marker of 0 holds a value no
// file can give it, so a record read already keeps its values.
class fresh_marker_guard {
  public:
    explicit fresh_marker_guard(uint16_t &field) : field_(field), armed_(field == 0) {
        if (armed_) field_ = held;
    }
    ~fresh_marker_guard() {
        if (armed_ && field_ == held) field_ = 0;
    }
    fresh_marker_guard(const fresh_marker_guard &) = delete;
    fresh_marker_guard &operator=(const fresh_marker_guard &) = delete;

  private:
    static constexpr uint16_t held = 0xFFFF; // beyond every range of the reader
    uint16_t &field_;
    bool armed_;
};

// Drops the lines that change with every writing: who wrote it and when.
std::string without_date_and_user(std::string text) {
    std::string kept;
    std::string_view rest(text);
    while (!rest.empty()) {
        std::size_t end = rest.find('\n');
        std::string_view line =
            rest.substr(0, end == std::string_view::npos ? rest.size() : end + 1);
        rest.remove_prefix(line.size());
        if (line.starts_with("\tFILE_DATE\t") || line.starts_with("\tMODIFIED_BY\t")) continue;
        kept += line;
    }
    return kept;
}

// The file the writer makes of the records, less the date and the user.
std::string written_form(link_records &records) {
    char *buffer = nullptr;
    std::size_t size = 0;
    FILE *stream = ::open_memstream(&buffer, &size);
    if (stream == nullptr) return {};
    records.write(stream); // closes the stream
    std::string text(buffer != nullptr ? buffer : "", size);
    std::free(buffer);
    return without_date_and_user(std::move(text));
}

// One line of a file as the writer lays it out: the header of the (sub)section
// it belongs to and, for a keyword line ("\tkeyword\t\tvalue\t!comment"),
// its keyword and value.
struct file_line {
    std::string_view text;
    std::string_view header; // "SECTION\tX25", "SUBSECTION\tLAPB", or empty
    std::string_view keyword;
    std::string_view value;
};

std::vector<file_line> file_lines(std::string_view file) {
    std::vector<file_line> lines;
    std::string_view header;
    while (!file.empty()) {
        std::size_t end = file.find('\n');
        file_line line{file.substr(0, end), {}, {}, {}};
        file.remove_prefix(end == std::string_view::npos ? file.size() : end + 1);
        if (line.text.starts_with("SECTION\t") || line.text.starts_with("SUBSECTION\t"))
            header = line.text;
        line.header = header;
        if (line.text.starts_with("\t")) {
            std::string_view rest = line.text.substr(1);
            std::size_t gap = std::min(rest.find_first_of(" \t"), rest.size());
            line.keyword = rest.substr(0, gap);
            rest.remove_prefix(gap);
            rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
            line.value = rest.substr(0, rest.find("\t!"));
        }
        lines.push_back(line);
    }
    return lines;
}

std::string section_header(std::string_view title) {
    return "SECTION\t" + std::string(title);
}

// The value the file gives the keyword of a section; nullopt when the
// section does not write it.
std::optional<std::string> written_value(std::string_view file, std::string_view title,
                                         std::string_view keyword) {
    std::string header = section_header(title);
    for (const file_line &line : file_lines(file))
        if (line.header == header && line.keyword == keyword) return std::string(line.value);
    return std::nullopt;
}

// How a (sub)section header is named in messages: "X25", "SUBSECTION LAPB".
std::string header_name(std::string_view header) {
    std::string name(header.starts_with("SECTION\t") ? header.substr(8) : header);
    for (char &c : name)
        if (c == '\t') c = ' ';
    return name;
}

// The keyword lines in which the rewritten file differs from what was meant
// to be written: "X25 network PSS -> X25_1988". A file of another layout
// gives one line saying so.
std::vector<std::string> differences(std::string_view meant, std::string_view written) {
    std::vector<file_line> a = file_lines(meant), b = file_lines(written);
    if (a.size() != b.size()) return {"the layout of the file"};
    std::vector<std::string> found;
    for (std::size_t i = 0; i < a.size(); ++i) {
        // The identification block is the update's own business.
        if (a[i].text == b[i].text || (a[i].header.empty() && b[i].header.empty())) continue;
        if (a[i].keyword.empty() || a[i].keyword != b[i].keyword || a[i].header != b[i].header)
            return {"the layout of the file"};
        found.push_back(header_name(a[i].header) + ' ' + std::string(a[i].keyword) + ' ' +
                        std::string(a[i].value) + " -> " + std::string(b[i].value));
    }
    return found;
}

std::string file_text(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

bool as_number(const std::string &text, double &number) {
    if (text.empty()) return false;
    char *end = nullptr;
    number = std::strtod(text.c_str(), &end);
    return end != nullptr && *end == '\0';
}

// The value as the writer would spell it, where the reader takes another
// spelling too: a network by number, a version by its last two digits.
std::string written_spelling(std::string_view keyword, const std::string &asked) {
    double number;
    if (!as_number(asked, number) || number < 0 || number > 255 || number != int(number))
        return asked;
    if (keyword == "network") return __network_name(static_cast<uint32_t>(number));
    if (keyword == "version" && (number == 80 || number == 84 || number == 88))
        return std::to_string(1900 + int(number));
    return asked;
}

// Whether a value asked for is what the file says already.
bool same_value(std::string_view keyword, const std::string &written, const std::string &asked) {
    std::string spelled = written_spelling(keyword, asked);
    if (strcasecmp(written.c_str(), spelled.c_str()) == 0) return true;
    double a, b;
    return as_number(written, a) && as_number(spelled, b) && a == b;
}

// A file of its own in the temporary directory, removed with the object.
class scratch_file {
  public:
    explicit scratch_file(const std::string &content) {
        std::error_code ignored;
        fs::path directory = fs::temp_directory_path(ignored);
        if (directory.empty()) directory = "/tmp";
        std::string pattern = fs::absolute(directory, ignored).string() + "/qx25-set-XXXXXX";
        int fd = ::mkstemp(pattern.data());
        if (fd < 0) return;
        path_ = pattern;
        std::size_t done = 0;
        while (done < content.size()) {
            ssize_t written = ::write(fd, content.data() + done, content.size() - done);
            if (written <= 0) break;
            done += static_cast<std::size_t>(written);
        }
        if (::close(fd) != 0 || done != content.size()) {
            ::unlink(path_.c_str());
            path_.clear();
        }
    }
    ~scratch_file() {
        if (!path_.empty()) ::unlink(path_.c_str());
    }
    scratch_file(const scratch_file &) = delete;
    scratch_file &operator=(const scratch_file &) = delete;

    const std::string &path() const { return path_; } // empty when it could not be made

  private:
    std::string path_;
};

// Reads "SECTION title" with the one keyword line (none for a null keyword)
// into the link's records. Records read already keep their other values;
// fresh ones are given the defaults first, as for any file. The reader's
// result; its messages stay collected.
int apply_value(link_records &records, const section_info &section, const char *keyword,
                const char *value, bool read_already) {
    std::string content = std::string("IDENTIFICATION\n\tPRODUCT_NAME\tQuenlark X.25\n") +
                          "SECTION\t" + section.title + "\n";
    if (keyword != nullptr) content += std::string("\t") + keyword + "\t" + value + "\n";
    scratch_file file(content);
    if (file.path().empty()) return errno != 0 ? errno : EIO;

    link_config &config = records.config;
    std::optional<fresh_marker_guard> markers[5];
    if (read_already) {
        markers[0].emplace(config.x25.values.max_nsdu);
        markers[1].emplace(config.lapb.values.max_iframe_len);
        markers[2].emplace(config.llc2.values.max_iframe_len);
        markers[3].emplace(config.wan.values.tuning.max_frame);
        markers[4].emplace(config.mlp.values.mlp_win);
    }
    config_identification ids{};
    int mode = 0;
    auto only = [&](unsigned code, auto *record) {
        return section.code == code ? record : nullptr;
    };
    return x25_read_config_parameter_file(
        file.path().c_str(), &ids, &config.link, &config.x25, only(SECTION_MLP, &config.mlp),
        only(SECTION_LAPB, &config.lapb), only(SECTION_LLC2, &config.llc2),
        only(SECTION_WAN, &config.wan), &mode);
}

// Whether the reader takes the value at all: read into the defaults of a
// link of the same kind, it changes what the writer writes.
bool reader_takes(const link_records &link, const section_info &section, const char *keyword,
                  const char *value) {
    auto of_the_same_kind = [&](link_records &records) {
        link_values &values = records.config.link.values;
        values = link.config.link.values;
        values.subnet.name = values.subnet.description = nullptr;
        values.pvcs = nullptr;
    };
    link_records with, without;
    of_the_same_kind(with);
    of_the_same_kind(without);
    collect_messages();
    apply_value(with, section, keyword, value, false);
    apply_value(without, section, nullptr, nullptr, false);
    take_messages();
    return written_form(with) != written_form(without);
}

void release_update_records() {
    release(&cs);
    release(&xs);
    release(&ms);
    release(&lbs);
    release(&l2s);
    release(&ws);
}

} // namespace

int run_set(const command &self, std::span<char *const> args) {
    if (args.size() != 4) return usage_error(self, "LINK, SECTION, KEYWORD and VALUE are needed");
    const char *link_argument = args[0];
    const char *value = args[3];
    if (!is_number(link_argument) || std::strtoul(link_argument, nullptr, 10) > last_link_number)
        return usage_error(self, "LINK must be a link number from 0 to 254");
    auto number = static_cast<int>(std::strtoul(link_argument, nullptr, 10));
    std::optional<section_info> section = section_named(args[1]);
    if (!section)
        return usage_error(self, std::string("unknown section '") + args[1] +
                                     "': link, x25, llc2, lapb, wan or mlp");
    const char *keyword = keyword_named(section->keywords, args[2]);
    if (keyword == nullptr)
        return usage_error(self, std::string("'") + args[2] + "' is not a keyword of section " +
                                     section->title);
    if (is_x32_keyword(keyword))
        return usage_error(self, std::string("the X.32 keyword ") + keyword +
                                     " cannot be set: a rewrite does not keep it");
    if (std::strpbrk(value, "!\n\r") != nullptr)
        return usage_error(self, "a VALUE cannot hold '!' or a line break");
    if (std::strlen(keyword) + std::strlen(value) + 3 > longest_line)
        return usage_error(self, "VALUE is too long");

    std::string name, path;
    name_link_file(link_argument, name, path);
    std::string unchanged = "link " + std::to_string(number) + " not changed";

    // The link as its file has it.
    collect_messages();
    link_records records;
    int result = records.read(name.c_str());
    std::vector<std::string> messages = take_messages();
    if (result != 0) {
        if (!complain_all(self.name, messages))
            complain(self.name, path + ": " + std::strerror(result));
        complain(self.name, unchanged);
        return exit_failure;
    }
    if (complain_all(self.name, messages)) {
        complain(self.name, unchanged + ": its file has problems of its own (see qx25 check " +
                                std::to_string(number) + ")");
        return exit_failure;
    }
    if (records.has_x32()) {
        complain(self.name,
                 unchanged + ": its file holds X.32 keywords, which a rewrite does not keep");
        return exit_failure;
    }
    link_kind kind = kind_of(records.config.link.values);
    if (!section_of_link(section->code, kind, records.mode)) {
        complain(self.name, unchanged + ": it has no " + section->title +
                                " section to change (it is " + kind_name(kind) + ")");
        return exit_failure;
    }

    // The new value, read as the file's own.
    std::string before = written_form(records);
    collect_messages();
    result = apply_value(records, *section, keyword, value, true);
    messages = take_messages();
    if (result != 0 || complain_all(self.name, messages)) {
        if (result != 0 && messages.empty())
            complain(self.name, std::string("cannot read the value: ") + std::strerror(result));
        complain(self.name, unchanged);
        return exit_failure;
    }
    std::string after = written_form(records);
    std::optional<std::string> old_value = written_value(before, section->title, keyword);
    if (after == before) {
        if (!old_value) {
            complain(self.name, unchanged + ": " + keyword + " is not written to its file");
            return exit_failure;
        }
        if (!same_value(keyword, *old_value, value) &&
            !reader_takes(records, *section, keyword, value)) {
            complain(self.name, unchanged + ": '" + value + "' is not taken for " + keyword +
                                    " (out of range or not valid)");
            return exit_failure;
        }
        std::cout << "link " << number << ": " << section->title << ' ' << keyword << " is "
                  << *old_value << " already; file not rewritten\n";
        return exit_ok;
    }

    // The previous file first, then the new one.
    std::string backup = path + ".BAK";
    std::error_code error;
    fs::copy_file(path, backup, fs::copy_options::overwrite_existing, error);
    if (error) {
        complain(self.name, unchanged + ": cannot keep the previous file as " + backup + ": " +
                                error.message());
        return exit_failure;
    }
    // Puts the previous file back after a failed or unwanted rewrite.
    auto put_back = [&] {
        std::error_code restore_error;
        fs::copy_file(backup, path, fs::copy_options::overwrite_existing, restore_error);
        if (restore_error)
            complain(self.name, "cannot put the previous file back: " + restore_error.message() +
                                    "; it is kept as " + backup);
        else
            complain(self.name, unchanged);
        return exit_failure;
    };
    collect_messages();
    result = x25_update_link(number, section_record(records.config, section->code), section->code);
    messages = take_messages();
    release_update_records();
    complain_all(self.name, messages);
    if (result != 0) {
        complain(self.name, "cannot rewrite " + path + ": " + std::strerror(result));
        return put_back();
    }

    // What the update wrote against what was meant: it keeps the X.25
    // network number in line with the link's type and connect procedure.
    std::string written = without_date_and_user(file_text(path));
    std::optional<std::string> meant_value = written_value(after, section->title, keyword);
    std::optional<std::string> new_value = written_value(written, section->title, keyword);
    if (new_value != meant_value) {
        complain(self.name, "the update wrote " + std::string(keyword) + ' ' +
                                new_value.value_or("nothing") + ", not " +
                                meant_value.value_or(value));
        return put_back();
    }
    for (const std::string &difference : differences(after, written))
        complain(self.name, "the update also changed " + difference);
    std::cout << "link " << number << ": " << section->title << ' ' << keyword << ' '
              << old_value.value_or("(not written)") << " -> " << new_value.value_or(value)
              << "; previous file kept as " << backup << '\n';
    return exit_ok;
}

} // namespace qx25tool
