// The shared reader of the line-oriented name databases.
#include "text_database.h"

#include "paths.h"

#include <cstring>

namespace qx25 {

const char *database_path(const char *name, char *buffer, std::size_t size) {
    // The separator is added even when the directory ends in one.
    int length = std::snprintf(buffer, size, "%s/%s", config_dir(), name);
    if (length < 0 || static_cast<std::size_t>(length) >= size) return nullptr;
    return buffer;
}

FILE *open_database_file(const char *name) {
    char path[4096];
    const char *file = database_path(name, path, sizeof path);
    return file != nullptr ? open_regular_file(file) : nullptr;
}

bool read_database_line(FILE *stream, char *line, std::size_t size, bool skip_empty) {
    while (read_bounded_line(stream, line, size) != line_read::end) {
        if (line[0] == '#') continue;
        if (skip_empty && line[0] == '\n') continue;
        return true;
    }
    return false;
}

bool cut_at_comment(char *line) {
    char *end = std::strpbrk(line, "#\n");
    if (end == nullptr) return false;
    *end = '\0';
    return true;
}

void text_database::start(int stay_open) {
    if (stream_ == nullptr)
        stream_ = open_database_file(file_name_);
    else
        std::rewind(stream_);
    if (stay_open != 0) stay_open_ = true;
}

void text_database::finish() {
    if (stream_ == nullptr || stay_open_) return;
    std::fclose(stream_);
    stream_ = nullptr;
}

bool text_database::next(parser parse) {
    if (stream_ == nullptr) stream_ = open_database_file(file_name_);
    if (stream_ == nullptr) return false;
    while (read_database_line(stream_, line, sizeof line, false)) {
        switch (parse(line)) {
        case line_verdict::entry:
            return true;
        case line_verdict::stop:
            return false;
        case line_verdict::skip:
            break;
        }
    }
    return false;
}

} // namespace qx25
