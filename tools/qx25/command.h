// The qx25 tool: one entry per command, dispatched from a table.
#pragma once

#include "qx25.h"

#include <cstdio>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <vector>

namespace qx25tool {

enum exit_status { exit_ok = 0, exit_failure = 1, exit_usage = 2 };

struct command {
    std::string_view name;
    std::string_view synopsis; // arguments, as shown in usage lines
    std::string_view summary;  // one line for the command list
    std::string_view help;     // the rest of "qx25 NAME --help"
    int (*run)(const command &self, std::span<char *const> args);
};

std::span<const command> commands();

// Prints "qx25 NAME: message" on standard error.
void complain(std::string_view command_name, std::string_view message);

// Reports a wrong call of a command and returns exit_usage.
int usage_error(const command &cmd, std::string_view message);

int run_addr(const command &self, std::span<char *const> args);
int run_ident(const command &self, std::span<char *const> args);
int run_check(const command &self, std::span<char *const> args);
int run_devices(const command &self, std::span<char *const> args);
int run_networks(const command &self, std::span<char *const> args);
int run_links(const command &self, std::span<char *const> args);
int run_show(const command &self, std::span<char *const> args);
int run_set(const command &self, std::span<char *const> args);
int run_diff(const command &self, std::span<char *const> args);
int run_pvcs(const command &self, std::span<char *const> args);
int run_host(const command &self, std::span<char *const> args);
int run_hosts(const command &self, std::span<char *const> args);
int run_subnets(const command &self, std::span<char *const> args);
int run_call(const command &self, std::span<char *const> args);
int run_pad(const command &self, std::span<char *const> args);
int run_profile(const command &self, std::span<char *const> args);
int run_ppa(const command &self, std::span<char *const> args);
int run_template(const command &self, std::span<char *const> args);
// Link inventory and legacy configuration import.
int run_import(const command &self, std::span<char *const> args);
int run_inventory(const command &self, std::span<char *const> args);

// ---- Shared by the commands (main.cpp) ----------------------------------------

// Makes every module of the library hand its messages to the tool, which
// keeps them until take_messages() returns them (without their trailing
// newlines) and forgets them.
void collect_messages();
std::vector<std::string> take_messages();

// Prints each message as "qx25 NAME: message" on standard error; true when
// there was any.
bool complain_all(std::string_view command_name, const std::vector<std::string> &messages);

// Prints a table: a line of column titles, then one line per row, columns
// two blanks apart and as wide as their widest cell. The last column is not
// padded.
struct column {
    std::string_view title;
    bool right_aligned;
};
void print_table(std::span<const column> columns,
                 const std::vector<std::vector<std::string>> &rows);

// True when the text is a decimal number and nothing else.
bool is_number(const char *text);

// ---- Link files (show.cpp) ------------------------------------------------------

// The link file an argument names: a link number (3 names
// link_config_0003.cfg), or a file name, which the reader places as it places
// every name. `path` is where the file is, to show. False when the argument
// names no file.
bool name_link_file(const char *argument, std::string &name, std::string &path);

// The whole text of the regular file at `path` and its status; false, with
// `failure` saying why ("PATH: No such file or directory"), when it cannot
// be read.
bool read_link_text(const std::string &path, std::string &text, struct stat &status,
                    std::string &failure);

// One link file as the reader gives it, released when the object goes.
struct link_records {
    link_config config{};
    x32_record x25_x32{};
    x32_record lapb_x32{};
    x32_record mlp_x32[MLP_MAX_SUBSECTIONS]{};
    int mode = 0; // 3, 4 or 6 for the last SECTION LLC2, LAPB or MLP read

    link_records() = default;
    ~link_records();
    link_records(const link_records &) = delete;
    link_records &operator=(const link_records &) = delete;

    // The reader's result for the named file (every section, X.32 too).
    int read(const char *name);
    // Whether the file gave any X.32 keyword a value.
    bool has_x32() const;
    // Writes the records in the file format to the stream, which is closed
    // whatever happens: the sections the link's kind has (MLP; LAN: LLC2;
    // WAN: LAPB and WAN), X.32 keywords only when the file had them. The
    // writer's result.
    int write(FILE *stream);
    // The same into `text`.
    int write_text(std::string &text);
};

// For the commands that take one LINK or FILE: names its file (`path`, to
// show), reads it into `records` and keeps what the reader reported in
// `messages`. exit_ok, or the exit status after saying what went wrong.
int read_one_link(const command &self, std::span<char *const> args, std::string &path,
                  link_records &records, std::vector<std::string> &messages);

// ---- Link discovery (links.cpp) ---------------------------------------------------

// The links of the configuration directory, in ascending order, with their
// PVCs. The library's messages are shown as "qx25 NAME: message" on
// standard error; null, with *failed set, when discovery failed.
link_node *discover_links(const command &self, bool *failed);
void release_links(link_node *head);

// ---- Name databases (names.cpp) ---------------------------------------------------

// The text form of an address (no class check), "?" when it has none.
std::string address_text(const x25_address &address);
// The aliases of a host, one blank apart.
std::string aliases_text(const xhost_entry &host);
// The path of a file of the configuration directory, to show.
std::string database_file(const char *name);

} // namespace qx25tool
