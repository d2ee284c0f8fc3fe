// Link configuration writer: writes one link's records back in the file
// layout the reader accepts, every stored comment in its place.
#include "link_config.h"

#include "messages.h"
#include "numeric_locale.h"
#include "text_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

using namespace qx25;

namespace {

constexpr char comment_mark = '!';
constexpr std::size_t whole_piece = 60; // a comment this long is one line
constexpr std::size_t shortest_cut = 61;
constexpr std::size_t longest_piece = 80;

// ---- Comments -----------------------------------------------------------------

void print_piece(FILE *stream, const char *text, std::size_t length, const char *end) {
    std::fprintf(stream, "%c%.*s%s", comment_mark, static_cast<int>(length), text, end);
}

// ---- Values -------------------------------------------------------------------

char yes_no(unsigned bits, unsigned mask) {
    return (bits & mask) != 0 ? 'Y' : 'N';
}

double tenths(int value) {
    return value / 10.0;
}

// The class of the link's network type: 1 LAN, 2 WAN80, 3 WAN84, 4 WAN88,
// 5 to 9 MLP, 0 unknown.
int link_class(const link_values &link) {
    int row = link.net_type < net_type_rows ? link.net_type : net_type_rows - 1;
    return link_nettype[row].address_class;
}

bool is_dce_code(int code) {
    return code == LC_LAPBDCE || code == LC_LAPBXDCE || code == LC_LAPDCE || code == LC_MLAPBDCE ||
           code == LC_MLAPBXDCE;
}

const char *protocol_name(int code) {
    switch (code) {
    case LC_LLC1:
        return "LLC1";
    case LC_LLC2:
        return "LLC2";
    case LC_LAPBXDTE:
    case LC_LAPBXDCE:
        return "LAPBE";
    case LC_LAPDTE:
    case LC_LAPDCE:
        return "LAP";
    case LC_MLAPBDTE:
    case LC_MLAPBDCE:
        return "MLAPB";
    case LC_MLAPBXDTE:
    case LC_MLAPBXDCE:
        return "MLAPBE";
    default:
        return "LAPB";
    }
}

const char *version_name(int address_class) {
    if (address_class == 3) return "1984";
    if (address_class == 1 || address_class >= 4) return "1988";
    return "1980";
}

// ---- Section writers ------------------------------------------------------------

// Writes the lines of one section: each keyword line is preceded by its
// stored comments and ended by its trailing comment. A section fails when
// any stream operation failed.
class section_writer {
  public:
    section_writer(FILE *stream, const config_comment *pairs, const config_keyword *names)
        : stream_(stream), pairs_(pairs), names_(names) {
        errno = 0;
    }

    void header(const config_comment &pair, const char *line) {
        print_comment(stream_, pair.comments);
        std::fputs(line, stream_);
    }

    // Starts keyword line `index`: its comments, a tab and the keyword.
    FILE *begin(int index) {
        print_comment(stream_, pairs_[index].comments);
        std::fprintf(stream_, "\t%s", names_[index].name);
        current_ = index;
        return stream_;
    }

    // Ends the current keyword line.
    void end() { trail_comment(stream_, pairs_[current_].trailer); }

    template <typename... Args> void line(int index, const char *format, Args... args) {
        std::fprintf(begin(index), format, args...);
        end();
    }

    void flag(int index, const char *tabs, char value) { line(index, "%s%c", tabs, value); }

    void close(const char *blank_lines) { std::fputs(blank_lines, stream_); }

    bool failed() const { return std::ferror(stream_) != 0; }

  private:
    FILE *stream_;
    const config_comment *pairs_;
    const config_keyword *names_;
    int current_ = 0;
};

// The X.32 lines of a section, from the keyword of the enable flag on: the
// flag with any X.32 record, the signature and identity when they are set.
void write_x32(section_writer &out, int flag_index, const x32_record *x32) {
    if (x32 == nullptr) return;
    char text[2 * sizeof x32->identity + 1];
    out.flag(flag_index, "\t\t", x32->authen != 0 ? 'Y' : 'N');
    if (x32->signature_len != 0) {
        bcd_to_str(text, x32->signature, std::min<int>(2 * x32->signature_len, 64));
        out.line(flag_index + 1, "\t%s", text);
    }
    if (x32->identity_len != 0) {
        bcd_to_str(text, x32->identity, std::min<int>(2 * x32->identity_len, 64));
        out.line(flag_index + 2, "\t%s", text);
    }
}

bool write_ident(FILE *stream, const config_identification &ids) {
    errno = 0;
    print_comment(stream, ids.comments);
    const char *user = std::getenv("LOGNAME");
    if (user == nullptr || *user == '\0') user = std::getenv("USER");
    if (user == nullptr || *user == '\0') user = "<unknown>";
    std::time_t now = std::time(nullptr);
    const char *date = std::ctime(&now);
    std::fprintf(
        stream,
        "IDENTIFICATION\n"
        "\tPRODUCT_NAME\t%.*s\n"
        "\tPRODUCT_VERSION\t%.*s\n"
        "\tFILE_TYPE\t%.*s\n"
        "\tMODIFIED_BY\t%s\n"
        "\tFILE_DATE\t%s\n\n",
        static_cast<int>(::strnlen(ids.product_name, sizeof ids.product_name)), ids.product_name,
        static_cast<int>(::strnlen(ids.product_version, sizeof ids.product_version)),
        ids.product_version, static_cast<int>(::strnlen(ids.file_type, sizeof ids.file_type)),
        ids.file_type, user, date != nullptr ? date : "\n");
    return std::ferror(stream) == 0;
}

bool write_link(FILE *stream, const link_section &link) {
    if (!load_config_linktype_on_demand())
        __parse_error_function("Unable to read device data files");
    const link_values &v = link.values;
    section_writer out(stream, link.keyword, __LINK_functions);
    int address_class = link_class(v);

    out.header(link.section, "SECTION\tLINK\n");
    std::fputs("\t\t", out.begin(0));
    for (int i = 0; i < std::min<int>(v.device_count, LINK_MAX_DEVICES); ++i) {
        const device_type &type =
            __config_linktype[std::min<int>(v.device_type[i], DEVICE_TYPE_ROWS - 1)];
        std::fprintf(stream, "%.*s%d ",
                     static_cast<int>(::strnlen(type.device, sizeof type.device)), type.device,
                     v.device_board[i] * type.lines + v.device_line[i]);
    }
    out.end();
    out.line(1, "\t%.*s", static_cast<int>(::strnlen(v.local_address, sizeof v.local_address)),
             v.local_address);
    if (v.subnet.address.dte_len != 0 || v.subnet.address.ext_len != 0) {
        char address[256];
        if (x25tos(&v.subnet.address, address, 0) != 0) std::strcpy(address, "<unknown>");
        out.line(2, "\t%s", address);
    }
    out.line(3, "\t\t%s", address_class == 1 ? "LAN" : "WAN");
    out.line(4, "\t\t%s", version_name(address_class));
    out.line(5, "\t\t%s", is_dce_code(v.link_mode) ? "DCE" : "DTE");
    out.line(6, "\t%s", protocol_name(v.link_mode));
    if (v.subnet.name != nullptr) out.line(7, "\t\t%s", v.subnet.name);
    if (v.subnet.description != nullptr) out.line(8, "\t%s", v.subnet.description);
    if (address_class == 1) out.line(9, "\t%d", v.max_lan_conns);
    out.close("\n");
    return !out.failed();
}

struct flag_line {
    int index;
    const char *tabs;
    unsigned mask;
};

bool write_lapb(FILE *stream, const lapb_section *lapb, const link_section *link, int position,
                const x32_record *x32) {
    errno = 0; // a missing record fails the write with EBADF
    if (lapb == nullptr) return false;
    const lapb_template &v = lapb->values;
    section_writer out(stream, lapb->keyword, __LAPB_functions);
    bool subsection = link != nullptr && position >= 0;
    out.header(lapb->section, subsection ? "SUBSECTION\tLAPB\n" : "SECTION\tLAPB\n");
    out.line(0, "\t\t%d", v.n2_count);
    out.line(1, "\t\t%.1f", tenths(v.t1_timer));
    out.line(2, "  \t\t%.1f", tenths(v.pf_timer));
    out.line(3, "\t\t%.1f", tenths(v.reject_timer));
    out.line(4, "\t\t%.1f", tenths(v.busy_timer));
    out.line(5, "\t\t%.1f", tenths(v.idle_timer));
    out.line(6, "\t\t%.1f", tenths(v.rr_ack_delay));
    out.line(7, "\t\t%d", v.unack_max);
    out.line(8, "\t\t%d", v.local_win);
    out.line(9, "\t\t%d", v.local_probe);
    out.line(10, "\t\t%d", v.max_iframe_len);
    // iso8882 deliberately comes before sabm_in_x32.
    constexpr flag_line flags[] = {
        {12, "\t\t", LAPB_IGN_UA_ERROR},    {13, "\t\t", LAPB_FRMR_FRMR_ERROR},
        {14, "\t", LAPB_FRMR_INVRSP_ERROR}, {15, "\t\t", LAPB_SFRAME_PBIT},
        {16, "\t\t", LAPB_NO_DM_ADM},       {18, "  \t\t", LAPB_ISO8882},
        {17, "  \t\t", LAPB_SABM_IN_X32},   {19, "  \t\t", LAPB_INITIAL_DOWN},
    };
    for (const flag_line &f : flags)
        out.flag(f.index, f.tabs, yes_no(v.flags, f.mask));
    if (subsection) out.line(11, "\t\t%d", link->values.mlp_priority[position]);
    write_x32(out, 20, x32);
    out.close("\n");
    return !out.failed();
}

bool write_llc2(FILE *stream, const llc2_section *llc2) {
    errno = 0; // a missing record fails the write with EBADF
    if (llc2 == nullptr) return false;
    const llc2_template &v = llc2->values;
    section_writer out(stream, llc2->keyword, __LLC2_functions);
    out.header(llc2->section, "SECTION\tLLC2\n");
    out.line(0, "\t\t%d", v.n2_count);
    out.line(1, "\t\t%.1f", tenths(v.t1_timer));
    out.line(2, "  \t\t%.1f", tenths(v.pf_timer));
    out.line(3, "\t\t%.1f", tenths(v.reject_timer));
    out.line(4, "\t\t%.1f", tenths(v.busy_timer));
    out.line(5, "\t\t%.1f", tenths(v.idle_timer));
    out.line(6, "\t\t%.1f", tenths(v.rr_ack_delay));
    out.line(7, "\t\t%d", v.unack_max);
    out.line(8, "\t\t%d", v.local_win);
    out.line(9, "\t\t%d", v.local_probe);
    out.line(10, "\t\t%d", v.max_iframe_len);
    out.line(11, "\t\t%d", v.xid_window);
    out.line(12, "\t\t%d", v.xid_ndup);
    out.line(13, "\t\t%.1f", tenths(v.xid_tdup));
    out.close("\n");
    return !out.failed();
}

// translate and the X.21 timers are never written: a rewrite brings them
// back at their defaults, as it always has.
bool write_wan(FILE *stream, const wan_section *wan, bool subsection) {
    errno = 0; // a missing record fails the write with EBADF
    if (wan == nullptr) return false;
    const wan_values &v = wan->values;
    section_writer out(stream, wan->keyword, __WAN_functions);
    out.header(wan->section, subsection ? "SUBSECTION\tWAN\n" : "SECTION\tWAN\n");
    if (v.tuning.line_speed == 0)
        out.line(0, "%s", "\t\tExternal");
    else
        out.line(0, "\t\t%u", static_cast<unsigned>(v.tuning.line_speed));
    out.line(1, "\t\t%d", v.tuning.max_frame);
    out.line(3, "\t\t%s", v.connect_proc == 1 ? "X21" : v.connect_proc == 2 ? "V25" : "NONE");
    if (v.connect_proc == 2) out.line(10, "\t\t%.1f", tenths(v.x21_t1));
    out.close("\n");
    return !out.failed();
}

bool write_mlp(FILE *stream, const mlp_section *mlp, const link_section &link,
               const x32_record *mlp_x32) {
    errno = 0; // a missing record fails the write with EBADF
    if (mlp == nullptr) return false;
    const mlp_values &v = mlp->values;
    {
        section_writer out(stream, mlp->keyword, __MLP_functions);
        out.header(mlp->section, "SECTION\tMLP\n");
        out.line(0, "\t%d", v.mlp_win);
        out.line(1, "\t%d", v.guard);
        out.line(2, "\t\t%.1f", tenths(v.mt1));
        out.line(3, "\t\t%.1f", tenths(v.mt2));
        out.line(4, "\t\t%.1f", tenths(v.mt3));
        out.line(5, "\t\t%d", v.mn1);
        out.close("\n\n");
        if (out.failed()) return false;
    }
    // Subsections follow the devices: LAPB 0, WAN 0, LAPB 1, WAN 1, ...
    int devices = std::min<int>(link.values.device_count, MLP_MAX_SUBSECTIONS);
    for (int i = 0; i < devices; ++i) {
        if (v.lapb[i] != nullptr &&
            !write_lapb(stream, v.lapb[i], &link, i, mlp_x32 != nullptr ? &mlp_x32[i] : nullptr))
            return false;
        if (v.wan[i] != nullptr && !write_wan(stream, v.wan[i], true)) return false;
    }
    return true;
}

const char *dbit_word(unsigned dbit, int shift, const char *low_word) {
    if ((dbit >> shift & 2) != 0) return "zero";
    if ((dbit >> shift & 1) != 0) return low_word;
    return "ignore";
}

void write_class_map(section_writer &out, int index, const uint8_t (&map)[16]) {
    FILE *stream = out.begin(index);
    std::fputs("\t\t", stream);
    for (int i = 0; i < 15; ++i)
        std::fprintf(stream, "%d,", map[i]);
    std::fprintf(stream, "%d", map[15]);
    out.end();
}

bool write_x25(FILE *stream, const x25_section *x25, const x32_record *x32) {
    errno = 0; // a missing record fails the write with EBADF
    if (x25 == nullptr) return false;
    const x25_template &v = x25->values;
    section_writer out(stream, x25->keyword, __X25_functions);
    out.header(x25->section, "SECTION\tX25\n");
    out.line(46, "\t\t\t%s", __network_name(v.network));
    out.line(0, "\t\t\t%s", v.plp_mode == X25_PLP_AUTO ? "Auto" : "Normal");
    out.line(1, "\t\t%d-%d", v.lcn.pvc_low, v.lcn.pvc_high);
    out.line(2, "\t\t%d-%d", v.lcn.inc_low, v.lcn.inc_high);
    out.line(3, "\t\t%d-%d", v.lcn.out_low, v.lcn.out_high);
    out.line(4, "\t\t%d-%d", v.lcn.two_low, v.lcn.two_high);
    out.line(5, "\t\t\t%d", v.modulo == X25_MODULO_128 ? 128 : 8);
    out.flag(6, "\t\t", yes_no(v.facilities, X25_FAC_USE_NEGOTIATION));
    out.flag(7, "\t\t", yes_no(v.facilities, X25_FAC_BAR_NEGOTIATION));
    out.line(8, "\t%d", v.src_addr);
    out.flag(9, "\t\t", yes_no(v.facilities, X25_FAC_ACCEPT_REVCHG));
    out.flag(10, "\t\t", yes_no(v.facilities, X25_FAC_PREV_CHG));
    out.flag(11, "\t\t", yes_no(v.facilities, X25_FAC_FAST_SELECT));
    out.flag(12, "\t\t", yes_no(v.facilities, X25_FAC_FS_R_RESPONSE));
    out.flag(13, "\t", yes_no(v.options, X25_OPT_BAR_NONPRIV_LISTEN));
    const uint8_t sizes[] = {v.locmaxpktsize, v.remmaxpktsize, v.locdefpktsize, v.remdefpktsize,
                             v.locmaxwinsize, v.remmaxwinsize, v.locdefwinsize, v.remdefwinsize};
    for (int i = 0; i < 8; ++i)
        out.line(14 + i, "\t\t%d", sizes[i]);
    out.line(22, "\t\t%d", v.max_nsdu);
    const int16_t timers[] = {v.ackdelay, v.t20value,  v.t21value,    v.t22value,
                              v.t23value, v.t24value,  v.t25value,    v.t26value,
                              v.t28value, v.idlevalue, v.connectvalue};
    for (int i = 0; i < 11; ++i)
        out.line(23 + i, "\t\t%.1f", tenths(timers[i]));
    const uint8_t retries[] = {v.r20value, v.r22value, v.r23value, v.r28value};
    for (int i = 0; i < 4; ++i)
        out.line(34 + i, "\t\t%d", retries[i]);
    out.line(38, "\t\t%.3f", v.localdelay / 1000.0);
    out.line(39, "\t\t%.3f", v.accessdelay / 1000.0);
    const uint8_t classes[] = {v.locmaxthclass, v.remmaxthclass, v.locdefthclass,
                               v.remdefthclass, v.locminthclass, v.remminthclass};
    for (int i = 0; i < 6; ++i)
        out.line(40 + i, "\t\t%d", classes[i]);
    out.flag(47, "\t\t\t", yes_no(v.cug, X25_CUG_SUB));
    out.flag(48, "\t\t", yes_no(v.cug, X25_CUG_SUB_PREF));
    out.flag(49, "\t\t", yes_no(v.cug, X25_CUG_SUB_OA));
    out.flag(50, "\t\t", yes_no(v.cug, X25_CUG_SUB_IA));
    out.line(51, "\t\t%s",
             (v.cug & X25_CUG_BASIC) != 0      ? "Basic"
             : (v.cug & X25_CUG_EXTENDED) != 0 ? "Extended"
                                               : "<unknown>");
    out.flag(52, "\t\t", yes_no(v.cug, X25_CUG_BAR_IN));
    // datapac_priority deliberately comes after insert_x121_from_lan.
    constexpr flag_line facility_flags[] = {
        {53, "\t\t", X25_FAC_BAR_INCALL},      {54, "\t\t", X25_FAC_BAR_OUTCALL},
        {55, "\t\t", X25_FAC_SUB_TOA_NPI_FMT}, {56, "\t\t", X25_FAC_BAR_TOA_NPI_FMT},
        {57, "\t", X25_FAC_SUB_NUI_OVERRIDE},  {58, "\t", X25_FAC_BAR_CALL_X32_REG},
    };
    for (const flag_line &f : facility_flags)
        out.flag(f.index, f.tabs, yes_no(v.facilities, f.mask));
    constexpr flag_line option_flags[] = {
        {59, "\t\t", X25_OPT_ACC_NODIAG},       {60, "\t\t", X25_OPT_USE_DIAG},
        {61, "\t\t", X25_OPT_CCITT_CLEAR_LEN},  {62, "\t\t", X25_OPT_BAR_DIAG},
        {63, "\t\t", X25_OPT_DISC_NZ_DIAG},     {64, "\t\t", X25_OPT_ACC_HEX_ADD},
        {65, "\t", X25_OPT_INTL_PRIORITISED},   {67, "\t\t", X25_OPT_ISO_8882_MODE},
        {68, "\t\t", X25_OPT_SEND_X121_TO_LAN}, {69, "\t\t", X25_OPT_INSERT_X121_FROM_LAN},
        {66, "\t", X25_OPT_DATAPAC_PRIORITY},
    };
    for (const flag_line &f : option_flags)
        out.flag(f.index, f.tabs, yes_no(v.options, f.mask));
    out.line(70, "\t\t\t%02x%02x", v.dnic[0], v.dnic[1]);
    out.line(71, "\t%d", v.intl_addr_recogn);
    out.line(72, "\t%d", v.prty_encode);
    out.line(73, "\t%d", v.prty_forced);
    out.line(74, "\t\t%s", dbit_word(v.dbit, 0, "clear"));
    out.line(75, "\t\t%s", dbit_word(v.dbit, 2, "clear"));
    out.line(76, "\t\t%s", dbit_word(v.dbit, 4, "reset"));
    out.line(77, "\t\t%s", dbit_word(v.dbit, 6, "reset"));
    out.flag(78, "\t", v.thclass_neg_to_def != 0 ? 'Y' : 'N');
    out.line(79, "\t\t%d", v.thclass_type);
    write_class_map(out, 80, v.thclass_wmap);
    write_class_map(out, 81, v.thclass_pmap);
    write_x32(out, 82, x32);
    out.close("\n");
    return !out.failed();
}

// The records a link's shape needs: a LAN link its LLC2 and X.25 sections;
// any other link its X.25 section and either MLP, or LAPB and WAN, or LLC2
// (never MLP and LAPB together).
bool consistent(const link_section &link, const x25_section *x25, const mlp_section *mlp,
                const lapb_section *lapb, const llc2_section *llc2, const wan_section *wan) {
    if (link_class(link.values) == 1) return llc2 != nullptr && x25 != nullptr;
    if (mlp != nullptr && lapb != nullptr) return false;
    if (mlp == nullptr && !((lapb != nullptr && wan != nullptr) || llc2 != nullptr)) return false;
    return x25 != nullptr;
}

int failure() {
    return errno != 0 ? errno : EBADF;
}

int write_file_by_number(config_identification *ids, link_section *link, x25_section *x25,
                         mlp_section *mlp, lapb_section *lapb, llc2_section *llc2, wan_section *wan,
                         x32_record *x25_x32, x32_record *lapb_x32, x32_record *mlp_x32) {
    if (link == nullptr) return EINVAL;
    uint32_t number = link->values.subnet.address.snid;
    if (number > 254) return EINVAL;
    char name[64];
    __config_create_working_filename(".cfg", static_cast<int>(number), name, sizeof name);
    numeric_locale_c numbers_with_a_point;
    return __x25_write_config_parameter_FILE(1, name, ids, link, x25, mlp, lapb, llc2, wan, x25_x32,
                                             lapb_x32, mlp_x32);
}

} // namespace

extern "C" {

void print_comment(FILE *stream, const char *text) {
    if (text == nullptr || text[0] == '\0') return;
    std::size_t rest = std::strlen(text);
    if (rest <= whole_piece) return print_piece(stream, text, rest, "\n");
    while (rest > whole_piece) {
        if (const char *newline = static_cast<const char *>(std::memchr(text, '\n', rest))) {
            std::size_t length = static_cast<std::size_t>(newline - text);
            print_piece(stream, text, length, "\n");
            text += length + 1;
            rest -= length + 1;
            continue;
        }
        std::size_t scan = std::min(longest_piece, rest);
        std::size_t cut = shortest_cut;
        while (cut < scan && text[cut] != ' ' && text[cut] != '\t')
            ++cut;
        if (cut < scan) {
            print_piece(stream, text, cut, "\n"); // the blank is dropped
            text += cut + 1;
            rest -= cut + 1;
        } else {
            print_piece(stream, text, scan, "-\n");
            text += scan;
            rest -= scan;
        }
    }
    if (rest > 0) print_piece(stream, text, rest, "\n");
}

void trail_comment(FILE *stream, const char *text) {
    if (text != nullptr && text[0] != '\0')
        std::fprintf(stream, "\t%c%s\n", comment_mark, text);
    else
        std::fputc('\n', stream);
}

void bcd_to_str(char *text, const uint8_t *digits, int count) {
    static constexpr char hex[] = "0123456789ABCDEF";
    int i = 0;
    for (; i < count; ++i)
        text[i] = hex[i % 2 == 0 ? digits[i / 2] >> 4 : digits[i / 2] & 0x0F];
    text[std::max(i, 0)] = '\0';
}

int __x25_write_config_parameter_FILE(int open_flag, const void *target, config_identification *ids,
                                      link_section *link, x25_section *x25, mlp_section *mlp,
                                      lapb_section *lapb, llc2_section *llc2, wan_section *wan,
                                      x32_record *x25_x32, x32_record *lapb_x32,
                                      x32_record *mlp_x32) {
    // A stream handed in belongs to the writer from here on.
    FILE *stream = open_flag == 0 ? static_cast<FILE *>(const_cast<void *>(target)) : nullptr;
    auto refuse = [stream] {
        if (stream != nullptr) std::fclose(stream);
        return EINVAL;
    };
    if (ids == nullptr || link == nullptr || target == nullptr) return refuse();
    if (!consistent(*link, x25, mlp, lapb, llc2, wan)) return refuse();

    if (open_flag != 0) {
        char path[config_path_max];
        if (__qualify_working_filename(path, sizeof path, static_cast<const char *>(target)) != 0)
            return ENAMETOOLONG;
        errno = 0;
        stream = create_regular_file(path);
        if (stream == nullptr) return failure();
    }

    bool written = write_ident(stream, *ids) && write_link(stream, *link);
    if (written) {
        if (mlp != nullptr)
            written = write_mlp(stream, mlp, *link, mlp_x32);
        else if (link_class(link->values) != 1)
            written =
                write_lapb(stream, lapb, nullptr, -1, lapb_x32) && write_wan(stream, wan, false);
        else
            written = write_llc2(stream, llc2);
    }
    written = written && write_x25(stream, x25, x25_x32);
    int result = written ? 0 : failure();
    if (std::fclose(stream) != 0 && result == 0) result = failure();
    return result;
}

int x25_write_config_parameters_x32(config_identification *ids, link_section *link,
                                    x25_section *x25, mlp_section *mlp, lapb_section *lapb,
                                    llc2_section *llc2, wan_section *wan, x32_record *x25_x32,
                                    x32_record *lapb_x32, x32_record *mlp_x32) {
    return write_file_by_number(ids, link, x25, mlp, lapb, llc2, wan, x25_x32, lapb_x32, mlp_x32);
}

int x25_write_config_parameters(config_identification *ids, link_section *link, x25_section *x25,
                                mlp_section *mlp, lapb_section *lapb, llc2_section *llc2,
                                wan_section *wan) {
    return write_file_by_number(ids, link, x25, mlp, lapb, llc2, wan, nullptr, nullptr, nullptr);
}

int x25_write_config_parameter_file_x32(const char *name, config_identification *ids,
                                        link_section *link, x25_section *x25, mlp_section *mlp,
                                        lapb_section *lapb, llc2_section *llc2, wan_section *wan,
                                        x32_record *x25_x32, x32_record *lapb_x32,
                                        x32_record *mlp_x32) {
    numeric_locale_c numbers_with_a_point;
    return __x25_write_config_parameter_FILE(1, name, ids, link, x25, mlp, lapb, llc2, wan, x25_x32,
                                             lapb_x32, mlp_x32);
}

int x25_write_config_parameter_file(const char *name, config_identification *ids,
                                    link_section *link, x25_section *x25, mlp_section *mlp,
                                    lapb_section *lapb, llc2_section *llc2, wan_section *wan) {
    return x25_write_config_parameter_file_x32(name, ids, link, x25, mlp, lapb, llc2, wan, nullptr,
                                               nullptr, nullptr);
}

int x25_save_link_parameters(link_node *head) {
    for (link_node *node = head; node != nullptr; node = node->next) {
        auto number = static_cast<int32_t>(node->link.values.subnet.address.snid);
        if (x25_update_link(number, &node->link, SECTION_LINK) != 0) {
            char message[128];
            std::snprintf(message, sizeof message, "Unable to update link info for link %d",
                          number);
            __parse_error_function(message);
        }
    }
    return 0;
}

} // extern "C"
