#include "link_check.h"

#include "link_text.h"
#include "reader_position.h"
#include "scratch_file.h"

#include "link_config.h"
#include "text_file.h"

#include <cstring>
#include <map>
#include <strings.h>

namespace qx25tool {

namespace {

// The reader keeps this many characters of the comments before a line.
constexpr std::size_t comments_kept = sizeof(config_line{}.comments) - 1;

std::string count_of(std::size_t count, const char *what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

// The text after the blanks and tabs a line begins with.
std::string_view body_of(std::string_view line) {
    return line.substr(indentation(line).size());
}

void check_line_ends(const link_text &lines, file_findings &out) {
    std::size_t first = 0;
    if (std::string finding = crlf_finding(lines.text(), &first); !finding.empty())
        out.add(first, finding);
}

void check_long_lines(const link_text &lines, file_findings &out) {
    for (std::size_t i = 0; i < lines.line_count(); ++i) {
        if (lines.read_whole(i)) continue;
        std::string_view line = lines.line(i);
        out.add(i + 1, "the line is " + count_of(line.size(), "character") +
                           " long with its line end: the reader takes " +
                           std::to_string(reader_piece) +
                           " at a time and reads the rest as a line of its own");
    }
}

// Comment blocks the reader cuts, and comments it drops: those at the end of
// the file belong to no line.
void check_comment_blocks(const link_text &lines, file_findings &out) {
    std::size_t held = 0, first = 0;
    bool cut = false;
    for (std::size_t i = 0; i < lines.line_count(); ++i) {
        std::string_view body = body_of(lines.line(i));
        if (!lines.read_whole(i) ||
            (!body.empty() && body.front() != '\n' && body.front() != '!')) {
            held = first = 0;
            cut = false;
            continue;
        }
        if (body.empty() || body.front() == '\n') continue; // a blank line
        if (first == 0) first = i + 1;
        held += body.size() - 1; // the text after the "!", its newline included
        if (held > comments_kept && !cut) {
            out.add(i + 1, "the comments from line " + std::to_string(first) + " on hold " +
                               "more than the " + std::to_string(comments_kept) +
                               " characters the reader keeps for a line: from here on they are "
                               "dropped by a rewrite");
            cut = true;
        }
    }
    if (first != 0)
        out.add(first, "comments after the last line belong to no line: the reader does not "
                       "keep them, and a rewrite drops them");
}

// What the reader reports about a text: the messages, naming `path`.
std::vector<std::string> reader_messages(std::string_view text, scratch_file &file,
                                         const std::string &path, int *result = nullptr) {
    if (!file.hold(text)) return {};
    link_records records;
    collect_messages();
    int read = records.read(file.path().c_str());
    if (result != nullptr) *result = read;
    return renamed(take_messages(), file.path(), path);
}

// Places each message of the reader on the line that made it: the reader
// reports a line as it reads it, so message j comes from the first line
// whose end, read as the end of the file, yields it.
std::vector<std::size_t> message_lines(const link_text &lines,
                                       const std::vector<std::string> &messages,
                                       const std::string &path) {
    scratch_file file;
    std::map<std::size_t, std::size_t>
        known; // line index -> messages that the text up to it shares
    auto shared = [&](std::size_t index) {
        if (auto found = known.find(index); found != known.end()) return found->second;
        std::string_view line = lines.line(index);
        std::size_t end = static_cast<std::size_t>(line.data() - lines.text().data()) + line.size();
        std::vector<std::string> early =
            reader_messages(std::string_view(lines.text()).substr(0, end), file, path);
        std::size_t count = 0;
        while (count < early.size() && count < messages.size() && early[count] == messages[count])
            ++count;
        return known[index] = count;
    };
    std::vector<std::size_t> placed;
    for (std::size_t j = 0; j < messages.size(); ++j) {
        std::size_t low = 0, high = lines.line_count(); // the first line with more than j
        while (low < high) {
            std::size_t middle = low + (high - low) / 2;
            if (shared(middle) > j)
                high = middle;
            else
                low = middle + 1;
        }
        placed.push_back(low < lines.line_count() ? low + 1 : lines.line_count());
    }
    return placed;
}

bool in_table(const config_keyword *table, const char *keyword) {
    for (const config_keyword *row = table; row->name != nullptr; ++row)
        if (strcasecmp(row->name, keyword) == 0) return true;
    return false;
}

// Follows the file's lines as the reader does: keyword lines the reader
// passes over without a word, comments it does not keep, and where the LINK
// keywords that links are compared by stand.
void check_keyword_lines(const std::string &scratch, const link_text &lines, checked_link &out) {
    qx25::file_ptr stream(qx25::open_regular_file(scratch.c_str()));
    if (stream == nullptr) return;
    reader_position position;
    bool identification = false, sections = false;
    config_line line{};
    for (;;) {
        line.comments[0] = '\0';
        line.trailer[0] = '\0';
        if (x25_read_config_line(stream.get(), &line) != 0) break;
        std::optional<std::size_t> index = lines.line_of_count(line.line_no);
        std::size_t number = index ? *index + 1 : 0;
        if (line.kind == CONFIG_LINE_IDENTIFICATION && !sections) identification = true;
        if (line.kind == CONFIG_LINE_SECTION) sections = true;
        position.follow(line);
        if (line.kind != CONFIG_LINE_KEYWORD || !sections) {
            if (identification && !sections && line.kind == CONFIG_LINE_KEYWORD &&
                line.comments[0] != '\0')
                out.findings.add(number, "the comments before this line of the IDENTIFICATION "
                                         "block are not kept: a rewrite drops them");
            continue;
        }
        const config_keyword *table = position.keywords();
        if (table == nullptr) {
            out.findings.add(number, "the keyword line '" + std::string(line.keyword) +
                                         "' is in no known section: the reader passes over it, "
                                         "and a rewrite drops it");
            continue;
        }
        if (position.section() == SECTION_LINK) {
            // The reader names the unknown keywords of SECTION LINK itself.
            if (strcasecmp(line.keyword, "device") == 0) out.device_line = number;
            if (strcasecmp(line.keyword, "alias") == 0) out.alias_line = number;
            if (strcasecmp(line.keyword, "full_address") == 0) out.address_line = number;
            continue;
        }
        if (!in_table(table, line.keyword))
            out.findings.add(number, "unknown keyword '" + std::string(line.keyword) +
                                         "': the reader passes over it without a word, and a "
                                         "rewrite drops it");
    }
}

} // namespace

std::string crlf_finding(std::string_view text, std::size_t *first_line) {
    link_text lines{std::string(text)};
    std::size_t first = 0, crlf = 0;
    for (std::size_t i = 0; i < lines.line_count(); ++i)
        if (line_end(lines.line(i)) == "\r\n" && crlf++ == 0) first = i + 1;
    if (first_line != nullptr) *first_line = first;
    if (crlf == 0) return {};
    return "the file has CRLF line ends (a carriage return before the newline) on " +
           count_of(crlf, "line") + ": the reader takes each carriage return as a part of the line";
}

std::string crlf_note(const std::string &path) {
    std::string text, failure;
    struct stat status {};
    if (!read_link_text(path, text, status, failure)) return {};
    std::string finding = crlf_finding(text);
    return finding.empty() ? finding : path + ": " + finding;
}

checked_link check_link_file(const std::string &name, const std::string &path) {
    checked_link out;
    out.findings.path = path;
    std::string base = path.substr(path.rfind('/') + 1);
    out.number = valid_filename(base.c_str());

    std::string text, failure;
    struct stat status {};
    if (!read_link_text(path, text, status, failure)) {
        // The reader's own message, with the reason.
        link_records records;
        collect_messages();
        records.read(name.c_str());
        for (std::string &message : take_messages())
            out.findings.add(0, std::move(message));
        if (out.findings.found.empty())
            out.findings.add(0, failure.starts_with(path + ": ") ? failure.substr(path.size() + 2)
                                                                 : failure);
        return out;
    }
    if (out.number > 254)
        out.findings.add(0, "link number " + std::to_string(out.number) +
                                " is outside 0..254: no X.25 address can name the link");

    link_text lines{text};
    check_line_ends(lines, out.findings);
    check_long_lines(lines, out.findings);
    check_comment_blocks(lines, out.findings);

    // What the reader reports, on the lines that made it.
    scratch_file file;
    int result = 0;
    std::vector<std::string> messages = reader_messages(text, file, path, &result);
    std::vector<std::size_t> placed = message_lines(lines, messages, path);
    for (std::size_t j = 0; j < messages.size(); ++j)
        out.findings.add(placed[j], messages[j]);
    if (result != 0) {
        if (messages.empty()) out.findings.add(0, std::strerror(result));
        return out;
    }

    file.hold(text);
    check_keyword_lines(file.path(), lines, out);
    out.records = std::make_unique<link_records>();
    collect_messages();
    out.records->read(name.c_str());
    take_messages();

    unsigned named = out.records->config.link.values.subnet.address.snid;
    if (out.number >= 0 && out.address_line != 0 && named != X25_NO_SNID &&
        named != unsigned(out.number))
        out.findings.add(out.address_line,
                         "full_address names link " + std::to_string(named) +
                             ", but the file is that of link " + std::to_string(out.number) +
                             ": the reader takes the link number from the file name");
    return out;
}

} // namespace qx25tool
