#include "keyword_edit.h"

#include "link_text.h"
#include "reader_position.h"
#include "scratch_file.h"

#include "link_config.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <strings.h>

namespace qx25tool {

namespace {

// Why a scratch file could not be written, while errno still says it.
std::string scratch_failure() {
    const char *reason = std::strerror(errno);
    return std::string("cannot write a scratch file: ") + reason;
}

bool same_word(std::string_view a, std::string_view b) {
    return a.size() == b.size() && strncasecmp(a.data(), b.data(), a.size()) == 0;
}

// Whether keyword lines now go to the target's record.
bool at(const reader_position &position, const edit_target &target) {
    if (position.section() != target.section) return false;
    return position.subsection() == target.subsection && position.position() == target.position;
}

// Where the target's lines stand in a file.
struct location {
    std::optional<std::size_t> line;   // the keyword's (last) line
    std::optional<std::size_t> anchor; // the target's last line of any kind
    bool anchor_is_keyword_line = false;
    std::string value; // the reader's value of the keyword's line
};

location locate(const std::string &path, const link_text &text, const edit_target &target,
                const char *keyword) {
    location found;
    config_identification ids{};
    FILE *stream = x25_open_config_file(path.c_str(), &ids, 0);
    if (stream == nullptr) return found;
    reader_position position;
    config_line line{};
    for (;;) {
        line.comments[0] = '\0';
        line.trailer[0] = '\0';
        if (x25_read_config_line(stream, &line) != 0) break;
        position.follow(line);
        std::optional<std::size_t> index = text.line_of_count(line.line_no);
        if (!index || !at(position, target)) continue;
        found.anchor = index;
        found.anchor_is_keyword_line = line.kind == CONFIG_LINE_KEYWORD;
        if (line.kind == CONFIG_LINE_KEYWORD && strcasecmp(line.keyword, keyword) == 0) {
            found.line = index;
            found.value = line.value;
        }
    }
    std::fclose(stream);
    return found;
}

// The reader loads defaults into a record whose marker field is 0, taking
// it for a fresh one. While the guard lives a marker of 0 holds a value no
// file can give it, so that a record read already keeps its values.
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

// Reads a file of the one keyword line into records read already, which
// changes what that line changes and nothing else; the reader's messages.
std::vector<std::string> apply_value(link_records &records, const edit_target &target,
                                     const char *keyword, std::string_view value,
                                     scratch_file &file) {
    std::string content = "IDENTIFICATION\nSECTION\t";
    if (target.subsection == 0) {
        content += upper(section_map[target.section - 1].name);
    } else {
        content += "MLP";
        for (int i = 0; i <= target.position; ++i)
            content +=
                target.subsection == SECTION_LAPB ? "\nSUBSECTION\tLAPB" : "\nSUBSECTION\tWAN";
    }
    content.append("\n\t").append(keyword).append("\t").append(value).append("\n");
    if (!file.hold(content)) return {scratch_failure()};

    link_config &c = records.config;
    fresh_marker_guard x25(c.x25.values.max_nsdu);
    fresh_marker_guard lapb(c.lapb.values.max_iframe_len);
    fresh_marker_guard llc2(c.llc2.values.max_iframe_len);
    fresh_marker_guard wan(c.wan.values.tuning.max_frame);
    fresh_marker_guard mlp(c.mlp.values.mlp_win);
    collect_messages();
    config_identification ids{}; // the scratch file's, not the link file's
    int mode = 0;
    int result = x25_read_config_parameter_file_x32(
        file.path().c_str(), &ids, &c.link, &c.x25, &c.mlp, &c.lapb, &c.llc2, &c.wan,
        &records.x25_x32, &records.lapb_x32, records.mlp_x32, &mode);
    std::vector<std::string> messages = take_messages();
    if (result != 0 && messages.empty())
        messages.push_back(std::string("cannot read a scratch file: ") + std::strerror(result));
    return messages;
}

// Values to tell a value the reader passes over from one that the record
// holds already: one of them that changes the record makes a record in which
// the keyword's field differs from the file's.
constexpr const char *probes[] = {
    "0",     "1",   "2",    "7",    "8",      "128",  "0.1", "0.2",   "0.3",      "0.6",  "2.0",
    "6.0",   "y",   "n",    "auto", "normal", "1-2",  "0-0", "basic", "extended", "zero", "clear",
    "reset", "x21", "none", "lan",  "wan",    "80",   "84",  "dte",   "dce",      "lapb", "lapbe",
    "a",     "b",   "12",   "34",   "0000",   "1111", "1.1", "1.2"};

// Device names for the probes of the device keyword: those of the link's
// first device kind.
std::vector<std::string> device_probes(const link_records &records) {
    const link_values &link = records.config.link.values;
    const device_type &row = __config_linktype[link.device_count > 0 ? link.device_type[0] : 0];
    if (!row.valid) return {};
    return {std::string(row.device) + "0", std::string(row.device) + "1"};
}

// Whether the reader takes a value that changes nothing in the file's
// records: there is a record in which it does change the keyword's field.
bool taken_though_unchanged(link_records &records, const record_parts &file_parts,
                            const edit_target &target, const char *keyword, std::string_view value,
                            scratch_file &scratch) {
    std::vector<std::string> candidates(std::begin(probes), std::end(probes));
    for (std::string &device : device_probes(records))
        candidates.push_back(std::move(device));
    // A probe that changes nothing leaves the records as the file has them,
    // ready for the next one.
    for (const std::string &probe : candidates) {
        // What the reader reports about the probe does not matter: it only
        // has to change the field.
        apply_value(records, target, keyword, probe, scratch);
        record_parts probed = parts_of(records);
        if (!first_difference(file_parts, probed)) continue;
        apply_value(records, target, keyword, value, scratch);
        return first_difference(probed, parts_of(records)).has_value();
    }
    return false;
}

// The text without line `index`.
std::string without_line_text(const link_text &text, std::size_t index) {
    std::string_view line = text.line(index);
    auto offset = static_cast<std::size_t>(line.data() - text.text().data());
    return std::string(text.text()).erase(offset, line.size());
}

// Puts the value into the text of `edit`: on the keyword's line, or on a
// line of its own after the target's last line. The index of that line.
std::size_t place_value(const link_text &lines, const location &where, const char *keyword,
                        std::string_view value, keyword_edit &edit) {
    std::size_t index;
    if (where.line) {
        index = *where.line;
        edit.new_text = with_value(lines, index, value);
    } else {
        std::string_view anchor = lines.line(*where.anchor);
        std::string added = keyword_line(where.anchor_is_keyword_line ? indentation(anchor) : "\t",
                                         keyword, value, lines.line_end_after(*where.anchor));
        index = *where.anchor + 1;
        edit.new_text = with_line_after(lines, *where.anchor, added);
        edit.added = true;
    }
    edit.line = index + 1;
    return index;
}

// The value of the keyword as the library's writer writes the records;
// nullopt when it writes no line for it.
std::optional<std::string> written_value(link_records &records, const edit_target &target,
                                         const char *keyword, scratch_file &file) {
    // The writer stamps the identification it writes: the records keep theirs.
    config_identification ids = records.config.ids;
    std::string text;
    int result = records.write_text(text);
    records.config.ids = ids;
    take_messages();
    if (result != 0 || !file.hold(text)) return std::nullopt;
    link_text lines{text};
    location where = locate(file.path(), lines, target, keyword);
    take_messages();
    if (!where.line) return std::nullopt;
    return where.value;
}

// A decimal number: digits, and a point and digits after them.
bool is_decimal(std::string_view text) {
    std::size_t digits = text.find_first_not_of("0123456789");
    if (digits == 0 || text.empty()) return false;
    if (digits == std::string_view::npos) return true;
    std::string_view fraction = text.substr(digits);
    return fraction.size() > 1 && fraction.front() == '.' &&
           fraction.find_first_not_of("0123456789", 1) == std::string_view::npos;
}

// Keywords whose value is a name that a number may stand for.
constexpr const char *named_by_number[] = {"network"};

// Why the value is not wholly a value of the keyword, or nullopt: the
// reader bends a value it does not take whole (it reads "abc" as 0.0 and
// "4.5 extra words" as 4.5). The writer's form of what the reader made of
// the value must be the value itself: the same word in any case, or the same
// number.
std::optional<std::string> bent_value(std::string_view value, std::string_view written,
                                      const char *keyword) {
    // The writer may leave blanks after a value: they are no part of it.
    while (!written.empty() && (written.back() == ' ' || written.back() == '\t'))
        written.remove_suffix(1);
    if (same_word(value, written)) return std::nullopt;
    if (is_decimal(written) && is_decimal(value) &&
        std::strtod(std::string(value).c_str(), nullptr) ==
            std::strtod(std::string(written).c_str(), nullptr))
        return std::nullopt;
    if (!is_decimal(written) && is_decimal(value) && value.find('.') == std::string_view::npos)
        for (const char *name : named_by_number)
            if (strcasecmp(name, keyword) == 0) return std::nullopt;
    return "'" + std::string(value) + "' is not a value of " + keyword +
           ": the reader would take it as " + std::string(written);
}

// Why the value is not wholly a value of the keyword, read into the records
// of the file's text; nullopt when it is, or when the writer writes no line
// for the keyword to compare it with.
std::optional<std::string> bent_for(std::string_view text, const edit_target &target,
                                    const char *keyword, std::string_view value) {
    scratch_file original, file;
    if (!original.hold(text)) return std::nullopt;
    link_records records;
    collect_messages();
    records.read(original.path().c_str());
    take_messages();
    apply_value(records, target, keyword, value, file);
    std::optional<std::string> written = written_value(records, target, keyword, file);
    return written ? bent_value(value, *written, keyword) : std::nullopt;
}

keyword_edit refused(std::string reason) {
    keyword_edit edit;
    edit.reason = std::move(reason);
    return edit;
}

keyword_edit refused(std::vector<std::string> messages) {
    keyword_edit edit;
    edit.messages = std::move(messages);
    return edit;
}

// The messages of `now` that `before` does not have (as many times).
std::vector<std::string> new_messages(std::vector<std::string> before,
                                      const std::vector<std::string> &now) {
    std::vector<std::string> added;
    for (const std::string &message : now) {
        auto known = std::find(before.begin(), before.end(), message);
        if (known != before.end())
            before.erase(known);
        else
            added.push_back(message);
    }
    return added;
}

} // namespace

std::optional<edit_target> target_named(std::string_view name) {
    if (name.find_first_of(" \t") != std::string_view::npos) return std::nullopt;
    if (int code = section_code(name); code != 0)
        return edit_target{code, 0, 0, upper(name), keywords_of(code)};
    if (name.empty() || name.back() < '1' || name.back() > '0' + MLP_MAX_SUBSECTIONS)
        return std::nullopt;
    int position = name.back() - '1';
    name.remove_suffix(1);
    int code = section_code(name);
    if (code != SECTION_LAPB && code != SECTION_WAN) return std::nullopt;
    return edit_target{SECTION_MLP, code, position,
                       upper(name) + " subsection " + std::to_string(position + 1),
                       keywords_of(code)};
}

const char *keyword_named(const edit_target &target, std::string_view name) {
    for (const config_keyword *row = target.keywords; row->name != nullptr; ++row)
        if (same_word(row->name, name)) return row->name;
    return nullptr;
}

std::optional<std::string> value_problem(std::string_view value) {
    if (value.find_first_of("!\n\r") != std::string_view::npos)
        return "a VALUE cannot hold '!' or a line break";
    if (!value.empty() && (value.front() == ' ' || value.front() == '\t' || value.back() == ' ' ||
                           value.back() == '\t'))
        return "a VALUE cannot begin or end with a blank or a tab";
    return std::nullopt;
}

reading read_link_file(const std::string &path) {
    reading result;
    link_records records;
    collect_messages();
    result.result = records.read(path.c_str());
    result.messages = take_messages();
    result.parts = parts_of(records);
    return result;
}

keyword_edit plan_keyword_edit(std::string_view text, std::string_view file_name,
                               const edit_target &target, const char *keyword,
                               std::string_view value) {
    if (std::optional<std::string> problem = value_problem(value)) return refused(*problem);
    scratch_file original;
    scratch_file applied;
    if (!original.hold(text)) return refused(scratch_failure());
    const std::string &path = original.path();

    // The file as the library reads it, and where the target's lines are.
    link_records records;
    collect_messages();
    int result = records.read(path.c_str());
    std::vector<std::string> file_messages = renamed(take_messages(), path, file_name);
    if (result != 0) {
        if (file_messages.empty())
            file_messages.push_back(std::string(file_name) + ": " + std::strerror(result));
        return refused(file_messages);
    }
    link_text lines{std::string(text)};
    collect_messages();
    location where = locate(path, lines, target, keyword);
    take_messages();
    if (!where.anchor)
        return refused(target.subsection == 0 ? "its file has no SECTION " + target.title
                                              : "its SECTION MLP has no " + target.title);
    if (where.line && !lines.read_whole(*where.line))
        return refused("line " + std::to_string(*where.line + 1) + " of its file is longer than " +
                       std::to_string(reader_piece) + " characters");

    // The value, read by the library into the file's records.
    record_parts before = parts_of(records);
    std::vector<std::string> messages = apply_value(records, target, keyword, value, applied);
    if (!messages.empty()) return refused(messages);
    record_parts changed = parts_of(records);

    keyword_edit edit;
    if (where.line) edit.old_value = where.value;
    if (!first_difference(before, changed)) {
        if (!taken_though_unchanged(records, before, target, keyword, value, applied))
            return refused("the reader passes over '" + std::string(value) + "' for " + keyword +
                           " (out of range, not valid, or of no effect on this link)");
        if (std::optional<std::string> bent = bent_for(text, target, keyword, value))
            return refused(*bent);
        edit.outcome = edit_outcome::unchanged;
        return edit;
    }

    // The new text: the value on the keyword's line, or a line of its own.
    std::size_t index = place_value(lines, where, keyword, value, edit);
    link_text edited{edit.new_text};
    if (index >= edited.line_count() || !edited.read_whole(index))
        return refused("the line would be longer than the " + std::to_string(reader_piece) +
                       " characters the reader takes");

    // The new text as the library reads it.
    if (!original.hold(edit.new_text)) return refused(scratch_failure());
    reading now = read_link_file(path);
    now.messages = renamed(now.messages, path, file_name);
    if (now.result != 0) return refused(now.messages);
    if (std::vector<std::string> added = new_messages(file_messages, now.messages); !added.empty())
        return refused(added);
    if (!first_difference(before, now.parts)) {
        // The file reads the same with the new value: a later line sets
        // again what the value set.
        edit.outcome = edit_outcome::unchanged;
        edit.new_text.clear();
        return edit;
    }
    // Where the new text reads otherwise than the old one, it must read as
    // the value makes the records: the old ones with the value read into
    // them, or (where the old line set what the value does not set again)
    // those of the file without the keyword's line.
    std::vector<record_parts> made_by_value{changed};
    if (where.line) {
        link_records without_line;
        if (!original.hold(without_line_text(lines, *where.line)))
            return refused(scratch_failure());
        collect_messages();
        without_line.read(path.c_str());
        take_messages();
        apply_value(without_line, target, keyword, value, applied);
        made_by_value.push_back(parts_of(without_line));
    }
    if (std::optional<std::string> stray = stray_difference(before, made_by_value, now.parts))
        return refused("the new value would change more of what the library reads from the "
                       "file (" +
                       *stray + ")");
    if (std::optional<std::string> bent = bent_for(text, target, keyword, value))
        return refused(*bent);
    edit.outcome = edit_outcome::changed;
    edit.expected = std::move(now.parts);
    edit.expected_messages = std::move(now.messages);
    return edit;
}

} // namespace qx25tool
