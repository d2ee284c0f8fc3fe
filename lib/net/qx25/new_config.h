// Internals of the configuration line reader shared with the link reader.
#pragma once

#include "qx25.h"

extern "C" {

// Queues a copy of the line: the next x25_read_config_line on the same
// stream delivers it instead of reading the file.
void __unread_config_line(FILE *stream, const config_line *line);

// Stores one keyword line of the IDENTIFICATION block into the record.
void fill_identification(const config_line *line, config_identification *ids);
}
