/*
 * The byte layout of the public records, as a C program sees it through
 * qx25.h. Built natively and with -m32: every size and offset the records
 * are defined with holds with 32-bit pointers; the records without pointers
 * hold in every build. At run time the library (built the same way) fills
 * records at the offsets checked here.
 */
#include "qx25.h"

#include <stddef.h>
#include <stdio.h>
#include <string.h>

#define AT(type, field, offset)                                                                    \
    _Static_assert(offsetof(type, field) == (offset), #type "." #field " is at " #offset)
#define SIZE(type, size) _Static_assert(sizeof(type) == (size), #type " has " #size " bytes")

/* ---- Records without pointers: the same in every build ------------------ */

SIZE(x25_address, 36);
AT(x25_address, snid, 0);
AT(x25_address, ext_type, 4);
AT(x25_address, dte_len, 5);
AT(x25_address, dte, 6);
AT(x25_address, ext_len, 15);
AT(x25_address, ext, 16);

SIZE(config_identification, 1199);
AT(config_identification, product_name, 0);
AT(config_identification, product_version, 64);
AT(config_identification, file_type, 79);
AT(config_identification, modified_by, 111);
AT(config_identification, file_date, 143);
AT(config_identification, comments, 175);

SIZE(pad_entry, 452);
AT(pad_entry, address, 0);
AT(pad_entry, version, 36);
AT(pad_entry, fast_select, 37);
AT(pad_entry, reverse_charging, 38);
AT(pad_entry, local_packet_size, 39);
AT(pad_entry, remote_packet_size, 40);
AT(pad_entry, local_window_size, 41);
AT(pad_entry, remote_window_size, 42);
AT(pad_entry, t_digit_count, 43);
AT(pad_entry, t_digits, 44);
AT(pad_entry, cug_kind, 52);
AT(pad_entry, cug_number, 53);
AT(pad_entry, free_text, 55);

SIZE(x25_template, 140);
AT(x25_template, link, 0);
AT(x25_template, network, 4);
AT(x25_template, version, 5);
AT(x25_template, plp_mode, 6);
AT(x25_template, lcn.pvc_low, 8);
AT(x25_template, lcn.pvc_high, 10);
AT(x25_template, lcn.inc_low, 12);
AT(x25_template, lcn.two_low, 16);
AT(x25_template, lcn.out_low, 20);
AT(x25_template, lcn.pvc_count, 24);
AT(x25_template, lcn.total, 32);
AT(x25_template, modulo, 34);
AT(x25_template, locmaxpktsize, 35);
AT(x25_template, remmaxpktsize, 36);
AT(x25_template, locdefpktsize, 37);
AT(x25_template, remdefpktsize, 38);
AT(x25_template, locmaxwinsize, 39);
AT(x25_template, remmaxwinsize, 40);
AT(x25_template, locdefwinsize, 41);
AT(x25_template, remdefwinsize, 42);
AT(x25_template, max_nsdu, 44);
AT(x25_template, ackdelay, 46);
AT(x25_template, t20value, 48);
AT(x25_template, t28value, 62);
AT(x25_template, idlevalue, 64);
AT(x25_template, connectvalue, 66);
AT(x25_template, r20value, 68);
AT(x25_template, r28value, 71);
AT(x25_template, localdelay, 72);
AT(x25_template, accessdelay, 74);
AT(x25_template, locmaxthclass, 76);
AT(x25_template, remminthclass, 81);
AT(x25_template, cug, 82);
AT(x25_template, facilities, 84);
AT(x25_template, options, 86);
AT(x25_template, intl_addr_recogn, 88);
AT(x25_template, dnic, 89);
AT(x25_template, prty_encode, 91);
AT(x25_template, prty_forced, 92);
AT(x25_template, src_addr, 93);
AT(x25_template, dbit, 94);
AT(x25_template, thclass_neg_to_def, 95);
AT(x25_template, thclass_type, 96);
AT(x25_template, thclass_wmap, 97);
AT(x25_template, thclass_pmap, 113);
AT(x25_template, driver_flag, 130);
AT(x25_template, reserved_131, 131);

SIZE(lapb_template, 32);
AT(lapb_template, kind, 0);
AT(lapb_template, reserved, 1);
AT(lapb_template, link, 4);
AT(lapb_template, n2_count, 8);
AT(lapb_template, t1_timer, 10);
AT(lapb_template, pf_timer, 12);
AT(lapb_template, reject_timer, 14);
AT(lapb_template, busy_timer, 16);
AT(lapb_template, idle_timer, 18);
AT(lapb_template, rr_ack_delay, 20);
AT(lapb_template, unack_max, 22);
AT(lapb_template, local_win, 24);
AT(lapb_template, local_probe, 26);
AT(lapb_template, max_iframe_len, 28);
AT(lapb_template, flags, 30);

SIZE(llc2_template, 36);
AT(llc2_template, kind, 0);
AT(llc2_template, link, 4);
AT(llc2_template, n2_count, 8);
AT(llc2_template, max_iframe_len, 28);
AT(llc2_template, xid_window, 30);
AT(llc2_template, xid_ndup, 32);
AT(llc2_template, xid_tdup, 34);

SIZE(wan_template, 12);
AT(wan_template, link, 0);
AT(wan_template, max_frame, 4);
AT(wan_template, line_speed, 8);
AT(wan_values, tuning, 0);

/* The values blocks the section records carry. */
SIZE(link_values, 96 + (sizeof(void *) - 4) * 4);
AT(lapb_section, reserved, offsetof(lapb_section, values) + 32);
AT(llc2_section, reserved, offsetof(llc2_section, values) + 36);

/* ---- Records with pointers: exact with 32-bit pointers ------------------ */

#if UINTPTR_MAX == 0xFFFFFFFFu
#define POINTERS_OF_32_BITS 1
SIZE(config_comment, 8);
SIZE(link_section, 184);
AT(link_section, values, 88);
SIZE(x25_section, 828);
AT(x25_section, values, 688);
SIZE(lapb_section, 396);
AT(lapb_section, values, 192);
SIZE(llc2_section, 324);
AT(llc2_section, values, 120);
SIZE(wan_section, 132);
AT(wan_section, values, 96);
SIZE(mlp_section, 116);
AT(mlp_section, values, 56);
SIZE(subnet_entry, 44);
AT(subnet_entry, name, 36);
AT(subnet_entry, description, 40);
#else
#define POINTERS_OF_32_BITS 0
#endif

/* ---- The library fills the records at these offsets --------------------- */

static int failures = 0;

static void expect_bytes(const char *what, const void *record, size_t offset,
                         const unsigned char *bytes, size_t count) {
    if (memcmp((const unsigned char *)record + offset, bytes, count) == 0) return;
    fprintf(stderr, "layout: %s is not at offset %zu\n", what, offset);
    ++failures;
}

static void address_bytes(void) {
    x25_address address;
    static const unsigned char snid[] = {3, 0, 0, 0};
    /* extension kind X, 11 digits, then the digits packed high nibble first */
    static const unsigned char dte[] = {1, 11, 0x23, 0x42, 0x12, 0x34, 0x56, 0x70};
    static const unsigned char ext[] = {4, 0x47, 0x11};
    if (stox25("3.23421234567.X.4711", &address, 0) != 0) {
        fprintf(stderr, "layout: stox25 refuses an address\n");
        ++failures;
        return;
    }
    expect_bytes("the subnetwork", &address, 0, snid, sizeof snid);
    expect_bytes("the DTE digits", &address, 4, dte, sizeof dte);
    expect_bytes("the extension", &address, 15, ext, sizeof ext);
}

static void lapb_template_bytes(const char *directory) {
    char path[4096];
    FILE *stream;
    lapb_template record;
    /* n2_count 10 (offset 8), max_iframe_len 517 (offset 28), flag bit 0x01 */
    static const unsigned char n2[] = {10, 0};
    static const unsigned char max_iframe[] = {0x05, 0x02};
    static const unsigned char flags[] = {0x01, 0};
    snprintf(path, sizeof path, "%s/layout.lapb", directory);
    stream = fopen(path, "w");
    if (stream == NULL) {
        fprintf(stderr, "layout: cannot write %s\n", path);
        ++failures;
        return;
    }
    fputs("10\n60\n7\n25\n100\n250\n4\n3\n7\n0\n517\nY\nN\nN\nN\nN\nN\n", stream);
    fclose(stream);
    memset(&record, 0, sizeof record);
    if (read_lapb_template_parameter_file(path, &record) != 0) {
        fprintf(stderr, "layout: the LAPB template cannot be read\n");
        ++failures;
    }
    remove(path);
    expect_bytes("n2_count", &record, 8, n2, sizeof n2);
    expect_bytes("max_iframe_len", &record, 28, max_iframe, sizeof max_iframe);
    expect_bytes("the LAPB flags", &record, 30, flags, sizeof flags);
}

int main(int argc, char **argv) {
    address_bytes();
    lapb_template_bytes(argc > 1 ? argv[1] : ".");
    if (failures != 0) return 1;
    printf("layout: every record holds its layout (%s pointers)\n",
           POINTERS_OF_32_BITS ? "32-bit" : "64-bit");
    return 0;
}
