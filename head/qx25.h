/*
 * qx25.h - public interface of libqx25.so.2, the configuration and naming
 * library of the Quenlark X.25 stack.
 *
 * Plain records and C functions; usable from C99 and C++. The library is for
 * one thread at a time: error functions, the pushed-back configuration lines
 * and many result buffers are process-wide.
 */
#ifndef QX25_H
#define QX25_H

#include <stdint.h>
#include <stdio.h>
#include <nl_types.h>

#if defined(__GNUC__)
#define QX25_API __attribute__((visibility("default")))
#else
#define QX25_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ------------------------------------------------------------------------ */
/* Message catalog and error reporting                                      */
/* ------------------------------------------------------------------------ */

/* The one message set of the configuration modules. */
#define QX25_MESSAGE_SET 15
/* Name of the message catalog, searched through NLSPATH. */
#define QX25_CATALOG_NAME "libqx25messages"

/* An error function receives one formatted message; its result is unused. */
typedef int (*x25_error_function)(const char *message);

/* Descriptor of the open catalog: 0 before x25_cat_open, (nl_catd)-1 after a
 * failed open. */
QX25_API extern nl_catd qx25catDesc;

/* Opens the catalog through NLSPATH (caller's path first, then
 * $X25LIBFILES/locale/%L/LC_MESSAGES/%N.cat). 0 on success, -1 on failure. */
QX25_API int x25_cat_open(void);
QX25_API int x25_cat_close(void);

/* Setters of the per-module error functions; a null argument restores the
 * module's default handler. Only the parse setter returns the previous one. */
QX25_API void x25_set_config_error_function(x25_error_function fn);
QX25_API x25_error_function x25_set_parse_error_function(x25_error_function fn);
QX25_API void set_llc2_template_error_function(x25_error_function fn);
QX25_API void set_lapb_template_error_function(x25_error_function fn);
QX25_API void set_x25_template_error_function(x25_error_function fn);
QX25_API void set_wan_template_error_function(x25_error_function fn);
QX25_API void set_link_error_function(x25_error_function fn);

/* The parse module's error function, shared by reader, writer, defaults and
 * link discovery. */
QX25_API extern x25_error_function __parse_error_function;

/* ------------------------------------------------------------------------ */
/* Configuration lines and the IDENTIFICATION section                       */
/* ------------------------------------------------------------------------ */

enum config_line_kind {
    CONFIG_LINE_IDENTIFICATION = 1,
    CONFIG_LINE_SECTION = 2,
    CONFIG_LINE_SUBSECTION = 3,
    CONFIG_LINE_KEYWORD = 4
};

/* One logical line of a configuration file. The reader appends to comments
 * and trailer: empty both before each read. */
typedef struct config_line {
    uint32_t line_no;    /* physical lines read so far */
    uint16_t kind;       /* enum config_line_kind */
    char keyword[64];    /* first word, at most 63 characters */
    char value[256];     /* rest of the line */
    char comments[1024]; /* "!" lines before this one, without "!" */
    char trailer[128];   /* text behind "!" on this line */
} config_line;

/* The IDENTIFICATION block. product_version has no room for a terminator:
 * read at most 15 characters of it. */
typedef struct config_identification {
    char product_name[64];
    char product_version[15];
    char file_type[32];
    char modified_by[32];
    char file_date[32];
    char comments[1024];
} config_identification;

/* x25_open_config_file mode that makes a missing file a silent failure. */
#define X25_CONFIG_SILENT 10

QX25_API FILE *x25_open_config_file(const char *name, config_identification *ids, int mode);
QX25_API int x25_read_config_line(FILE *stream, config_line *line);

/* ------------------------------------------------------------------------ */
/* X.25 addresses                                                           */
/* ------------------------------------------------------------------------ */

#define X25_NO_SNID 255u

enum x25_ext_type { X25_EXT_NSAP = 0, X25_EXT_NON_NSAP = 1, X25_EXT_PVC = 2 };

/* An X.25 address: 36 bytes. Digits are packed two to a byte, first digit in
 * the high nibble. */
typedef struct x25_address {
    uint32_t snid;    /* subnetwork (link) number, 255 = none */
    uint8_t ext_type; /* enum x25_ext_type */
    uint8_t dte_len;  /* nibbles in dte */
    uint8_t dte[9];
    uint8_t ext_len; /* nibbles in ext */
    uint8_t ext[20];
} x25_address;

/* Longest text x25tos can write, terminator included. */
#define X25_ADDRESS_TEXT_MAX 73

QX25_API int stox25(const char *text, x25_address *address, unsigned int check);
QX25_API int x25tos(const x25_address *address, char *text, unsigned int check);
QX25_API int equalx25(const x25_address *a, const x25_address *b);
QX25_API int x25add_equal(const uint8_t *a, const uint8_t *b, int nibbles);

/* ------------------------------------------------------------------------ */
/* Subnetwork and link identifiers                                          */
/* ------------------------------------------------------------------------ */

QX25_API uint32_t snidtox25(const char *text);
QX25_API uint32_t linkidtox25(const char *text);
QX25_API int x25tosnid(uint32_t snid, char *text);
QX25_API int x25tolinkid(uint32_t snid, char *text);
QX25_API int getnettype(const char *text);

/* PPA number of an LLC2 device and instance, from the files of
 * /etc/llc2/default/; -1 when none matches. */
QX25_API int x25_device_to_ppa(const char *device, int instance);

/* ------------------------------------------------------------------------ */
/* Driver tuning records                                                    */
/* ------------------------------------------------------------------------ */

/* Logical channel ranges and their counts, as parse_lcns keeps them. */
typedef struct x25_lcn_block {
    int16_t pvc_low, pvc_high;
    int16_t inc_low, inc_high;
    int16_t two_low, two_high;
    int16_t out_low, out_high;
    uint16_t pvc_count, inc_count, two_count, out_count;
    int16_t total;
} x25_lcn_block;

/* Closed user group flags (x25_template.cug). */
#define X25_CUG_SUB 0x01
#define X25_CUG_SUB_PREF 0x02
#define X25_CUG_SUB_OA 0x04
#define X25_CUG_SUB_IA 0x08
#define X25_CUG_BASIC 0x10
#define X25_CUG_EXTENDED 0x20
#define X25_CUG_BAR_IN 0x40

/* Facility flags (x25_template.facilities). */
#define X25_FAC_USE_NEGOTIATION 0x001
#define X25_FAC_BAR_NEGOTIATION 0x002
#define X25_FAC_FAST_SELECT 0x004
#define X25_FAC_FS_R_RESPONSE 0x008
#define X25_FAC_ACCEPT_REVCHG 0x010
#define X25_FAC_PREV_CHG 0x020
#define X25_FAC_BAR_INCALL 0x040
#define X25_FAC_BAR_OUTCALL 0x080
#define X25_FAC_SUB_TOA_NPI_FMT 0x100
#define X25_FAC_BAR_TOA_NPI_FMT 0x200
#define X25_FAC_SUB_NUI_OVERRIDE 0x400
#define X25_FAC_BAR_CALL_X32_REG 0x800

/* Mode flags (x25_template.options). */
#define X25_OPT_ACC_NODIAG 0x001
#define X25_OPT_USE_DIAG 0x002
#define X25_OPT_CCITT_CLEAR_LEN 0x004
#define X25_OPT_BAR_DIAG 0x008
#define X25_OPT_DISC_NZ_DIAG 0x010
#define X25_OPT_ACC_HEX_ADD 0x020
#define X25_OPT_BAR_NONPRIV_LISTEN 0x040
#define X25_OPT_INTL_PRIORITISED 0x080
#define X25_OPT_DATAPAC_PRIORITY 0x100
#define X25_OPT_ISO_8882_MODE 0x200
#define X25_OPT_SEND_X121_TO_LAN 0x400
#define X25_OPT_INSERT_X121_FROM_LAN 0x800

/* D-bit controls (x25_template.dbit): two bits a keyword, low bit
 * "clear" or "reset", high bit "zero". */
#define X25_DBIT_ACCEPT_IN_CLEAR 0x01
#define X25_DBIT_ACCEPT_IN_ZERO 0x02
#define X25_DBIT_ACCEPT_OUT_CLEAR 0x04
#define X25_DBIT_ACCEPT_OUT_ZERO 0x08
#define X25_DBIT_DATA_IN_RESET 0x10
#define X25_DBIT_DATA_IN_ZERO 0x20
#define X25_DBIT_DATA_OUT_RESET 0x40
#define X25_DBIT_DATA_OUT_ZERO 0x80

/* Packet level modes (x25_template.plp_mode). */
#define X25_PLP_DCE 0
#define X25_PLP_NORMAL 1
#define X25_PLP_AUTO 2

/* Modulo (x25_template.modulo): the general format identifier bits. */
#define X25_MODULO_8 16
#define X25_MODULO_128 32

/* The X.25 packet level tuning record: 140 bytes, exchanged byte for byte
 * with the driver. Timers in tenths of a second, delays in milliseconds,
 * packet sizes as powers of two. */
typedef struct x25_template {
    int32_t link;
    uint8_t network;
    uint8_t version; /* 0 1980, 1 1984, 2 1988 */
    uint8_t plp_mode;
    uint8_t reserved_7;
    x25_lcn_block lcn;
    uint8_t modulo;
    uint8_t locmaxpktsize, remmaxpktsize, locdefpktsize, remdefpktsize;
    uint8_t locmaxwinsize, remmaxwinsize, locdefwinsize, remdefwinsize;
    uint8_t reserved_43;
    uint16_t max_nsdu;
    int16_t ackdelay, t20value, t21value, t22value, t23value, t24value, t25value, t26value,
        t28value, idlevalue, connectvalue;
    uint8_t r20value, r22value, r23value, r28value;
    uint16_t localdelay, accessdelay;
    uint8_t locmaxthclass, remmaxthclass, locdefthclass, remdefthclass, locminthclass,
        remminthclass;
    uint8_t cug;
    uint8_t reserved_83;
    uint16_t facilities;
    uint16_t options;
    uint8_t intl_addr_recogn;
    uint8_t dnic[2];
    uint8_t prty_encode;
    uint8_t prty_forced;
    uint8_t src_addr;
    uint8_t dbit;
    uint8_t thclass_neg_to_def;
    uint8_t thclass_type;
    uint8_t thclass_wmap[16];
    uint8_t thclass_pmap[16];
    uint8_t reserved_129;
    uint8_t driver_flag; /* 255 when sent to the driver */
    uint8_t reserved_131[9];
} x25_template;

/* LAPB option flags (lapb_template.flags). */
#define LAPB_IGN_UA_ERROR 0x01
#define LAPB_FRMR_FRMR_ERROR 0x02
#define LAPB_FRMR_INVRSP_ERROR 0x04
#define LAPB_SFRAME_PBIT 0x08
#define LAPB_NO_DM_ADM 0x10
#define LAPB_SABM_IN_X32 0x20
#define LAPB_ISO8882 0x40
#define LAPB_INITIAL_DOWN 0x80

/* The LAPB tuning record: 32 bytes. Timers in tenths of a second. */
typedef struct lapb_template {
    uint8_t kind; /* 19 in every driver exchange */
    uint8_t reserved[3];
    int32_t link;
    uint16_t n2_count, t1_timer, pf_timer, reject_timer, busy_timer, idle_timer, rr_ack_delay;
    uint16_t unack_max, local_win, local_probe, max_iframe_len;
    uint16_t flags;
} lapb_template;

/* The LLC2 tuning record: 36 bytes. Timers in tenths of a second. */
typedef struct llc2_template {
    uint8_t kind; /* 35 in every driver exchange */
    uint8_t reserved[3];
    int32_t link;
    uint16_t n2_count, t1_timer, pf_timer, reject_timer, busy_timer, idle_timer, rr_ack_delay;
    uint16_t unack_max, local_win, local_probe, max_iframe_len;
    uint16_t xid_window, xid_ndup, xid_tdup;
} llc2_template;

/* The WAN tuning record. line_speed 0 stands for an external clock. */
typedef struct wan_template {
    int32_t link;
    uint16_t max_frame;
    uint32_t line_speed;
} wan_template;

/* ------------------------------------------------------------------------ */
/* Driver tuning templates                                                  */
/* ------------------------------------------------------------------------ */

/* A link's working template files are $X25CONFIGFILES/template/LINKnnn_working
 * with the suffix .x25, .lapb, .llc2 or .wan. Every operation returns 0 or a
 * system error number: 22 for a link outside 0..254 or a null record, 9 when
 * a file cannot be opened and no error number is set. Reading an X.25
 * template returns 1 for a value out of range. The by-link readers store the
 * link number into the record only when reading fails (not for WAN). */
QX25_API int read_x25_template_parameters(int link_number, x25_template *record);
QX25_API int read_x25_template_parameter_file(const char *path, x25_template *record);
QX25_API int write__x25_template_parameters(x25_template *record);
QX25_API int write__x25_template_parameter_file(const char *path, x25_template *record);
/* Exchange with /dev/x25: put sends the record (its byte 130 set to 255),
 * get stores the link number into it and fetches the driver's record. */
QX25_API int put__x25_template_parameters(x25_template *record);
QX25_API int get__x25_template_parameters(int link_number, x25_template *record);

QX25_API int read_lapb_template_parameters(int link_number, lapb_template *record);
QX25_API int read_lapb_template_parameter_file(const char *path, lapb_template *record);
QX25_API int write_lapb_template_parameters(lapb_template *record);
QX25_API int write_lapb_template_parameter_file(const char *path, lapb_template *record);
/* Exchange with /dev/lapb; both set the kind byte to 19 and clear the
 * reserved bytes first. */
QX25_API int put_lapb_template_parameters(lapb_template *record);
QX25_API int get_lapb_template_parameters(int link_number, lapb_template *record);

QX25_API int read_llc2_template_parameters(int link_number, llc2_template *record);
QX25_API int read_llc2_template_parameter_file(const char *path, llc2_template *record);
QX25_API int write_llc2_template_parameters(llc2_template *record);
QX25_API int write_llc2_template_parameter_file(const char *path, llc2_template *record);
/* Exchange with /dev/llc2; both set the kind byte to 35 and clear the
 * reserved bytes first. */
QX25_API int put_llc2_template_parameters(llc2_template *record);
QX25_API int get_llc2_template_parameters(int link_number, llc2_template *record);

QX25_API int read_wan_template_parameters(int link_number, wan_template *record);
QX25_API int read_wan_template_parameter_file(const char *path, wan_template *record);
QX25_API int write_wan_template_parameters(wan_template *record);
QX25_API int write_wan_template_parameter_file(const char *path, wan_template *record);
/* The WAN layer has no driver exchange: both do nothing and return 0. */
QX25_API int put_wan_template_parameters(wan_template *record);
QX25_API int get_wan_template_parameters(int link_number, wan_template *record);

/* ------------------------------------------------------------------------ */
/* Link configuration records                                               */
/* ------------------------------------------------------------------------ */

/* Full-line comments before a line and the trailing comment on it; heap
 * strings owned by the record (null when absent). */
typedef struct config_comment {
    char *comments;
    char *trailer;
} config_comment;

/* Keyword counts of the sections (and their comment pairs). */
#define LINK_KEYWORDS 10
#define X25_KEYWORDS 85
#define LAPB_KEYWORDS 23
#define LLC2_KEYWORDS 14
#define WAN_KEYWORDS 11
#define MLP_KEYWORDS 6

#define LINK_MAX_DEVICES 5
#define MLP_MAX_SUBSECTIONS 5

/* Section codes of the section map. */
enum config_section_code {
    SECTION_LINK = 1,
    SECTION_X25 = 2,
    SECTION_LLC2 = 3,
    SECTION_LAPB = 4,
    SECTION_WAN = 5,
    SECTION_MLP = 6
};

/* Network type indexes (link_values.net_type). */
enum link_net_type {
    NET_WAN88 = 0,
    NET_WAN84 = 1,
    NET_WAN80 = 2,
    NET_LAN = 3,
    NET_MLP1 = 4,
    NET_MLP2 = 5,
    NET_MLP3 = 6,
    NET_MLP4 = 7,
    NET_MLP5 = 8,
    NET_UNKNOWN = 9
};

/* Link mode codes (link_values.link_mode): frame protocol and side. */
enum link_mode_code {
    LC_LLC1 = 15,
    LC_LLC2 = 16,
    LC_LAPBDTE = 17,
    LC_LAPBXDTE = 18,
    LC_LAPBDCE = 19,
    LC_LAPBXDCE = 20,
    LC_LAPDTE = 21,
    LC_LAPDCE = 22,
    LC_MLAPBDTE = 23,
    LC_MLAPBXDTE = 24,
    LC_MLAPBDCE = 25,
    LC_MLAPBXDCE = 26
};

/* link_values.flags: the WAN connect procedure is X.21 or V.25. */
#define LINK_FLAG_CALL_PROCEDURE 0x0001

/* A subnetwork as the subnetworks database returns it; the link record
 * holds one in exactly this shape. */
typedef struct subnet_entry {
    x25_address address; /* snid is the link number */
    char *name;          /* alias, may be null */
    char *description;   /* may be null */
} subnet_entry;

/* One permanent virtual circuit of a link. */
typedef struct pvc_entry {
    struct pvc_entry *next;
    struct pvc_entry *prev;
    int32_t link;
    uint16_t lcn;
    uint8_t pktsize[2]; /* packet size indexes: 0 = 16 bytes ... 8 = 4096 */
    uint8_t window[2];
} pvc_entry;

typedef struct link_values {
    uint8_t device_type[LINK_MAX_DEVICES];  /* rows of __config_linktype */
    uint8_t device_line[LINK_MAX_DEVICES];  /* line on the board */
    uint8_t device_board[LINK_MAX_DEVICES]; /* board number */
    uint8_t mlp_priority[MLP_MAX_SUBSECTIONS];
    uint16_t flags;         /* LINK_FLAG_CALL_PROCEDURE */
    uint8_t net_type;       /* enum link_net_type */
    uint8_t link_mode;      /* enum link_mode_code, 0 = none yet */
    char local_address[18]; /* up to 17 upper-case hexadecimal digits */
    uint8_t device_count;
    uint8_t mlp; /* two or more devices, or an MLP protocol */
    uint8_t max_lan_conns;
    subnet_entry subnet; /* full_address, alias, description */
    pvc_entry *pvcs;     /* first PVC of the link, or null */
} link_values;

typedef struct link_section {
    config_comment section;
    config_comment keyword[LINK_KEYWORDS];
    link_values values;
} link_section;

typedef struct x25_section {
    config_comment section;
    config_comment keyword[X25_KEYWORDS];
    x25_template values;
} x25_section;

typedef struct lapb_section {
    config_comment section;
    config_comment keyword[LAPB_KEYWORDS];
    lapb_template values;
    uint8_t reserved[172]; /* the values block is 204 bytes; kept zero */
} lapb_section;

typedef struct llc2_section {
    config_comment section;
    config_comment keyword[LLC2_KEYWORDS];
    llc2_template values;
    uint8_t reserved[168]; /* the values block is 204 bytes; kept zero */
} llc2_section;

/* WAN values: the tuning record first, then what only the configuration
 * file carries. Timers in tenths of a second. */
typedef struct wan_values {
    wan_template tuning;
    uint16_t flags;        /* bit 0: translate */
    uint16_t line_option;  /* set by no keyword */
    uint16_t connect_proc; /* 0 none, 1 X21, 2 V25 */
    uint16_t x21_t1;       /* shared with v25_callreq */
    uint16_t x21_t2, x21_t3a, x21_t4b, x21_t5, x21_t6;
} wan_values;

typedef struct wan_section {
    config_comment section;
    config_comment keyword[WAN_KEYWORDS];
    wan_values values;
    uint8_t reserved[4]; /* the values block is 36 bytes; kept zero */
} wan_section;

typedef struct mlp_values {
    uint16_t mlp_win, guard;
    uint16_t mt1, mt2, mt3; /* tenths of a second */
    uint16_t mn1;
    lapb_section *lapb[MLP_MAX_SUBSECTIONS]; /* SUBSECTION LAPB, file order */
    wan_section *wan[MLP_MAX_SUBSECTIONS];   /* SUBSECTION WAN, file order */
} mlp_values;

typedef struct mlp_section {
    config_comment section;
    config_comment keyword[MLP_KEYWORDS];
    mlp_values values;
    uint8_t reserved[8]; /* the values block is 60 bytes with 32-bit pointers; kept zero */
} mlp_section;

/* One link's whole configuration. */
typedef struct link_config {
    config_identification ids;
    link_section link;
    x25_section x25;
    mlp_section mlp;
    lapb_section lapb;
    llc2_section llc2;
    wan_section wan;
} link_config;

/* X.32 identity and signature of an X.25 section or a LAPB (sub)section. */
typedef struct x32_record {
    int32_t link;
    uint8_t identity_len;  /* bytes of packed digits */
    uint8_t signature_len; /* bytes of packed digits */
    uint8_t authen;        /* 1 when authentication is enabled */
    uint8_t identity[32];
    uint8_t signature[32];
} x32_record;

/* Storage for one static link configuration. */
QX25_API extern config_identification ids;
QX25_API extern link_section cs;
QX25_API extern x25_section xs;
QX25_API extern lapb_section lbs;
QX25_API extern llc2_section l2s;
QX25_API extern wan_section ws;
QX25_API extern mlp_section ms;

/* Keyword tables: name and index (the index of the keyword's comment pair),
 * ended by a row with a null name. */
typedef struct config_keyword {
    const char *name;
    int index;
} config_keyword;

QX25_API extern const config_keyword __LINK_functions[];
QX25_API extern const config_keyword __X25_functions[];
QX25_API extern const config_keyword __LAPB_functions[];
QX25_API extern const config_keyword __LLC2_functions[];
QX25_API extern const config_keyword __WAN_functions[];
QX25_API extern const config_keyword __MLP_functions[];
/* Section names and codes: link 1, x25 2, llc2 3, lapb 4, wan 5, mlp 6. */
QX25_API extern const config_keyword section_map[];

/* Reading a link configuration. mode: in, X25_CONFIG_SILENT makes a missing
 * file a silent success; out, 0, or 3 / 4 / 6 for the last SECTION LLC2,
 * LAPB or MLP read. Records other than ids and link may be null. */
QX25_API int x25_read_config_parameters(int link_number, config_identification *ids,
                                        link_section *link, x25_section *x25, mlp_section *mlp,
                                        lapb_section *lapb, llc2_section *llc2, wan_section *wan,
                                        int *mode);
QX25_API int x25_read_config_parameters_x32(int link_number, config_identification *ids,
                                            link_section *link, x25_section *x25, mlp_section *mlp,
                                            lapb_section *lapb, llc2_section *llc2,
                                            wan_section *wan, x32_record *x25_x32,
                                            x32_record *lapb_x32, x32_record *mlp_x32, int *mode);
QX25_API int x25_read_config_parameter_file(const char *name, config_identification *ids,
                                            link_section *link, x25_section *x25, mlp_section *mlp,
                                            lapb_section *lapb, llc2_section *llc2,
                                            wan_section *wan, int *mode);
QX25_API int x25_read_config_parameter_file_x32(const char *name, config_identification *ids,
                                                link_section *link, x25_section *x25,
                                                mlp_section *mlp, lapb_section *lapb,
                                                llc2_section *llc2, wan_section *wan,
                                                x32_record *x25_x32, x32_record *lapb_x32,
                                                x32_record *mlp_x32, int *mode);

/* Name and instance of a link's index-th device. */
QX25_API int x25_device_instance(const link_values *link, int index, char *name, int *instance);

/* Defaults of a LAPB and a WAN section; null does nothing. */
QX25_API void load_lapb_defaults(lapb_template *values);
QX25_API void load_wan_defaults(wan_values *values);

/* Name of a network number of world_networks.profile, or "<Unknown>". */
QX25_API const char *__network_name(uint32_t number);

/* ------------------------------------------------------------------------ */
/* Links: discovery, writing, updating, releasing                           */
/* ------------------------------------------------------------------------ */

/* One link of a chain built by link discovery, in ascending link order. */
typedef struct link_node {
    struct link_node *prev;
    struct link_node *next;
    link_section link; /* the link number is link.values.subnet.address.snid */
} link_node;

/* Finds every link file of $X25CONFIGFILES/config, reads its LINK section
 * and chains the links by number with their PVCs. 0, 22 for a null
 * argument, 2 when boardconf cannot be read or no link could be read, 9
 * when the directory cannot be opened. */
QX25_API int x25_find_link_parameters(link_node **head);

/* Frees the alias, the description and the PVC records of a link; neither
 * the record itself nor its pointers. */
QX25_API void free_link_item(link_values *link);

/* Writing a link configuration file. The forms without a file name write
 * config/link_config_NNNN.cfg of the link's number (0..254). 0, 22 for
 * missing or inconsistent records, else the system error number (9 when
 * none is set). X.32 records may be null; mlp_x32 is an array of five. */
QX25_API int x25_write_config_parameters(config_identification *ids, link_section *link,
                                         x25_section *x25, mlp_section *mlp, lapb_section *lapb,
                                         llc2_section *llc2, wan_section *wan);
QX25_API int x25_write_config_parameters_x32(config_identification *ids, link_section *link,
                                             x25_section *x25, mlp_section *mlp, lapb_section *lapb,
                                             llc2_section *llc2, wan_section *wan,
                                             x32_record *x25_x32, x32_record *lapb_x32,
                                             x32_record *mlp_x32);
QX25_API int x25_write_config_parameter_file(const char *name, config_identification *ids,
                                             link_section *link, x25_section *x25, mlp_section *mlp,
                                             lapb_section *lapb, llc2_section *llc2,
                                             wan_section *wan);
QX25_API int x25_write_config_parameter_file_x32(const char *name, config_identification *ids,
                                                 link_section *link, x25_section *x25,
                                                 mlp_section *mlp, lapb_section *lapb,
                                                 llc2_section *llc2, wan_section *wan,
                                                 x32_record *x25_x32, x32_record *lapb_x32,
                                                 x32_record *mlp_x32);

/* Rewrites the LINK section of every link of a chain; always 0. */
QX25_API int x25_save_link_parameters(link_node *head);

/* Replaces one section (enum config_section_code) of a link's file,
 * keeping everything else. The update works on the exported records ids,
 * cs, xs, ms, lbs, l2s and ws. */
QX25_API int x25_update_link(int32_t link_number, void *section, unsigned int section_code);
QX25_API int x25_update_file(const char *name, void *section, unsigned int section_code);

/* Release the comment texts a reader attached to a record. */
QX25_API void free_link_comments(link_section *link);
QX25_API void free_x25_comments(x25_section *x25);
QX25_API void free_lapb_comments(lapb_section *lapb);
QX25_API void free_llc2_comments(llc2_section *llc2);
QX25_API void free_mlp_comments(mlp_section *mlp);
QX25_API void free_wan_comments(wan_section *wan);

/* ------------------------------------------------------------------------ */
/* Device type table                                                        */
/* ------------------------------------------------------------------------ */

#define DEVICE_TYPE_ROWS 51

enum device_kind { DEVICE_END = 0, DEVICE_WAN = 1, DEVICE_LAN = 2 };

/* One kind of device of boardconf. */
typedef struct device_type {
    char symbolic[8];
    char device[20]; /* device name prefix used in link files */
    char wanmod[16]; /* driver module */
    uint8_t lines;   /* lines per board */
    uint8_t type;    /* enum device_kind; 0 ends the table */
    uint8_t valid;
    char *comment;
    int32_t mru;
} device_type;

/* The device types of the configuration reader, filled from boardconf. */
QX25_API extern device_type __config_linktype[DEVICE_TYPE_ROWS];

/* ------------------------------------------------------------------------ */
/* Link inventory and legacy configuration import                           */
/* ------------------------------------------------------------------------ */

/* Reads the older single-file link list $X25CONFIGFILES/x25conf into a chain
 * of link nodes in file order, one per link line, valid or not (a valid one
 * has device_count 1), with the address, alias and description of the
 * subnetworks file and the PVCs of pvcmapconf. 0; EINVAL for a null
 * argument; the open's error number (9 when none) when x25conf cannot be
 * opened. The caller frees each node: free_link_item on its values, then
 * free_link_comments, then the node. */
QX25_API int read_link_parameters(link_node **head);

/* Moves a file aside to PATH.BAK (a static buffer, overwritten by the next
 * call) and creates it anew, empty, with its old mode. "/dev/null" when the
 * file does not exist; null on any other failure. The file under the old
 * name is emptied even when it could not be renamed (the result is then
 * null). */
QX25_API const char *x25_backup_file(const char *path);

/* ------------------------------------------------------------------------ */
/* Name databases                                                           */
/* ------------------------------------------------------------------------ */

/* Every get...ent and get...by... result lives in static storage that the
 * next call into the same database overwrites. */

/* A host of the xhosts file. */
#define XHOST_MAX_ALIASES 34

typedef struct xhost_entry {
    char *xh_name;
    char **xh_aliases;   /* null-terminated, at most XHOST_MAX_ALIASES */
    int32_t xh_addrtype; /* always 1 */
    int32_t xh_length;   /* always 36, the size of an x25_address */
    x25_address *xh_addr;
} xhost_entry;

/* setxhostent and its companions: a non-zero flag keeps the file open for
 * the life of the process (rewound, never closed again). */
QX25_API void setxhostent(int stay_open);
QX25_API xhost_entry *getxhostent(void);
QX25_API void endxhostent(void);
QX25_API xhost_entry *getxhostbyname(const char *name);
/* Finds anything only with length 36 and type 1. */
QX25_API xhost_entry *getxhostbyaddr(const x25_address *address, int length, int type);

/* The configured links (name and description stay valid until the next call
 * into this enumeration). */
QX25_API void setsubnetent(void);
QX25_API subnet_entry *getsubnetent(void);
QX25_API void endsubnetent(void);
QX25_API subnet_entry *getsubnetbyname(const char *name);
QX25_API subnet_entry *getsubnetbyid(uint32_t snid);
/* The same look-up as getsubnetbyid, under its address-family name. */
QX25_API subnet_entry *getaddrbyid(uint32_t snid);

/* The older subnetworks file, for the import of a legacy configuration. */
QX25_API void __setsubnetent(int stay_open);
QX25_API subnet_entry *__getsubnetent(void);
QX25_API void __endsubnetent(void);
QX25_API subnet_entry *__get_subnet(uint32_t snid);

/* Versions of pad_entry.version. */
enum pad_version {
    PAD_VERSION_OTHER = 0,
    PAD_VERSION_80 = 1,
    PAD_VERSION_84 = 2,
    PAD_VERSION_88 = 3
};

/* Closed user group kinds of pad_entry.cug_kind. */
enum pad_cug_kind { PAD_CUG_NONE = 0, PAD_CUG_G = 1, PAD_CUG_B = 2 };

#define PAD_FREE_TEXT_MAX 124

/* One line of padmapconf: the default call facilities of a remote address.
 * 452 bytes; the reserved bytes are kept zero. */
typedef struct pad_entry {
    x25_address address;
    uint8_t version; /* enum pad_version */
    uint8_t fast_select;
    uint8_t reverse_charging;
    uint8_t local_packet_size;  /* power of two, 4..12, 0 = not given */
    uint8_t remote_packet_size; /* power of two, 4..12, 0 = not given */
    uint8_t local_window_size;  /* 1..127, 0 = not given */
    uint8_t remote_window_size; /* 1..127, 0 = not given */
    uint8_t t_digit_count;      /* 0, 4, 8, 12 or 16 */
    uint8_t t_digits[8];        /* packed BCD, high digit first */
    uint8_t cug_kind;           /* enum pad_cug_kind */
    uint8_t cug_number[2];      /* packed BCD, four digits, right-aligned */
    char free_text[PAD_FREE_TEXT_MAX + 1];
    uint8_t reserved[272];
} pad_entry;

QX25_API void setpadent(int stay_open);
QX25_API pad_entry *getpadent(void);
QX25_API void endpadent(void);
QX25_API pad_entry *getpadbyaddr(const x25_address *address);
/* The call string of a host name of xhosts or of an address: called
 * address, " +" and the link's calling address, a blank and the
 * facilities; null when the text is neither. */
QX25_API char *getpadbystr(const char *text);

/* The facilities of an entry as a PAD user types them (256 bytes are
 * ample). 0, or -1 with a message on standard error. */
QX25_API int padtos(const pad_entry *entry, char *text);

/* X.3 PAD parameters 1 to 22 of an x29_profile. */
#define X29_PARAMETERS 23

/* Profile kinds of x29_profile.kind; V followed by n gives n + 3. */
enum x29_profile_kind {
    X29_PROFILE_S = 0,
    X29_PROFILE_C = 1,
    X29_PROFILE_P = 2,
    X29_PROFILE_V = 3
};

/* The PAD profile of a remote address. find_x29profile fills it in place:
 * what the line does not mention keeps the caller's values. */
typedef struct x29_profile {
    int32_t reserved[2];
    x25_address address;                   /* the address to look for */
    uint8_t kind;                          /* enum x29_profile_kind */
    uint8_t parameters[X29_PARAMETERS];    /* [0] is the T flag */
    uint8_t parameter_set[X29_PARAMETERS]; /* 1 when a value was given; [0] unused */
} x29_profile;

/* Streams of x29profile and paddconf in $X25CONFIGFILES, or null; the caller
 * closes them. */
QX25_API FILE *open_x29profile(void);
QX25_API FILE *open_paddconf(void);
/* Reads the next line that is neither a comment nor empty into a buffer of
 * at least 1024 bytes: 1, or 0 at end of file. */
QX25_API int read_x29profile(char *line, FILE *stream);
/* 1 when x29profile has a line for profile->address and it was applied. */
QX25_API int find_x29profile(x29_profile *profile);
/* Applies the ":"-separated items of a line to the profile; returns the item
 * at which parsing stopped, or null at the end of the text. */
QX25_API char *parse_load_profile(char *text, x29_profile *profile);

#ifdef __cplusplus
}
#endif

#endif /* QX25_H */
