// qx25 show --json: the identification of a link file and the values the
// library's writer writes for it, section by section.
#include "command.h"
#include "json_writer.h"

#include <cstring>
#include <iostream>
#include <string_view>

namespace qx25tool {

namespace {

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    return text;
}

template <std::size_t N> std::string_view field(const char (&text)[N]) {
    return std::string_view(text, ::strnlen(text, N));
}

void write_identification(json_writer &json, const config_identification &ids) {
    json.key("identification").begin_object();
    json.key("product_name").text(field(ids.product_name));
    json.key("product_version").text(field(ids.product_version));
    json.key("file_type").text(field(ids.file_type));
    json.key("modified_by").text(field(ids.modified_by));
    json.key("file_date").text(field(ids.file_date));
    json.end();
}

} // namespace

void print_show_json(const std::string &path, const config_identification &ids,
                     std::string_view written) {
    json_writer json(std::cout);
    json.begin_object();
    json.key("file").text(path);
    write_identification(json, ids);
    json.key("sections").begin_array();
    // The writer's lines: comments ("!"), the IDENTIFICATION block, section
    // and subsection lines, and keyword lines "\tKEYWORD\tVALUE", a
    // trailing comment behind "!" (a value holds none).
    bool in_section = false;
    while (!written.empty()) {
        std::size_t end = written.find('\n');
        std::string_view line = written.substr(0, end);
        written.remove_prefix(end == std::string_view::npos ? written.size() : end + 1);
        bool subsection = line.starts_with("SUBSECTION\t");
        if (line.starts_with("SECTION\t") || subsection) {
            if (in_section) json.end().end();
            json.begin_object();
            json.key("section").text(line.substr(line.find('\t') + 1));
            json.key("subsection").boolean(subsection);
            json.key("values").begin_object();
            in_section = true;
            continue;
        }
        if (!in_section || !line.starts_with('\t')) continue;
        line = line.substr(0, line.find('!'));
        line.remove_prefix(1);
        std::size_t gap = line.find_first_of(" \t");
        json.key(line.substr(0, gap));
        json.text(gap == std::string_view::npos ? std::string_view() : trimmed(line.substr(gap)));
    }
    if (in_section) json.end().end();
    json.end().end();
}

} // namespace qx25tool
