// qx25 devices: the device type table read from boardconf.
#include "command.h"

#include "link_config.h"
#include "paths.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

namespace qx25tool {

namespace {

std::string text(const char *field, std::size_t width) {
    return std::string(field, ::strnlen(field, width));
}

const char *kind_name(int type) {
    return type == DEVICE_WAN ? "WAN" : type == DEVICE_LAN ? "LAN" : "?";
}

// The comments the table's rows own.
void release_comments() {
    for (device_type &row : __config_linktype) {
        std::free(row.comment);
        row.comment = nullptr;
    }
}

} // namespace

int run_devices(const command &self, const arguments &args) {
    if (!args.empty()) return usage_error(self, "no arguments are taken");
    if (!fill_linktype_struct(__config_linktype)) {
        int error = errno;
        std::string path = std::string(qx25::config_dir()) + "/boardconf";
        complain(self.name, "cannot read " + path + ": " + open_failure_reason(path, error));
        return exit_failure;
    }
    bool any = __config_linktype[0].valid == 1;
    if (args.given("--json")) {
        table_rows rows;
        for (int row = 0;
             any && row < DEVICE_TYPE_ROWS && __config_linktype[row].type != DEVICE_END; ++row) {
            const device_type &d = __config_linktype[row];
            rows.push_back({std::to_string(row), text(d.symbolic, sizeof d.symbolic),
                            text(d.device, sizeof d.device), kind_name(d.type),
                            std::to_string(d.lines), text(d.wanmod, sizeof d.wanmod),
                            std::to_string(d.mru), d.comment != nullptr ? d.comment : ""});
        }
        constexpr json_field fields[] = {
            {"row", json_kind::number},   {"symbolic", json_kind::text},
            {"device", json_kind::text},  {"kind", json_kind::text},
            {"lines", json_kind::number}, {"module", json_kind::text},
            {"mru", json_kind::number},   {"comment", json_kind::text_or_null},
        };
        print_json_rows("devices", fields, rows);
        release_comments();
        return exit_ok;
    }
    if (!any) {
        std::cout << "no devices in " << qx25::config_dir() << "/boardconf\n";
        return exit_ok;
    }
    std::printf("%-4s %-8s %-8s %-4s %5s %-16s %6s  %s\n", "ROW", "SYMBOLIC", "DEVICE", "KIND",
                "LINES", "MODULE", "MRU", "COMMENT");
    for (int row = 0; row < DEVICE_TYPE_ROWS && __config_linktype[row].type != DEVICE_END; ++row) {
        const device_type &d = __config_linktype[row];
        std::printf("%-4d %-8s %-8s %-4s %5d %-16s %6d  %s\n", row,
                    text(d.symbolic, sizeof d.symbolic).c_str(),
                    text(d.device, sizeof d.device).c_str(), kind_name(d.type), d.lines,
                    text(d.wanmod, sizeof d.wanmod).c_str(), d.mru,
                    d.comment != nullptr ? d.comment : "");
    }
    release_comments();
    return exit_ok;
}

} // namespace qx25tool
