// The configuration line reader and the IDENTIFICATION block on any file:
// every field the reader fills stays terminated within its array, line
// numbers only grow (the caller keeps the count), and every line queued back is delivered (no
// leak).
#include "qx25.h"

#include "fuzz_support.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>

using qx25fuzz::require;
using qx25fuzz::terminated;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool ready = (qx25fuzz::silence_messages(), true);
    (void)ready;
    std::string path = qx25fuzz::write_file("config/config/lines.cfg", data, size);

    auto identification = std::make_unique<config_identification>();
    FILE *stream = x25_open_config_file(path.c_str(), identification.get(), 0);
    if (stream == nullptr) return 0;
    require(terminated(identification->product_name) && terminated(identification->file_type) &&
                terminated(identification->modified_by) && terminated(identification->file_date) &&
                terminated(identification->comments),
            "an IDENTIFICATION field is not terminated");

    auto line = std::make_unique<config_line>();
    std::uint32_t last_line = 0;
    for (int lines = 0; lines < 100000; ++lines) {
        // The caller keeps the running line count and empties the comments.
        line->comments[0] = '\0';
        line->trailer[0] = '\0';
        if (x25_read_config_line(stream, line.get()) != 0) break;
        require(terminated(line->keyword) && terminated(line->value) &&
                    terminated(line->comments) && terminated(line->trailer),
                "a field of a configuration line is not terminated");
        require(line->kind >= CONFIG_LINE_IDENTIFICATION && line->kind <= CONFIG_LINE_KEYWORD,
                "a line of no kind");
        require(line->line_no >= last_line, "the line counter went back");
        last_line = line->line_no;
    }
    std::fclose(stream);
    return 0;
}
