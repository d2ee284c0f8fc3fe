// Configuration update: replaces one section of a link's configuration file
// and keeps everything else, comments included. The whole file is read into
// the exported static records, the caller's section takes the place of the
// one read, the X.25 network number is kept consistent with the link type
// and the connect procedure, and the file is written back.
//
// Also the release of the comment texts a reader attached to a record.
#include "link_config.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string_view>
#include <type_traits>

namespace {

// ---- Releasing comment texts ------------------------------------------------

// Pairs the public free functions leave alone. Their texts are dropped when
// the update clears the static records, so the update releases them itself.
constexpr std::string_view link_pairs_kept[] = {"max_lan_conns"};
constexpr std::string_view x25_pairs_kept[] = {"send_x121_to_lan", "insert_x121_from_lan",
                                               "x25_x32_enable_authen", "x25_x32_sign",
                                               "x25_x32_identity"};
constexpr std::string_view lapb_pairs_kept[] = {"mlp_priority", "lapb_x32_enable_authen",
                                                "lapb_x32_sign", "lapb_x32_identity"};

enum class pairs { listed, kept };

void free_pair(config_comment &pair) {
    std::free(pair.comments);
    pair.comments = nullptr;
    std::free(pair.trailer);
    pair.trailer = nullptr;
}

bool is_kept(std::span<const std::string_view> kept, const char *name) {
    return std::find(kept.begin(), kept.end(), std::string_view(name)) != kept.end();
}

// Frees either the pairs a public free function releases (the section
// line's pair and every keyword pair not in `kept`) or only those in `kept`.
template <typename Section>
void free_pairs(Section *section, const config_keyword *table,
                std::span<const std::string_view> kept, pairs which) {
    if (section == nullptr) return;
    if (which == pairs::listed) free_pair(section->section);
    constexpr int count = static_cast<int>(std::extent_v<decltype(Section::keyword)>);
    for (const config_keyword *row = table; row->name != nullptr; ++row) {
        if (row->index < 0 || row->index >= count) continue;
        if (is_kept(kept, row->name) == (which == pairs::kept))
            free_pair(section->keyword[row->index]);
    }
}

// Every pair of a record, then the record's contents.
template <typename Section>
void clear_record(Section &section, void (*free_listed)(Section *), const config_keyword *table,
                  std::span<const std::string_view> kept) {
    free_listed(&section);
    free_pairs(&section, table, kept, pairs::kept);
    std::memset(static_cast<void *>(&section), 0, sizeof section);
}

// Empties the static records: every comment text, the alias and description
// copies and PVC list of the link, and the MLP subsection records.
void clear_static_records() {
    __release_link_section(&cs);
    std::memset(static_cast<void *>(&cs), 0, sizeof cs);
    clear_record(xs, free_x25_comments, __X25_functions, x25_pairs_kept);
    clear_record(lbs, free_lapb_comments, __LAPB_functions, lapb_pairs_kept);
    clear_record(l2s, free_llc2_comments, __LLC2_functions, {});
    clear_record(ws, free_wan_comments, __WAN_functions, {});
    for (lapb_section *&lapb : ms.values.lapb) {
        if (lapb == nullptr) continue;
        clear_record(*lapb, free_lapb_comments, __LAPB_functions, lapb_pairs_kept);
        std::free(lapb);
        lapb = nullptr;
    }
    for (wan_section *&wan : ms.values.wan) {
        if (wan == nullptr) continue;
        clear_record(*wan, free_wan_comments, __WAN_functions, {});
        std::free(wan);
        wan = nullptr;
    }
    clear_record(ms, free_mlp_comments, __MLP_functions, {});
    std::memset(static_cast<void *>(&ids), 0, sizeof ids);
}

// ---- X.25 network numbers ---------------------------------------------------

// Numbers of the network profile file.
constexpr uint8_t network_lan = 1;
constexpr uint8_t network_wan88 = 2; // also the MLP types and any other
constexpr uint8_t network_wan84 = 3;
constexpr uint8_t network_wan80 = 4;
constexpr uint8_t network_call_procedure = 25; // X.21 or V.25 connect procedure

// Address classes of the network types (link_nettype).
constexpr int class_lan = 1;
constexpr int class_wan80 = 2;
constexpr int class_wan84 = 3;

int address_class(const link_values &link) {
    return link.net_type < net_type_rows ? link_nettype[link.net_type].address_class : 0;
}

uint8_t wan_network(const link_values &link) {
    switch (address_class(link)) {
    case class_wan80:
        return network_wan80;
    case class_wan84:
        return network_wan84;
    default:
        return network_wan88;
    }
}

bool has_call_procedure(const link_values &link) {
    return (link.flags & LINK_FLAG_CALL_PROCEDURE) != 0;
}

// WAN connect procedures: 1 X.21, 2 V.25; anything else is none.
bool has_connect_procedure(const wan_values &wan) {
    return wan.connect_proc == 1 || wan.connect_proc == 2;
}

// A new LINK section: the read X.25 section follows the new link's type.
void network_for_link(const link_values &link, x25_template &x25) {
    if (address_class(link) == class_lan)
        x25.network = network_lan;
    else if (x25.network == network_lan)
        x25.network = wan_network(link);
    if (has_call_procedure(link)) x25.network = network_call_procedure;
}

// A new X25 section: its network number follows the read link and WAN.
// Updating a named file replaces a WAN network number in fewer cases.
void network_for_x25(const link_values &link, const wan_values &wan, x25_template &x25,
                     bool by_link_number) {
    bool replace = by_link_number
                       ? x25.network == network_lan || !has_connect_procedure(wan)
                       : x25.network == network_lan ||
                             (x25.network == network_call_procedure && !has_connect_procedure(wan));
    if (address_class(link) == class_lan)
        x25.network = network_lan;
    else if (replace)
        x25.network = wan_network(link);
    if (has_call_procedure(link)) x25.network = network_call_procedure;
}

// A new WAN section: the read X.25 section follows its connect procedure.
void network_for_wan(const link_values &link, const wan_values &wan, x25_template &x25) {
    x25.network = has_connect_procedure(wan) ? network_call_procedure : wan_network(link);
}

// ---- The update ---------------------------------------------------------------

// What an IDENTIFICATION block without these entries gets when a link is
// updated by number. The version begins with a blank.
constexpr char default_product_name[] = "Quenlark X.25";
constexpr char default_product_version[] = " 4.1 patch 07";
constexpr char default_file_type[] = "x25link";

// Copies with the field's width: a field as wide as the text is left without
// a terminator, as product_version is meant to be read.
template <std::size_t N, std::size_t M>
void fill_if_empty(char (&field)[N], const char (&text)[M]) {
    static_assert(M - 1 <= N);
    if (field[0] != '\0') return;
    std::memset(field, 0, N);
    std::memcpy(field, text, M - 1);
}

void fill_identification() {
    fill_if_empty(ids.product_name, default_product_name);
    fill_if_empty(ids.product_version, default_product_version);
    fill_if_empty(ids.file_type, default_file_type);
}

// Highest link number a link file name can carry.
constexpr int32_t last_link_number = 254;

// The file to update: a link's file, or a file named by the caller.
struct update_target {
    bool by_link_number;
    int32_t link_number;
    const char *name;

    // Reads the whole file into the static records; `mode` then tells the
    // link-level kind it held: 3 LLC2, 4 LAPB, 6 MLP, 0 none, and stays 10
    // when the file could not be opened.
    int read(int &mode) const {
        mode = X25_CONFIG_SILENT;
        if (by_link_number)
            return x25_read_config_parameters(link_number, &ids, &cs, &xs, &ms, &lbs, &l2s, &ws,
                                              &mode);
        return x25_read_config_parameter_file(name, &ids, &cs, &xs, &ms, &lbs, &l2s, &ws, &mode);
    }

    // The writer's result; a named file's update does not pass it on.
    int write(link_section *link, x25_section *x25, mlp_section *mlp, lapb_section *lapb,
              llc2_section *llc2, wan_section *wan) const {
        if (by_link_number)
            return x25_write_config_parameters(&ids, link, x25, mlp, lapb, llc2, wan);
        (void)x25_write_config_parameter_file(name, &ids, link, x25, mlp, lapb, llc2, wan);
        return 0;
    }
};

// An MLP link needs a LAPB and a WAN subsection per device; missing ones
// start from the defaults.
int add_subsections(mlp_values &mlp, int device_count) {
    int count = std::min(device_count, MLP_MAX_SUBSECTIONS);
    for (int i = 0; i < count; ++i) {
        if (mlp.lapb[i] == nullptr) {
            auto *lapb = static_cast<lapb_section *>(std::calloc(1, sizeof(lapb_section)));
            if (lapb == nullptr) return ENOMEM;
            load_lapb_defaults(&lapb->values);
            mlp.lapb[i] = lapb;
        }
        if (mlp.wan[i] == nullptr) {
            auto *wan = static_cast<wan_section *>(std::calloc(1, sizeof(wan_section)));
            if (wan == nullptr) return ENOMEM;
            load_wan_defaults(&wan->values);
            mlp.wan[i] = wan;
        }
    }
    return 0;
}

int update_link_section(const update_target &target, const link_section &section) {
    // The link is written to the file of the number being updated.
    link_section link = section;
    if (target.by_link_number)
        link.values.subnet.address.snid = static_cast<uint32_t>(target.link_number);
    network_for_link(link.values, xs.values);
    if (link.values.mlp == 0 || !target.by_link_number)
        return target.write(&link, &xs, nullptr, &lbs, &l2s, &ws);
    if (int result = add_subsections(ms.values, link.values.device_count); result != 0)
        return result;
    return target.write(&link, &xs, &ms, nullptr, nullptr, &ws);
}

int update_x25_section(const update_target &target, x25_section &x25) {
    network_for_x25(cs.values, ws.values, x25.values, target.by_link_number);
    if (cs.values.mlp != 0) return target.write(&cs, &x25, &ms, nullptr, nullptr, nullptr);
    return target.write(&cs, &x25, nullptr, &lbs, &l2s, &ws);
}

// The link-level kinds the reader reports.
constexpr int read_llc2 = 3;
constexpr int read_lapb = 4;

// Returned when the LLC2 or LAPB section to replace is not the kind the
// file holds; the file is left as it is.
constexpr int other_link_level = 1;

int update(const update_target &target, void *section, unsigned int code) {
    clear_static_records();
    int mode;
    // A file that cannot be read is written from what could be read.
    (void)target.read(mode);
    if (target.by_link_number) {
        cs.values.subnet.address.snid = static_cast<uint32_t>(target.link_number);
        xs.values.link = target.link_number;
        fill_identification();
    }

    switch (code) {
    case SECTION_LINK:
        return update_link_section(target, *static_cast<link_section *>(section));
    case SECTION_X25:
        return update_x25_section(target, *static_cast<x25_section *>(section));
    case SECTION_LLC2:
        if (mode != read_llc2) return other_link_level;
        return target.write(&cs, &xs, nullptr, nullptr, static_cast<llc2_section *>(section), &ws);
    case SECTION_LAPB:
        if (mode != read_lapb) return other_link_level;
        return target.write(&cs, &xs, nullptr, static_cast<lapb_section *>(section), nullptr, &ws);
    case SECTION_WAN: {
        auto *wan = static_cast<wan_section *>(section);
        if (target.by_link_number) network_for_wan(cs.values, wan->values, xs.values);
        return target.write(&cs, &xs, nullptr, &lbs, &l2s, wan);
    }
    default: // SECTION_MLP
        return target.write(&cs, &xs, static_cast<mlp_section *>(section), nullptr, nullptr,
                            nullptr);
    }
}

bool is_section_code(unsigned int code) {
    return code >= SECTION_LINK && code <= SECTION_MLP;
}

} // namespace

extern "C" {

void __release_link_section(link_section *link) {
    if (link == nullptr) return;
    free_link_comments(link);
    free_pairs(link, __LINK_functions, link_pairs_kept, pairs::kept);
    free_link_item(&link->values);
}

void free_link_comments(link_section *link) {
    free_pairs(link, __LINK_functions, link_pairs_kept, pairs::listed);
}

void free_x25_comments(x25_section *x25) {
    free_pairs(x25, __X25_functions, x25_pairs_kept, pairs::listed);
}

void free_lapb_comments(lapb_section *lapb) {
    free_pairs(lapb, __LAPB_functions, lapb_pairs_kept, pairs::listed);
}

void free_llc2_comments(llc2_section *llc2) {
    free_pairs(llc2, __LLC2_functions, {}, pairs::listed);
}

void free_mlp_comments(mlp_section *mlp) {
    free_pairs(mlp, __MLP_functions, {}, pairs::listed);
}

void free_wan_comments(wan_section *wan) {
    free_pairs(wan, __WAN_functions, {}, pairs::listed);
}

// A section code outside 1..6 changes nothing. A missing section or a
// number no link file can carry is refused before anything is touched.
int x25_update_link(int32_t link_number, void *section, unsigned int section_code) {
    if (!is_section_code(section_code)) return 0;
    if (section == nullptr || link_number < 0 || link_number > last_link_number) return EINVAL;
    return update({true, link_number, nullptr}, section, section_code);
}

// 0 whatever the writer returned, or 1 as for a link.
int x25_update_file(const char *name, void *section, unsigned int section_code) {
    if (!is_section_code(section_code) || section == nullptr || name == nullptr) return 0;
    return update({false, 0, name}, section, section_code);
}

} // extern "C"
