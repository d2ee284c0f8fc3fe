// A link file as text: its physical lines, the line reader's count of them,
// and the two edits qx25 set makes: a keyword line's value replaced, or one
// keyword line added. Every other byte of the text stays as it is.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qx25tool {

// The line reader takes at most this many characters of a line at a time,
// its newline included; the rest of a longer line comes as a line of its own.
inline constexpr std::size_t reader_piece = 127;

class link_text {
  public:
    explicit link_text(std::string text);

    const std::string &text() const { return text_; }
    std::size_t line_count() const { return lines_.size(); }
    // Line `index` (from 0) with its line end.
    std::string_view line(std::size_t index) const;

    // The line in which the line reader's running count `line_no` (from 1)
    // falls, counting each piece of a long line as the reader does.
    std::optional<std::size_t> line_of_count(std::uint32_t line_no) const;
    // Whether the line reader takes the line in one piece.
    bool read_whole(std::size_t index) const;
    // The line end that a line added after line `index` takes: that line's
    // own, else (a last line without a newline) the one of the line before
    // it, else "\n".
    std::string_view line_end_after(std::size_t index) const;

  private:
    struct extent {
        std::size_t begin, end; // in text_, the line end included
        std::uint32_t first_count, pieces;
    };
    std::string text_;
    std::vector<extent> lines_;
};

// "\r\n", "\n", or "" for a last line without a newline.
std::string_view line_end(std::string_view line);

// The blanks and tabs a line begins with.
std::string_view indentation(std::string_view line);

// A keyword line: the indentation, the keyword, a tab, the value and the
// line end.
std::string keyword_line(std::string_view indent, std::string_view keyword, std::string_view value,
                         std::string_view end);

// The text with the value of keyword line `index` replaced: the line keeps
// its indentation, keyword, separating blanks, the blanks before a "!"
// comment, the comment and its line end. A line whose value is empty gets a
// tab before the new value when no blank follows its keyword.
std::string with_value(const link_text &text, std::size_t index, std::string_view value);

// The text with `line` (made by keyword_line) added after line `index`. After
// a last line without a newline the text keeps ending without one: the line
// end goes between them and the added line ends the text.
std::string with_line_after(const link_text &text, std::size_t index, std::string_view line);

// The value of a keyword line where the line reader finds it: from the first
// character after the keyword and its blanks to the blanks before a "!"
// comment, or to the line end (a carriage return before the newline stays a
// part of the line end).
struct value_place {
    std::size_t begin, end;
};
value_place value_of(std::string_view line);

} // namespace qx25tool
