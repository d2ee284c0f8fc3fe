// Helpers the qx25 commands share: the library's messages, tables, numbers
// and the tool's own complaints.
#include "command.h"

#include <algorithm>
#include <cctype>
#include <iostream>
#include <utility>

namespace qx25tool {

namespace {

std::vector<std::string> collected_messages;

int collect(const char *message) {
    std::string text = message != nullptr ? message : "";
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    collected_messages.push_back(std::move(text));
    return 0;
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
            std::string cell = cell_of(i);
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

void complain(std::string_view command_name, std::string_view message) {
    std::cerr << "qx25 " << command_name << ": " << message << '\n';
}

int usage_error(const command &cmd, std::string_view message) {
    complain(cmd.name, message);
    std::cerr << "usage: qx25 " << cmd.name << ' ' << cmd.synopsis << '\n';
    return exit_usage;
}

} // namespace qx25tool
