#include "fake_driver.h"

#include "config_tree.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <cstring>
#include <stdexcept>

namespace fs = std::filesystem;

namespace qx25test {

FakeDriver::FakeDriver() {
    std::string pattern = (fs::temp_directory_path() / "qx25-fakedrv-XXXXXX").string();
    if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("mkdtemp failed");
    root_ = pattern;
    fs::create_directories(root_ + "/state");
    ::setenv("LD_PRELOAD", QX25_FAKEDRV, 1);
    ::setenv("QX25_FAKEDRV_STATE", (root_ + "/state").c_str(), 1);
    ::setenv("QX25_FAKEDRV_LOG", (root_ + "/log").c_str(), 1);
    // Under the sanitizers the preloaded driver comes before their runtime.
    const char *asan = std::getenv("ASAN_OPTIONS");
    std::string options = asan != nullptr && *asan != '\0' ? std::string(asan) + ":" : "";
    ::setenv("ASAN_OPTIONS", (options + "verify_asan_link_order=0").c_str(), 1);
}

FakeDriver::~FakeDriver() {
    ::unsetenv("LD_PRELOAD");
    ::unsetenv("QX25_FAKEDRV_STATE");
    ::unsetenv("QX25_FAKEDRV_LOG");
    ::unsetenv("QX25_FAKEDRV_OPEN_ERRNO");
    ::unsetenv("QX25_FAKEDRV_IOCTL_ERRNO");
    std::error_code ignored;
    fs::remove_all(root_, ignored);
}

void FakeDriver::refuse_open(int error) {
    ::setenv("QX25_FAKEDRV_OPEN_ERRNO", std::to_string(error).c_str(), 1);
}

void FakeDriver::fail_requests(int error) {
    ::setenv("QX25_FAKEDRV_IOCTL_ERRNO", std::to_string(error).c_str(), 1);
}

std::string FakeDriver::log() const {
    return read_file(root_ + "/log");
}

std::string FakeDriver::record(const std::string &layer, int link) const {
    return read_file(root_ + "/state/" + layer + "." + std::to_string(link));
}

tool_result run_template_client(const std::vector<std::string> &args) {
    return run_program(QX25_TEMPLATE_CLIENT, args);
}

void write_bytes(const std::string &path, const void *data, std::size_t size) {
    std::ofstream out(path, std::ios::binary);
    out.write(static_cast<const char *>(data), static_cast<std::streamsize>(size));
}

void read_bytes(const std::string &path, void *data, std::size_t size) {
    std::string bytes = read_file(path);
    if (bytes.size() != size) throw std::runtime_error("record file of the wrong size: " + path);
    std::memcpy(data, bytes.data(), size);
}

} // namespace qx25test
