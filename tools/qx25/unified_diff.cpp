// Unified diff of two texts over a shortest edit script (Myers' algorithm).
#include "unified_diff.h"

#include <algorithm>
#include <cstddef>
#include <vector>

namespace qx25tool {

namespace {

using lines = std::vector<std::string_view>;

// The lines of a text, each with its newline.
lines lines_of(std::string_view text) {
    lines result;
    while (!text.empty()) {
        std::size_t end = text.find('\n');
        std::size_t length = end == std::string_view::npos ? text.size() : end + 1;
        result.push_back(text.substr(0, length));
        text.remove_prefix(length);
    }
    return result;
}

enum class step : char { same = ' ', removed = '-', added = '+' };

// One line of the edit script: what happens to it, and the line itself.
struct edit {
    step kind;
    std::string_view line;
};

// A shortest edit script turning `a` into `b`. After d differences the
// furthest reach on diagonal k (x - y = k) is kept for every k from -d to d,
// and the reaches of each d are kept to walk the script back from the end.
std::vector<edit> edit_script(const lines &a, const lines &b) {
    const auto n = static_cast<long>(a.size());
    const auto m = static_cast<long>(b.size());
    std::vector<std::vector<long>> reach; // reach[d][k + d]
    auto slide = [&](long x, long k) {
        while (x < n && x - k < m &&
               a[static_cast<std::size_t>(x)] == b[static_cast<std::size_t>(x - k)])
            ++x;
        return x;
    };
    // Whether the furthest path to diagonal k after d differences comes down
    // from diagonal k + 1 (an added line) rather than across from k - 1.
    auto from_above = [&](long d, long k) {
        if (k == -d) return true;
        if (k == d) return false;
        const std::vector<long> &before = reach[static_cast<std::size_t>(d - 1)];
        return before[static_cast<std::size_t>(k - 1 + d - 1)] <
               before[static_cast<std::size_t>(k + 1 + d - 1)];
    };

    long found = -1;
    for (long d = 0; found < 0; ++d) {
        std::vector<long> current(static_cast<std::size_t>(2 * d + 1));
        for (long k = -d; k <= d; k += 2) {
            long x = 0;
            if (d > 0) {
                const std::vector<long> &before = reach[static_cast<std::size_t>(d - 1)];
                x = from_above(d, k) ? before[static_cast<std::size_t>(k + 1 + d - 1)]
                                     : before[static_cast<std::size_t>(k - 1 + d - 1)] + 1;
            }
            x = slide(x, k);
            current[static_cast<std::size_t>(k + d)] = x;
            if (x >= n && x - k >= m) found = d;
        }
        reach.push_back(std::move(current));
    }

    std::vector<edit> script;
    long x = n;
    long y = m;
    for (long d = found; d > 0; --d) {
        long k = x - y;
        long previous_k = from_above(d, k) ? k + 1 : k - 1;
        long previous_x =
            reach[static_cast<std::size_t>(d - 1)][static_cast<std::size_t>(previous_k + d - 1)];
        long previous_y = previous_x - previous_k;
        for (; x > previous_x && y > previous_y; --x, --y)
            script.push_back({step::same, a[static_cast<std::size_t>(x - 1)]});
        if (x == previous_x) {
            script.push_back({step::added, b[static_cast<std::size_t>(--y)]});
        } else {
            script.push_back({step::removed, a[static_cast<std::size_t>(--x)]});
        }
    }
    for (; x > 0; --x, --y)
        script.push_back({step::same, a[static_cast<std::size_t>(x - 1)]});
    std::reverse(script.begin(), script.end());
    return script;
}

// "-a,b" or "+c,d" for a range of `count` lines after `before` lines.
std::string range(char sign, std::size_t before, std::size_t count) {
    return sign + std::to_string(count > 0 ? before + 1 : before) + ',' + std::to_string(count);
}

void append_line(std::string &out, step kind, std::string_view line) {
    out += static_cast<char>(kind);
    out += line;
    if (line.empty() || line.back() != '\n') out += "\n\\ No newline at end of file\n";
}

} // namespace

std::string unified_diff(std::string_view old_text, std::string_view new_text,
                         std::string_view old_name, std::string_view new_name) {
    if (old_text == new_text) return {};
    std::vector<edit> script = edit_script(lines_of(old_text), lines_of(new_text));

    std::string out;
    out.append("--- ").append(old_name).append("\n+++ ").append(new_name).append("\n");
    const std::size_t context = diff_context;
    std::size_t old_before = 0; // old lines before script[i]
    std::size_t new_before = 0;
    std::size_t shown = 0; // script lines up to the end of the last hunk
    std::size_t i = 0;
    while (i < script.size()) {
        if (script[i].kind == step::same) {
            ++old_before;
            ++new_before;
            ++i;
            continue;
        }
        // A hunk: back up over its leading context, then take changes for as
        // long as the unchanged run to the next one is short enough.
        std::size_t lead = std::min(context, i - shown);
        std::size_t start = i - lead;
        std::size_t end = i; // one past the hunk's last change
        for (std::size_t j = i; j < script.size();) {
            if (script[j].kind != step::same) {
                end = ++j;
                continue;
            }
            std::size_t run = j;
            while (run < script.size() && script[run].kind == step::same)
                ++run;
            if (run == script.size() || run - j > 2 * context) break;
            j = run;
        }
        std::size_t stop = end;
        while (stop < script.size() && stop - end < context && script[stop].kind == step::same)
            ++stop;

        std::size_t old_count = 0;
        std::size_t new_count = 0;
        for (std::size_t j = start; j < stop; ++j) {
            old_count += script[j].kind != step::added;
            new_count += script[j].kind != step::removed;
        }
        std::size_t old_start = old_before - lead;
        std::size_t new_start = new_before - lead;
        out += "@@ " + range('-', old_start, old_count) + ' ' + range('+', new_start, new_count) +
               " @@\n";
        for (std::size_t j = start; j < stop; ++j)
            append_line(out, script[j].kind, script[j].line);
        old_before = old_start + old_count;
        new_before = new_start + new_count;
        i = shown = stop;
    }
    return out;
}

} // namespace qx25tool
