// Internals of the link configuration modules: the record helpers, the
// keyword value parsers, the protocol defaults and network profiles, and the
// device type table.
#pragma once

#include "qx25.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>

extern "C" {

// ---- Link configuration record -------------------------------------------

// Stores the comments of a line in a comment pair: each non-empty text
// replaces the pair's old one; an empty text leaves the old one in place.
void copy_comments(config_comment *pair, const config_line *line);

// ---- Link file names --------------------------------------------------------

// Room for any link file path the library forms.
inline constexpr std::size_t config_path_max = 4096;

// "link_config_" + the link number as four digits + suffix; 0, or
// ENAMETOOLONG when the buffer is too small.
int __config_create_working_filename(const char *suffix, int link_number, char *buffer,
                                     std::size_t size);
// The name as it is when it begins with "/", "./" or "../", else placed in
// the configuration directory's config/; a null or empty name gives "".
int __qualify_working_filename(char *buffer, std::size_t size, const char *name);

// ---- Keyword value parsers -----------------------------------------------

// Fills __config_linktype from boardconf unless its first row was filled
// already; 0 when boardconf cannot be read.
int load_config_linktype_on_demand(void);

int parse_device(const char *text, link_values *link);
int get_net_type(int address_class);
void parse_local_addr(const char *text, link_values *link);
int convert_mac_addr(char *text);
void parse_full_addr(const char *text, link_values *link);
void parse_link_mode(const char *text, link_values *link, x25_template *x25);
void parse_link_protocol(const char *text, link_values *link);
int get_plp_mode(const char *text, int mode_code);
void parse_lcns(x25_lcn_block *block, const char *text, int which);
int parse_timer(double seconds);
int parse_delay(double seconds);
uint32_t parse_speed(const char *text);
void parse_x32_text_field(const char *text, uint8_t *destination, uint8_t *length);
void str_to_bcd(uint8_t *destination, const char *text, int count);

// Which range parse_lcns sets.
enum lcn_range { LCN_PVC = 1, LCN_INCOMING = 2, LCN_OUTGOING = 3, LCN_TWO_WAY = 4 };

// ---- Protocol defaults and network profiles ------------------------------

struct network_profile {
    int16_t number;
    char name[17];
    char description[106];
};

inline constexpr int max_network_profiles = 30;
extern network_profile profile_types[max_network_profiles];
extern int max_profiles;

int network_number(const char *name);
void read_profile_file(void);
int get_entry(FILE *stream, char *line, int16_t *counter);
void load_x25_defaults(x25_template *values, uint32_t lan);
void load_llc2_defaults(llc2_template *values);
void load_mlp_defaults(mlp_values *values);

// ---- Device type table ---------------------------------------------------

// The link inventory's own table, filled like __config_linktype.
extern device_type linktype[DEVICE_TYPE_ROWS];

int fill_linktype_struct(device_type *table);
void process_info_file(FILE *stream, int *row, device_type *table);
int match_line(char *line, char **value);

// Line classes of boardconf (match_line).
enum boardconf_line {
    BOARDCONF_OTHER = 0,
    BOARDCONF_WAN_DEVICE = 1,
    BOARDCONF_LAN_DEVICE = 2,
    BOARDCONF_SYMBOLIC = 4,
    BOARDCONF_LINES = 5,
    BOARDCONF_DEVICE = 6,
    BOARDCONF_COMMENT = 7,
    BOARDCONF_MRU = 8,
    BOARDCONF_WANMOD = 9
};

// ---- PVC map ------------------------------------------------------------------

// A decimal field as atoi reads it, held within the range of an int.
int decimal_field(const char *text);

// Hangs the circuits of pvcmapconf on the links of a chain.
void __fill_PVC_lists(link_node *head);
int parse_pvc(pvc_entry *record, char *line);
int pkt_to_index(int packet_size);

// ---- Link inventory ------------------------------------------------------------

struct net_class_row {
    const char *name;
    int value;
};

inline constexpr int net_class_rows = 14;
// The link classes of x25conf: LC_LLC1 15 ... LC_MLAPBXDCE 26, LC_MLP 27,
// then "?" 0.
extern const net_class_row netclass[net_class_rows];

// What was wrong with a line of x25conf: the first fault, in field order.
enum x25conf_fault {
    X25CONF_VALID = 0,
    X25CONF_DEVICE_KIND,    // field 1: not wans, wloop or ethr
    X25CONF_NET_TYPE,       // field 5: not a name of link_nettype
    X25CONF_LINK_CLASS,     // field 6: not a name of netclass
    X25CONF_LOCAL_ADDRESS,  // field 8: not all digits of the kind
    X25CONF_UNKNOWN_DEVICE, // field 9: no row of the table has the name
    X25CONF_DEVICE_TYPE,    // field 9: the row is of the other kind
    X25CONF_QUESTION_MARK,  // a field begins with "?"
    X25CONF_TOO_FEW_FIELDS, // fewer than nine fields
    X25CONF_TOO_MANY_FIELDS // a tenth field
};

struct x25conf_check {
    x25conf_fault fault;
    int field;       // the field at fault (1..10), 0 when none
    int fields;      // fields read, the one that ended the line included
    int link_number; // the fourth field, 0 when the line ended before it
};

// Splits a line of x25conf (trailing white space already removed) into its
// fields and stores them into the values block: devices, network type, link
// class, local address. Neither the device count nor the link number is
// set. The device row is looked up in `table`.
x25conf_check check_x25conf_line(const char *line, const device_type *table, link_values *link);

// One line of x25conf into the values block of a node: the fields, the
// device count, and the address, alias and description of the subnetworks
// file for the link number. The line loses its trailing white space.
void parse_x25conf(char *line, const device_type *table, link_values *link);

// ---- Link discovery -----------------------------------------------------------

// A directory entry as link discovery sees it: the entry's name.
int valid_filename(const char *name);
int process_dp(const char *name, link_node **node);
int __device_used(const link_values *link, const link_node *head);
int __delete_old_links(const link_node *head);

// ---- Configuration update --------------------------------------------------

// Releases everything a link record holds: every comment pair (also those
// free_link_comments leaves alone) and the alias, description and PVCs.
void __release_link_section(link_section *link);

// ---- Link configuration writer ---------------------------------------------

// The common worker of the writer: with open_flag set `target` is a file
// name, else an open stream (closed by the worker).
int __x25_write_config_parameter_FILE(int open_flag, const void *target, config_identification *ids,
                                      link_section *link, x25_section *x25, mlp_section *mlp,
                                      lapb_section *lapb, llc2_section *llc2, wan_section *wan,
                                      x32_record *x25_x32, x32_record *lapb_x32,
                                      x32_record *mlp_x32);
void bcd_to_str(char *text, const uint8_t *digits, int count);
void print_comment(FILE *stream, const char *text);
void trail_comment(FILE *stream, const char *text);

// ---- Network type table ----------------------------------------------------

struct net_type_row {
    const char *name;
    int address_class;
};

inline constexpr int net_type_rows = 10;
// WAN88 4, WAN84 3, WAN80 2, LAN 1, MLP1..MLP5 5..9, "?" 0.
extern const net_type_row link_nettype[net_type_rows];
}
