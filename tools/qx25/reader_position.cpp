#include "reader_position.h"

#include <cctype>
#include <strings.h>

namespace qx25tool {

const config_keyword *keywords_of(int section) {
    switch (section) {
    case SECTION_LINK:
        return __LINK_functions;
    case SECTION_X25:
        return __X25_functions;
    case SECTION_LLC2:
        return __LLC2_functions;
    case SECTION_LAPB:
        return __LAPB_functions;
    case SECTION_WAN:
        return __WAN_functions;
    default:
        return __MLP_functions;
    }
}

std::string upper(std::string_view word) {
    std::string text(word);
    for (char &c : text)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return text;
}

int section_code(std::string_view name) {
    while (!name.empty() && (name.back() == ' ' || name.back() == '\t'))
        name.remove_suffix(1);
    for (const config_keyword *row = section_map; row->name != nullptr; ++row)
        if (std::string_view(row->name).size() == name.size() &&
            strncasecmp(row->name, name.data(), name.size()) == 0)
            return row->index;
    return 0;
}

void reader_position::follow(const config_line &line) {
    switch (line.kind) {
    case CONFIG_LINE_IDENTIFICATION:
        section_ = 0;
        break;
    case CONFIG_LINE_SECTION:
        section_ = section_code(line.value);
        if (section_ == SECTION_MLP) lapb_count_ = wan_count_ = subsection_ = 0;
        break;
    case CONFIG_LINE_SUBSECTION:
        if (section_ != SECTION_MLP) {
            section_ = 0;
            break;
        }
        subsection_ = section_code(line.value);
        // A sixth subsection of a kind stands for the fifth again.
        if (subsection_ == SECTION_LAPB && lapb_count_ < MLP_MAX_SUBSECTIONS) ++lapb_count_;
        if (subsection_ == SECTION_WAN && wan_count_ < MLP_MAX_SUBSECTIONS) ++wan_count_;
        if (subsection_ != SECTION_LAPB && subsection_ != SECTION_WAN) subsection_ = 0;
        break;
    default:
        break;
    }
}

int reader_position::position() const {
    switch (subsection()) {
    case SECTION_LAPB:
        return lapb_count_ - 1;
    case SECTION_WAN:
        return wan_count_ - 1;
    default:
        return 0;
    }
}

const config_keyword *reader_position::keywords() const {
    if (section_ == 0) return nullptr;
    return keywords_of(subsection() != 0 ? subsection() : section_);
}

std::vector<std::string> renamed(std::vector<std::string> messages, const std::string &from,
                                 std::string_view to) {
    for (std::string &message : messages)
        for (std::size_t at = message.find(from); !from.empty() && at != std::string::npos;
             at = message.find(from, at + to.size()))
            message.replace(at, from.size(), to);
    return messages;
}

} // namespace qx25tool
