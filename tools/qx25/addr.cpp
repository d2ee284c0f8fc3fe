// qx25 addr: X.25 address text to record and back.
#include "command.h"

#include "qx25.h"

#include <cstring>
#include <iostream>
#include <string>

namespace qx25tool {

namespace {

std::string nibbles(const uint8_t *bytes, int count) {
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string text;
    for (int i = 0; i < count; ++i)
        text += digits[i % 2 == 0 ? bytes[i / 2] >> 4 : bytes[i / 2] & 0x0F];
    return text;
}

const char *extension_kind(uint8_t type) {
    switch (type) {
    case X25_EXT_NSAP:
        return "NSAP";
    case X25_EXT_NON_NSAP:
        return "non-NSAP";
    case X25_EXT_PVC:
        return "PVC";
    default:
        return "unknown";
    }
}

void show(const char *text, const x25_address &address, const char *canonical) {
    std::cout << "address    " << text << '\n';
    std::cout << "snid       ";
    if (address.snid == X25_NO_SNID)
        std::cout << "none\n";
    else
        std::cout << address.snid << '\n';
    std::cout << "dte        " << nibbles(address.dte, address.dte_len) << " ("
              << int(address.dte_len) << " digits)\n";
    std::cout << "extension  " << extension_kind(address.ext_type);
    if (address.ext_len != 0)
        std::cout << ' ' << nibbles(address.ext, address.ext_len) << " (" << int(address.ext_len)
                  << " digits)";
    std::cout << '\n';
    std::cout << "canonical  " << canonical << '\n';
}

} // namespace

int run_addr(const command &self, const arguments &args) {
    unsigned check = args.given("--check") ? 1 : 0;
    if (args.empty()) return usage_error(self, "no address given");

    int status = exit_ok;
    bool first = true;
    for (const char *text : args) {
        x25_address address;
        if (stox25(text, &address, check) != 0) {
            complain(self.name, std::string("invalid X.25 address '") + text + "'");
            status = exit_failure;
            continue;
        }
        char canonical[256];
        if (x25tos(&address, canonical, check) != 0) {
            complain(self.name, std::string("'") + text +
                                    "' cannot be written under the class of link " +
                                    std::to_string(address.snid));
            status = exit_failure;
            continue;
        }
        if (!first) std::cout << '\n';
        first = false;
        show(text, address, canonical);
    }
    return status;
}

} // namespace qx25tool
