// The --json form of the commands that print tables: the same cells, each
// written as the JSON value its field says.
#include "command.h"
#include "json_writer.h"

#include <charconv>
#include <iostream>

namespace qx25tool {

namespace {

void write_number(json_writer &json, const std::string &cell, int base) {
    long long value = 0;
    const char *end = cell.data() + cell.size();
    auto [stop, error] = std::from_chars(cell.data(), end, value, base);
    if (cell.empty() || error != std::errc() || stop != end)
        json.null();
    else
        json.number(value);
}

void write_list(json_writer &json, std::string_view cell, std::string_view separator) {
    json.begin_array();
    if (cell != "-") {
        while (!cell.empty()) {
            std::size_t at = cell.find(separator);
            std::string_view item = cell.substr(0, at);
            while (item.starts_with(' '))
                item.remove_prefix(1);
            if (!item.empty()) json.text(item);
            cell.remove_prefix(at == std::string_view::npos ? cell.size() : at + separator.size());
        }
    }
    json.end();
}

void write_cell(json_writer &json, const json_field &field, const std::string &cell) {
    switch (field.kind) {
    case json_kind::text:
        json.text(cell);
        break;
    case json_kind::text_or_null:
        if (cell.empty() || cell == "-")
            json.null();
        else
            json.text(cell);
        break;
    case json_kind::number:
        write_number(json, cell, 10);
        break;
    case json_kind::hex_number:
        write_number(json, cell, 16);
        break;
    case json_kind::list:
        write_list(json, cell, field.separator);
        break;
    }
}

} // namespace

void write_json_rows(json_writer &json, std::string_view name, std::span<const json_field> fields,
                     const table_rows &rows) {
    json.key(name).begin_array();
    for (const std::vector<std::string> &row : rows) {
        json.begin_object();
        for (std::size_t i = 0; i < fields.size(); ++i) {
            json.key(fields[i].key);
            write_cell(json, fields[i], i < row.size() ? row[i] : std::string());
        }
        json.end();
    }
    json.end();
}

void print_json_rows(std::string_view name, std::span<const json_field> fields,
                     const table_rows &rows) {
    json_writer json(std::cout);
    json.begin_object();
    write_json_rows(json, name, fields, rows);
    json.end();
}

} // namespace qx25tool
