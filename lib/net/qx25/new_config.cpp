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

} // namespace

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
        if (std::fgets(physical_line, sizeof physical_line, stream) == nullptr)
            return read_failure(stream);
        ++line->line_no;
        char *text = physical_line;
        while (is_blank(*text))
            ++text;
        if (*text == '\n') continue;
        if (*text == '!') {
            // The bound comes from this comment line; the field's own end
            // is what really stops a long run of comments.
            std::size_t bound = 1023 - std::strlen(text);
            append_bounded(line->comments, text + 1, bound);
            continue;
        }
        split_logical_line(text, line);
        return 0;
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

} // extern "C"
