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

#ifdef __cplusplus
}
#endif

#endif /* QX25_H */
