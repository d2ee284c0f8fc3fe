// Link configuration records: the exported storage of one configuration,
// the storing of a line's comments, and the layout the drivers and template
// files rely on.
#include "link_config.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

// The tuning records are exchanged byte for byte with the drivers and the
// template files: their offsets are part of the interface.
static_assert(sizeof(x25_address) == 36);
static_assert(sizeof(config_identification) == 1199);

static_assert(sizeof(x25_template) == 140);
static_assert(offsetof(x25_template, network) == 4);
static_assert(offsetof(x25_template, version) == 5);
static_assert(offsetof(x25_template, plp_mode) == 6);
static_assert(offsetof(x25_template, lcn) == 8);
static_assert(offsetof(x25_template, lcn.inc_low) == 12);
static_assert(offsetof(x25_template, lcn.two_low) == 16);
static_assert(offsetof(x25_template, lcn.out_low) == 20);
static_assert(offsetof(x25_template, lcn.pvc_count) == 24);
static_assert(offsetof(x25_template, lcn.total) == 32);
static_assert(offsetof(x25_template, modulo) == 34);
static_assert(offsetof(x25_template, locmaxpktsize) == 35);
static_assert(offsetof(x25_template, remdefpktsize) == 38);
static_assert(offsetof(x25_template, locmaxwinsize) == 39);
static_assert(offsetof(x25_template, remdefwinsize) == 42);
static_assert(offsetof(x25_template, max_nsdu) == 44);
static_assert(offsetof(x25_template, ackdelay) == 46);
static_assert(offsetof(x25_template, t20value) == 48);
static_assert(offsetof(x25_template, t26value) == 60);
static_assert(offsetof(x25_template, t28value) == 62);
static_assert(offsetof(x25_template, idlevalue) == 64);
static_assert(offsetof(x25_template, connectvalue) == 66);
static_assert(offsetof(x25_template, r20value) == 68);
static_assert(offsetof(x25_template, r28value) == 71);
static_assert(offsetof(x25_template, localdelay) == 72);
static_assert(offsetof(x25_template, accessdelay) == 74);
static_assert(offsetof(x25_template, locmaxthclass) == 76);
static_assert(offsetof(x25_template, remminthclass) == 81);
static_assert(offsetof(x25_template, cug) == 82);
static_assert(offsetof(x25_template, facilities) == 84);
static_assert(offsetof(x25_template, options) == 86);
static_assert(offsetof(x25_template, intl_addr_recogn) == 88);
static_assert(offsetof(x25_template, dnic) == 89);
static_assert(offsetof(x25_template, prty_encode) == 91);
static_assert(offsetof(x25_template, prty_forced) == 92);
static_assert(offsetof(x25_template, src_addr) == 93);
static_assert(offsetof(x25_template, dbit) == 94);
static_assert(offsetof(x25_template, thclass_neg_to_def) == 95);
static_assert(offsetof(x25_template, thclass_type) == 96);
static_assert(offsetof(x25_template, thclass_wmap) == 97);
static_assert(offsetof(x25_template, thclass_pmap) == 113);
static_assert(offsetof(x25_template, driver_flag) == 130);

static_assert(sizeof(lapb_template) == 32);
static_assert(offsetof(lapb_template, link) == 4);
static_assert(offsetof(lapb_template, n2_count) == 8);
static_assert(offsetof(lapb_template, rr_ack_delay) == 20);
static_assert(offsetof(lapb_template, max_iframe_len) == 28);
static_assert(offsetof(lapb_template, flags) == 30);

static_assert(sizeof(llc2_template) == 36);
static_assert(offsetof(llc2_template, link) == 4);
static_assert(offsetof(llc2_template, n2_count) == 8);
static_assert(offsetof(llc2_template, max_iframe_len) == 28);
static_assert(offsetof(llc2_template, xid_window) == 30);
static_assert(offsetof(llc2_template, xid_tdup) == 34);

static_assert(offsetof(wan_template, link) == 0);
static_assert(offsetof(wan_template, max_frame) == 4);
static_assert(offsetof(wan_template, line_speed) == 8);
static_assert(offsetof(wan_values, tuning) == 0);

// Each section record: the section line's pair, one pair per keyword, then
// the values block.
template <typename Section, std::size_t Keywords>
constexpr bool pairs_then_values = offsetof(Section, keyword) == sizeof(config_comment) &&
                                   offsetof(Section, values) ==
                                       (Keywords + 1) * sizeof(config_comment);
static_assert(pairs_then_values<link_section, LINK_KEYWORDS>);
static_assert(pairs_then_values<x25_section, X25_KEYWORDS>);
static_assert(pairs_then_values<lapb_section, LAPB_KEYWORDS>);
static_assert(pairs_then_values<llc2_section, LLC2_KEYWORDS>);
static_assert(pairs_then_values<wan_section, WAN_KEYWORDS>);
static_assert(pairs_then_values<mlp_section, MLP_KEYWORDS>);

// The link record's address and names are copied out as one subnet_entry.
static_assert(offsetof(subnet_entry, name) == sizeof(x25_address) + 4);

extern "C" {

config_identification ids;
link_section cs;
x25_section xs;
lapb_section lbs;
llc2_section l2s;
wan_section ws;
mlp_section ms;

void copy_comments(config_comment *pair, const config_line *line) {
    auto store = [](char *&slot, const char *text) {
        if (text[0] == '\0') return;
        std::free(slot);
        std::size_t length = ::strnlen(text, 1023);
        slot = static_cast<char *>(std::calloc(length + 1, 1));
        if (slot != nullptr) std::memcpy(slot, text, length);
    };
    store(pair->comments, line->comments);
    store(pair->trailer, line->trailer);
}
}
