// Runs programs with the fake STREAMS driver preloaded, so that the
// exchange of tuning records with /dev/x25, /dev/lapb and /dev/llc2 can be
// tested. The driver keeps its records in a directory of the test's own and
// logs every event; both live as long as the object.
#pragma once

#include "run_tool.h"

#include <string>
#include <vector>

namespace qx25test {

class FakeDriver {
  public:
    // Sets the environment of every program run from now on: the driver
    // preloaded, its state directory and log named.
    FakeDriver();
    ~FakeDriver();
    FakeDriver(const FakeDriver &) = delete;
    FakeDriver &operator=(const FakeDriver &) = delete;

    // Makes every open of a device fail with the error number.
    void refuse_open(int error);
    // Makes every valid request fail with the error number (0 too).
    void fail_requests(int error);
    // What the driver logged so far, one event a line.
    std::string log() const;
    // The bytes the driver keeps for a layer ("x25", "lapb", "llc2") and
    // link; empty when it keeps none.
    std::string record(const std::string &layer, int link) const;

  private:
    std::string root_;
};

// Runs the template client (put KIND FILE, get KIND LINK FILE) in the
// current environment.
tool_result run_template_client(const std::vector<std::string> &args);

// Writes a record's bytes to a file and reads them back.
void write_bytes(const std::string &path, const void *data, std::size_t size);
void read_bytes(const std::string &path, void *data, std::size_t size);

} // namespace qx25test
