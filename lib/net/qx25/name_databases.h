// Internals shared by the enumeration of each name database and its
// look-ups: the database files with their state, and the line parsers.
#pragma once

#include "qx25.h"

#include "text_database.h"

namespace qx25 {

// ---- xhosts ----------------------------------------------------------------

extern text_database xhosts;
extern xhost_entry xhost;
// Makes xhost the entry of the line; skip when the line is none.
line_verdict parse_xhost_line(char *line);
// Whether the entry's name or one of its aliases is the text.
bool xhost_has_name(const xhost_entry &entry, const char *name);

// ---- subnetworks (the older file) -----------------------------------------------

extern text_database subnetworks_file;
extern subnet_entry subnetworks_file_entry;
line_verdict parse_subnetwork_line(char *line);

// ---- configured links ----------------------------------------------------------

// The first link the predicate accepts, from a fresh enumeration that is
// closed again before returning; its name and description are kept valid
// until the next call into the enumeration. Null when none is accepted.
subnet_entry *find_subnet(bool (*accept)(const subnet_entry &entry, const void *key),
                          const void *key);

// ---- padmapconf ----------------------------------------------------------------

extern text_database padmap;
extern pad_entry pad;
// Fills pad from the line: entry, skip for a rejected line, stop for a
// number with too many digits.
line_verdict parse_pad_line(char *line);

} // namespace qx25
