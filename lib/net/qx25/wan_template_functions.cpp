// The WAN template: the line speed and maximum frame size of a link's
// physical layer in a template file of two numbers. The WAN layer has no
// driver to exchange them with.
#include "template_file.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <iterator>

static_assert(offsetof(wan_template, link) == 0);
static_assert(offsetof(wan_template, max_frame) == 4);
static_assert(offsetof(wan_template, line_speed) == 8);
static_assert(sizeof(wan_template) == 12);

namespace {

using namespace qx25;

constexpr const char *suffix = ".wan";
constexpr const char *line_names[] = {"max_frame", "line_speed"};

int read_wan_lines(FILE *stream, wan_template &record) {
    scan_value(stream, record.max_frame);
    unsigned int speed = 0;
    // "%uld": the letters "ld" are text to match, which no written file
    // holds, so the scan ends after the number.
    if (std::fscanf(stream, "%uld ", &speed) == 1) record.line_speed = speed;
    return 0;
}

void write_lines(FILE *stream, const wan_template &record) {
    // Both as "%d": a speed beyond 2^31 - 1 is written negative and read
    // back to the same bits.
    std::fprintf(stream, "%d\n%d\n", record.max_frame, static_cast<int>(record.line_speed));
}

} // namespace

namespace qx25 {

const char *wan_template_line_name(int index) {
    return name_at(line_names, index);
}

void write_wan_template_lines(FILE *stream, const wan_template &record) {
    write_lines(stream, record);
}

} // namespace qx25

extern "C" {

int read_wan_template_parameters(int link_number, wan_template *record) {
    // Unlike the other kinds, a failed read leaves the link number alone.
    return read_working_template(link_number, record, suffix, read_wan_template_parameter_file,
                                 false);
}

int read_wan_template_parameter_file(const char *path, wan_template *record) {
    return read_template_file(path, record, read_wan_lines);
}

int write_wan_template_parameters(wan_template *record) {
    return write_working_template(record, suffix, write_wan_template_parameter_file);
}

int write_wan_template_parameter_file(const char *path, wan_template *record) {
    return write_template_file<wan_template>(path, record, write_lines);
}

int put_wan_template_parameters(wan_template *) {
    return 0;
}

int get_wan_template_parameters(int, wan_template *) {
    return 0;
}

} // extern "C"
