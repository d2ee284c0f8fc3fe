// Runs one driver exchange of the template library, so that tests can run
// it with the fake driver preloaded:
//
//   template_client put KIND RECORD_FILE
//   template_client get KIND LINK RECORD_FILE
//
// KIND is x25, lapb, llc2 or wan. The record is read from RECORD_FILE (its
// exact bytes) and written back there after the call. Each message the
// library reports is printed as "[message]", then "result N".
//
//   template_client request DEVICE IOCTL COMMAND TIMEOUT LENGTH RECORD_FILE
//
// issues one request of its own, so that the checks of the fake driver can
// be tested: it prints "result R errno E".
#include "qx25.h"

#include "driver_exchange.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace {

int print_message(const char *message) {
    std::printf("[%s]\n", message);
    return 0;
}

struct operations {
    const char *kind;
    std::size_t size;
    int (*put)(void *);
    int (*get)(int, void *);
};

template <typename Record, int (*Put)(Record *), int (*Get)(int, Record *)>
constexpr operations operations_of(const char *kind) {
    return {kind, sizeof(Record), [](void *r) { return Put(static_cast<Record *>(r)); },
            [](int link, void *r) { return Get(link, static_cast<Record *>(r)); }};
}

constexpr operations kinds[] = {
    operations_of<x25_template, put__x25_template_parameters, get__x25_template_parameters>("x25"),
    operations_of<lapb_template, put_lapb_template_parameters, get_lapb_template_parameters>(
        "lapb"),
    operations_of<llc2_template, put_llc2_template_parameters, get_llc2_template_parameters>(
        "llc2"),
    operations_of<wan_template, put_wan_template_parameters, get_wan_template_parameters>("wan"),
};

bool read_record(const char *path, std::vector<unsigned char> &record) {
    FILE *file = std::fopen(path, "rb");
    if (file == nullptr) return false;
    bool whole = std::fread(record.data(), 1, record.size(), file) == record.size();
    std::fclose(file);
    return whole;
}

bool write_record(const char *path, const std::vector<unsigned char> &record) {
    FILE *file = std::fopen(path, "wb");
    if (file == nullptr) return false;
    bool whole = std::fwrite(record.data(), 1, record.size(), file) == record.size();
    return std::fclose(file) == 0 && whole;
}

int usage() {
    std::fputs("usage: template_client put KIND RECORD_FILE\n"
               "       template_client get KIND LINK RECORD_FILE\n"
               "       template_client request DEVICE IOCTL COMMAND TIMEOUT LENGTH RECORD_FILE\n",
               stderr);
    return 2;
}

long number(const char *text) {
    return std::strtol(text, nullptr, 0);
}

// One request as the arguments give it, the record from the file.
int request(char **argv) {
    std::vector<unsigned char> record(4096);
    FILE *file = std::fopen(argv[7], "rb");
    if (file == nullptr) return usage();
    record.resize(std::fread(record.data(), 1, record.size(), file));
    std::fclose(file);

    int fd = ::open(argv[2], O_RDWR);
    if (fd < 0) {
        std::printf("open failed errno %d\n", errno);
        return 0;
    }
    qx25::strioctl block{static_cast<int>(number(argv[4])), static_cast<int>(number(argv[5])),
                         static_cast<int>(number(argv[6])),
                         record.empty() ? nullptr : reinterpret_cast<char *>(record.data())};
    errno = 0;
    int result = ::ioctl(fd, static_cast<unsigned long>(number(argv[3])), &block);
    std::printf("result %d errno %d\n", result, errno);
    ::close(fd);
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    if (argc == 8 && std::strcmp(argv[1], "request") == 0) return request(argv);
    if (argc < 4) return usage();
    std::string operation = argv[1];
    const operations *kind = nullptr;
    for (const operations &candidate : kinds)
        if (std::strcmp(candidate.kind, argv[2]) == 0) kind = &candidate;
    bool put = operation == "put" && argc == 4;
    bool get = operation == "get" && argc == 5;
    if (kind == nullptr || (!put && !get)) return usage();

    const char *path = argv[argc - 1];
    std::vector<unsigned char> record(kind->size);
    if (!read_record(path, record)) {
        std::fprintf(stderr, "template_client: cannot read %s\n", path);
        return 2;
    }
    set_x25_template_error_function(print_message);
    set_lapb_template_error_function(print_message);
    set_llc2_template_error_function(print_message);
    set_wan_template_error_function(print_message);

    int result = put ? kind->put(record.data()) : kind->get(std::atoi(argv[3]), record.data());
    std::printf("result %d\n", result);
    if (!write_record(path, record)) {
        std::fprintf(stderr, "template_client: cannot write %s\n", path);
        return 2;
    }
    return 0;
}
