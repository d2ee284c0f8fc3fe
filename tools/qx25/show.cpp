// qx25 show: a link configuration in the file format, as the library writes
// it. Also the reading and writing of link files the other commands share.
#include "command.h"
#include "release.h"

#include "link_config.h"
#include "numeric_locale.h"
#include "text_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <unistd.h>

namespace qx25tool {

namespace {

bool holds_values(const x32_record &x32) {
    return x32.authen != 0 || x32.identity_len != 0 || x32.signature_len != 0;
}

} // namespace

bool name_link_file(const char *argument, std::string &name, std::string &path) {
    char buffer[config_path_max];
    if (is_number(argument)) {
        long number = std::strtol(argument, nullptr, 10);
        if (number > 9999 || __config_create_working_filename(".cfg", static_cast<int>(number),
                                                              buffer, sizeof buffer) != 0)
            return false;
        name = buffer;
    } else {
        name = argument;
    }
    if (name.empty() || __qualify_working_filename(buffer, sizeof buffer, name.c_str()) != 0)
        return false;
    path = buffer;
    return !path.empty();
}

bool read_link_text(const std::string &path, std::string &text, struct stat &status,
                    std::string &failure) {
    qx25::file_ptr stream(qx25::open_regular_file(path.c_str()));
    if (stream == nullptr || ::fstat(::fileno(stream.get()), &status) != 0) {
        int error = errno;
        failure = path + ": " + open_failure_reason(path, error);
        return false;
    }
    text.clear();
    char buffer[8192];
    std::size_t count;
    while ((count = std::fread(buffer, 1, sizeof buffer, stream.get())) > 0)
        text.append(buffer, count);
    if (std::ferror(stream.get())) {
        failure = path + ": " + std::strerror(errno != 0 ? errno : EIO);
        return false;
    }
    return true;
}

link_records::~link_records() {
    release(&config);
}

int link_records::read(const char *name) {
    return x25_read_config_parameter_file_x32(name, &config.ids, &config.link, &config.x25,
                                              &config.mlp, &config.lapb, &config.llc2, &config.wan,
                                              &x25_x32, &lapb_x32, mlp_x32, &mode);
}

bool link_records::has_x32() const {
    if (holds_values(x25_x32) || holds_values(lapb_x32)) return true;
    for (const x32_record &x32 : mlp_x32)
        if (holds_values(x32)) return true;
    return false;
}

int link_records::write(FILE *stream) {
    const link_values &link = config.link.values;
    bool mlp = link.mlp != 0;
    bool lan = !mlp && link.net_type == NET_LAN;
    bool wan = !mlp && !lan;
    bool mlp_x32_held = false;
    for (const x32_record &x32 : mlp_x32)
        mlp_x32_held = mlp_x32_held || holds_values(x32);
    // Numbers are written with a ".", whatever the locale.
    qx25::numeric_locale_c numbers_with_a_point;
    return __x25_write_config_parameter_FILE(
        0, stream, &config.ids, &config.link, &config.x25, mlp ? &config.mlp : nullptr,
        wan ? &config.lapb : nullptr, lan ? &config.llc2 : nullptr, wan ? &config.wan : nullptr,
        holds_values(x25_x32) ? &x25_x32 : nullptr,
        wan && holds_values(lapb_x32) ? &lapb_x32 : nullptr,
        mlp && mlp_x32_held ? mlp_x32 : nullptr);
}

int read_one_link(const command &self, const arguments &args, std::string &path,
                  link_records &records, std::vector<std::string> &messages) {
    if (args.size() != 1) return usage_error(self, "one LINK or FILE is needed");
    std::string name;
    if (!name_link_file(args[0], name, path)) {
        complain(self.name, std::string("'") + args[0] + "' names no link file");
        return exit_failure;
    }
    collect_messages();
    int result = records.read(name.c_str());
    messages = take_messages();
    // The reader's messages about a file with CRLF line ends say nothing of
    // them: one message does.
    if (!messages.empty())
        if (std::string note = crlf_note(path); !note.empty())
            messages.insert(messages.begin(), note);
    if (result != 0) {
        if (!complain_all(self.name, messages))
            complain(self.name, path + ": " + std::strerror(result));
        return exit_failure;
    }
    return exit_ok;
}

int link_records::write_text(std::string &text) {
    char *buffer = nullptr;
    std::size_t size = 0;
    FILE *stream = ::open_memstream(&buffer, &size);
    if (stream == nullptr) return errno != 0 ? errno : ENOMEM;
    int result = write(stream); // closes the stream
    text.assign(buffer != nullptr ? buffer : "", size);
    std::free(buffer);
    return result;
}

int run_show(const command &self, const arguments &args) {
    std::string path;
    link_records records;
    std::vector<std::string> messages;
    if (int status = read_one_link(self, args, path, records, messages); status != exit_ok)
        return status;

    // The JSON form is made from the writer's text; the text form goes
    // straight out. The writer closes the stream it is given: it gets a copy
    // of standard output of its own.
    bool json = args.given("--json");
    std::string written;
    int result = 0;
    if (json) {
        result = records.write_text(written);
    } else {
        std::cout.flush();
        std::fflush(stdout);
        int fd = ::dup(STDOUT_FILENO);
        FILE *stream = fd >= 0 ? ::fdopen(fd, "w") : nullptr;
        if (stream == nullptr) {
            int error = errno;
            if (fd >= 0) ::close(fd);
            complain(self.name,
                     std::string("cannot write to standard output: ") + std::strerror(error));
            return exit_failure;
        }
        result = records.write(stream);
    }
    std::vector<std::string> write_messages = take_messages();
    messages.insert(messages.end(), write_messages.begin(), write_messages.end());
    complain_all(self.name, messages);
    if (result != 0) {
        complain(self.name, std::string("cannot write ") + path + ": " + std::strerror(result));
        return exit_failure;
    }
    if (json) print_show_json(path, records.config.ids, written);
    // What the library reported may be missing from what is shown.
    return messages.empty() ? exit_ok : exit_failure;
}

} // namespace qx25tool
