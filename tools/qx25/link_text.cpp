#include "link_text.h"

#include <algorithm>

namespace qx25tool {

namespace {

constexpr std::string_view blanks = " \t";

std::string_view without_end(std::string_view line) {
    return line.substr(0, line.size() - line_end(line).size());
}

} // namespace

link_text::link_text(std::string text) : text_(std::move(text)) {
    std::uint32_t count = 0;
    for (std::size_t begin = 0; begin < text_.size();) {
        std::size_t newline = text_.find('\n', begin);
        std::size_t end = newline == std::string::npos ? text_.size() : newline + 1;
        auto pieces = static_cast<std::uint32_t>((end - begin + reader_piece - 1) / reader_piece);
        lines_.push_back({begin, end, count + 1, pieces});
        count += pieces;
        begin = end;
    }
}

std::string_view link_text::line(std::size_t index) const {
    const extent &e = lines_.at(index);
    return std::string_view(text_).substr(e.begin, e.end - e.begin);
}

std::optional<std::size_t> link_text::line_of_count(std::uint32_t line_no) const {
    auto after = std::upper_bound(
        lines_.begin(), lines_.end(), line_no,
        [](std::uint32_t count, const extent &e) { return count < e.first_count; });
    if (after == lines_.begin()) return std::nullopt;
    const extent &e = *(after - 1);
    if (line_no >= e.first_count + e.pieces) return std::nullopt;
    return static_cast<std::size_t>(after - 1 - lines_.begin());
}

bool link_text::read_whole(std::size_t index) const {
    return lines_.at(index).pieces == 1;
}

std::string_view link_text::line_end_after(std::size_t index) const {
    std::string_view end = qx25tool::line_end(line(index));
    if (end.empty() && index > 0) end = qx25tool::line_end(line(index - 1));
    return end.empty() ? "\n" : end;
}

std::string_view line_end(std::string_view line) {
    if (line.ends_with("\r\n")) return line.substr(line.size() - 2);
    if (line.ends_with("\n")) return line.substr(line.size() - 1);
    return {};
}

value_place value_of(std::string_view line) {
    std::string_view body = without_end(line);
    std::size_t start = std::min(body.find_first_not_of(blanks), body.size());
    std::size_t end = body.size();
    if (std::size_t bang = body.find('!', start); bang != std::string_view::npos) {
        end = bang;
        while (end > start && (body[end - 1] == ' ' || body[end - 1] == '\t'))
            --end;
    }
    std::size_t word_end = std::min(body.find_first_of(blanks, start), end);
    std::size_t value = std::min(body.find_first_not_of(blanks, word_end), end);
    return {value, std::max(value, end)};
}

std::string_view indentation(std::string_view line) {
    return line.substr(0, std::min(line.find_first_not_of(blanks), line.size()));
}

std::string keyword_line(std::string_view indent, std::string_view keyword, std::string_view value,
                         std::string_view end) {
    std::string line(indent);
    line.append(keyword).append("\t").append(value).append(end);
    return line;
}

std::string with_value(const link_text &text, std::size_t index, std::string_view value) {
    std::string_view line = text.line(index);
    value_place place = value_of(line);
    auto offset = static_cast<std::size_t>(line.data() - text.text().data());
    bool separated =
        place.begin > 0 && (line[place.begin - 1] == ' ' || line[place.begin - 1] == '\t');
    std::string replacement =
        separated || value.empty() ? std::string(value) : "\t" + std::string(value);
    std::string result = text.text();
    result.replace(offset + place.begin, place.end - place.begin, replacement);
    return result;
}

std::string with_line_after(const link_text &text, std::size_t index, std::string_view line) {
    std::string_view after = text.line(index);
    auto offset = static_cast<std::size_t>(after.data() - text.text().data()) + after.size();
    std::string result = text.text();
    if (line_end(after).empty()) {
        // The text ends here without a newline, and goes on doing so.
        std::string_view end = line_end(line);
        result.insert(offset, std::string(end) + std::string(without_end(line)));
    } else {
        result.insert(offset, line);
    }
    return result;
}

} // namespace qx25tool
