// qx25 template: the tuning records of a link's layers, saved to and shown
// from the link's working template files, and sent to and fetched from the
// drivers. The tuning record of a layer is the values block of its section
// in the link's configuration file.
#include "atomic_file.h"
#include "command.h"

#include "driver_exchange.h"
#include "template_file.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace qx25tool {

namespace {

// Any layer's tuning record.
union tuning {
    x25_template x25;
    lapb_template lapb;
    llc2_template llc2;
    wan_template wan;
};

// The kinds of link, and the layers each has a section for.
enum link_kind : unsigned { lan = 1, wan = 2, mlp = 4 };

link_kind kind_of(const link_values &link) {
    if (link.mlp != 0) return mlp;
    return link.net_type == NET_LAN ? lan : wan;
}

struct layer {
    std::string_view name;
    const char *title;   // as messages name the layer
    const char *suffix;  // of the working template file
    const char *device;  // of the driver, null when the layer has none
    unsigned link_kinds; // the kinds of link that have this layer
    const char *(*line_name)(int index);
    void (*from_config)(link_config &config, int link_number, tuning &record);
    int (*read_file)(const char *path, tuning &record);
    void (*write_lines)(FILE *stream, const tuning &record);
    int (*put)(tuning &record);
    int (*get)(int link_number, tuning &record);
};

const layer layers[] = {
    {"x25", "X.25", ".x25", qx25::x25_device, lan | wan | mlp, qx25::x25_template_line_name,
     [](link_config &c, int link, tuning &t) {
         t.x25 = c.x25.values;
         t.x25.link = link;
     },
     [](const char *path, tuning &t) { return read_x25_template_parameter_file(path, &t.x25); },
     [](FILE *stream, const tuning &t) { qx25::write_x25_template_lines(stream, t.x25); },
     [](tuning &t) { return put__x25_template_parameters(&t.x25); },
     [](int link, tuning &t) { return get__x25_template_parameters(link, &t.x25); }},
    {"lapb", "LAPB", ".lapb", qx25::lapb_device, wan, qx25::lapb_template_line_name,
     [](link_config &c, int link, tuning &t) {
         t.lapb = c.lapb.values;
         t.lapb.link = link;
     },
     [](const char *path, tuning &t) { return read_lapb_template_parameter_file(path, &t.lapb); },
     [](FILE *stream, const tuning &t) { qx25::write_lapb_template_lines(stream, t.lapb); },
     [](tuning &t) { return put_lapb_template_parameters(&t.lapb); },
     [](int link, tuning &t) { return get_lapb_template_parameters(link, &t.lapb); }},
    {"llc2", "LLC2", ".llc2", qx25::llc2_device, lan, qx25::llc2_template_line_name,
     [](link_config &c, int link, tuning &t) {
         t.llc2 = c.llc2.values;
         t.llc2.link = link;
     },
     [](const char *path, tuning &t) { return read_llc2_template_parameter_file(path, &t.llc2); },
     [](FILE *stream, const tuning &t) { qx25::write_llc2_template_lines(stream, t.llc2); },
     [](tuning &t) { return put_llc2_template_parameters(&t.llc2); },
     [](int link, tuning &t) { return get_llc2_template_parameters(link, &t.llc2); }},
    {"wan", "WAN", ".wan", nullptr, wan, qx25::wan_template_line_name,
     [](link_config &c, int link, tuning &t) {
         t.wan = c.wan.values.tuning;
         t.wan.link = link;
     },
     [](const char *path, tuning &t) { return read_wan_template_parameter_file(path, &t.wan); },
     [](FILE *stream, const tuning &t) { qx25::write_wan_template_lines(stream, t.wan); },
     [](tuning &t) { return put_wan_template_parameters(&t.wan); },
     [](int link, tuning &t) { return get_wan_template_parameters(link, &t.wan); }},
};

const char *kind_name(link_kind kind) {
    switch (kind) {
    case lan:
        return "a LAN link";
    case mlp:
        return "an MLP link";
    default:
        return "a WAN link";
    }
}

// What a call names: the link and the layer.
struct target {
    int link = 0;
    const layer *of = nullptr;
};

bool parse_target(const command &self, std::span<char *const> args, target &named, int &status) {
    if (args.size() != 2) {
        status = usage_error(self, "a link number and a layer are needed");
        return false;
    }
    named.link = link_number(args[0]);
    if (named.link < 0) {
        status = usage_error(self, std::string("'") + args[0] + "' is no link number (0..254)");
        return false;
    }
    for (const layer &candidate : layers)
        if (candidate.name == args[1]) named.of = &candidate;
    if (named.of == nullptr) {
        status = usage_error(self, std::string("unknown layer '") + args[1] +
                                       "' (x25, lapb, llc2 or wan)");
        return false;
    }
    return true;
}

std::string working_file(const target &named) {
    char path[qx25::template_path_max];
    if (__x25_template_create_working_filename(named.of->suffix, named.link, path, sizeof path) !=
        0)
        return {};
    return path;
}

// The layer's tuning record from the link's configuration file. False, with
// everything said, when the file cannot be read, has problems, or has no
// such layer.
bool tuning_from_config(const command &self, const target &named, tuning &record) {
    std::string name, path;
    if (!name_link_file(std::to_string(named.link).c_str(), name, path)) {
        complain(self.name, "link " + std::to_string(named.link) + " names no link file");
        return false;
    }
    collect_messages();
    link_records records;
    int result = records.read(name.c_str());
    std::vector<std::string> messages = take_messages();
    if (result != 0 || !messages.empty()) {
        if (!complain_all(self.name, messages))
            complain(self.name, path + ": " + std::strerror(result));
        complain(self.name, path + " has problems (see qx25 check): nothing done");
        return false;
    }
    link_kind kind = kind_of(records.config.link.values);
    if ((named.of->link_kinds & kind) == 0) {
        complain(self.name, "link " + std::to_string(named.link) + " is " + kind_name(kind) +
                                ": it has no " + named.of->title + " layer");
        return false;
    }
    named.of->from_config(records.config, named.link, record);
    return true;
}

// The record as the library's template writer writes it to its file; false
// (with errno) when no text could be made.
bool written_form(const layer &of, const tuning &record, std::string &text) {
    char *buffer = nullptr;
    std::size_t size = 0;
    FILE *stream = ::open_memstream(&buffer, &size);
    if (stream == nullptr) return false;
    of.write_lines(stream, record);
    bool made = std::fclose(stream) == 0;
    if (made) text.assign(buffer, size);
    std::free(buffer);
    return made;
}

// The status a template file made anew gets: the process's default mode
// and owner, as the library's writer would give it.
struct stat new_file_status() {
    struct stat status {};
    mode_t mask = ::umask(0);
    ::umask(mask);
    status.st_mode = 0666 & ~mask;
    status.st_uid = ::geteuid();
    status.st_gid = ::getegid();
    return status;
}

// Shows a record as its template file holds it: line, keyword, value.
int show_record(const command &self, const layer &of, const tuning &record) {
    std::string text;
    if (!written_form(of, record, text)) {
        complain(self.name, std::string("cannot show the record: ") + std::strerror(errno));
        return exit_failure;
    }
    std::vector<std::vector<std::string>> rows;
    std::string_view rest(text);
    for (int index = 0; !rest.empty(); ++index) {
        std::size_t end = rest.find('\n');
        std::string_view value = rest.substr(0, end);
        const char *name = of.line_name(index);
        rows.push_back(
            {std::to_string(index + 1), name != nullptr ? name : "", std::string(value)});
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    }
    constexpr column columns[] = {{"LINE", true}, {"KEYWORD", false}, {"VALUE", false}};
    print_table(columns, rows);
    return exit_ok;
}

int save(const command &self, const target &named) {
    tuning record{};
    if (!tuning_from_config(self, named, record)) return exit_failure;
    std::string path = working_file(named);
    std::error_code error;
    fs::create_directories(fs::path(path).parent_path(), error);

    collect_messages();
    std::string text;
    if (path.empty() || !written_form(*named.of, record, text)) {
        complain(self.name, "cannot write " + path + ": " +
                                std::strerror(path.empty() ? ENAMETOOLONG : errno));
        return exit_failure;
    }
    // Never written in place: a new file beside the old one is renamed over
    // it, so a failed write (a full disk) leaves the old file as it was.
    // Only a regular file is replaced: a FIFO, device or directory in its
    // place is refused and left where it is.
    struct stat like {};
    if (::stat(path.c_str(), &like) != 0)
        like = new_file_status();
    else if (!S_ISREG(like.st_mode)) {
        complain(self.name, "cannot write " + path + ": " + open_failure_reason(path, EINVAL));
        return exit_failure;
    }
    qx25tool::replacement done = qx25tool::replace_file(path, text, like);
    if (!done.replaced) {
        complain(self.name, done.failure);
        return exit_failure;
    }
    // What the library wrote must be what its reader takes back.
    tuning check{};
    int result = named.of->read_file(path.c_str(), check);
    if (result != 0) {
        if (!complain_all(self.name, take_messages()))
            complain(self.name, path + ": " + std::strerror(result));
        complain(self.name, path + " was written, but the template reader refuses it");
        return exit_failure;
    }
    std::cout << "saved " << path << '\n';
    return exit_ok;
}

int show(const command &self, const target &named) {
    std::string path = working_file(named);
    tuning record{};
    collect_messages();
    int result = named.of->read_file(path.c_str(), record);
    if (result != 0) {
        if (!complain_all(self.name, take_messages()))
            complain(self.name, path + ": " + open_failure_reason(path, result));
        return exit_failure;
    }
    return show_record(self, *named.of, record);
}

int put(const command &self, const target &named) {
    tuning record{};
    if (!tuning_from_config(self, named, record)) return exit_failure;
    if (named.of->device == nullptr) {
        std::cout << "the " << named.of->title << " layer has no driver: nothing sent\n";
        return exit_ok;
    }
    collect_messages();
    if (named.of->put(record) != 0) {
        complain_all(self.name, take_messages());
        return exit_failure;
    }
    std::cout << "sent link " << named.link << ' ' << named.of->title << " tuning to "
              << named.of->device << '\n';
    return exit_ok;
}

int get(const command &self, const target &named) {
    if (named.of->device == nullptr) {
        std::cout << "the " << named.of->title << " layer has no driver: nothing fetched\n";
        return exit_ok;
    }
    tuning record{};
    collect_messages();
    if (named.of->get(named.link, record) != 0) {
        complain_all(self.name, take_messages());
        return exit_failure;
    }
    return show_record(self, *named.of, record);
}

struct subcommand {
    std::string_view name;
    int (*run)(const command &self, const target &named);
};

constexpr subcommand subcommands[] = {
    {"save", save},
    {"show", show},
    {"put", put},
    {"get", get},
};

} // namespace

int run_template(const command &self, const arguments &args) {
    if (args.empty()) return usage_error(self, "save, show, put or get is needed");
    for (const subcommand &sub : subcommands) {
        if (sub.name != args[0]) continue;
        target named;
        int status = exit_ok;
        if (!parse_target(self, args.subspan(1), named, status)) return status;
        return sub.run(self, named);
    }
    return usage_error(self, std::string("unknown action '") + args[0] + "'");
}

} // namespace qx25tool
