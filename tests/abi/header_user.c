/* Uses every record and function of the public header, so that compiling it
 * strictly as C99 and as C++ proves the header serves both. */
#include "qx25.h"

#include <string.h>

static int quiet(const char *message) {
    (void)message;
    return 0;
}

int use_header(void);

int use_header(void) {
    x25_address address;
    config_identification ids;
    config_line line;
    char text[X25_ADDRESS_TEXT_MAX];
    FILE *stream;
    x25_error_function previous;

    memset(&line, 0, sizeof line);
    x25_set_config_error_function(quiet);
    previous = x25_set_parse_error_function(quiet);
    x25_set_parse_error_function(previous);
    set_llc2_template_error_function(NULL);
    set_lapb_template_error_function(NULL);
    set_x25_template_error_function(NULL);
    set_wan_template_error_function(NULL);
    set_link_error_function(NULL);
    if (x25_cat_open() == 0) x25_cat_close();
    (void)qx25catDesc;
    (void)__parse_error_function;

    stream = x25_open_config_file("link_config_0001.cfg", &ids, X25_CONFIG_SILENT);
    if (stream != NULL) {
        x25_read_config_line(stream, &line);
        fclose(stream);
    }
    if (stox25("3.23421234567", &address, 0) != 0) return 1;
    if (x25tos(&address, text, 0) != 0) return 1;
    if (!equalx25(&address, &address) || !x25add_equal(address.dte, address.dte, 11)) return 1;
    x25tosnid(snidtox25("3.1"), text);
    x25tolinkid(linkidtox25("3.1"), text);
    return getnettype("3") == -1 ? 0 : 1;
}
