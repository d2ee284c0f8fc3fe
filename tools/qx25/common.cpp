// Helpers the qx25 commands share: the library's messages, tables, numbers
// and the tool's own complaints.
#include "command.h"

#include "messages.h"
#include "text_file.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <sys/stat.h>
#include <optional>
#include <unistd.h>
#include <utility>

namespace qx25tool {

namespace {

std::vector<std::string> collected_messages;

// The file a message of the form `format` ("Error opening file %s\n", in
// the catalog's words) names, or nullopt when the message is not of it.
std::optional<std::string> file_named(std::string_view message, std::string_view format) {
    std::size_t conversion = format.find("%s");
    if (conversion == std::string_view::npos) return std::nullopt;
    std::string_view before = format.substr(0, conversion);
    std::string_view after = format.substr(conversion + 2);
    if (message.size() < before.size() + after.size() || !message.starts_with(before) ||
        !message.ends_with(after))
        return std::nullopt;
    return std::string(
        message.substr(before.size(), message.size() - before.size() - after.size()));
}

// The library reports a file or directory it cannot open right after the
// failed call: errno still says why, and the reason is added to the message.
std::string with_reason(std::string message, int error) {
    if (std::optional<std::string> file =
            file_named(message, qx25::message_text(qx25::Msg::ErrorOpeningFile))) {
        while (!message.empty() && message.back() == '\n')
            message.pop_back();
        return message + ": " + open_failure_reason(*file, error);
    }
    if (file_named(message, qx25::message_text(qx25::Msg::ErrorOpeningDirectory))) {
        while (!message.empty() && message.back() == '\n')
            message.pop_back();
        return message + ": " + std::strerror(error != 0 ? error : EIO);
    }
    return message;
}

int collect(const char *message) {
    int error = errno;
    std::string text = with_reason(message != nullptr ? message : "", error);
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    collected_messages.push_back(std::move(text));
    errno = error;
    return 0;
}

const char *kind_of_special_file(mode_t mode) {
    if (S_ISFIFO(mode)) return "a FIFO";
    if (S_ISCHR(mode)) return "a character device";
    if (S_ISBLK(mode)) return "a block device";
    if (S_ISSOCK(mode)) return "a socket";
    return "not a plain file";
}

std::string padded(const std::string &cell, std::size_t width, bool right_aligned) {
    std::string fill(width - std::min(width, cell.size()), ' ');
    return right_aligned ? fill + cell : cell + fill;
}

} // namespace

void collect_messages() {
    collected_messages.clear();
    x25_set_config_error_function(collect);
    x25_set_parse_error_function(collect);
    set_link_error_function(collect);
    set_x25_template_error_function(collect);
    set_lapb_template_error_function(collect);
    set_llc2_template_error_function(collect);
    set_wan_template_error_function(collect);
}

std::vector<std::string> take_messages() {
    return std::exchange(collected_messages, {});
}

bool complain_all(std::string_view command_name, const std::vector<std::string> &messages) {
    for (const std::string &message : messages)
        complain(command_name, message);
    return !messages.empty();
}

void print_table(std::span<const column> columns,
                 const std::vector<std::vector<std::string>> &rows) {
    std::vector<std::size_t> widths;
    for (const column &c : columns)
        widths.push_back(c.title.size());
    for (const auto &row : rows)
        for (std::size_t i = 0; i < row.size() && i < widths.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    auto print_line = [&](auto cell_of) {
        std::string line;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (i > 0) line += "  ";
            bool last = i + 1 == columns.size();
            std::string cell = visible(cell_of(i));
            line += last && !columns[i].right_aligned
                        ? cell
                        : padded(cell, widths[i], columns[i].right_aligned);
        }
        while (!line.empty() && line.back() == ' ')
            line.pop_back();
        std::cout << line << '\n';
    };
    print_line([&](std::size_t i) { return std::string(columns[i].title); });
    for (const auto &row : rows)
        print_line([&](std::size_t i) { return i < row.size() ? row[i] : std::string(); });
}

bool is_number(const char *text) {
    if (*text == '\0') return false;
    for (; *text != '\0'; ++text)
        if (!std::isdigit(static_cast<unsigned char>(*text))) return false;
    return true;
}

int link_number(const char *text) {
    if (!is_number(text) || std::strlen(text) > 3) return -1;
    int number = std::atoi(text);
    return number <= 254 ? number : -1;
}

std::string visible(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (char c : text) {
        auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte != 0x7F) {
            shown += c;
            continue;
        }
        switch (c) {
        case '\r':
            shown += "\\r";
            break;
        case '\n':
            shown += "\\n";
            break;
        case '\t':
            shown += "\\t";
            break;
        default: {
            static constexpr char digits[] = "0123456789ABCDEF";
            shown += "\\x";
            shown += digits[byte >> 4];
            shown += digits[byte & 0x0F];
        }
        }
    }
    return shown;
}

std::string open_failure_reason(const std::string &path, int error) {
    struct stat status {};
    if (::stat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) return std::strerror(EISDIR);
        if (!S_ISREG(status.st_mode))
            return std::string("not a regular file (") + kind_of_special_file(status.st_mode) + ")";
    }
    return std::strerror(error != 0 ? error : EIO);
}

std::string unreadable_file(const std::string &path, bool may_be_missing) {
    qx25::file_ptr stream(qx25::open_regular_file(path.c_str()));
    if (stream != nullptr) return {};
    int error = errno;
    if (may_be_missing && error == ENOENT) return {};
    return path + ": " + open_failure_reason(path, error);
}

void with_messages_named(std::string_view command_name, const std::function<void()> &work) {
    std::fflush(stderr);
    std::FILE *scratch = std::tmpfile();
    int saved = scratch != nullptr ? ::dup(STDERR_FILENO) : -1;
    if (saved < 0 || ::dup2(::fileno(scratch), STDERR_FILENO) < 0) {
        if (saved >= 0) ::close(saved);
        if (scratch != nullptr) std::fclose(scratch);
        work(); // the messages go out as they are
        return;
    }
    work();
    std::fflush(stderr);
    ::dup2(saved, STDERR_FILENO);
    ::close(saved);
    std::string text;
    std::rewind(scratch);
    for (int c; (c = std::fgetc(scratch)) != EOF;)
        text += static_cast<char>(c);
    std::fclose(scratch);
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    if (!text.empty()) complain(command_name, text);
}

void complain(std::string_view command_name, std::string_view message) {
    // A message of several lines is shown as several, each with the name.
    do {
        std::size_t end = message.find('\n');
        std::cerr << "qx25 " << command_name << ": " << visible(message.substr(0, end)) << '\n';
        message.remove_prefix(end == std::string_view::npos ? message.size() : end + 1);
    } while (!message.empty());
}

int usage_error(const command &cmd, std::string_view message) {
    complain(cmd.name, message);
    complain(cmd.name, "usage: qx25 " + std::string(cmd.name) + ' ' + std::string(cmd.synopsis));
    return exit_usage;
}

} // namespace qx25tool
