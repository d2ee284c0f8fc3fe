/* Uses every record and function of the public header, so that compiling it
 * strictly as C99 and as C++ proves the header serves both. */
#include "qx25.h"

#include <string.h>

static int quiet(const char *message) {
    (void)message;
    return 0;
}

int use_header(void);
static int use_name_databases(void);

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
    (void)getnettype("3");
    return use_name_databases();
}

static int use_name_databases(void) {
    xhost_entry *host;
    subnet_entry *subnet;
    pad_entry *pad;
    x29_profile profile;
    char text[256];
    char line[1024];
    FILE *stream;

    memset(&profile, 0, sizeof profile);
    setxhostent(1);
    host = getxhostent();
    endxhostent();
    if (host != NULL && host->xh_length != (int32_t)sizeof(x25_address)) return 1;
    host = getxhostbyname("paris");
    if (host != NULL) host = getxhostbyaddr(host->xh_addr, host->xh_length, host->xh_addrtype);

    setsubnetent();
    subnet = getsubnetent();
    endsubnetent();
    subnet = getsubnetbyname("pdn");
    subnet = getsubnetbyid(2);
    subnet = getaddrbyid(2);
    __setsubnetent(0);
    subnet = __getsubnetent();
    __endsubnetent();
    subnet = __get_subnet(2);
    (void)subnet;

    setpadent(0);
    pad = getpadent();
    endpadent();
    pad = getpadbyaddr(&profile.address);
    if (pad != NULL && padtos(pad, text) != 0) return 1;
    (void)getpadbystr("paris");
    (void)x25_device_to_ppa("elx", 0);

    (void)find_x29profile(&profile);
    stream = open_x29profile();
    if (stream != NULL) {
        while (read_x29profile(line, stream) == 1)
            (void)parse_load_profile(line, &profile);
        fclose(stream);
    }
    stream = open_paddconf();
    if (stream != NULL) fclose(stream);
    return profile.kind == X29_PROFILE_S ? 0 : 1;
}
