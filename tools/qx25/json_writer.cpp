// The JSON writer of the qx25 commands.
#include "json_writer.h"

#include <cstdio>

namespace qx25tool {

namespace {

// The length of the valid UTF-8 sequence at the start of the text, or 0.
std::size_t utf8_sequence(std::string_view text) {
    auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned char lead = byte(0);
    std::size_t length = lead >= 0xF0 && lead <= 0xF4   ? 4
                         : lead >= 0xE0 && lead <= 0xEF ? 3
                         : lead >= 0xC2 && lead <= 0xDF ? 2
                                                        : 0;
    if (length == 0 || text.size() < length) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if ((byte(i) & 0xC0) != 0x80) return 0;
    // No overlong forms, no surrogates, nothing beyond U+10FFFF.
    unsigned char second = byte(1);
    if (lead == 0xE0 && second < 0xA0) return 0;
    if (lead == 0xED && second > 0x9F) return 0;
    if (lead == 0xF0 && second < 0x90) return 0;
    if (lead == 0xF4 && second > 0x8F) return 0;
    return length;
}

void append_code(std::string &out, unsigned char code) {
    char escape[8];
    std::snprintf(escape, sizeof escape, "\\u%04x", code);
    out += escape;
}

} // namespace

std::string json_string(std::string_view text) {
    std::string out = "\"";
    for (std::size_t i = 0; i < text.size();) {
        unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == '"' || c == '\\') {
            out += '\\';
            out += static_cast<char>(c);
        } else if (c < 0x20 || c == 0x7F) {
            append_code(out, c);
        } else if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (std::size_t length = utf8_sequence(text.substr(i)); length > 0) {
            out.append(text.substr(i, length));
            i += length;
            continue;
        } else {
            append_code(out, c);
        }
        ++i;
    }
    return out + '"';
}

void json_writer::separate() {
    if (after_key_) {
        after_key_ = false;
        return;
    }
    if (!empty_.empty()) {
        if (!empty_.back()) out_ << ',';
        empty_.back() = false;
    }
}

json_writer &json_writer::begin_object() {
    separate();
    out_ << '{';
    empty_.push_back(true);
    closing_.push_back('}');
    return *this;
}

json_writer &json_writer::begin_array() {
    separate();
    out_ << '[';
    empty_.push_back(true);
    closing_.push_back(']');
    return *this;
}

json_writer &json_writer::end() {
    out_ << closing_.back();
    closing_.pop_back();
    empty_.pop_back();
    if (empty_.empty()) out_ << '\n';
    return *this;
}

json_writer &json_writer::key(std::string_view name) {
    separate();
    out_ << json_string(name) << ':';
    after_key_ = true;
    return *this;
}

json_writer &json_writer::text(std::string_view value) {
    separate();
    out_ << json_string(value);
    return *this;
}

json_writer &json_writer::text_or_null(const char *value) {
    return value != nullptr && value[0] != '\0' ? text(value) : null();
}

json_writer &json_writer::number(long long value) {
    separate();
    out_ << value;
    return *this;
}

json_writer &json_writer::boolean(bool value) {
    separate();
    out_ << (value ? "true" : "false");
    return *this;
}

json_writer &json_writer::null() {
    separate();
    out_ << "null";
    return *this;
}

json_writer &json_writer::texts(const std::vector<std::string> &values) {
    begin_array();
    for (const std::string &value : values)
        text(value);
    return end();
}

} // namespace qx25tool
