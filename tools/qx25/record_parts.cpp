#include "record_parts.h"

#include <algorithm>
#include <algorithm>
#include <cstring>
#include <iterator>

namespace qx25tool {

namespace {

constexpr std::string_view lapb_subsections[MLP_MAX_SUBSECTIONS] = {
    "LAPB subsection 1", "LAPB subsection 2", "LAPB subsection 3", "LAPB subsection 4",
    "LAPB subsection 5"};
constexpr std::string_view wan_subsections[MLP_MAX_SUBSECTIONS] = {
    "WAN subsection 1", "WAN subsection 2", "WAN subsection 3", "WAN subsection 4",
    "WAN subsection 5"};
constexpr std::string_view mlp_x32_records[MLP_MAX_SUBSECTIONS] = {
    "X.32 of LAPB subsection 1", "X.32 of LAPB subsection 2", "X.32 of LAPB subsection 3",
    "X.32 of LAPB subsection 4", "X.32 of LAPB subsection 5"};

std::string bytes_of(const void *data, std::size_t size) {
    return std::string(static_cast<const char *>(data), size);
}

record_part text_part(std::string_view record, std::string_view what, const char *keyword,
                      const char *text) {
    return {record, what, keyword, text != nullptr, false, text != nullptr ? text : ""};
}

record_part values_part(std::string_view record, std::string bytes) {
    return {record, "values", nullptr, true, true, std::move(bytes)};
}

template <typename Section>
void add_comments(record_parts &parts, std::string_view record, const Section &section,
                  const config_keyword *keywords) {
    parts.push_back(text_part(record, "header comments", nullptr, section.section.comments));
    parts.push_back(text_part(record, "header trailer", nullptr, section.section.trailer));
    for (std::size_t i = 0; i < std::size(section.keyword); ++i) {
        parts.push_back(
            text_part(record, "comments", keywords[i].name, section.keyword[i].comments));
        parts.push_back(text_part(record, "trailer", keywords[i].name, section.keyword[i].trailer));
    }
}

template <typename Section>
void add_section(record_parts &parts, std::string_view record, const Section &section,
                 const config_keyword *keywords) {
    add_comments(parts, record, section, keywords);
    parts.push_back(values_part(record, bytes_of(&section.values, sizeof section.values)));
}

// A subsection slot: whether it is taken, then its parts (those of an empty
// record when it is not).
template <typename Section>
void add_subsection(record_parts &parts, std::string_view record, const Section *section,
                    const config_keyword *keywords) {
    static const Section empty{};
    parts.push_back({record, "presence", nullptr, true, false, section != nullptr ? "1" : "0"});
    add_section(parts, record, section != nullptr ? *section : empty, keywords);
}

void add_x32(record_parts &parts, std::string_view record, const x32_record &x32) {
    x32_record copy = x32;
    copy.link = 0;
    parts.push_back(values_part(record, bytes_of(&copy, sizeof copy)));
}

std::string describe(const record_part &part, std::optional<std::size_t> byte) {
    std::string text(part.record);
    text.append(" ").append(part.what);
    if (part.keyword != nullptr) text.append(" of ").append(part.keyword);
    if (byte) text += ", byte " + std::to_string(*byte);
    return text;
}

bool same(const record_part &a, const record_part &b) {
    return a.present == b.present && a.bytes == b.bytes;
}

} // namespace

record_parts parts_of(const link_records &records) {
    const link_config &c = records.config;
    record_parts parts;
    parts.reserve(1024);
    parts.push_back(values_part("identification", bytes_of(&c.ids, sizeof c.ids)));

    add_comments(parts, "LINK", c.link, __LINK_functions);
    link_values link = c.link.values;
    parts.push_back(text_part("LINK", "alias", nullptr, link.subnet.name));
    parts.push_back(text_part("LINK", "description", nullptr, link.subnet.description));
    link.subnet.name = link.subnet.description = nullptr;
    link.pvcs = nullptr;
    parts.push_back(values_part("LINK", bytes_of(&link, sizeof link)));

    add_section(parts, "X25", c.x25, __X25_functions);
    add_section(parts, "LAPB", c.lapb, __LAPB_functions);
    add_section(parts, "LLC2", c.llc2, __LLC2_functions);
    add_section(parts, "WAN", c.wan, __WAN_functions);
    add_comments(parts, "MLP", c.mlp, __MLP_functions);
    parts.push_back(values_part("MLP", bytes_of(&c.mlp.values, offsetof(mlp_values, lapb))));
    for (int i = 0; i < MLP_MAX_SUBSECTIONS; ++i) {
        add_subsection(parts, lapb_subsections[i], c.mlp.values.lapb[i], __LAPB_functions);
        add_subsection(parts, wan_subsections[i], c.mlp.values.wan[i], __WAN_functions);
        add_x32(parts, mlp_x32_records[i], records.mlp_x32[i]);
    }
    add_x32(parts, "X.32 of X25", records.x25_x32);
    add_x32(parts, "X.32 of LAPB", records.lapb_x32);
    return parts;
}

std::optional<std::string> first_difference(const record_parts &a, const record_parts &b) {
    for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) {
        if (same(a[i], b[i])) continue;
        if (!a[i].bytewise || a[i].bytes.size() != b[i].bytes.size()) return describe(a[i], {});
        for (std::size_t byte = 0; byte < a[i].bytes.size(); ++byte)
            if (a[i].bytes[byte] != b[i].bytes[byte]) return describe(a[i], byte);
    }
    if (a.size() != b.size()) return "the number of parts";
    return std::nullopt;
}

std::optional<std::string> stray_difference(const record_parts &before,
                                            std::span<const record_parts> changed,
                                            const record_parts &now) {
    for (std::size_t i = 0; i < before.size(); ++i) {
        const record_part &b = before[i];
        const record_part &n = now[i];
        if (same(b, n)) continue;
        auto explained = [&](auto holds) {
            return std::any_of(changed.begin(), changed.end(), holds);
        };
        if (!b.bytewise) {
            if (explained([&](const record_parts &c) { return same(c[i], n); })) continue;
            return describe(n, {});
        }
        for (std::size_t byte = 0; byte < b.bytes.size(); ++byte) {
            if (n.bytes[byte] == b.bytes[byte]) continue;
            if (explained([&](const record_parts &c) { return c[i].bytes[byte] == n.bytes[byte]; }))
                continue;
            return describe(n, byte);
        }
    }
    return std::nullopt;
}

} // namespace qx25tool
