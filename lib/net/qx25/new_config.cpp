// Configuration line reader: opens a link configuration file, checks and
// stores its IDENTIFICATION block, and hands out classified logical lines
// with their comments, with a push-back of lines per stream.
#include "new_config.h"

#include "error_functions.h"
#include "messages.h"
#include "text_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <strings.h>

using namespace qx25;

namespace {

// A pushed-back line waiting for its stream.
struct queued_line {
    queued_line *next;
    FILE *stream;
    config_line line;
};

queued_line *cfg_queue = nullptr;

// Physical lines are read through one buffer for the whole library.
char physical_line[128];

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

// Appends at most `bound` characters of text, never past the field's end.
template <std::size_t N>
void append_bounded(char (&field)[N], std::string_view text, std::size_t bound) {
    std::size_t used = ::strnlen(field, N - 1);
    std::size_t count = std::min({text.size(), bound, N - 1 - used});
    std::memcpy(field + used, text.data(), count);
    field[used + count] = '\0';
}

// Copies at most `limit` characters and clears the rest of the field, so a
// field as wide as its limit is left without a terminator.
template <std::size_t N>
void copy_field(char (&field)[N], std::string_view text, std::size_t limit) {
    std::size_t count = std::min({text.size(), limit, N});
    std::memcpy(field, text.data(), count);
    std::memset(field + count, 0, N - count);
}

// Copies as much of the text as the field holds, with its terminator. What
// lies behind the terminator is left as it was: the fields of a line are
// texts.
template <std::size_t N> void copy_text(char (&field)[N], std::string_view text) {
    std::size_t count = std::min(text.size(), N - 1);
    std::memcpy(field, text.data(), count);
    field[count] = '\0';
}

// Adds a comment line (from its "!" on) to the line's comments. The bound
// comes from this comment line; the field's own end is what really stops a
// long run of comments.
void append_comment(config_line *line, const char *bang) {
    std::size_t bound = 1023 - std::strlen(bang);
    append_bounded(line->comments, bang + 1, bound);
}

// The text of a line ends at a NUL byte. A comment line that a NUL cut
// short keeps the newline its line went on to, so that it stays a comment
// line of its own and never runs into the next one; any other line is left
// as fgets gave it.
void keep_newline_of_cut_comment(bool line_went_on_to_newline) {
    std::size_t length = std::strlen(physical_line);
    if (!line_went_on_to_newline || (length > 0 && physical_line[length - 1] == '\n')) return;
    const char *text = physical_line + std::strspn(physical_line, " \t");
    if (*text == '!' && length + 1 < sizeof physical_line) {
        physical_line[length] = '\n';
        physical_line[length + 1] = '\0';
    }
}

// Reads one physical line into the shared line buffer with fgets.
bool read_physical_line(FILE *stream) {
    // No newline can be left over from an earlier line: any newline behind
    // the text was read now.
    std::memset(physical_line, 1, sizeof physical_line);
    if (std::fgets(physical_line, sizeof physical_line, stream) == nullptr) return false;
    std::size_t length = std::strlen(physical_line);
    keep_newline_of_cut_comment(
        std::memchr(physical_line + length, '\n', sizeof physical_line - length) != nullptr);
    return true;
}

// Puts a physical line into the shared line buffer as fgets would.
void take_into_line_buffer(const char *start, std::size_t length) {
    std::memcpy(physical_line, start, length);
    physical_line[length] = '\0';
    keep_newline_of_cut_comment(length > 0 && start[length - 1] == '\n');
}

bool take_queued(FILE *stream, config_line *line) {
    for (queued_line **link = &cfg_queue; *link != nullptr; link = &(*link)->next) {
        queued_line *node = *link;
        if (node->stream != stream) continue;
        *line = node->line;
        *link = node->next;
        std::free(node);
        return true;
    }
    return false;
}

// A newly opened stream cannot have lines of its own queued: whatever is
// queued under its pointer was left behind by a closed stream.
void drop_queued(FILE *stream) {
    config_line discarded;
    while (take_queued(stream, &discarded)) {
    }
}

int read_failure(FILE *stream) {
    if (std::feof(stream)) return -1;
    return errno != 0 ? errno : EINVAL;
}

bool ends_word(char c) {
    return c == '\0' || c == ' ' || c == '\t' || c == '\n';
}

// The kind of a line from its first word, compared without regard to case.
// Only a word of the length of one of the three names can be one of them.
uint16_t line_kind(const char *word, std::size_t length) {
    struct named_kind {
        std::string_view name;
        uint16_t kind;
    };
    static constexpr named_kind kinds[] = {{"SECTION", CONFIG_LINE_SECTION},
                                           {"IDENTIFICATION", CONFIG_LINE_IDENTIFICATION},
                                           {"SUBSECTION", CONFIG_LINE_SUBSECTION}};
    for (const named_kind &k : kinds)
        if (length == k.name.size() && strncasecmp(word, k.name.data(), length) == 0) return k.kind;
    return CONFIG_LINE_KEYWORD;
}

// Splits a logical line (leading blanks already skipped) into its parts.
// Runs for every line of every link file read: plain loops over the
// characters, each looked at once or twice.
void split_logical_line(char *text, config_line *line) {
    if (char *bang = std::strchr(text, '!')) {
        *bang = '\0';
        std::string_view comment(bang + 1);
        // The bound counts the newline that is then removed.
        std::size_t bound = 127 - std::min<std::size_t>(comment.size(), 127);
        if (!comment.empty() && comment.back() == '\n') comment.remove_suffix(1);
        append_bounded(line->trailer, comment, bound);
        for (char *end = bang; end > text && is_blank(end[-1]); --end)
            end[-1] = '\0';
    }

    const char *word_end = text;
    while (!ends_word(*word_end))
        ++word_end;
    std::string_view word(text, static_cast<std::size_t>(word_end - text));
    copy_text(line->keyword, word);

    const char *value = word_end;
    while (is_blank(*value))
        ++value;
    const char *value_end = value;
    while (*value_end != '\0' && *value_end != '\n')
        ++value_end;
    std::string_view rest(value, static_cast<std::size_t>(value_end - value));
    copy_text(line->value, rest);

    line->kind = line_kind(line->keyword, std::min(word.size(), sizeof line->keyword - 1));
}

struct identification_field {
    const char *keyword;
    char *(*field)(config_identification *);
    std::size_t width;
    std::size_t limit;
    Msg duplicate;
};

constexpr identification_field identification_fields[] = {
    {"PRODUCT_NAME", [](config_identification *i) { return i->product_name; }, 64, 63,
     Msg::DuplicateProductName},
    {"PRODUCT_VERSION", [](config_identification *i) { return i->product_version; }, 15, 15,
     Msg::DuplicateProductVersion},
    {"FILE_TYPE", [](config_identification *i) { return i->file_type; }, 32, 31,
     Msg::DuplicateFileType},
    {"MODIFIED_BY", [](config_identification *i) { return i->modified_by; }, 32, 31,
     Msg::DuplicateModifiedBy},
    {"FILE_DATE", [](config_identification *i) { return i->file_date; }, 32, 31,
     Msg::DuplicateFileDate},
};

void clear_comments(config_line *line) {
    line->comments[0] = '\0';
    line->trailer[0] = '\0';
}

// Takes the physical line in physical_line: a blank line is passed over,
// a comment line adds to the comments, anything else is the logical line,
// taken apart (true).
bool take_physical_line(config_line *line) {
    ++line->line_no;
    char *text = physical_line;
    while (is_blank(*text))
        ++text;
    if (*text == '\n') return false;
    if (*text == '!') {
        append_comment(line, text);
        return false;
    }
    split_logical_line(text, line);
    return true;
}

// The kind of the logical line that begins at `text`, from its first word
// as the split would cut it (a "!" ends the line); `end` bounds the text,
// which need not be terminated there. Only a word that begins with an S or
// an I and is at most 14 characters long is looked at closely.
uint16_t heading_kind(const char *text, const char *end) {
    constexpr std::size_t longest_heading = 14;
    if (text == end || (*text != 'S' && *text != 's' && *text != 'I' && *text != 'i'))
        return CONFIG_LINE_KEYWORD;
    const char *limit = std::min(end, text + longest_heading + 1);
    const char *word_end = text;
    while (word_end < limit && !ends_word(*word_end) && *word_end != '!')
        ++word_end;
    if (word_end == text + longest_heading + 1) return CONFIG_LINE_KEYWORD;
    return line_kind(text, static_cast<std::size_t>(word_end - text));
}

} // namespace

namespace qx25 {

config_block_reader::config_block_reader(FILE *stream)
    : stream_(stream), block_(static_cast<char *>(std::malloc(block_size))) {}

config_block_reader::~config_block_reader() {
    std::free(block_);
}

bool config_block_reader::next_physical_line(const char *&start, std::size_t &length,
                                             config_line *line) {
    constexpr std::size_t longest = sizeof physical_line - 1;
    if (held_ - used_ < longest && !at_end_) {
        // The comments put off are in the part of the block that goes.
        add_put_off_comments(line);
        std::memmove(block_, block_ + used_, held_ - used_);
        held_ -= used_;
        used_ = 0;
        errno = 0;
        std::size_t wanted = block_size - held_;
        std::size_t got = std::fread(block_ + held_, 1, wanted, stream_);
        held_ += got;
        if (got < wanted) {
            at_end_ = true;
            if (std::ferror(stream_)) error_ = errno != 0 ? errno : EINVAL;
        }
    }
    if (used_ == held_) return false;
    length = std::min(held_ - used_, longest);
    start = block_ + used_;
    if (const void *newline = std::memchr(start, '\n', length))
        length = static_cast<const char *>(newline) - start + 1;
    else if (length < longest && error_ != 0)
        return false; // cut short by the error, the line is lost
    used_ += length;
    return true;
}

void config_block_reader::put_off_comment(const char *start, std::size_t length,
                                          config_line *line) {
    if (put_off_count_ == max_put_off) add_put_off_comments(line);
    put_off_[put_off_count_++] = {static_cast<std::size_t>(start - block_), length};
}

void config_block_reader::add_put_off_comments(config_line *line) {
    for (std::size_t i = 0; i < put_off_count_; ++i) {
        take_into_line_buffer(block_ + put_off_[i].start, put_off_[i].length);
        append_comment(line, std::strchr(physical_line, '!')); // after blanks only
    }
    put_off_count_ = 0;
}

int config_block_reader::read(config_line *line, logical_line wanted) {
    if (take_queued(stream_, line)) return 0;
    const char *start;
    std::size_t length;
    while (next_physical_line(start, length, line)) {
        if (wanted == logical_line::heading) {
            // Classified where it lies in the block; only a comment
            // before a heading, and the heading, are copied out.
            const char *end = start + length;
            const char *text = start;
            while (text < end && is_blank(*text))
                ++text;
            if (text < end && *text == '\n') {
                ++line->line_no;
                continue;
            }
            if (text < end && *text == '!') {
                ++line->line_no;
                put_off_comment(start, length, line);
                continue;
            }
            if (heading_kind(text, end) == CONFIG_LINE_KEYWORD) {
                // As if a caller had read the line and emptied the
                // comments for the next one.
                ++line->line_no;
                put_off_count_ = 0;
                clear_comments(line);
                continue;
            }
            add_put_off_comments(line);
        }
        take_into_line_buffer(start, length);
        if (take_physical_line(line)) return 0;
    }
    add_put_off_comments(line);
    return error_ != 0 ? error_ : -1;
}

} // namespace qx25

extern "C" {

void __unread_config_line(FILE *stream, const config_line *line) {
    auto *node = static_cast<queued_line *>(std::calloc(1, sizeof(queued_line)));
    if (node == nullptr) {
        report(__config_error_function, Msg::NoMemory);
        return;
    }
    node->stream = stream;
    node->line = *line;
    node->next = cfg_queue;
    cfg_queue = node;
}

int x25_read_config_line(FILE *stream, config_line *line) {
    if (stream == nullptr || line == nullptr) return EINVAL;
    if (take_queued(stream, line)) return 0;

    for (;;) {
        errno = 0;
        if (!read_physical_line(stream)) return read_failure(stream);
        if (take_physical_line(line)) return 0;
    }
}

void fill_identification(const config_line *line, config_identification *ids) {
    for (const identification_field &entry : identification_fields) {
        if (strcasecmp(line->keyword, entry.keyword) != 0) continue;
        char *field = entry.field(ids);
        if (field[0] != '\0') {
            report(__config_error_function, entry.duplicate, static_cast<int>(line->line_no));
            return;
        }
        std::string_view value(line->value, ::strnlen(line->value, sizeof line->value));
        std::size_t count = std::min(value.size(), entry.limit);
        std::memcpy(field, value.data(), count);
        std::memset(field + count, 0, entry.width - count);
        return;
    }
}

FILE *x25_open_config_file(const char *name, config_identification *ids, int mode) {
    return qx25::open_config_stream(name, ids, mode, {});
}

} // extern "C"

FILE *qx25::open_config_stream(const char *name, config_identification *ids, int mode,
                               std::span<char> buffer) {
    if (name == nullptr || ids == nullptr) {
        report(__config_error_function, Msg::NullOpenConfigFile);
        return nullptr;
    }
    std::memset(ids, 0, sizeof *ids);
    config_line line{};

    FILE *stream = open_regular_file(name);
    if (stream == nullptr) {
        if (mode != X25_CONFIG_SILENT) report(__config_error_function, Msg::ErrorOpeningFile, name);
        return nullptr;
    }
    if (!buffer.empty()) std::setvbuf(stream, buffer.data(), _IOFBF, buffer.size());
    drop_queued(stream);

    auto fail = [stream](auto... report_args) -> FILE * {
        report(__config_error_function, report_args...);
        std::fclose(stream);
        return nullptr;
    };

    clear_comments(&line);
    if (x25_read_config_line(stream, &line) != 0) return fail(Msg::ErrorReadingIdent, name);
    if (line.kind != CONFIG_LINE_IDENTIFICATION)
        return fail(Msg::ErrorReadingIdentLine, name, static_cast<int>(line.line_no));
    copy_field(ids->comments, line.comments, sizeof ids->comments - 1);

    int result;
    for (;;) {
        clear_comments(&line);
        result = x25_read_config_line(stream, &line);
        if (result != 0 || line.kind != CONFIG_LINE_KEYWORD) break;
        fill_identification(&line, ids);
    }
    if (line.kind != CONFIG_LINE_SECTION)
        return fail(Msg::IdentWronglyTerminated, name, static_cast<int>(line.line_no));
    if (result != 0) return fail(Msg::ErrorReadingIdentLine, name, static_cast<int>(line.line_no));

    __unread_config_line(stream, &line);
    return stream;
}
