#include "keyword_edit.h"

#include "link_text.h"
#include "scratch_file.h"

#include "link_config.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
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

const config_keyword *keywords_of(int section) {
    switch (section) {
    case SECTION_LINK:
        return __LINK_functions;
    case SECTION_X25:
        return __X25_functions;
    case SECTION_LLC2:
        return __LLC2_functions;
    case SECTION_LAPB:
        return __LAPB_functions;
    case SECTION_WAN:
        return __WAN_functions;
    default:
        return __MLP_functions;
    }
}

std::string upper(std::string_view word) {
    std::string text(word);
    for (char &c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

// The section code of a SECTION line's value as the reader finds it: the
// name without the blanks and tabs after it, in any case; 0 for none.
int section_code(std::string_view name) {
    while (!name.empty() && (name.back() == ' ' || name.back() == '\t'))
        name.remove_suffix(1);
    for (const config_keyword *row = section_map; row->name != nullptr; ++row)
        if (same_word(row->name, name)) return row->index;
    return 0;
}

// Which record the reader gives the keyword lines that follow the lines read
// so far, with every record given: it follows SECTION, SUBSECTION and
// IDENTIFICATION lines as the reader does.
class reader_position {
  public:
    void follow(const config_line &line) {
        switch (line.kind) {
        case CONFIG_LINE_IDENTIFICATION:
            section_ = 0;
            break;
        case CONFIG_LINE_SECTION:
            section_ = section_code(line.value);
            if (section_ == SECTION_MLP) lapb_count_ = wan_count_ = subsection_ = 0;
            break;
        case CONFIG_LINE_SUBSECTION:
            if (section_ != SECTION_MLP) {
                section_ = 0;
                break;
            }
            subsection_ = section_code(line.value);
            // A sixth subsection of a kind stands for the fifth again.
            if (subsection_ == SECTION_LAPB && lapb_count_ < MLP_MAX_SUBSECTIONS) ++lapb_count_;
            if (subsection_ == SECTION_WAN && wan_count_ < MLP_MAX_SUBSECTIONS) ++wan_count_;
            if (subsection_ != SECTION_LAPB && subsection_ != SECTION_WAN) subsection_ = 0;
            break;
        default:
            break;
        }
    }

    // Whether keyword lines now go to the target's record.
    bool at(const edit_target &target) const {
        if (section_ != target.section) return false;
        if (section_ != SECTION_MLP) return true;
        int position = subsection_ == SECTION_LAPB  ? lapb_count_ - 1
                       : subsection_ == SECTION_WAN ? wan_count_ - 1
                                                    : 0;
        return subsection_ == target.subsection && position == target.position;
    }

  private:
    int section_ = 0;
    int subsection_ = 0;
    int lapb_count_ = 0;
    int wan_count_ = 0;
};

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
        if (!index || !position.at(target)) continue;
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

std::vector<std::string> with_name(std::vector<std::string> messages, const std::string &from,
                                   std::string_view to) {
    for (std::string &message : messages)
        for (std::size_t at = message.find(from); !from.empty() && at != std::string::npos;
             at = message.find(from, at + to.size()))
            message.replace(at, from.size(), to);
    return messages;
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
    std::vector<std::string> file_messages = with_name(take_messages(), path, file_name);
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
    now.messages = with_name(now.messages, path, file_name);
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
    edit.outcome = edit_outcome::changed;
    edit.expected = std::move(now.parts);
    edit.expected_messages = std::move(now.messages);
    return edit;
}

} // namespace qx25tool
