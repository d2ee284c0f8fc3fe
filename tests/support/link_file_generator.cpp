#include "link_file_generator.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <random>
#include <string_view>
#include <vector>

namespace qx25test {

const char *const generated_boardconf = "WAN_DEVICE\n\tsymbolic WANS\n\tdevice wan\n\tlines 2\n"
                                        "LAN_DEVICE\n\tsymbolic ETHR\n\tdevice eth\n\tlines 1\n";
const char *const generated_profiles = "# networks of the test site\n"
                                       "1 X25_LLC LAN network\n"
                                       "2 X25_88 WAN 1988\n"
                                       "3 X25_84 WAN 1984\n"
                                       "4 X25_80 WAN 1980\n"
                                       "7 PSS public network\n"
                                       "25 X21_SWITCHED circuit switched network\n"
                                       "99 Transpac packet network\n";

const char *kind_name(link_kind kind) {
    switch (kind) {
    case link_kind::lan:
        return "LAN";
    case link_kind::wan:
        return "WAN";
    default:
        return "MLP";
    }
}

namespace {

struct network {
    int number;
    const char *name;
};

// The networks of generated_profiles. Network 1 is the one of LAN links.
constexpr network networks[] = {{1, "X25_LLC"},  {2, "X25_88"}, {3, "X25_84"},
                                {4, "X25_80"},   {7, "PSS"},    {25, "X21_SWITCHED"},
                                {99, "Transpac"}};

// The reader takes physical lines of at most 127 characters, newline
// included; longer lines would come apart.
constexpr std::size_t longest_line = 126;

// A trailing comment is at most this long.
constexpr long longest_trailer = 60;

// ---- Random values ------------------------------------------------------------

// Draws straight from std::mt19937, whose output the standard fixes, and not
// through the library's distributions, whose output it does not: a seed
// gives the same configuration with every standard library.
class random_source {
  public:
    explicit random_source(std::uint32_t seed) : engine_(seed) {}

    // A number from low to high, both included.
    long between(long low, long high) {
        auto span = static_cast<std::uint64_t>(high - low) + 1;
        return low + static_cast<long>(static_cast<std::uint64_t>(engine_()) % span);
    }

    bool chance(int percent) { return between(1, 100) <= percent; }

    template <typename T, std::size_t N> const T &pick(const T (&items)[N]) {
        return items[between(0, static_cast<long>(N) - 1)];
    }

  private:
    std::mt19937 engine_;
};

// ---- The generated file -------------------------------------------------------

// Writes a random valid link configuration file (see generate_link_file).
class generator {
  public:
    generator(link_kind kind, std::uint32_t seed) : kind_(kind), random_(seed) {}

    generated_file make() {
        file_.mode = kind_ == link_kind::lan ? 3 : kind_ == link_kind::wan ? 4 : 6;
        identification();
        link();
        if (kind_ == link_kind::lan) {
            llc2();
        } else if (kind_ == link_kind::wan) {
            lapb(-1);
            wan(false);
        } else {
            mlp();
        }
        x25();
        return file_;
    }

  private:
    // ---- Text -----------------------------------------------------------

    // A printable character other than "!", which always starts a comment.
    char printable() {
        char c;
        do {
            c = static_cast<char>(random_.between(' ', '~'));
        } while (c == '!');
        return c;
    }

    std::string printable_text(long length) {
        std::string text(static_cast<std::size_t>(length), ' ');
        for (char &c : text)
            c = printable();
        return text;
    }

    // Printable text with blanks only between other characters: a value
    // keeps no blank at its start, nor at its end before a comment.
    std::string words(long length) {
        std::string text = printable_text(length);
        if (text.front() == ' ') text.front() = 'w';
        if (text.back() == ' ') text.back() = 'z';
        return text;
    }

    // Keywords and symbolic values are matched without regard to case.
    std::string mixed_case(std::string_view word) {
        std::string text(word);
        if (!random_.chance(20)) return text;
        for (char &c : text) {
            auto u = static_cast<unsigned char>(c);
            c = static_cast<char>(random_.chance(50) ? std::toupper(u) : std::tolower(u));
        }
        return text;
    }

    std::string hex_digits(long count) {
        static constexpr char digits[] = "0123456789ABCDEF";
        std::string text;
        for (long i = 0; i < count; ++i)
            text += digits[random_.between(0, 15)];
        return text;
    }

    static std::string lower(std::string text) {
        for (char &c : text)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        return text;
    }

    // ---- Lines ----------------------------------------------------------

    void spacing() {
        if (random_.chance(8)) file_.text += random_.pick({"\n", "   \n", "\t\n"});
    }

    // The lines of a comment block of two or three lines that the writer
    // puts back line by line: whenever it has written a line of the block,
    // the rest is still longer than 60 characters, or a single line.
    std::vector<std::string> long_block() {
        std::vector<long> lengths;
        for (bool safe = false; !safe;) {
            lengths.assign(static_cast<std::size_t>(random_.between(2, 3)), 0);
            for (long &length : lengths)
                length = random_.between(1, 100);
            safe = true;
            for (std::size_t first = 0; first + 1 < lengths.size(); ++first) {
                std::size_t rest = 0;
                for (std::size_t i = first; i < lengths.size(); ++i)
                    rest += static_cast<std::size_t>(lengths[i]) + 1;
                safe = safe && rest > whole_comment;
            }
        }
        std::vector<std::string> lines;
        for (long length : lengths)
            lines.push_back(printable_text(length));
        return lines;
    }

    // No comment, a comment of one "!" line, or a long block of several.
    void comments(bool kept) {
        long roll = random_.between(1, 100);
        if (roll <= 50) return;
        std::vector<std::string> lines;
        if (roll <= 80)
            lines.push_back(printable_text(random_.between(1, 100)));
        else
            lines = long_block();
        for (const std::string &line : lines) {
            spacing();
            file_.text += random_.pick({"", "", "", "\t", "  "}) + ("!" + line) + "\n";
        }
        if (kept) ++file_.kept_comments;
    }

    void section(const char *word, const char *name) {
        spacing();
        comments(true);
        file_.text +=
            mixed_case(word) + random_.pick({"\t", " ", "\t\t"}) + mixed_case(name) + "\n";
    }

    // A keyword line: `value` as this file gives it, `written` as the writer
    // writes it (for the length of the lines). The X.32 keywords keep no
    // comments.
    void keyword(std::string_view name, const std::string &value, const std::string &written,
                 bool keeps_comments = true) {
        spacing();
        comments(keeps_comments);
        std::string line = random_.pick({"\t", "\t", "\t", "  ", "", " \t"}) + mixed_case(name) +
                           random_.pick({"\t", "\t", "\t\t", " ", "\t "}) + value;
        if (random_.chance(30)) {
            // The writer's line: a tab, the keyword, at most four blanks and
            // tabs, the value, a tab and "!".
            std::size_t rewritten = 1 + name.size() + 4 + written.size() + 2;
            std::size_t here = line.size() + 2;
            std::size_t longest = std::max(rewritten, here);
            long room = longest < longest_line ? static_cast<long>(longest_line - longest) : 0;
            room = std::min(room, longest_trailer);
            if (room >= 1) {
                line += random_.pick({"\t", " ", ""}) +
                        ("!" + printable_text(random_.between(1, room)));
                if (keeps_comments) ++file_.kept_comments;
            }
        }
        file_.text += line + "\n";
    }

    // ---- Values ---------------------------------------------------------

    void flag(std::string_view name, bool keeps_comments = true) {
        bool on = random_.chance(50);
        std::string value = on ? "y" : "n";
        if (random_.chance(50)) value = on ? "Y" : "N";
        keyword(name, value, on ? "Y" : "N", keeps_comments);
    }

    void number(std::string_view name, long low, long high) {
        std::string value = std::to_string(random_.between(low, high));
        keyword(name, value, value);
    }

    // Tenths of a second, written in seconds with one decimal.
    void tenths(std::string_view name, long low, long high) {
        long tenths = random_.between(low, high);
        std::string written = std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
        std::string value = written;
        if (tenths % 10 == 0 && random_.chance(30))
            value = std::to_string(tenths / 10);
        else if (random_.chance(10))
            value += "0";
        keyword(name, value, written);
    }

    // Milliseconds, written in seconds with three decimals.
    void delay(std::string_view name) {
        long milliseconds = random_.between(0, 32000);
        char written[32];
        std::snprintf(written, sizeof written, "%ld.%03ld", milliseconds / 1000,
                      milliseconds % 1000);
        std::string value = written;
        if (milliseconds % 1000 == 0 && random_.chance(30))
            value = std::to_string(milliseconds / 1000);
        keyword(name, value, written);
    }

    void choice(std::string_view name, std::string_view word) {
        keyword(name, mixed_case(word), std::string(word));
    }

    // Identity and signature: an even number of hexadecimal digits, as the
    // writer writes back only whole pairs.
    void hexadecimal(std::string_view name) {
        std::string written = hex_digits(2 * random_.between(1, 32));
        keyword(name, random_.chance(30) ? lower(written) : written, written, false);
    }

    void x32(const std::string &prefix) {
        if (random_.chance(40)) flag(prefix + "enable_authen", false);
        if (random_.chance(40)) hexadecimal(prefix + "sign");
        if (random_.chance(40)) hexadecimal(prefix + "identity");
    }

    // ---- Sections -------------------------------------------------------

    // The writer writes the first 63, 15 and 31 characters of the three
    // texts; longer ones are cut by the reader already.
    void identification() {
        comments(true);
        file_.text += mixed_case("IDENTIFICATION") + "\n";
        auto ident = [this](const char *name, long length) {
            spacing();
            comments(false); // the reader drops these
            file_.text += random_.pick({"\t", " ", ""}) + mixed_case(name) +
                          random_.pick({"\t", " ", "\t\t"}) + words(length) + "\n";
        };
        ident("PRODUCT_NAME",
              random_.chance(10) ? random_.between(64, 75) : random_.between(1, 63));
        ident("PRODUCT_VERSION",
              random_.chance(20) ? random_.between(15, 20) : random_.between(1, 14));
        ident("FILE_TYPE", random_.chance(10) ? random_.between(32, 40) : random_.between(1, 31));
        ident("MODIFIED_BY", random_.between(1, 31));
        ident("FILE_DATE", random_.between(1, 31));
    }

    // A full address: an optional subnetwork, 1 to 17 DTE digits, and an
    // optional extension or PVC mark; `written` gets the writer's text.
    std::string full_address(std::string &written) {
        bool subnetwork = random_.chance(60);
        std::string value, shown;
        if (subnetwork) {
            value = shown = std::to_string(random_.between(0, 9999)) + ".";
        }
        if (subnetwork && random_.chance(10)) {
            std::string dte = std::to_string(random_.between(100, 999));
            value += dte + random_.pick({".P", ".p"});
            written = shown + dte + ".P";
            return value;
        }
        long count = random_.between(1, 17);
        bool letters = random_.chance(10);
        for (long i = 0; i < count; ++i) {
            char c = static_cast<char>('0' + random_.between(0, 9));
            if (letters && random_.chance(20)) c = random_.pick({'A', 'b', 'C', 'f', '*', '?'});
            value += c;
            // Wildcards have the nibbles of F and E, as which they are
            // written when no address class is applied.
            shown += c == '*' ? 'F' : c == '?' ? 'E' : static_cast<char>(std::toupper(c));
        }
        if (random_.chance(40)) {
            std::string extension = hex_digits(random_.between(1, 40));
            bool nsap = random_.chance(50);
            // A bare extension (".4711" or "..4711") is an NSAP one. Without
            // a subnetwork, a DTE part of up to four digits before a bare one
            // would be taken for a subnetwork number.
            std::string mark =
                nsap ? random_.pick({".N.", ".n.", ".", ".."}) : random_.pick({".X.", ".x."});
            if (nsap && !subnetwork) mark = random_.pick({".N.", ".n."});
            value += mark + (random_.chance(30) ? lower(extension) : extension);
            shown += (nsap ? ".N." : ".X.") + extension;
        }
        written = shown;
        return value;
    }

    void link() {
        section("SECTION", "LINK");

        // device: one Ethernet device on a LAN link, one line of the WAN
        // board on a WAN link, two to five distinct lines on an MLP link.
        file_.devices = kind_ == link_kind::mlp ? static_cast<int>(random_.between(2, 5)) : 1;
        std::vector<long> instances;
        while (static_cast<int>(instances.size()) < file_.devices) {
            long instance = random_.between(0, 15);
            bool used = false;
            for (long other : instances)
                used = used || other == instance;
            if (!used) instances.push_back(instance);
        }
        const char *device = kind_ == link_kind::lan ? "eth" : "wan";
        std::string value, written;
        for (std::size_t i = 0; i < instances.size(); ++i) {
            if (i > 0) value += random_.pick({" ", ",", ", "});
            value += mixed_case(device) + std::to_string(instances[i]);
            written += device + std::to_string(instances[i]) + " ";
        }
        keyword("device", value, written);

        std::string local = hex_digits(random_.between(0, 17));
        keyword("local_address", random_.chance(30) ? lower(local) : local, local);

        if (random_.chance(85)) {
            std::string address;
            value = full_address(address);
            keyword("full_address", value, address);
        }

        choice("type", kind_ == link_kind::lan ? "LAN" : "WAN");

        // The version names the network type of a WAN link; a LAN link
        // ignores it and an MLP link is always of 1988.
        static constexpr const char *versions[][2] = {
            {"1980", "80"}, {"1984", "84"}, {"1988", "88"}};
        long version = random_.between(0, 2);
        keyword("version", versions[version][random_.between(0, 1)],
                kind_ == link_kind::wan ? versions[version][0] : "1988");

        bool dce = random_.chance(50);
        keyword("mode", mixed_case(dce ? "DCE" : "DTE"),
                dce && kind_ != link_kind::lan ? "DCE" : "DTE");

        const char *protocol;
        if (kind_ == link_kind::lan)
            protocol = random_.pick({"LLC1", "LLC2"});
        else if (kind_ == link_kind::wan)
            protocol = random_.pick({"LAP", "LAPB", "LAPBE"});
        else
            protocol = random_.pick({"MLAPB", "MLAPBE"});
        choice("protocol", protocol);

        if (random_.chance(50)) {
            std::string alias = words(random_.between(1, 20));
            keyword("alias", alias, alias);
        }
        if (random_.chance(50)) {
            std::string description = words(random_.between(1, 60));
            keyword("description", description, description);
        }
        if (kind_ == link_kind::lan) number("max_lan_conns", 0, 255);
    }

    // The keywords that LAPB and LLC2 share, up to max_iframe_len.
    void frame_level(long longest_iframe) {
        number("n2_count", 0, 32767);
        for (const char *timer :
             {"t1_timer", "pf_timer", "reject_timer", "busy_timer", "idle_timer", "rr_ack_delay"})
            tenths(timer, 0, 32767);
        number("unack_max", 0, 127);
        number("local_win", 0, 127);
        number("local_probe", 0, 127);
        number("max_iframe_len", 0, longest_iframe);
    }

    void llc2() {
        section("SECTION", "LLC2");
        frame_level(4103);
        number("xid_window", 0, 127);
        number("xid_ndup", 0, 255);
        tenths("xid_tdup", 0, 32767);
    }

    // A SECTION LAPB (position -1) or the SUBSECTION LAPB of an MLP device.
    void lapb(int position) {
        section(position < 0 ? "SECTION" : "SUBSECTION", "LAPB");
        frame_level(8199);
        for (const char *name :
             {"ign_ua_error", "frmr_frmr_error", "frmr_invrsp_error", "sframe_pbit", "no_dm_adm",
              "iso8882", "sabm_in_x32", "initial_down"})
            flag(name);
        if (position >= 0) number("mlp_priority", 0, 255);
        x32("lapb_x32_");
    }

    // translate and the X.21 timers are left out: the writer never writes
    // them. A V.25 call procedure always has its call-request timer, whose
    // field holds 0.3 s otherwise, below what the reader accepts.
    void wan(bool subsection) {
        section(subsection ? "SUBSECTION" : "SECTION", "WAN");
        long speed = random_.between(1, 100);
        if (speed <= 25)
            keyword("line_speed", mixed_case("External"), "External");
        else if (speed <= 30)
            keyword("line_speed", "0", "External");
        else
            number("line_speed", 1, 4294967295L);
        number("max_frame", 0, 4104);
        const char *procedure = random_.pick({"X21", "V25", "NONE"});
        choice("connect_proc", procedure);
        if (std::strcmp(procedure, "V25") == 0) tenths("v25_callreq", 60, 300);
    }

    void mlp() {
        section("SECTION", "MLP");
        number("mlp_window", 0, 4095);
        number("mlp_guard", 0, 4095);
        tenths("mt1_val", 1, 3000);
        tenths("mt2_val", 1, 3000);
        tenths("mt3_val", 1, 3000);
        number("mn1_val", 1, 255);
        for (int position = 0; position < file_.devices; ++position) {
            lapb(position);
            wan(true);
        }
    }

    void lcn_range(std::string_view name) {
        long low = random_.between(0, 4095);
        long high = random_.chance(10) ? low : random_.between(low, 4095);
        if (random_.chance(10)) low = high = 0;
        std::string written = std::to_string(low) + "-" + std::to_string(high);
        std::string value = random_.chance(70) ? written
                                               : std::to_string(low) + random_.pick({" - ", " "}) +
                                                     std::to_string(high);
        keyword(name, value, written);
    }

    std::string class_map(long highest) {
        std::string text;
        for (int i = 0; i < 16; ++i) {
            if (i > 0) text += ",";
            text += std::to_string(random_.between(0, highest));
        }
        return text;
    }

    void x25() {
        section("SECTION", "X25");
        // A LAN link uses network 1; any other network is reported.
        const network &net = kind_ == link_kind::lan ? networks[0] : random_.pick(networks);
        keyword("network", random_.chance(50) ? mixed_case(net.name) : std::to_string(net.number),
                net.name);
        choice("plpmode", random_.chance(50) ? "Auto" : "Normal");
        for (const char *range : {"pvc_range", "inc_range", "out_range", "two_range"})
            lcn_range(range);
        bool modulo_8 = random_.chance(50);
        keyword("modulo", modulo_8 ? "8" : "128", modulo_8 ? "8" : "128");
        flag("use_negotiation");
        flag("bar_negotiation");
        number("src_addr_control", 1, 4);
        for (const char *name :
             {"accept_revchg", "prev_chg", "fast_select", "fs_r_response", "bar_nonpriv_listen"})
            flag(name);
        for (const char *name :
             {"locmaxpktsize", "remmaxpktsize", "locdefpktsize", "remdefpktsize"})
            number(name, 7, 12);
        for (const char *name :
             {"locmaxwinsize", "remmaxwinsize", "locdefwinsize", "remdefwinsize"})
            number(name, 1, modulo_8 ? 8 : 128);
        number("maxnsdulength", 1, 32000);
        for (const char *name :
             {"ackdelay", "t20value", "t21value", "t22value", "t23value", "t24value", "t25value",
              "t26value", "t28value", "idlevalue", "connectvalue"})
            tenths(name, 0, 32000);
        for (const char *name : {"r20value", "r22value", "r23value", "r28value"})
            number(name, 0, 255);
        delay("localdelay");
        delay("accessdelay");
        for (const char *name : {"locmaxthclass", "remmaxthclass", "locdefthclass", "remdefthclass",
                                 "locminthclass", "remminthclass"})
            number(name, 0, 15);
        for (const char *name : {"sub_cug", "sub_pref_cug", "sub_cugoa", "sub_cugia"})
            flag(name);
        choice("cug_format", random_.chance(50) ? "Basic" : "Extended");
        flag("bar_cug_in");
        for (const char *name : {"bar_incall", "bar_outcall", "sub_toa_npi_fmt", "bar_toa_npi_fmt",
                                 "sub_nui_override", "bar_call_x32_reg"})
            flag(name);
        // datapac_priority comes after insert_x121_from_lan in the writer.
        for (const char *name : {"acc_nodiag", "use_diag", "ccitt_clear_len", "bar_diag",
                                 "disc_nz_diag", "acc_hex_add", "intl_prioritised", "iso_8882_mode",
                                 "send_x121_to_lan", "insert_x121_from_lan", "datapac_priority"})
            flag(name);
        char dnic[8];
        std::snprintf(dnic, sizeof dnic, "%04ld", random_.between(0, 9999));
        keyword("dnic", dnic, dnic);
        number("intl_addr_recogn", 0, 4);
        number("prty_encode_control", 0, 2);
        long forced = random_.between(3, 12); // 0, or 4 to 12
        std::string forced_text = std::to_string(forced == 3 ? 0 : forced);
        keyword("prty_pkt_forced_val", forced_text, forced_text);
        choice("dbit_accept_in", random_.pick({"zero", "clear", "ignore"}));
        choice("dbit_accept_out", random_.pick({"zero", "clear", "ignore"}));
        choice("dbit_data_in", random_.pick({"zero", "reset", "ignore"}));
        choice("dbit_data_out", random_.pick({"zero", "reset", "ignore"}));
        flag("thclass_neg_to_def");
        number("thclass_type", 0, 3);
        std::string map = class_map(127);
        keyword("thclass_wmap", map, map);
        map = class_map(12);
        keyword("thclass_pmap", map, map);
        x32("x25_x32_");
    }

    link_kind kind_;
    random_source random_;
    generated_file file_;
};

} // namespace

generated_file generate_link_file(link_kind kind, std::uint32_t seed) {
    return generator(kind, seed).make();
}

} // namespace qx25test
