// qx25 set over every keyword of every section of the example links and of
// the generated link configurations, run in process through the edit that
// the command makes before it writes: a new value the reader takes changes
// exactly one line, or adds one, leaves every other byte as it was, and reads
// back as that value; a value the reader refuses or passes over changes
// nothing.
#include "config_tree.h"
#include "keyword_edit.h"
#include "link_file_generator.h"
#include "scratch_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <optional>
#include <strings.h>
#include <unistd.h>
#include <string>
#include <string_view>
#include <vector>

using qx25test::ConfigTree;
using qx25test::link_kind;
using qx25tool::edit_outcome;
using qx25tool::edit_target;

namespace {

// ---- Values of each keyword -----------------------------------------------------

// What setting a keyword does in a link file.
enum class effect {
    changes,           // one of the two values is new to the file and the reader takes it
    holds,             // the file holds the first value already
    passed_over,       // the reader passes over every value here
    no_change,         // either: the reader takes the value, which changes nothing
    voids_other_lines, // changes, or is refused for voiding other lines of the file
};

struct keyword_values {
    const char *keyword;
    const char *values[2];  // two values the reader takes
    const char *written[2]; // as the writer writes them; null when it may not write the keyword
    const char *invalid;    // a value it refuses or passes over; null when it takes any text
};

#define FLAG(name)                                                                                 \
    { name, {"y", "n"}, {"Y", "N"}, "maybe" }
#define SAME(name, a, b, bad)                                                                      \
    { name, {a, b}, {a, b}, bad }
#define NOT_WRITTEN(name, a, b, bad)                                                               \
    { name, {a, b}, {nullptr, nullptr}, bad }

constexpr keyword_values link_values[] = {
    // device and the kind-bound keywords are made for each link below
    SAME("local_address", "123", "ABCDEF", "12345678901234567890"),
    SAME("full_address", "1.23456", "2.98765", "1.2.3.4"),
    SAME("alias", "newalias", "otheralias", nullptr),
    SAME("description", "A new description", "Another", nullptr),
};

constexpr keyword_values x25_values[] = {
    SAME("plpmode", "Auto", "Normal", nullptr),
    SAME("pvc_range", "5-9", "10-20", "9-5"),
    SAME("inc_range", "5-9", "10-20", "9-5"),
    SAME("out_range", "5-9", "10-20", "9-5"),
    SAME("two_range", "5-9", "10-20", "9-5"),
    // modulo is made below
    FLAG("use_negotiation"),
    FLAG("bar_negotiation"),
    SAME("src_addr_control", "1", "2", "5"),
    FLAG("accept_revchg"),
    FLAG("prev_chg"),
    FLAG("fast_select"),
    FLAG("fs_r_response"),
    FLAG("bar_nonpriv_listen"),
    SAME("locmaxpktsize", "7", "8", "13"),
    SAME("remmaxpktsize", "7", "8", "13"),
    SAME("locdefpktsize", "7", "8", "13"),
    SAME("remdefpktsize", "7", "8", "13"),
    SAME("locmaxwinsize", "3", "5", "200"),
    SAME("remmaxwinsize", "3", "5", "200"),
    SAME("locdefwinsize", "3", "5", "200"),
    SAME("remdefwinsize", "3", "5", "200"),
    SAME("maxnsdulength", "100", "200", "40000"),
    SAME("ackdelay", "1.5", "2.5", "40000"),
    SAME("t20value", "1.5", "2.5", "40000"),
    SAME("t21value", "1.5", "2.5", "40000"),
    SAME("t22value", "1.5", "2.5", "40000"),
    SAME("t23value", "1.5", "2.5", "40000"),
    SAME("t24value", "1.5", "2.5", "40000"),
    SAME("t25value", "1.5", "2.5", "40000"),
    SAME("t26value", "1.5", "2.5", "40000"),
    SAME("t28value", "1.5", "2.5", "40000"),
    SAME("idlevalue", "1.5", "2.5", "40000"),
    SAME("connectvalue", "1.5", "2.5", "40000"),
    SAME("r20value", "3", "4", nullptr),
    SAME("r22value", "3", "4", nullptr),
    SAME("r23value", "3", "4", nullptr),
    SAME("r28value", "3", "4", nullptr),
    {"localdelay", {"0.25", "0.5"}, {"0.250", "0.500"}, "40000"},
    {"accessdelay", {"0.25", "0.5"}, {"0.250", "0.500"}, "40000"},
    SAME("locmaxthclass", "3", "5", "16"),
    SAME("remmaxthclass", "3", "5", "16"),
    SAME("locdefthclass", "3", "5", "16"),
    SAME("remdefthclass", "3", "5", "16"),
    SAME("locminthclass", "3", "5", "16"),
    SAME("remminthclass", "3", "5", "16"),
    // network is made for each link below
    FLAG("sub_cug"),
    FLAG("sub_pref_cug"),
    FLAG("sub_cugoa"),
    FLAG("sub_cugia"),
    SAME("cug_format", "Basic", "Extended", "closed"),
    FLAG("bar_cug_in"),
    FLAG("bar_incall"),
    FLAG("bar_outcall"),
    FLAG("sub_toa_npi_fmt"),
    FLAG("bar_toa_npi_fmt"),
    FLAG("sub_nui_override"),
    FLAG("bar_call_x32_reg"),
    FLAG("acc_nodiag"),
    FLAG("use_diag"),
    FLAG("ccitt_clear_len"),
    FLAG("bar_diag"),
    FLAG("disc_nz_diag"),
    FLAG("acc_hex_add"),
    FLAG("intl_prioritised"),
    FLAG("datapac_priority"),
    FLAG("iso_8882_mode"),
    FLAG("send_x121_to_lan"),
    FLAG("insert_x121_from_lan"),
    SAME("dnic", "1234", "5678", "99999"),
    SAME("intl_addr_recogn", "1", "2", "5"),
    SAME("prty_encode_control", "1", "2", "3"),
    SAME("prty_pkt_forced_val", "4", "5", "3"),
    SAME("dbit_accept_in", "zero", "clear", nullptr),
    SAME("dbit_accept_out", "zero", "clear", nullptr),
    SAME("dbit_data_in", "zero", "reset", nullptr),
    SAME("dbit_data_out", "zero", "reset", nullptr),
    FLAG("thclass_neg_to_def"),
    SAME("thclass_type", "1", "2", "4"),
    SAME("thclass_wmap", "5,5,5,5,5,5,5,5,5,5,5,5,5,5,5,5", "6,6,6,6,6,6,6,6,6,6,6,6,6,6,6,6",
         "200,200"),
    SAME("thclass_pmap", "5,5,5,5,5,5,5,5,5,5,5,5,5,5,5,5", "6,6,6,6,6,6,6,6,6,6,6,6,6,6,6,6",
         "20,20"),
    NOT_WRITTEN("x25_x32_enable_authen", "y", "n", "maybe"),
    NOT_WRITTEN("x25_x32_sign", "1234", "ABCD", "12G4"),
    NOT_WRITTEN("x25_x32_identity", "1234", "ABCD", "12G4"),
};

// The keywords LAPB and LLC2 share, up to max_iframe_len.
constexpr keyword_values frame_values[] = {
    SAME("n2_count", "5", "6", "40000"),        SAME("t1_timer", "1.5", "2.5", "4000"),
    SAME("pf_timer", "1.5", "2.5", "4000"),     SAME("reject_timer", "1.5", "2.5", "4000"),
    SAME("busy_timer", "1.5", "2.5", "4000"),   SAME("idle_timer", "1.5", "2.5", "4000"),
    SAME("rr_ack_delay", "1.5", "2.5", "4000"), SAME("unack_max", "5", "6", "200"),
    SAME("local_win", "5", "6", "200"),         SAME("local_probe", "5", "6", "200"),
};

constexpr keyword_values lapb_values[] = {
    SAME("max_iframe_len", "300", "400", "9000"),
    FLAG("ign_ua_error"),
    FLAG("frmr_frmr_error"),
    FLAG("frmr_invrsp_error"),
    FLAG("sframe_pbit"),
    FLAG("no_dm_adm"),
    FLAG("sabm_in_x32"),
    FLAG("iso8882"),
    FLAG("initial_down"),
    // mlp_priority is made for each section below
    NOT_WRITTEN("lapb_x32_enable_authen", "y", "n", "maybe"),
    NOT_WRITTEN("lapb_x32_sign", "1234", "ABCD", "12G4"),
    NOT_WRITTEN("lapb_x32_identity", "1234", "ABCD", "12G4"),
};

constexpr keyword_values llc2_values[] = {
    SAME("max_iframe_len", "300", "400", "5000"),
    SAME("xid_window", "5", "6", "200"),
    SAME("xid_ndup", "5", "6", "300"),
    SAME("xid_tdup", "1.5", "2.5", "4000"),
};

// connect_proc also decides whether v25_callreq is written.
constexpr keyword_values wan_values[] = {
    SAME("line_speed", "9600", "19200", nullptr),
    SAME("max_frame", "1024", "2048", "5000"),
    NOT_WRITTEN("translate", "y", "n", nullptr),
    NOT_WRITTEN("connect_proc", "X21", "NONE", nullptr),
    NOT_WRITTEN("x21_t1", "0.5", "1.0", "5.0"),
    NOT_WRITTEN("x21_t2", "3.0", "4.0", "50"),
    NOT_WRITTEN("x21_t3a", "1.0", "2.0", "10"),
    NOT_WRITTEN("x21_t4b", "1.0", "2.0", "10"),
    NOT_WRITTEN("x21_t5", "0.5", "1.0", "5"),
    NOT_WRITTEN("x21_t6", "0.5", "1.0", "5"),
    NOT_WRITTEN("v25_callreq", "10.0", "20.0", nullptr),
};

constexpr keyword_values mlp_values[] = {
    SAME("mlp_window", "100", "200", "5000"), SAME("mlp_guard", "100", "200", "5000"),
    SAME("mt1_val", "1.5", "2.5", "400"),     SAME("mt2_val", "1.5", "2.5", "400"),
    SAME("mt3_val", "1.5", "2.5", "400"),     SAME("mn1_val", "5", "6", "300"),
};

#undef FLAG
#undef SAME
#undef NOT_WRITTEN

// A number from the environment, or `otherwise`.
std::size_t from_environment(const char *name, std::size_t otherwise) {
    const char *text = std::getenv(name);
    long value = text != nullptr ? std::strtol(text, nullptr, 10) : 0;
    return value > 0 ? static_cast<std::size_t>(value) : otherwise;
}

// Each generated configuration sets every keyword_stride()-th keyword of
// its list, starting from its index: over the configurations of a kind every
// keyword of every section is set many times. The sanitizer build, many
// times slower, goes over every configuration_step()-th configuration only.
// QX25_KEYWORD_STRIDE=1 and QX25_CONFIGURATION_STEP=1 set every keyword in
// every configuration (minutes).
std::size_t keyword_stride() {
    return from_environment("QX25_KEYWORD_STRIDE", 25);
}

std::size_t configuration_step() {
#ifdef QX25_SANITIZED_BUILD
    constexpr std::size_t step = 10;
#else
    constexpr std::size_t step = 1;
#endif
    return from_environment("QX25_CONFIGURATION_STEP", step);
}

// One keyword of one section to set, with what it does there.
struct keyword_case {
    edit_target target;
    keyword_values values;
    effect expected;
    std::string made[2]; // values made for the link, when the table has none
    std::string made_written[2];

    const char *value(int i) const {
        return values.values[i] != nullptr ? values.values[i] : made[i].c_str();
    }
    const char *written(int i) const {
        if (values.values[i] != nullptr) return values.written[i];
        return made_written[i].empty() ? nullptr : made_written[i].c_str();
    }
};

// The link's kind as its file gives it, and a network of its tree other
// than PSS.
struct link_shape {
    link_kind kind;
    int devices;
    const char *network;
};

std::vector<keyword_case> cases_for(const link_shape &shape) {
    std::vector<keyword_case> cases;
    auto add = [&cases](const char *section, const keyword_values &values,
                        effect expected = effect::changes) {
        cases.push_back({*qx25tool::target_named(section), values, expected, {}, {}});
    };
    auto add_all = [&add](const char *section, const auto &table) {
        for (const keyword_values &values : table)
            add(section, values);
    };
    auto add_made = [&cases](const char *section, const char *keyword, std::string a, std::string b,
                             bool written, const char *invalid, effect expected = effect::changes) {
        cases.push_back({*qx25tool::target_named(section),
                         {keyword, {nullptr, nullptr}, {nullptr, nullptr}, invalid},
                         expected,
                         {a, b},
                         {written ? a : "", written ? b : ""}});
    };
    bool lan = shape.kind == link_kind::lan;
    bool mlp = shape.kind == link_kind::mlp;

    // device: as many devices as the link has, written with a blank after each.
    std::string first, second;
    for (int i = 0; i < shape.devices; ++i) {
        first += (lan ? "eth" : "wan") + std::to_string(20 + i) + " ";
        second += (lan ? "eth" : "wan") + std::to_string(30 + i) + " ";
    }
    add_made("link", "device", first, second, false, "nodev0");
    cases.back().made[0].pop_back();
    cases.back().made[1].pop_back();
    cases.back().made_written[0] = first;
    cases.back().made_written[1] = second;
    add_all("link", link_values);
    add_made("link", "type", lan ? "LAN" : "WAN", lan ? "LAN" : "WAN", true, "TOKENRING",
             effect::holds);
    // A LAN link passes over the version, an MLP link is always of 1988.
    add_made("link", "version", "1980", "1984", true, "1990",
             lan || mlp ? effect::passed_over : effect::changes);
    // On a LAN link either side gives packet level mode Auto, which the
    // plpmode line after it may set again.
    add_made("link", "mode", "DTE", "DCE", true, "DXE", lan ? effect::no_change : effect::changes);
    const char *protocols[2] = {lan   ? "LLC1"
                                : mlp ? "MLAPB"
                                      : "LAPB",
                                lan   ? "LLC2"
                                : mlp ? "MLAPBE"
                                      : "LAPBE"};
    add_made("link", "protocol", protocols[0], protocols[1], true, "HDLC");
    add_made("link", "max_lan_conns", "17", "18", lan, nullptr);

    add_all("x25", x25_values);
    // Window sizes above 8 that the file gives after modulo 8 are void.
    add_made("x25", "modulo", "128", "8", true, "16", effect::voids_other_lines);
    // A LAN link is on network 1, and the reader reports any other.
    if (lan)
        add_made("x25", "network", "X25_LLC", "1", true, "PSS", effect::holds);
    else
        add_made("x25", "network", "PSS", shape.network, true, nullptr);

    auto add_lapb = [&](const char *section, bool subsection) {
        add_all(section, frame_values);
        add_all(section, lapb_values);
        add_made(section, "mlp_priority", "3", "4", subsection, nullptr,
                 subsection ? effect::changes : effect::passed_over);
    };
    if (lan) {
        add_all("llc2", frame_values);
        add_all("llc2", llc2_values);
    } else if (!mlp) {
        add_lapb("lapb", false);
        add_all("wan", wan_values);
    } else {
        add_all("mlp", mlp_values);
        for (int i = 1; i <= shape.devices; ++i) {
            std::string lapb = "lapb" + std::to_string(i);
            std::string wan = "wan" + std::to_string(i);
            add_lapb(lapb.c_str(), true);
            add_all(wan.c_str(), wan_values);
        }
    }
    return cases;
}

// ---- Checks ---------------------------------------------------------------------

std::vector<std::string> lines_of(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        std::size_t length = end == std::string_view::npos ? text.size() : end + 1;
        lines.emplace_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return lines;
}

// What is wrong with `edited` as `original` with one keyword line's value
// `old_value` (as the reader gave it) replaced by `value`, or with one line
// for the keyword added when `old_value` is null; empty when nothing is.
std::string one_line_changed(const std::string &original, const std::string &edited,
                             const std::string &keyword, const std::string &value,
                             const std::optional<std::string> &old_value) {
    std::vector<std::string> a = lines_of(original);
    std::vector<std::string> b = lines_of(edited);
    std::size_t at = 0;
    while (at < a.size() && at < b.size() && a[at] == b[at])
        ++at;
    if (!old_value) {
        if (b.size() != a.size() + 1) return "not one line added";
        for (std::size_t i = at; i < a.size(); ++i)
            if (a[i] != b[i + 1]) return "more than one line added or changed";
        const std::string &line = b[at];
        std::size_t start = line.find_first_not_of(" \t");
        if (line.compare(start, std::string::npos, keyword + "\t" + value + "\n") != 0)
            return "the line added is " + line;
        return {};
    }
    if (b.size() != a.size() || at == a.size()) return "not one line changed";
    for (std::size_t i = at + 1; i < a.size(); ++i)
        if (a[i] != b[i]) return "more than one line changed";
    // The new line is the old one with the value that follows the keyword
    // replaced, as the file spells the keyword.
    const std::string &old_line = a[at];
    std::size_t word = old_line.find_first_not_of(" \t");
    if (strncasecmp(old_line.c_str() + word, keyword.c_str(), keyword.size()) != 0)
        return "the line changed is " + old_line;
    std::size_t found = old_line.find_first_not_of(" \t", word + keyword.size());
    std::string expected = old_line;
    if (old_value->empty() && old_line[found] == '!')
        expected.insert(word + keyword.size(), "\t" + value); // the blanks stay before "!"
    else if (old_line.compare(found, old_value->size(), *old_value) == 0)
        expected.replace(found, old_value->size(), value);
    if (b[at] != expected) return "the line " + old_line + " became " + b[at];
    return {};
}

// The lines a writer's file holds, less those that name the writer and the
// time of writing.
std::vector<std::string> written_lines(const std::string &text) {
    std::vector<std::string> lines;
    for (std::string &line : lines_of(text))
        if (!line.starts_with("\tMODIFIED_BY\t") && !line.starts_with("\tFILE_DATE\t"))
            lines.push_back(std::move(line));
    return lines;
}

// What a reading of a link file gave, and how the library writes it.
struct read_link {
    int result = 0;
    qx25tool::record_parts parts;
    std::vector<std::string> messages;
    std::vector<std::string> written;
};

read_link read_text(const std::string &text) {
    read_link read;
    qx25tool::scratch_file file;
    if (!file.hold(text)) {
        read.result = errno;
        return read;
    }
    qx25tool::link_records records;
    qx25tool::collect_messages();
    read.result = records.read(file.path().c_str());
    read.messages = qx25tool::take_messages();
    read.parts = qx25tool::parts_of(records);
    std::string written;
    if (records.write_text(written) == 0) read.written = written_lines(written);
    qx25tool::take_messages();
    return read;
}

// What is wrong with the new text's reading; empty when nothing is.
std::string reads_with_value(const read_link &before, const std::string &text,
                             const std::string &keyword, const char *written) {
    read_link after = read_text(text);
    if (after.result != 0) return "the new text cannot be read";
    if (after.messages != before.messages) return "the new text reads with other messages";
    if (!qx25tool::first_difference(before.parts, after.parts))
        return "the new text reads as the old one";
    if (written == nullptr) return {};
    // The library writes the one keyword line anew, with the value, or
    // writes one more line, for the keyword.
    const std::vector<std::string> &a = before.written;
    const std::vector<std::string> &b = after.written;
    std::size_t at = 0;
    while (at < a.size() && at < b.size() && a[at] == b[at])
        ++at;
    std::size_t skip = b.size() == a.size() + 1 ? 1 : b.size() == a.size() ? 0 : 2;
    if (skip > 1 || at == b.size()) return "the library writes the new text in other lines";
    for (std::size_t i = at + 1; i < a.size(); ++i)
        if (a[i] != b[i + skip]) return "the library writes more than one line anew";
    const std::string &line = b[at];
    std::string start = "\t" + keyword;
    if (!line.starts_with(start)) return "the library writes anew " + line;
    std::size_t value = line.find_first_not_of(" \t", start.size());
    std::size_t end = std::min(line.find("\t!", value), line.size() - 1);
    if (line.substr(value, end - value) != written)
        return "the library writes the value as " + line.substr(value, end - value);
    return {};
}

class SetEveryKeyword : public testing::Test {
  protected:
    void SetUp() override {
        // Thousands of small files come and go: in memory where there is
        // room for them.
        std::error_code error;
        if (std::filesystem::is_directory("/dev/shm", error) && ::access("/dev/shm", W_OK) == 0)
            ::setenv("TMPDIR", "/dev/shm", 1);
        tree.write("config/boardconf", qx25test::generated_boardconf);
        tree.write("lib/world_networks.profile", qx25test::generated_profiles);
    }

    // Sets the keywords of the cases with the index `first` + a multiple of
    // `stride` in the link file `text`; what goes wrong, one line for each.
    std::vector<std::string> set_keywords(const std::string &text, const link_shape &shape,
                                          std::size_t first, std::size_t stride) {
        std::vector<std::string> found;
        read_link before = read_text(text);
        if (before.result != 0) return {"the file cannot be read"};
        std::vector<keyword_case> cases = cases_for(shape);
        for (std::size_t i = first % stride; i < cases.size(); i += stride) {
            const keyword_case &c = cases[i];
            std::string where = c.target.title + " " + c.values.keyword + " ";
            auto plan = [&](const char *value) {
                return qx25tool::plan_keyword_edit(text, "file", c.target, c.values.keyword, value);
            };
            if (c.values.invalid != nullptr &&
                plan(c.values.invalid).outcome != edit_outcome::refused)
                found.push_back(where + "'" + c.values.invalid + "' is not refused");
            if (c.expected != effect::changes && c.expected != effect::voids_other_lines) {
                qx25tool::keyword_edit edit = plan(c.value(0));
                bool as_expected =
                    c.expected == effect::holds         ? edit.outcome == edit_outcome::unchanged
                    : c.expected == effect::passed_over ? edit.outcome == edit_outcome::refused
                                                        : edit.outcome != edit_outcome::changed;
                if (!as_expected)
                    found.push_back(where + "'" + c.value(0) + "' gives outcome " +
                                    std::to_string(static_cast<int>(edit.outcome)) + " " +
                                    edit.reason);
                continue;
            }
            int taken = 0;
            qx25tool::keyword_edit edit = plan(c.value(0));
            if (edit.outcome == edit_outcome::unchanged) edit = plan(c.value(taken = 1));
            std::string value = c.value(taken);
            if (c.expected == effect::voids_other_lines && edit.outcome == edit_outcome::refused &&
                edit.reason.starts_with("the new value would change more of what the library "
                                        "reads from the file"))
                continue;
            if (edit.outcome != edit_outcome::changed) {
                std::string why = edit.reason;
                for (const std::string &message : edit.messages)
                    why += message + "; ";
                found.push_back(where + "'" + value + "' changes nothing: " + why);
                continue;
            }
            std::string wrong =
                one_line_changed(text, edit.new_text, c.values.keyword, value, edit.old_value);
            if (wrong.empty())
                wrong = reads_with_value(before, edit.new_text, c.values.keyword, c.written(taken));
            if (!wrong.empty()) found.push_back(where + "'" + value + "': " + wrong);
        }
        return found;
    }

    void run(link_kind kind, std::uint32_t first, int count, std::size_t stride);

    ConfigTree tree;
};

// Every keyword of every section of the three example links.
TEST_F(SetEveryKeyword, ExampleLinks) {
    const link_shape shapes[] = {{link_kind::lan, 1, "X25_1984"},
                                 {link_kind::wan, 1, "X25_1984"},
                                 {link_kind::mlp, 2, "X25_1984"}};
    for (int link = 1; link <= 3; ++link) {
        std::string path = std::string(QX25_SOURCE_DIR "/examples/etc/config/link_config_000") +
                           std::to_string(link) + ".cfg";
        ::setenv("X25CONFIGFILES", QX25_SOURCE_DIR "/examples/etc", 1);
        ::setenv("X25LIBFILES", QX25_SOURCE_DIR "/examples/lib", 1);
        std::vector<std::string> found =
            set_keywords(qx25test::read_file(path), shapes[link - 1], 0, 1);
        std::string report;
        for (const std::string &line : found)
            report += "  " + line + "\n";
        EXPECT_TRUE(found.empty()) << "link " << link << ":\n" << report;
    }
}

// Configurations `first` to `first + count - 1` of the generator: in the
// n-th configuration gone over the keywords whose case index is n modulo
// `stride`, so that every keyword of every section is set in configurations
// of every kind, many times over.
void SetEveryKeyword::run(link_kind kind, std::uint32_t first, int count, std::size_t stride) {
    int failures = 0;
    auto step = static_cast<std::uint32_t>(configuration_step());
    std::size_t gone_over = 0;
    for (std::uint32_t index = first; index < first + static_cast<std::uint32_t>(count);
         index += step, ++gone_over) {
        qx25test::generated_file file =
            qx25test::generate_link_file(kind, qx25test::first_seed + index);
        std::vector<std::string> found =
            set_keywords(file.text, {kind, file.devices, "X25_84"}, gone_over, stride);
        if (found.empty() || ++failures > 3) continue;
        std::string report;
        for (std::size_t i = 0; i < found.size() && i < 20; ++i)
            report += "  " + found[i] + "\n";
        ADD_FAILURE() << qx25test::kind_name(kind) << " configuration " << index
                      << " (std::mt19937 seeded with " << qx25test::first_seed + index << "):\n"
                      << report << "The generated file:\n"
                      << file.text;
    }
    EXPECT_EQ(failures, 0) << "of " << count << " " << qx25test::kind_name(kind)
                           << " configurations";
}

// The configurations of the round trips: 0 to 299 LAN links, 300 to 649 WAN
// links, 650 to 999 MLP links of two to five devices.
TEST_F(SetEveryKeyword, GeneratedLanLinks) {
    run(link_kind::lan, 0, 300, keyword_stride());
}

TEST_F(SetEveryKeyword, GeneratedWanLinks) {
    run(link_kind::wan, 300, 350, keyword_stride());
}

TEST_F(SetEveryKeyword, GeneratedMlpLinks) {
    run(link_kind::mlp, 650, 350, keyword_stride());
}

} // namespace
