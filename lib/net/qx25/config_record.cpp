// Link configuration records: the exported storage of one configuration,
// the storing of a line's comments, and the layout the drivers and template
// files rely on.
#include "link_config.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

// The tuning records' own layout is checked with their templates; here the
// records that hold them.
static_assert(sizeof(x25_address) == 36);
static_assert(sizeof(config_identification) == 1199);

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
