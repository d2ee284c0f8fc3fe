// The facilities of a PAD map entry as the text a PAD user types after an
// address: P7/7W2/2FR 84 G12 T31103110 ~free text.
#include "qx25.h"

#include "nibbles.h"

#include <cstdio>
#include <cstring>

using namespace qx25;

namespace {

constexpr char hex_digits[] = "0123456789ABCDEF";

// Checks a remote/local pair (a zero side is not given) and appends it
// after its letter; false, with the pair's message, when a side is out of
// range.
bool append_pair(char *&out, char letter, int remote, int local, int low, int high,
                 const char *remote_message, const char *local_message) {
    if (remote == 0 && local == 0) return true;
    if (remote != 0 && (remote < low || remote > high)) {
        std::fputs(remote_message, stderr);
        return false;
    }
    if (local != 0 && (local < low || local > high)) {
        std::fputs(local_message, stderr);
        return false;
    }
    out += std::sprintf(out, "%c%d/%d", letter, remote, local);
    return true;
}

const char *version_text(int version) {
    switch (version) {
    case PAD_VERSION_80:
        return " 80";
    case PAD_VERSION_84:
        return " 84";
    case PAD_VERSION_88:
        return " 88";
    default:
        return "";
    }
}

// " G" or " B" and the group number without its leading zero digits (a
// zero byte, or the zero high digit of the first other byte). False for a
// kind other than G or B when there is a number to write.
bool group_text(const pad_entry &entry, char *&out) {
    int first = entry.cug_number[0] != 0 ? 0 : 1;
    if (entry.cug_number[first] == 0) return true;
    if (entry.cug_kind != PAD_CUG_G && entry.cug_kind != PAD_CUG_B) return false;
    *out++ = ' ';
    *out++ = entry.cug_kind == PAD_CUG_G ? 'G' : 'B';
    for (int nibble = 2 * first; nibble < 4; ++nibble) {
        int digit = get_nibble(entry.cug_number, nibble);
        if (nibble == 2 * first && digit == 0) continue;
        *out++ = hex_digits[digit];
    }
    return true;
}

// " T" and the digits, whole bytes only; a count beyond the field is held
// to it.
void t_text(const pad_entry &entry, char *&out) {
    if (entry.t_digit_count == 0) return;
    *out++ = ' ';
    *out++ = 'T';
    if (entry.t_digit_count <= 1) return;
    int bytes = entry.t_digit_count / 2;
    if (bytes > static_cast<int>(sizeof entry.t_digits)) bytes = sizeof entry.t_digits;
    for (int nibble = 0; nibble < 2 * bytes; ++nibble)
        *out++ = hex_digits[get_nibble(entry.t_digits, nibble)];
}

} // namespace

extern "C" {

int padtos(const pad_entry *entry, char *text) {
    if (entry == nullptr) {
        std::fputs("Passed pad structure is NULL\n", stderr);
        return -1;
    }
    if (text == nullptr) {
        std::fputs("Passed string is NULL\n", stderr);
        return -1;
    }
    char *out = text;
    *out = '\0';
    if (!append_pair(out, 'P', entry->remote_packet_size, entry->local_packet_size, 4, 12,
                     "padtos: Remote packet size out of range\n",
                     "padtos: Local packet size out of range\n") ||
        !append_pair(out, 'W', entry->remote_window_size, entry->local_window_size, 1, 127,
                     "padtos: Remote window size out of range\n",
                     "padtos: Local window size out of range\n"))
        return -1;
    if (entry->fast_select == 1) *out++ = 'F';
    if (entry->reverse_charging == 1) *out++ = 'R';
    out = ::stpcpy(out, version_text(entry->version));

    // The group and the T digits are built aside and appended together, so
    // that a bad group kind leaves neither in the text.
    char tail[64];
    char *tail_end = tail;
    if (!group_text(*entry, tail_end)) {
        *out = '\0';
        return -1;
    }
    t_text(*entry, tail_end);
    *tail_end = '\0';
    out = ::stpcpy(out, tail);

    if (entry->free_text[0] != '\0' && entry->free_text[0] != '-') {
        out = ::stpcpy(out, " ~");
        std::size_t length = ::strnlen(entry->free_text, PAD_FREE_TEXT_MAX);
        std::memcpy(out, entry->free_text, length);
        out += length;
    }
    *out = '\0';
    return 0;
}
}
