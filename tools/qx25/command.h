// The qx25 tool: one entry per command, dispatched from a table.
#pragma once

#include "qx25.h"

#include <cstdio>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace qx25tool {

enum exit_status { exit_ok = 0, exit_failure = 1, exit_usage = 2 };

// What a command is given: its operands, and the options of its table entry
// that were given before them. The dispatcher takes the options off: they
// are the words before the first operand that begin with "-", "--" ends them,
// and "--help" or "-h" there asks for the command's help.
struct arguments : std::span<char *const> {
    std::vector<std::string_view> options;
    // Whether the option (as its table entry names it) was given.
    bool given(std::string_view option) const;
};

struct command {
    std::string_view name;
    std::string_view synopsis; // arguments, as shown in usage lines
    std::string_view summary;  // one line for the command list
    std::string_view help;     // the rest of "qx25 NAME --help"
    int (*run)(const command &self, const arguments &args);
    std::string_view options = {}; // the options the command takes, one blank apart
};

std::span<const command> commands();

// Runs the tool: finds the command named by argv[1] in `table`, takes its
// options off and runs it with the library's messages collected, so that
// every message of the command is shown as "qx25 NAME: message". The exit
// status.
int dispatch(std::span<const command> table, int argc, char **argv);

// Prints "qx25 NAME: message" on standard error, each line of a message of
// several lines so, other control characters shown as escapes (see visible).
void complain(std::string_view command_name, std::string_view message);

// The text with every control character shown as an escape ("\r", "\t",
// "\n", "\x1B"), so that no raw carriage return or escape sequence of a
// file reaches the terminal.
std::string visible(std::string_view text);

// Why a file cannot be opened, from the errno of the failed open: "Is a
// directory", "not a regular file (a FIFO)" for a FIFO, device or socket,
// else the errno's text.
std::string open_failure_reason(const std::string &path, int error);

// "PATH: reason" for a file that cannot be opened as a regular file for
// reading; empty when it can, and, when `may_be_missing`, when there is none.
std::string unreadable_file(const std::string &path, bool may_be_missing = false);

// A link number from 0 to 254 and nothing else, or -1.
int link_number(const char *text);

// Runs `work` with standard error going to a scratch file, and shows what it
// wrote there as messages of the command: for the library calls that write
// to standard error themselves.
void with_messages_named(std::string_view command_name, const std::function<void()> &work);

// Reports a wrong call of a command and returns exit_usage.
int usage_error(const command &cmd, std::string_view message);

int run_addr(const command &self, const arguments &args);
int run_ident(const command &self, const arguments &args);
int run_check(const command &self, const arguments &args);
int run_devices(const command &self, const arguments &args);
int run_networks(const command &self, const arguments &args);
int run_links(const command &self, const arguments &args);
int run_show(const command &self, const arguments &args);
int run_set(const command &self, const arguments &args);
int run_diff(const command &self, const arguments &args);
int run_pvcs(const command &self, const arguments &args);
int run_host(const command &self, const arguments &args);
int run_hosts(const command &self, const arguments &args);
int run_subnets(const command &self, const arguments &args);
int run_call(const command &self, const arguments &args);
int run_pad(const command &self, const arguments &args);
int run_profile(const command &self, const arguments &args);
int run_ppa(const command &self, const arguments &args);
int run_template(const command &self, const arguments &args);
// Link inventory and legacy configuration import.
int run_import(const command &self, const arguments &args);
int run_inventory(const command &self, const arguments &args);

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

// ---- JSON output (--json) ---------------------------------------------------------

// How a cell of a table is written as a JSON value.
enum class json_kind {
    text,         // the text as it is
    text_or_null, // null for "-" or the empty text
    number,       // a decimal number; null when the cell is not one
    hex_number,   // a hexadecimal number (channel numbers); null when not one
    list,         // the items between the field's separators; [] for "-" or ""
};
struct json_field {
    std::string_view key;
    json_kind kind;
    std::string_view separator = ","; // of a list
};
using table_rows = std::vector<std::vector<std::string>>;

class json_writer;
// Writes "NAME": [...] into an open object, one object a row, its cells
// under the keys and in the kinds of the fields.
void write_json_rows(json_writer &json, std::string_view name, std::span<const json_field> fields,
                     const table_rows &rows);
// Prints {"NAME": [...]} on standard output.
void print_json_rows(std::string_view name, std::span<const json_field> fields,
                     const table_rows &rows);

// True when the text is a decimal number and nothing else.
bool is_number(const char *text);

// ---- Link files (show.cpp) ------------------------------------------------------

// The link file an argument names, the same way for every command: a link
// number (3 names link_config_0003.cfg), or a file name, which the reader
// places as it places every name (one that does not begin with "/", "./" or
// "../" is in $X25CONFIGFILES/config). `path` is where the file is, to show.
// False when the argument names no file.
bool name_link_file(const char *argument, std::string &name, std::string &path);

// The whole text of the regular file at `path` and its status; false, with
// `failure` saying why ("PATH: No such file or directory"), when it cannot
// be read.
bool read_link_text(const std::string &path, std::string &text, struct stat &status,
                    std::string &failure);

// What a text's CRLF line ends do to the reader, or empty when it has none:
// "the file has CRLF line ends (...) on 3 lines: ...". The line of the first
// goes to `first_line` (from 1).
std::string crlf_finding(std::string_view text, std::size_t *first_line = nullptr);

// The same for a link file, as "PATH: ..."; empty when it has none or
// cannot be read.
std::string crlf_note(const std::string &path);

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
int read_one_link(const command &self, const arguments &args, std::string &path,
                  link_records &records, std::vector<std::string> &messages);

// Prints show --json: the file's path and identification, and the sections
// and values of the text the writer wrote for it (show_json.cpp).
void print_show_json(const std::string &path, const config_identification &ids,
                     std::string_view written);

// ---- Link discovery (links.cpp) ---------------------------------------------------

// The link files of $X25CONFIGFILES/config as discovery names them
// (link_config_0000.cfg to link_config_9999.cfg), by number.
std::vector<std::pair<int, std::string>> link_files();

// The links of the configuration directory, in ascending order, with their
// PVCs. The library's messages are shown as "qx25 NAME: message" on
// standard error, then each link file that is left out, or numbered beyond
// 254. *failed is set when there was anything to show; null when discovery
// failed or found no link.
link_node *discover_links(const command &self, bool *failed);
void release_links(link_node *head);

// ---- Name databases (names.cpp) ---------------------------------------------------

// The text form of an address (no class check), "?" when it has none.
std::string address_text(const x25_address &address);
// The aliases of a host, one blank apart.
std::string aliases_text(const xhost_entry &host);
// The path of a file of the configuration directory, to show.
std::string database_file(const char *name);
// Whether the database file can be read, or is missing (no entries); says
// why not. The library's look-ups are silent about a file they cannot open.
bool database_readable(const command &self, const char *name);

} // namespace qx25tool
