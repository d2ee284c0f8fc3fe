// PVC map: the permanent virtual circuits of pvcmapconf, one a line, hung on
// the links of a chain; and the release of what a link node owns.
#include "link_config.h"

#include "error_functions.h"
#include "messages.h"
#include "paths.h"
#include "text_file.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

using namespace qx25;

namespace {

constexpr std::size_t line_size = 1024;
constexpr std::string_view blanks = " \t";
constexpr int pvc_fields = 6;

std::uint8_t low_byte(unsigned long value) {
    return static_cast<std::uint8_t>(value & 0xFFu);
}

void store_field(pvc_entry &record, int field, const char *text) {
    switch (field) {
    case 0:
        record.link = decimal_field(text);
        break;
    case 1:
        record.lcn = low_byte(std::strtoul(text, nullptr, 16));
        break;
    case 2:
    case 3:
        record.pktsize[field - 2] = static_cast<std::uint8_t>(pkt_to_index(decimal_field(text)));
        break;
    case 4:
    case 5:
        record.window[field - 4] = low_byte(static_cast<unsigned long>(decimal_field(text)));
        break;
    default:
        break; // counted, not stored
    }
}

// The first node of the chain that carries the link number, or null.
link_node *find_link(link_node *head, std::int32_t number) {
    for (link_node *node = head; node != nullptr; node = node->next)
        if (static_cast<std::int64_t>(node->link.values.subnet.address.snid) == number) return node;
    return nullptr;
}

// Puts the record at the end of the link's circuits; `last` is the last
// circuit of the link when known, else null.
void append(link_values &link, pvc_entry *record, pvc_entry *last) {
    if (link.pvcs == nullptr) {
        link.pvcs = record;
        return;
    }
    if (last == nullptr) last = link.pvcs;
    while (last->next != nullptr)
        last = last->next;
    last->next = record;
    record->prev = last;
}

// The link a circuit goes to. The lines of one link usually follow each
// other: the link of the line before and its last circuit are kept, so
// that such a run costs neither a walk of the chain nor of the circuits.
class circuit_target {
  public:
    explicit circuit_target(link_node *head) : head_(head) {}

    // The first node of the chain with the number, or null.
    link_node *node_for(std::int32_t number) {
        if (node_ == nullptr || number != number_) {
            node_ = find_link(head_, number);
            number_ = number;
            last_ = nullptr;
        }
        return node_;
    }
    // Appends the record to the node node_for gave last.
    void append_to_node(pvc_entry *record) {
        append(node_->link.values, record, last_);
        last_ = record;
    }

  private:
    link_node *head_;
    link_node *node_ = nullptr;
    std::int32_t number_ = 0;
    pvc_entry *last_ = nullptr;
};

} // namespace

extern "C" {

int decimal_field(const char *text) {
    long value = std::strtol(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

int pkt_to_index(int packet_size) {
    switch (packet_size) {
    case 16:
        return 0;
    case 32:
        return 1;
    case 64:
        return 2;
    case 128:
        return 3;
    case 256:
        return 4;
    case 512:
        return 5;
    case 1024:
        return 6;
    case 2048:
        return 7;
    case 4096:
        return 8;
    default:
        return 0; // an unknown size is taken for the smallest
    }
}

// Fields are runs of characters other than blank and tab; each is ended in
// place and loses one newline at its end. Every field is counted, those
// beyond the sixth are not stored.
int parse_pvc(pvc_entry *record, char *line) {
    if (record == nullptr || line == nullptr) return -1;
    std::string_view rest(line);
    int count = 0;
    for (;;) {
        std::size_t start = rest.find_first_not_of(blanks);
        if (start == std::string_view::npos) break;
        rest.remove_prefix(start);
        std::size_t length = std::min(rest.find_first_of(blanks), rest.size());
        char *field = line + (rest.data() - line);
        bool ended = length < rest.size();
        if (ended) field[length] = '\0';
        if (length > 0 && field[length - 1] == '\n') field[length - 1] = '\0';
        store_field(*record, count++, field);
        rest.remove_prefix(ended ? length + 1 : length);
    }
    return count == pvc_fields ? record->link : -1;
}

void __fill_PVC_lists(link_node *head) {
    char path[PATH_MAX];
    int length = std::snprintf(path, sizeof path, "%s/pvcmapconf", config_dir());
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof path) return;
    file_ptr stream(open_regular_file(path));
    if (!stream) return;

    char line[line_size];
    circuit_target target(head);
    for (line_read status;
         (status = read_bounded_line(stream.get(), line, sizeof line)) != line_read::end;) {
        // An overlong line is malformed: skipped like a wrong field count. Its
        // tail is never read as a line, so a circuit cannot be smuggled in
        // behind a long remark.
        if (status == line_read::too_long) continue;
        if (line[0] == '#' || line[0] == '\n') continue;

        auto *record = static_cast<pvc_entry *>(std::calloc(1, sizeof(pvc_entry)));
        if (record == nullptr) {
            report(__link_error_function, Msg::NoMemory);
            return;
        }
        if (parse_pvc(record, line) == -1) {
            std::free(record);
            continue;
        }
        if (target.node_for(record->link) == nullptr) {
            report(__link_error_function, Msg::PvcForUnconfiguredLink, record->link);
            std::free(record);
            continue;
        }
        target.append_to_node(record);
    }
}

void free_link_item(link_values *link) {
    if (link == nullptr) return;
    std::free(link->subnet.name);
    std::free(link->subnet.description);
    for (pvc_entry *record = link->pvcs; record != nullptr;) {
        pvc_entry *next = record->next;
        std::free(record);
        record = next;
    }
}

} // extern "C"
