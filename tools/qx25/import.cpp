// qx25 import: the older single-file list of links, x25conf, turned into one
// link file per link through the library's own save of LINK sections.
//
// Every file the import is about to rewrite is first copied to FILE.BAK; only
// when every copy is made is anything rewritten. When a rewrite fails, every
// file rewritten so far is put back from its copy and every new one is
// removed, so an interrupted import leaves the files as they were.
#include "backup.h"
#include "command.h"
#include "import_plan.h"
#include "release.h"

#include "link_config.h"
#include "paths.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace qx25tool {

namespace {

// The frame protocols of MLP links.
bool is_mlp_class(int link_mode) {
    return link_mode >= LC_MLAPBDTE && link_mode <= LC_MLAPBXDCE;
}

std::string link_file_path(int number) {
    char name[64];
    std::snprintf(name, sizeof name, "/config/link_config_%04d.cfg", number);
    return qx25::config_dir() + std::string(name);
}

bool is_file(const std::string &path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

char *text_copy(const char *text) {
    return text != nullptr ? ::strdup(text) : nullptr;
}

void replace_text(char *&field, const char *text) {
    if (text == nullptr) return;
    std::free(field);
    field = text_copy(text);
}

// The LINK section a link's file is to hold: the file's own section, with
// its comments and what x25conf does not carry (connect procedure flag, MLP
// priorities, LAN connections), under the devices, type, class and local
// address of x25conf. The address, alias and description of the subnetworks
// file replace the file's when that file gives them.
void build_section(const planned_link &link, bool exists, link_section &section) {
    if (exists) {
        config_identification identification{};
        int mode = 0;
        x25_read_config_parameters(link.number, &identification, &section, nullptr, nullptr,
                                   nullptr, nullptr, nullptr, &mode);
        take_messages(); // the rewrite reads the file again and shows them
    } else {
        section.values.mlp_priority[0] = link.first->mlp_priority[0];
    }
    const link_values &legacy = *link.first;
    link_values &values = section.values;
    std::memset(values.device_type, 0, sizeof values.device_type);
    std::memset(values.device_line, 0, sizeof values.device_line);
    std::memset(values.device_board, 0, sizeof values.device_board);
    for (std::size_t i = 0; i < link.devices.size(); ++i) {
        values.device_type[i] = static_cast<uint8_t>(link.devices[i].row);
        values.device_board[i] = static_cast<uint8_t>(link.devices[i].board);
        values.device_line[i] = static_cast<uint8_t>(link.devices[i].line);
    }
    values.device_count = static_cast<uint8_t>(link.devices.size());
    values.mlp = link.devices.size() >= 2 || is_mlp_class(legacy.link_mode) ? 1 : 0;
    values.net_type = legacy.net_type;
    values.link_mode = legacy.link_mode;
    std::memcpy(values.local_address, legacy.local_address, sizeof values.local_address);
    if (legacy.subnet.address.dte_len != 0 || legacy.subnet.address.ext_len != 0)
        values.subnet.address = legacy.subnet.address;
    values.subnet.address.snid = static_cast<uint32_t>(link.number);
    replace_text(values.subnet.name, legacy.subnet.name);
    replace_text(values.subnet.description, legacy.subnet.description);
    values.pvcs = nullptr;
}

std::string from_lines(const planned_link &link) {
    std::string text = link.lines.size() == 1 ? "line " : "lines ";
    for (std::size_t i = 0; i < link.lines.size(); ++i) {
        if (i > 0) text += i + 1 == link.lines.size() ? " and " : ", ";
        text += std::to_string(link.lines[i]);
    }
    return "link " + std::to_string(link.number) + ", from x25conf " + text;
}

// One link file as the import leaves it.
struct link_file {
    const planned_link *link;
    std::string path;
    bool existed;
    bool written = false;
};

// Saves one link through the library; false when the save failed. What
// the library reported on the way is shown.
bool save(const command &self, link_file &file) {
    link_node node{};
    build_section(*file.link, file.existed, node.link);
    x25_save_link_parameters(&node);
    release(&node.link);
    file.written = true;
    std::string failed = "Unable to update link info for link " + std::to_string(file.link->number);
    bool saved = true;
    for (const std::string &message : take_messages()) {
        if (message == failed)
            saved = false;
        else
            complain(self.name, file.path + ": " + message);
    }
    if (!saved) complain(self.name, "cannot write " + file.path);
    return saved;
}

// Puts every file written back as it was; false when one could not be.
bool roll_back(const command &self, std::vector<link_file> &files) {
    bool restored = true;
    for (link_file &file : files) {
        if (!file.written) continue;
        if (!file.existed) {
            if (::unlink(file.path.c_str()) == 0 || errno == ENOENT) {
                std::cout << "removed " << file.path << '\n';
                continue;
            }
            complain(self.name, "cannot remove " + file.path + ": " + std::strerror(errno));
            restored = false;
            continue;
        }
        std::string error = copy_file(backup_name(file.path), file.path);
        if (error.empty()) {
            std::cout << "restored " << file.path << " from " << backup_name(file.path) << '\n';
        } else {
            complain(self.name, error + "; the file as it was is " + backup_name(file.path));
            restored = false;
        }
    }
    return restored;
}

// Backs up every file that exists, then writes every link. All or nothing:
// false, with every file as it was, when anything failed.
bool write_links(const command &self, std::vector<link_file> &files) {
    for (const link_file &file : files) {
        if (!file.existed) continue;
        std::string error = copy_file(file.path, backup_name(file.path));
        if (!error.empty()) {
            complain(self.name, error + "; nothing was written");
            return false;
        }
        std::cout << "backed up " << file.path << " to " << backup_name(file.path) << '\n';
    }
    for (link_file &file : files) {
        if (!save(self, file)) {
            complain(self.name, roll_back(self, files) ? "import undone: no file was changed"
                                                       : "import undone in part");
            return false;
        }
    }
    return true;
}

// A directory made for the dry run, removed with everything in it when the
// object goes; X25CONFIGFILES names it meanwhile.
class scratch_tree {
  public:
    scratch_tree() {
        const char *base = std::getenv("TMPDIR");
        std::string pattern =
            std::string(base != nullptr && *base != '\0' ? base : "/tmp") + "/qx25-import-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) return;
        root_ = pattern;
        std::error_code ignored;
        fs::create_directory(root_ + "/config", ignored);
        const char *current = std::getenv("X25CONFIGFILES");
        if (current != nullptr) saved_ = current;
    }
    ~scratch_tree() {
        if (saved_)
            ::setenv("X25CONFIGFILES", saved_->c_str(), 1);
        else
            ::unsetenv("X25CONFIGFILES");
        std::error_code ignored;
        if (!root_.empty()) fs::remove_all(root_, ignored);
    }
    scratch_tree(const scratch_tree &) = delete;
    scratch_tree &operator=(const scratch_tree &) = delete;

    const std::string &root() const { return root_; }
    void enter() const { ::setenv("X25CONFIGFILES", root_.c_str(), 1); }

  private:
    std::string root_;
    std::optional<std::string> saved_;
};

std::string contents(const std::string &path) {
    std::string text;
    if (FILE *stream = std::fopen(path.c_str(), "r")) {
        char buffer[4096];
        for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, stream)) > 0;)
            text.append(buffer, got);
        std::fclose(stream);
    }
    return text;
}

// The import done on copies of the link files in a scratch tree; each file
// is shown as it would be written.
bool dry_run(const command &self, std::vector<link_file> &files) {
    scratch_tree scratch;
    if (scratch.root().empty()) {
        complain(self.name,
                 std::string("cannot make a scratch directory: ") + std::strerror(errno));
        return false;
    }
    std::vector<link_file> copies = files;
    for (link_file &copy : copies) {
        copy.path = scratch.root() + copy.path.substr(std::strlen(qx25::config_dir()));
        if (!copy.existed) continue;
        std::string error = copy_file(link_file_path(copy.link->number), copy.path);
        if (!error.empty()) {
            complain(self.name, error);
            return false;
        }
    }
    for (const link_file &file : files)
        if (file.existed)
            std::cout << "would back up " << file.path << " to " << backup_name(file.path) << '\n';
    scratch.enter();
    for (std::size_t i = 0; i < files.size(); ++i) {
        if (!save(self, copies[i])) return false;
        std::cout << "would write " << files[i].path << " (" << from_lines(*files[i].link) << "):\n"
                  << contents(copies[i].path);
    }
    return true;
}

void release_inventory_table() {
    for (device_type &row : linktype) {
        std::free(row.comment);
        row.comment = nullptr;
    }
}

} // namespace

int run_import(const command &self, std::span<char *const> args) {
    bool dry = false;
    for (const char *arg : args) {
        if (std::strcmp(arg, "--dry-run") == 0 || std::strcmp(arg, "-n") == 0)
            dry = true;
        else
            return usage_error(self, std::string("unknown argument '") + arg + "'");
    }

    collect_messages();
    // The writer names devices through the reader's device table; filling
    // it also clears the marks a table never filled holds in place of
    // comments, which are released at the end.
    bool have_devices = fill_linktype_struct(__config_linktype) != 0;
    link_node *head = nullptr;
    int result = read_link_parameters(&head); // says itself when boardconf is missing
    complain_all(self.name, take_messages());
    if (result != 0 || !have_devices) {
        release_links(head);
        release_inventory_table();
        return exit_failure;
    }

    import_plan plan = plan_import(head);
    for (const std::string &problem : plan.problems)
        complain(self.name, problem);

    int status = plan.problems.empty() ? exit_ok : exit_failure;
    if (plan.links.empty()) {
        std::cout << "no links to import from " << qx25::config_dir() << "/x25conf\n";
    } else {
        std::vector<link_file> files;
        for (const planned_link &link : plan.links) {
            std::string path = link_file_path(link.number);
            files.push_back({&link, path, is_file(path)});
        }
        bool done = dry ? dry_run(self, files) : write_links(self, files);
        if (done && !dry)
            for (const link_file &file : files)
                std::cout << "wrote " << file.path << " (" << from_lines(*file.link) << ")\n";
        if (!done) status = exit_failure;
    }
    release_links(head);
    release_inventory_table();
    return status;
}

} // namespace qx25tool
