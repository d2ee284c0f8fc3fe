// The JSON output of the qx25 commands (--json): one object on one line,
// written as the values come, keys in the order they are given.
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

namespace qx25tool {

// The text as a JSON string, quotes included, escaped as RFC 8259 asks:
// quotation mark and backslash with a backslash, control characters and
// DEL as \u00XX. A byte that does not belong to a valid UTF-8 sequence is
// taken as the Latin-1 character of that code (\u00XX), so that every file
// gives valid JSON.
std::string json_string(std::string_view text);

class json_writer {
  public:
    explicit json_writer(std::ostream &out) : out_(out) {}

    json_writer &begin_object();
    json_writer &begin_array();
    // Ends the innermost object or array; the end of the outermost one ends
    // the line.
    json_writer &end();
    json_writer &key(std::string_view name);

    json_writer &text(std::string_view value);
    // A text, or null for a null pointer or an empty text.
    json_writer &text_or_null(const char *value);
    json_writer &number(long long value);
    json_writer &boolean(bool value);
    json_writer &null();

    // An array of texts.
    json_writer &texts(const std::vector<std::string> &values);

  private:
    // Writes the comma before a value or key that is not the first of its
    // container; a value right after its key needs none.
    void separate();

    std::ostream &out_;
    std::vector<bool> empty_;   // per open container: nothing written in it yet
    std::vector<char> closing_; // per open container: its closing bracket
    bool after_key_ = false;
};

} // namespace qx25tool
