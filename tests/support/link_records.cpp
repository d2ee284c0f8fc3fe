#include "link_records.h"

#include "release.h"

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace qx25test {

namespace {

// The link values with the pointers left out, copied byte for byte: the
// alias and the description are compared as texts, and a reading attaches
// no PVCs.
void without_pointers(const link_values &values, link_values &copy) {
    std::memcpy(&copy, &values, sizeof copy);
    copy.subnet.name = nullptr;
    copy.subnet.description = nullptr;
    copy.pvcs = nullptr;
}

} // namespace

link_records::link_records() {
    std::memset(&config, 0, sizeof config);
    std::memset(&x25_x32, 0, sizeof x25_x32);
    std::memset(&lapb_x32, 0, sizeof lapb_x32);
    std::memset(mlp_x32, 0, sizeof mlp_x32);
}

link_records::~link_records() {
    qx25tool::release(&config);
}

void release_static_records() {
    free_link_item(&cs.values);
    cs.values.subnet.name = cs.values.subnet.description = nullptr;
    cs.values.pvcs = nullptr;
    qx25tool::release(&cs);
    qx25tool::release(&xs);
    qx25tool::release(&ms);
    qx25tool::release(&lbs);
    qx25tool::release(&l2s);
    qx25tool::release(&ws);
    std::memset(&ids, 0, sizeof ids);
    std::memset(&cs, 0, sizeof cs);
    std::memset(&xs, 0, sizeof xs);
    std::memset(&ms, 0, sizeof ms);
    std::memset(&lbs, 0, sizeof lbs);
    std::memset(&l2s, 0, sizeof l2s);
    std::memset(&ws, 0, sizeof ws);
}

std::string shown(const char *text) {
    if (text == nullptr) return "(none)";
    std::string quoted = "\"";
    for (const char *c = text; *c != '\0'; ++c)
        quoted += *c == '\n' ? std::string("\\n") : std::string(1, *c);
    return quoted + "\"";
}

void compare(const link_records &first, const link_records &second, differences &found) {
    const link_config &a = first.config;
    const link_config &b = second.config;

    found.bytes("product name", a.ids.product_name, b.ids.product_name, sizeof a.ids.product_name);
    found.bytes("product version", a.ids.product_version, b.ids.product_version,
                sizeof a.ids.product_version);
    found.bytes("file type", a.ids.file_type, b.ids.file_type, sizeof a.ids.file_type);
    found.bytes("identification comments", a.ids.comments, b.ids.comments, sizeof a.ids.comments);

    found.comments("LINK", a.link, b.link, __LINK_functions);
    link_values link_a;
    link_values link_b;
    without_pointers(a.link.values, link_a);
    without_pointers(b.link.values, link_b);
    found.bytes("LINK values", &link_a, &link_b, sizeof link_a);
    found.text("LINK alias", a.link.values.subnet.name, b.link.values.subnet.name);
    found.text("LINK description", a.link.values.subnet.description,
               b.link.values.subnet.description);
    if (a.link.values.pvcs != nullptr || b.link.values.pvcs != nullptr)
        found.add("a reading attached PVCs");

    found.section("X25", a.x25, b.x25, __X25_functions);
    found.section("LAPB", a.lapb, b.lapb, __LAPB_functions);
    found.section("LLC2", a.llc2, b.llc2, __LLC2_functions);
    found.section("WAN", a.wan, b.wan, __WAN_functions);

    found.comments("MLP", a.mlp, b.mlp, __MLP_functions);
    found.bytes("MLP values", &a.mlp.values, &b.mlp.values, offsetof(mlp_values, lapb));
    for (int i = 0; i < MLP_MAX_SUBSECTIONS; ++i) {
        std::string position = std::to_string(i);
        const lapb_section *lapb_a = a.mlp.values.lapb[i];
        const lapb_section *lapb_b = b.mlp.values.lapb[i];
        if ((lapb_a == nullptr) != (lapb_b == nullptr))
            found.add("LAPB subsection " + position + " present in one reading only");
        else if (lapb_a != nullptr)
            found.section("LAPB subsection " + position, *lapb_a, *lapb_b, __LAPB_functions);
        const wan_section *wan_a = a.mlp.values.wan[i];
        const wan_section *wan_b = b.mlp.values.wan[i];
        if ((wan_a == nullptr) != (wan_b == nullptr))
            found.add("WAN subsection " + position + " present in one reading only");
        else if (wan_a != nullptr)
            found.section("WAN subsection " + position, *wan_a, *wan_b, __WAN_functions);
        found.bytes("X.32 of LAPB subsection " + position, &first.mlp_x32[i], &second.mlp_x32[i],
                    sizeof first.mlp_x32[i]);
    }
    found.bytes("X.32 of X25", &first.x25_x32, &second.x25_x32, sizeof first.x25_x32);
    found.bytes("X.32 of LAPB", &first.lapb_x32, &second.lapb_x32, sizeof first.lapb_x32);
    if (first.mode != second.mode)
        found.add("mode " + std::to_string(first.mode) + " read back as " +
                  std::to_string(second.mode));
}

void for_each_comment(const link_records &records, const std::function<void(const char *)> &visit) {
    if (records.config.ids.comments[0] != '\0') visit(records.config.ids.comments);
    auto pair = [&visit](const config_comment &texts) {
        if (texts.comments != nullptr) visit(texts.comments);
        if (texts.trailer != nullptr) visit(texts.trailer);
    };
    auto pairs = [&pair](const auto &section) {
        pair(section.section);
        for (const config_comment &keyword : section.keyword)
            pair(keyword);
    };
    const link_config &c = records.config;
    pairs(c.link);
    pairs(c.x25);
    pairs(c.mlp);
    pairs(c.lapb);
    pairs(c.llc2);
    pairs(c.wan);
    for (int i = 0; i < MLP_MAX_SUBSECTIONS; ++i) {
        if (c.mlp.values.lapb[i] != nullptr) pairs(*c.mlp.values.lapb[i]);
        if (c.mlp.values.wan[i] != nullptr) pairs(*c.mlp.values.wan[i]);
    }
}

int kept_comments(const link_records &records) {
    int count = 0;
    for_each_comment(records, [&count](const char *) { ++count; });
    return count;
}

std::string without_stamp(const std::string &file, int &stamps) {
    std::string kept;
    std::size_t start = 0;
    stamps = 0;
    while (start < file.size()) {
        std::size_t end = file.find('\n', start);
        end = end == std::string::npos ? file.size() : end + 1;
        std::string_view line(file.data() + start, end - start);
        if (line.starts_with("\tMODIFIED_BY\t") || line.starts_with("\tFILE_DATE\t"))
            ++stamps;
        else
            kept += line;
        start = end;
    }
    return kept;
}

std::string first_different_line(const std::string &first, const std::string &second) {
    std::size_t at = 0;
    while (at < first.size() && at < second.size() && first[at] == second[at])
        ++at;
    std::size_t start = first.rfind('\n', at == 0 ? 0 : at - 1);
    start = start == std::string::npos || at == 0 ? 0 : start + 1;
    auto line_of = [start](const std::string &text) {
        std::size_t end = text.find('\n', start);
        return shown(text.substr(start, end == std::string::npos ? end : end - start + 1).c_str());
    };
    return line_of(first) + " written again as " + line_of(second);
}

} // namespace qx25test
