// Link discovery: finds the link configuration files of the configuration
// directory, reads the LINK section of each into a link node, refuses links
// whose devices are taken already and chains the rest by link number with
// their permanent virtual circuits. Also removes the files of links that no
// longer exist.
#include "link_config.h"

#include "messages.h"
#include "paths.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <string_view>
#include <unistd.h>

using namespace qx25;

namespace {

// "link_config_" + four decimal digits + ".cfg".
constexpr std::string_view link_file_prefix = "link_config_";
constexpr std::string_view link_file_suffix = ".cfg";
constexpr std::size_t link_file_digits = 4;
constexpr std::size_t link_file_length =
    link_file_prefix.size() + link_file_digits + link_file_suffix.size();

// Room for a report that names a directory entry.
constexpr std::size_t entry_report_size = NAME_MAX + 64;
// Room for a report that names a directory path.
constexpr std::size_t path_report_size = config_path_max + 64;

// What process_dp gives.
constexpr int node_read = 0;
constexpr int not_a_node = 1;
constexpr int read_failed = 13;

// The IDENTIFICATION block of every link file discovery reads.
config_identification discovery_ids;

// The configuration directory's config sub-directory, the separator always
// added; `tail` is "" or "/". False when the path does not fit.
bool links_directory(char (&path)[config_path_max], const char *tail) {
    int length = std::snprintf(path, sizeof path, "%s/config%s", config_dir(), tail);
    return length >= 0 && static_cast<std::size_t>(length) < sizeof path;
}

// The config sub-directory of the configuration directory, open while the
// object lives. The constructor forms its path into `path` (also when the
// directory cannot be opened, for the report); next() hands out the name of
// each entry once, in the file system's order, then null.
class directory {
  public:
    directory(char (&path)[config_path_max], const char *tail)
        : stream_(links_directory(path, tail) ? ::opendir(path) : nullptr) {}
    ~directory() {
        if (stream_ != nullptr) ::closedir(stream_);
    }
    directory(const directory &) = delete;
    directory &operator=(const directory &) = delete;

    bool is_open() const { return stream_ != nullptr; }
    const char *next() {
        const dirent *entry = ::readdir(stream_);
        return entry != nullptr ? entry->d_name : nullptr;
    }

  private:
    DIR *stream_;
};

uint32_t link_number(const link_node *node) {
    return node->link.values.subnet.address.snid;
}

bool same_device(const link_values &a, int i, const link_values &b, int j) {
    return a.device_type[i] == b.device_type[j] && a.device_board[i] == b.device_board[j] &&
           a.device_line[i] == b.device_line[j];
}

int device_count(const link_values &link) {
    return link.device_count < LINK_MAX_DEVICES ? link.device_count : LINK_MAX_DEVICES;
}

// True when some device of one link is some device of the other.
bool share_a_device(const link_values &a, const link_values &b) {
    for (int i = 0; i < device_count(a); ++i)
        for (int j = 0; j < device_count(b); ++j)
            if (same_device(a, i, b, j)) return true;
    return false;
}

// Puts the node into the chain so that link numbers stay ascending.
void insert_in_order(link_node **head, link_node *node) {
    if (*head == nullptr) {
        *head = node;
        return;
    }
    link_node *at = *head;
    while (at->next != nullptr && link_number(at->next) < link_number(node))
        at = at->next;
    if (at == *head && link_number(at) > link_number(node)) {
        node->next = at;
        at->prev = node;
        *head = node;
        return;
    }
    node->prev = at;
    node->next = at->next;
    if (at->next != nullptr) at->next->prev = node;
    at->next = node;
}

// Releases a node that never made it into a chain.
void discard(link_node *node) {
    __release_link_section(&node->link);
    std::free(node);
}

// The links discovery has taken so far, indexed so that neither the
// device check nor the ordering walks the chain for each new link: the
// devices in use as a sorted array of keys, and the nodes by link number.
// Without the memory for it, discovery walks the chain as it goes.
class link_index {
  public:
    link_index()
        : by_number_(static_cast<link_node **>(std::calloc(numbers, sizeof(link_node *)))) {}
    ~link_index() {
        std::free(by_number_);
        std::free(devices_);
    }
    link_index(const link_index &) = delete;
    link_index &operator=(const link_index &) = delete;

    bool ready() const { return by_number_ != nullptr; }

    // Whether a link taken uses one of the link's devices.
    bool device_taken(const link_values &link) const {
        for (int i = 0; i < device_count(link); ++i)
            if (std::binary_search(devices_, devices_ + device_total_, device_key(link, i)))
                return true;
        return false;
    }

    // Takes the node; false when there is no memory for its devices.
    bool take(link_node *node) {
        const link_values &link = node->link.values;
        std::size_t needed = device_total_ + static_cast<std::size_t>(device_count(link));
        if (needed > device_room_) {
            std::size_t room = std::max<std::size_t>(2 * device_room_, 64);
            auto *grown = static_cast<uint32_t *>(std::realloc(devices_, room * sizeof(uint32_t)));
            if (grown == nullptr) return false;
            devices_ = grown;
            device_room_ = room;
        }
        for (int i = 0; i < device_count(link); ++i) {
            uint32_t key = device_key(link, i);
            uint32_t *at = std::upper_bound(devices_, devices_ + device_total_, key);
            std::memmove(at + 1, at, (devices_ + device_total_ - at) * sizeof *at);
            *at = key;
            ++device_total_;
        }
        by_number_[link_number(node)] = node;
        return true;
    }

    // The nodes taken, chained in ascending link number.
    link_node *chain() const {
        link_node *head = nullptr;
        link_node *last = nullptr;
        for (std::size_t number = 0; number < numbers; ++number) {
            link_node *node = by_number_[number];
            if (node == nullptr) continue;
            node->prev = last;
            node->next = nullptr;
            (last != nullptr ? last->next : head) = node;
            last = node;
        }
        return head;
    }

  private:
    // Link files are numbered with four digits.
    static constexpr std::size_t numbers = 10000;

    static uint32_t device_key(const link_values &link, int i) {
        return uint32_t{link.device_type[i]} << 16 | uint32_t{link.device_board[i]} << 8 |
               link.device_line[i];
    }

    link_node **by_number_;
    uint32_t *devices_ = nullptr;
    std::size_t device_total_ = 0;
    std::size_t device_room_ = 0;
};

bool in_chain(const link_node *head, uint32_t number) {
    for (const link_node *node = head; node != nullptr; node = node->next)
        if (link_number(node) == number) return true;
    return false;
}

} // namespace

extern "C" {

int valid_filename(const char *name) {
    if (name == nullptr) return -1;
    std::string_view text(name);
    if (text.size() != link_file_length || !text.starts_with(link_file_prefix) ||
        !text.ends_with(link_file_suffix))
        return -1;
    int number = 0;
    for (char c : text.substr(link_file_prefix.size(), link_file_digits)) {
        if (c < '0' || c > '9') return -1;
        number = number * 10 + (c - '0');
    }
    return number;
}

int process_dp(const char *name, link_node **node) {
    if (node == nullptr) return not_a_node;
    *node = nullptr;
    int number = valid_filename(name);
    if (number < 0) return not_a_node;

    auto *fresh = static_cast<link_node *>(std::calloc(1, sizeof(link_node)));
    if (fresh == nullptr) {
        report(__parse_error_function, Msg::NoMemory);
        return not_a_node;
    }
    int mode = 0;
    if (x25_read_config_parameters(number, &discovery_ids, &fresh->link, nullptr, nullptr, nullptr,
                                   nullptr, nullptr, &mode) != 0) {
        report<entry_report_size>(__parse_error_function, Msg::ErrorReadingFile, name);
        free_link_comments(&fresh->link);
        std::free(fresh);
        return read_failed;
    }
    *node = fresh;
    return node_read;
}

int __device_used(const link_values *link, const link_node *head) {
    if (link == nullptr) return 0;
    for (const link_node *node = head; node != nullptr; node = node->next) {
        if (&node->link.values == link) continue;
        if (share_a_device(*link, node->link.values)) return 1;
    }
    return 0;
}

int x25_find_link_parameters(link_node **head) {
    if (head == nullptr) {
        report(__parse_error_function, Msg::NullFindLinkParameters);
        return EINVAL;
    }
    *head = nullptr;

    if (fill_linktype_struct(__config_linktype) == 0) {
        report(__parse_error_function, Msg::NoBoardconf);
        return ENOENT;
    }

    char path[config_path_max];
    int read = 0;
    int failed = 0;
    {
        directory entries(path, "");
        if (!entries.is_open()) {
            report<path_report_size>(__parse_error_function, Msg::ErrorOpeningDirectory, path);
            return EBADF;
        }
        link_index index;
        bool indexed = index.ready();
        for (const char *name = entries.next(); name != nullptr; name = entries.next()) {
            link_node *node = nullptr;
            int result = process_dp(name, &node);
            if (result == read_failed) ++failed;
            if (result != node_read) continue;
            ++read;
            bool taken = indexed ? index.device_taken(node->link.values)
                                 : __device_used(&node->link.values, *head) != 0;
            if (taken) {
                report<entry_report_size>(__parse_error_function, Msg::DuplicateDevice, name);
                discard(node);
                continue;
            }
            if (indexed && !index.take(node)) {
                // Out of memory for the index: on with the chain itself.
                *head = index.chain();
                indexed = false;
            }
            if (!indexed) insert_in_order(head, node);
        }
        if (indexed) *head = index.chain();
    }

    if (read == 0 && failed > 0) return ENOENT;
    __fill_PVC_lists(*head);
    return 0;
}

int __delete_old_links(const link_node *head) {
    char path[config_path_max];
    directory entries(path, "/");
    if (!entries.is_open()) {
        report<path_report_size>(__parse_error_function, Msg::ErrorOpeningDirectory, path);
        return EBADF;
    }

    char file[config_path_max];
    for (const char *name = entries.next(); name != nullptr; name = entries.next()) {
        int number = valid_filename(name);
        if (number < 0 || in_chain(head, static_cast<uint32_t>(number))) continue;
        int length = std::snprintf(file, sizeof file, "%s%s", path, name);
        if (length < 0 || static_cast<std::size_t>(length) >= sizeof file) continue;
        ::unlink(file);
    }
    return 0;
}

} // extern "C"
