#include "tree_check.h"

#include "device_use.h"

#include "link_config.h"
#include "text_file.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <strings.h>

namespace qx25tool {

namespace {

// The lines of a text file as a line reader with a buffer of `buffer` bytes
// takes them; each longer line is a finding, as is a file that cannot be
// opened. False when it cannot be read.
bool read_lines(const std::string &path, std::size_t buffer, file_findings &out,
                std::vector<std::string> &lines, bool may_be_missing = false) {
    if (std::string unreadable = unreadable_file(path, may_be_missing); !unreadable.empty()) {
        out.add(0, unreadable.substr(path.size() + 2));
        return false;
    }
    qx25::file_ptr stream(qx25::open_regular_file(path.c_str()));
    if (stream == nullptr) return false; // missing, and that may be
    std::string line;
    int c;
    while ((c = std::fgetc(stream.get())) != EOF) {
        line += static_cast<char>(c);
        if (c != '\n') continue;
        lines.push_back(std::move(line));
        line.clear();
    }
    if (!line.empty()) lines.push_back(std::move(line));
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i].size() > buffer - 1)
            out.add(i + 1, "the line is " + std::to_string(lines[i].size()) +
                               " characters long with its newline: the library reads " +
                               std::to_string(buffer - 1) +
                               " at a time and takes the rest as a line of its own");
    return true;
}

std::vector<std::string_view> words_of(std::string_view text) {
    std::vector<std::string_view> words;
    while (true) {
        std::size_t begin = text.find_first_not_of(" \t\r\n");
        if (begin == std::string_view::npos) break;
        std::size_t end = text.find_first_of(" \t\r\n", begin);
        words.push_back(text.substr(begin, end - begin));
        if (end == std::string_view::npos) break;
        text.remove_prefix(end);
    }
    return words;
}

bool all_digits(std::string_view text, const char *digits = "0123456789") {
    return !text.empty() && text.find_first_not_of(digits) == std::string_view::npos;
}

// A decimal number from `low` to `high`, written without anything else.
bool number_in(std::string_view text, long low, long high) {
    if (!all_digits(text) || text.size() > 9) return false;
    long value = std::atol(std::string(text).c_str());
    return value >= low && value <= high;
}

std::string quoted(std::string_view text) {
    return "'" + std::string(text) + "'";
}

// ---- boardconf ----------------------------------------------------------------

struct board_keyword {
    const char *name;
    std::size_t field; // characters the row keeps of its value, 0 for numbers and comments
};

// In the order the library tests them; each is matched as a prefix of the word.
constexpr board_keyword board_keywords[] = {
    {"symbolic", 7}, {"lines", 0}, {"device", 19}, {"mru", 0}, {"comment", 0}, {"wanmod", 15},
};

} // namespace

file_findings check_boardconf(const std::string &path) {
    file_findings out{path, {}};
    std::vector<std::string> lines;
    if (!read_lines(path, 1024, out, lines)) return out;
    int rows = 0;
    bool stopped = false;
    std::size_t header = 0;
    bool has_device = false;
    std::map<std::string, std::size_t> prefixes; // device prefix in lower case -> line
    auto close_row = [&] {
        if (header != 0 && !has_device)
            out.add(header, "the device kind has no device line: no link can name it");
    };
    for (std::size_t i = 0; i < lines.size() && !stopped; ++i) {
        std::string_view line = lines[i];
        if (line.empty() || line.front() == '#' || line.front() == '\n') continue;
        line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
        std::size_t end = line.find_first_of(" \t\n");
        std::string_view word = line.substr(0, end);
        std::string_view value = end == std::string_view::npos ? "" : line.substr(end);
        value.remove_prefix(std::min(value.find_first_not_of(" \t"), value.size()));
        value = value.substr(0, value.find_first_of("\n\r#"));
        std::size_t number = i + 1;
        if (word.starts_with("WAN_DEVICE") || word.starts_with("LAN_DEVICE")) {
            close_row();
            if (++rows > DEVICE_TYPE_ROWS - 1) {
                out.add(number, "more than " + std::to_string(DEVICE_TYPE_ROWS - 1) +
                                    " device kinds: the library stops reading here");
                stopped = true;
                header = 0;
                break;
            }
            header = number;
            has_device = false;
            continue;
        }
        const board_keyword *keyword = nullptr;
        for (const board_keyword &candidate : board_keywords)
            if (word.starts_with(candidate.name)) {
                keyword = &candidate;
                break;
            }
        if (keyword == nullptr) {
            out.add(number, "unknown keyword " + quoted(word) + ": the library ignores the line");
            continue;
        }
        if (word != keyword->name)
            out.add(number, quoted(word) + " is taken as the keyword " + keyword->name);
        if (header == 0) {
            out.add(number, "the line comes before the first WAN_DEVICE or LAN_DEVICE line: the "
                            "library ignores it");
            continue;
        }
        std::string_view name = keyword->name;
        std::string_view first = value.substr(0, value.find_first_of(" \t"));
        std::string_view kept = name == "wanmod" ? value : first;
        if (keyword->field != 0 && kept.size() > keyword->field)
            out.add(number, std::string(name) + " " + quoted(kept) + " is longer than the " +
                                std::to_string(keyword->field) + " characters the library keeps");
        if (name == "lines" && !number_in(value, 1, 255))
            out.add(number, "lines " + quoted(value) + " is not a number from 1 to 255");
        if (name == "mru" && !number_in(value, 0, 2147483647))
            out.add(number, "mru " + quoted(value) + " is not a number");
        if (name == "device") {
            has_device = true;
            std::string prefix(first);
            for (char &c : prefix)
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            if (prefix.empty())
                out.add(number, "the device line names no device prefix");
            else if (auto [at, added] = prefixes.emplace(prefix, number); !added)
                out.add(number, "the device prefix " + quoted(first) + " is that of line " +
                                    std::to_string(at->second) + " already");
        }
    }
    if (!stopped) close_row();
    if (rows == 0) out.add(0, "no WAN_DEVICE or LAN_DEVICE line: no device kinds at all");
    return out;
}

// ---- pvcmapconf ----------------------------------------------------------------

file_findings check_pvc_map(const std::string &path, const std::vector<int> &configured) {
    file_findings out{path, {}};
    std::vector<std::string> lines;
    if (!read_lines(path, 1024, out, lines, true)) return out;
    std::map<std::pair<long, long>, std::size_t> circuits; // (link, LCN) -> line
    std::size_t crlf = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const std::string &line = lines[i];
        std::size_t number = i + 1;
        if (line.ends_with("\r\n") && crlf++ == 0)
            out.add(number, "the file has CRLF line ends (a carriage return before the newline)");
        if (line.empty() || line.front() == '#' || line.front() == '\n') continue;
        std::vector<std::string_view> fields = words_of(line);
        if (fields.size() != 6) {
            out.add(number, std::to_string(fields.size()) +
                                " fields where a circuit has 6: the library passes over the "
                                "line without a word");
            continue;
        }
        bool good = true;
        auto bad = [&](std::string text) {
            out.add(number, std::move(text));
            good = false;
        };
        long link = -1;
        if (!number_in(fields[0], 0, 254))
            bad("link " + quoted(fields[0]) + " is not a link number from 0 to 254");
        else
            link = std::atol(std::string(fields[0]).c_str());
        if (link >= 0 && std::find(configured.begin(), configured.end(), link) == configured.end())
            bad("link " + std::to_string(link) + " is not configured: the circuit is dropped");
        long lcn = -1;
        if (!all_digits(fields[1], "0123456789abcdefABCDEF"))
            bad("the logical channel number " + quoted(fields[1]) +
                " is not hexadecimal: the library takes it as " + [&] {
                    char text[8];
                    std::snprintf(text, sizeof text, "%03lX",
                                  std::strtoul(std::string(fields[1]).c_str(), nullptr, 16) & 0xFF);
                    return std::string(text);
                }());
        else if (fields[1].size() > 8 ||
                 (lcn = std::strtol(std::string(fields[1]).c_str(), nullptr, 16)) > 0xFF)
            bad("the logical channel number " + quoted(fields[1]) +
                " is above FF: the library keeps its last two hexadecimal digits");
        for (std::size_t f : {2u, 3u}) {
            static constexpr std::string_view sizes[] = {"16",  "32",   "64",   "128", "256",
                                                         "512", "1024", "2048", "4096"};
            if (std::find(std::begin(sizes), std::end(sizes), fields[f]) == std::end(sizes))
                bad("the packet size " + quoted(fields[f]) +
                    " is not one of 16, 32, 64, 128, 256, 512, 1024, 2048 and 4096: the "
                    "library takes it as 16");
        }
        for (std::size_t f : {4u, 5u})
            if (!number_in(fields[f], 1, 127))
                bad("the window size " + quoted(fields[f]) + " is not a number from 1 to 127");
        if (!good || link < 0 || lcn < 0) continue;
        if (auto [at, added] = circuits.emplace(std::make_pair(link, lcn), number); !added)
            out.add(number, "link " + std::to_string(link) + " has a circuit on logical channel " +
                                std::string(fields[1]) + " on line " + std::to_string(at->second) +
                                " already");
    }
    return out;
}

// ---- world_networks.profile ------------------------------------------------------

file_findings check_network_profiles(const std::string &path) {
    file_findings out{path, {}};
    std::vector<std::string> lines;
    if (!read_lines(path, 128, out, lines)) return out;
    constexpr std::size_t entries = 30, name_kept = 16, description_kept = 105;
    std::size_t used = 0;
    std::map<long, std::size_t> numbers;
    std::map<std::string, std::size_t> names;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        std::string_view line = lines[i];
        std::size_t number = i + 1;
        if (line.starts_with("#")) continue;
        if (used++ == entries) {
            out.add(number, "the library takes " + std::to_string(entries) +
                                " lines of networks: it ignores this one and the rest");
            break;
        }
        line = line.substr(0, line.find('#'));
        std::vector<std::string_view> words = words_of(line);
        // What a line does not give, the library takes from the line before.
        if (words.empty() || words[0].find_first_of("0123456789") != 0) {
            out.add(number, "the line has no network number: the library stores the network of "
                            "the line before it again, in one of its " +
                                std::to_string(entries) + " entries");
            continue;
        }
        if (!number_in(words[0], 1, 65535)) {
            out.add(number,
                    "the network number " + quoted(words[0]) + " is not a number from 1 to 65535");
            continue;
        }
        if (words.size() < 3) {
            out.add(number, words.size() < 2 ? "the network has no name: the library gives it the "
                                               "name and description of the line before it"
                                             : "the network has no description: the library "
                                               "gives it the description of the line before it");
            continue;
        }
        long network = std::atol(std::string(words[0]).c_str());
        std::string name(words[1]);
        if (name.size() > name_kept)
            out.add(number, "the name " + quoted(name) + " is longer than the " +
                                std::to_string(name_kept) + " characters the library keeps");
        std::string_view description =
            words.size() > 2 ? line.substr(static_cast<std::size_t>(words[2].data() - line.data()))
                             : std::string_view();
        while (!description.empty() && (description.back() == '\n' || description.back() == '\r'))
            description.remove_suffix(1);
        if (description.size() > description_kept)
            out.add(number, "the description is longer than the " +
                                std::to_string(description_kept) + " characters the library keeps");
        if (auto [at, added] = numbers.emplace(network, number); !added)
            out.add(number, "network " + std::to_string(network) + " is that of line " +
                                std::to_string(at->second) + " already: the first one is used");
        std::string key = name;
        for (char &c : key)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        if (auto [at, added] = names.emplace(key, number); !added)
            out.add(number, "the name " + quoted(name) + " is that of line " +
                                std::to_string(at->second) + " already: the first one is used");
    }
    return out;
}

// ---- The links together ------------------------------------------------------------

void check_links_together(std::vector<checked_link> &links) {
    for (std::size_t later = 0; later < links.size(); ++later) {
        checked_link &b = links[later];
        if (b.records == nullptr) continue;
        const link_values &bv = b.records->config.link.values;
        for (std::size_t earlier = 0; earlier < later; ++earlier) {
            const checked_link &a = links[earlier];
            if (a.records == nullptr) continue;
            const link_values &av = a.records->config.link.values;
            if (std::optional<std::string> device = shared_device(bv, av))
                b.findings.add(b.device_line,
                               "device " + *device + " is used by " + a.findings.path +
                                   (a.device_line != 0 ? ":" + std::to_string(a.device_line) : "") +
                                   " too: link discovery leaves one of the two links out");
            const char *alias = bv.subnet.name, *other = av.subnet.name;
            if (alias != nullptr && other != nullptr && strcasecmp(alias, other) == 0)
                b.findings.add(b.alias_line,
                               "alias " + quoted(alias) + " is that of " + a.findings.path +
                                   (a.alias_line != 0 ? ":" + std::to_string(a.alias_line) : "") +
                                   " too: a look-up by name finds only one of them");
        }
    }
}

} // namespace qx25tool
