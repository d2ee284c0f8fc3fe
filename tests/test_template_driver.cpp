// The exchange of tuning records with the drivers: without them (every
// operation reports that it cannot open the device), and with the fake
// STREAMS driver preloaded into a client process: what is sent comes back,
// every request is checked, and every failure gives its message.
#include "qx25.h"

#include "captured_messages.h"
#include "config_tree.h"
#include "fake_driver.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

using qx25test::ConfigTree;
using qx25test::FakeDriver;
using qx25test::messages;
using qx25test::read_bytes;
using qx25test::run_template_client;
using qx25test::tool_result;
using qx25test::write_bytes;

namespace {

std::string hint(const std::string &first_line, const std::string &error_text) {
    return first_line + "\n" + error_text + "\nX.25 may not be running.\n";
}

x25_template sample_x25(int link) {
    x25_template record{};
    record.link = link;
    record.network = 5;
    record.version = 2;
    record.lcn.two_low = 16;
    record.lcn.two_high = 31;
    record.modulo = X25_MODULO_8;
    record.max_nsdu = 4096;
    record.t20value = 1800;
    record.dnic[0] = 0x23;
    record.dnic[1] = 0x42;
    record.driver_flag = 7;
    record.reserved_131[8] = 0x5A;
    return record;
}

lapb_template sample_lapb(int link) {
    lapb_template record{};
    record.kind = 0xFF; // the library sets the kind and clears the reserved bytes
    record.reserved[1] = 0x33;
    record.link = link;
    record.n2_count = 10;
    record.t1_timer = 30;
    record.max_iframe_len = 135;
    record.flags = LAPB_IGN_UA_ERROR | LAPB_INITIAL_DOWN;
    return record;
}

llc2_template sample_llc2(int link) {
    llc2_template record{};
    record.kind = 0x01;
    record.reserved[2] = 0x44;
    record.link = link;
    record.n2_count = 10;
    record.max_iframe_len = 263;
    record.xid_tdup = 5;
    return record;
}

template <typename Record> bool same(const Record &a, const Record &b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// ---- Without a driver --------------------------------------------------------------

class NoDriver : public ::testing::Test {
  protected:
    void SetUp() override { qx25test::capture_all_messages(); }
};

TEST_F(NoDriver, X25PutCannotOpenTheDeviceAndLeavesTheRecord) {
    x25_template record = sample_x25(3);
    x25_template before = record;
    EXPECT_EQ(put__x25_template_parameters(&record), ENOENT);
    EXPECT_EQ(messages(), std::vector<std::string>{
                              hint("unable to open /dev/x25", "No such file or directory")});
    EXPECT_TRUE(same(record, before));
}

TEST_F(NoDriver, X25GetStoresTheLinkNumberFirst) {
    x25_template record = sample_x25(3);
    EXPECT_EQ(get__x25_template_parameters(9, &record), ENOENT);
    EXPECT_EQ(messages(), std::vector<std::string>{
                              hint("unable to open /dev/x25", "No such file or directory")});
    x25_template expected = sample_x25(9);
    EXPECT_TRUE(same(record, expected));
}

TEST_F(NoDriver, LapbOperationsCannotOpenTheDevice) {
    lapb_template record = sample_lapb(2);
    EXPECT_EQ(put_lapb_template_parameters(&record), ENOENT);
    EXPECT_EQ(record.kind, 19);
    EXPECT_EQ(record.reserved[1], 0);
    EXPECT_EQ(record.link, 2);
    EXPECT_EQ(get_lapb_template_parameters(4, &record), ENOENT);
    EXPECT_EQ(record.link, 4);
    std::string message = hint("unable to open /dev/lapb", "No such file or directory");
    EXPECT_EQ(messages(), (std::vector<std::string>{message, message}));
}

TEST_F(NoDriver, Llc2OperationsCannotOpenTheDevice) {
    llc2_template record = sample_llc2(1);
    EXPECT_EQ(get_llc2_template_parameters(6, &record), ENOENT);
    EXPECT_EQ(record.kind, 35);
    EXPECT_EQ(record.reserved[2], 0);
    EXPECT_EQ(record.link, 6);
    EXPECT_EQ(put_llc2_template_parameters(&record), ENOENT);
    std::string message = hint("unable to open /dev/llc2", "No such file or directory");
    EXPECT_EQ(messages(), (std::vector<std::string>{message, message}));
}

TEST_F(NoDriver, NullRecordsAreRefusedQuietly) {
    EXPECT_EQ(put__x25_template_parameters(nullptr), EINVAL);
    EXPECT_EQ(get__x25_template_parameters(1, nullptr), EINVAL);
    EXPECT_EQ(put_lapb_template_parameters(nullptr), EINVAL);
    EXPECT_EQ(get_lapb_template_parameters(1, nullptr), EINVAL);
    EXPECT_EQ(put_llc2_template_parameters(nullptr), EINVAL);
    EXPECT_EQ(get_llc2_template_parameters(1, nullptr), EINVAL);
    EXPECT_TRUE(messages().empty());
}

TEST_F(NoDriver, EachModuleReportsThroughItsOwnFunction) {
    set_x25_template_error_function(nullptr);
    set_llc2_template_error_function(nullptr);
    lapb_template lapb = sample_lapb(2);
    x25_template x25 = sample_x25(2);
    llc2_template llc2 = sample_llc2(2);
    qx25test::CapturedStderr err;
    EXPECT_EQ(put_lapb_template_parameters(&lapb), ENOENT);
    EXPECT_EQ(put__x25_template_parameters(&x25), ENOENT);
    EXPECT_EQ(put_llc2_template_parameters(&llc2), ENOENT);
    EXPECT_EQ(messages(), std::vector<std::string>{
                              hint("unable to open /dev/lapb", "No such file or directory")});
    // The default handlers add a newline to the message.
    EXPECT_EQ(err.text(), hint("unable to open /dev/x25", "No such file or directory") + "\n" +
                              hint("unable to open /dev/llc2", "No such file or directory") + "\n");
}

// ---- With the fake driver ------------------------------------------------------------

class WithDriver : public ::testing::Test {
  protected:
    template <typename Record> tool_result put(const std::string &kind, Record &record) {
        write_bytes(record_file(), &record, sizeof record);
        tool_result result = run_template_client({"put", kind, record_file()});
        read_bytes(record_file(), &record, sizeof record);
        return result;
    }

    template <typename Record> tool_result get(const std::string &kind, int link, Record &record) {
        write_bytes(record_file(), &record, sizeof record);
        tool_result result =
            run_template_client({"get", kind, std::to_string(link), record_file()});
        read_bytes(record_file(), &record, sizeof record);
        return result;
    }

    tool_result request(const std::string &device, const std::string &ioctl_code,
                        const std::string &command, const std::string &timeout,
                        const std::string &length, const std::vector<unsigned char> &record) {
        write_bytes(record_file(), record.data(), record.size());
        return run_template_client(
            {"request", device, ioctl_code, command, timeout, length, record_file()});
    }

    std::string record_file() const { return tree.root() + "/record"; }

    ConfigTree tree;
    FakeDriver driver;
};

TEST_F(WithDriver, X25RecordSentComesBack) {
    x25_template record = sample_x25(3);
    tool_result sent = put("x25", record);
    EXPECT_EQ(sent.out, "result 0\n");
    EXPECT_EQ(sent.err, "");
    x25_template expected = sample_x25(3);
    expected.driver_flag = 255;
    EXPECT_TRUE(same(record, expected));
    EXPECT_EQ(driver.record("x25", 3),
              std::string(reinterpret_cast<const char *>(&expected), sizeof expected));

    x25_template fetched{};
    tool_result got = get("x25", 3, fetched);
    EXPECT_EQ(got.out, "result 0\n");
    EXPECT_TRUE(same(fetched, expected));
    EXPECT_EQ(driver.log(), "open /dev/x25\n"
                            "ioctl /dev/x25 N_snconfig link 3\n"
                            "close /dev/x25\n"
                            "open /dev/x25\n"
                            "ioctl /dev/x25 N_snread link 3\n"
                            "close /dev/x25\n");
}

TEST_F(WithDriver, LapbRecordSentComesBack) {
    lapb_template record = sample_lapb(2);
    EXPECT_EQ(put("lapb", record).out, "result 0\n");
    lapb_template expected = sample_lapb(2);
    expected.kind = 19;
    expected.reserved[1] = 0;
    EXPECT_TRUE(same(record, expected));

    lapb_template fetched{};
    fetched.reserved[0] = 9;
    EXPECT_EQ(get("lapb", 2, fetched).out, "result 0\n");
    EXPECT_TRUE(same(fetched, expected));
    EXPECT_EQ(driver.log(), "open /dev/lapb\n"
                            "ioctl /dev/lapb L_SETTUNE link 2\n"
                            "close /dev/lapb\n"
                            "open /dev/lapb\n"
                            "ioctl /dev/lapb L_GETTUNE link 2\n"
                            "close /dev/lapb\n");
}

TEST_F(WithDriver, Llc2RecordSentComesBack) {
    llc2_template record = sample_llc2(1);
    EXPECT_EQ(put("llc2", record).out, "result 0\n");
    llc2_template expected = sample_llc2(1);
    expected.kind = 35;
    expected.reserved[2] = 0;
    EXPECT_TRUE(same(record, expected));

    llc2_template fetched{};
    EXPECT_EQ(get("llc2", 1, fetched).out, "result 0\n");
    EXPECT_TRUE(same(fetched, expected));
    EXPECT_EQ(driver.log(), "open /dev/llc2\n"
                            "ioctl /dev/llc2 L_SETTUNE link 1\n"
                            "close /dev/llc2\n"
                            "open /dev/llc2\n"
                            "ioctl /dev/llc2 L_GETTUNE link 1\n"
                            "close /dev/llc2\n");
}

TEST_F(WithDriver, EachLinkAndLayerKeepsItsOwnRecord) {
    x25_template a = sample_x25(1), b = sample_x25(2);
    b.network = 9;
    put("x25", a);
    put("x25", b);
    lapb_template lapb = sample_lapb(1);
    put("lapb", lapb);
    x25_template fetched{};
    get("x25", 1, fetched);
    EXPECT_EQ(fetched.network, 5);
    get("x25", 2, fetched);
    EXPECT_EQ(fetched.network, 9);
    // The LLC2 driver has nothing for link 1.
    llc2_template llc2{};
    EXPECT_EQ(get("llc2", 1, llc2).out,
              "[" + hint("L_GETTUNE ioctl failed on /dev/llc2", "No such device or address") +
                  "]\nresult 6\n");
}

TEST_F(WithDriver, FetchingALinkNeverSent) {
    x25_template record{};
    EXPECT_EQ(get("x25", 12, record).out,
              "[" + hint("N_snread ioctl failed on /dev/x25", "No such device or address") +
                  "]\nresult 6\n");
    EXPECT_EQ(record.link, 12);
    EXPECT_EQ(driver.log(), "open /dev/x25\n"
                            "ioctl /dev/x25 N_snread link 12\n"
                            "ioctl /dev/x25 N_snread failed: no record of link 12\n"
                            "close /dev/x25\n");
}

TEST_F(WithDriver, ALinkTheDriverDoesNotKnow) {
    x25_template record = sample_x25(300);
    EXPECT_EQ(put("x25", record).out,
              "[" + hint("N_snconfig ioctl failed on /dev/x25", "No such device or address") +
                  "]\nresult 6\n");
    EXPECT_EQ(record.driver_flag, 7); // a record refused is left as it was
}

TEST_F(WithDriver, RefusedOpens) {
    driver.refuse_open(EACCES);
    x25_template x25 = sample_x25(3);
    EXPECT_EQ(put("x25", x25).out,
              "[" + hint("unable to open /dev/x25", "Permission denied") + "]\nresult 13\n");
    EXPECT_TRUE(same(x25, sample_x25(3)));
    lapb_template lapb{};
    EXPECT_EQ(get("lapb", 2, lapb).out,
              "[" + hint("unable to open /dev/lapb", "Permission denied") + "]\nresult 13\n");
    llc2_template llc2{};
    EXPECT_EQ(put("llc2", llc2).out,
              "[" + hint("unable to open /dev/llc2", "Permission denied") + "]\nresult 13\n");
    EXPECT_EQ(driver.log(), "open /dev/x25\n"
                            "open /dev/x25 refused: errno 13\n"
                            "open /dev/lapb\n"
                            "open /dev/lapb refused: errno 13\n"
                            "open /dev/llc2\n"
                            "open /dev/llc2 refused: errno 13\n");
}

TEST_F(WithDriver, AnOpenRefusedWithoutAnErrorNumberGivesEinval) {
    driver.refuse_open(0);
    lapb_template lapb{};
    EXPECT_EQ(put("lapb", lapb).out, "[" + hint("unable to open /dev/lapb", "") + "]\nresult 22\n");
}

struct failing_request {
    const char *kind;
    const char *operation;
    const char *message;
};

TEST_F(WithDriver, FailedRequestsOfEveryCommand) {
    driver.fail_requests(EIO);
    const failing_request requests[] = {
        {"x25", "put", "N_snconfig ioctl failed on /dev/x25"},
        {"x25", "get", "N_snread ioctl failed on /dev/x25"},
        {"lapb", "put", "L_SETTUNE ioctl failed on /dev/lapb"},
        {"lapb", "get", "L_GETTUNE ioctl failed on /dev/lapb"},
        {"llc2", "put", "L_SETTUNE ioctl failed on /dev/llc2"},
        {"llc2", "get", "L_GETTUNE ioctl failed on /dev/llc2"},
    };
    for (const failing_request &failing : requests) {
        SCOPED_TRACE(std::string(failing.kind) + " " + failing.operation);
        std::vector<unsigned char> zeros(140);
        std::string kind = failing.kind;
        write_bytes(record_file(), zeros.data(), kind == "x25" ? 140u : kind == "lapb" ? 32u : 36u);
        std::vector<std::string> args = {failing.operation, failing.kind};
        if (std::string(failing.operation) == "get") args.push_back("4");
        args.push_back(record_file());
        tool_result result = run_template_client(args);
        EXPECT_EQ(result.out, "[" + hint(failing.message, "Input/output error") + "]\nresult 5\n");
    }
    // Every device was closed after its failure.
    std::string log = driver.log();
    for (const char *device : {"/dev/x25", "/dev/lapb", "/dev/llc2"}) {
        std::string closed = std::string("close ") + device + "\n";
        std::size_t count = 0;
        for (std::size_t at = log.find(closed); at != std::string::npos;
             at = log.find(closed, at + 1))
            ++count;
        EXPECT_EQ(count, 2u) << device;
    }
    EXPECT_EQ(log.find("left open"), std::string::npos);
}

TEST_F(WithDriver, AFailedSendLeavesTheX25RecordAsItWas) {
    driver.fail_requests(EBUSY);
    x25_template record = sample_x25(3);
    EXPECT_EQ(put("x25", record).out,
              "[" + hint("N_snconfig ioctl failed on /dev/x25", "Device or resource busy") +
                  "]\nresult 16\n");
    EXPECT_TRUE(same(record, sample_x25(3)));
    EXPECT_EQ(driver.log(), "open /dev/x25\n"
                            "ioctl /dev/x25 N_snconfig link 3\n"
                            "ioctl /dev/x25 N_snconfig failed: errno 16\n"
                            "close /dev/x25\n");
}

TEST_F(WithDriver, AFailureWithoutAnErrorNumberGivesEinval) {
    driver.fail_requests(0);
    lapb_template record = sample_lapb(2);
    EXPECT_EQ(put("lapb", record).out,
              "[" + hint("L_SETTUNE ioctl failed on /dev/lapb", "") + "]\nresult 22\n");
}

TEST_F(WithDriver, AnErrorNumberWithoutATextGivesEinval) {
    driver.fail_requests(4000);
    llc2_template record{};
    EXPECT_EQ(get("llc2", 3, record).out,
              "[" + hint("L_GETTUNE ioctl failed on /dev/llc2", "") + "]\nresult 22\n");
}

TEST_F(WithDriver, WanTouchesNoDevice) {
    wan_template record{2, 520, 64000};
    EXPECT_EQ(put("wan", record).out, "result 0\n");
    EXPECT_EQ(get("wan", 5, record).out, "result 0\n");
    EXPECT_EQ(record.link, 2);
    EXPECT_EQ(record.max_frame, 520);
    EXPECT_EQ(driver.log(), "");
}

// ---- The fake driver checks every request -------------------------------------------

std::vector<unsigned char> lapb_bytes(int link) {
    lapb_template record{};
    record.kind = 19;
    record.link = link;
    std::vector<unsigned char> bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

TEST_F(WithDriver, AWellFormedRequestPasses) {
    EXPECT_EQ(request("/dev/lapb", "0x5308", "0x4C03", "30", "32", lapb_bytes(1)).out,
              "result 0 errno 0\n");
}

struct bad_request {
    const char *ioctl_code, *command, *timeout, *length;
    int kind_byte, reserved_byte;
    const char *complaint;
};

TEST_F(WithDriver, MalformedRequestsAreViolations) {
    const bad_request requests[] = {
        {"0x5309", "0x4C03", "30", "32", 19, 0, "request is not I_STR"},
        {"0x5308", "0x4E03", "30", "32", 19, 0, "unknown command"},
        {"0x5308", "0x4C03", "15", "32", 19, 0, "time-out is not 30 seconds"},
        {"0x5308", "0x4C03", "30", "36", 19, 0, "wrong record length"},
        {"0x5308", "0x4C04", "30", "32", 35, 0, "wrong record kind"},
        {"0x5308", "0x4C04", "30", "32", 19, 1, "reserved bytes not zero"},
    };
    for (const bad_request &bad : requests) {
        SCOPED_TRACE(bad.complaint);
        std::vector<unsigned char> record = lapb_bytes(1);
        record[0] = static_cast<unsigned char>(bad.kind_byte);
        record[3] = static_cast<unsigned char>(bad.reserved_byte);
        tool_result result =
            request("/dev/lapb", bad.ioctl_code, bad.command, bad.timeout, bad.length, record);
        EXPECT_EQ(result.out, "result -1 errno " + std::to_string(EPROTO) + "\n");
        EXPECT_EQ(result.err, std::string("fakedrv: ") + bad.complaint + " on /dev/lapb\n");
    }
}

TEST_F(WithDriver, AnX25RecordSentMustBeMarked) {
    std::vector<unsigned char> record(140);
    tool_result result = request("/dev/x25", "0x5308", "0x4E03", "30", "140", record);
    EXPECT_EQ(result.out, "result -1 errno " + std::to_string(EPROTO) + "\n");
    EXPECT_EQ(result.err, "fakedrv: byte 130 not 255 on /dev/x25\n");
    record[130] = 255;
    EXPECT_EQ(request("/dev/x25", "0x5308", "0x4E03", "30", "140", record).out,
              "result 0 errno 0\n");
    // A record fetched needs no mark.
    record[130] = 0;
    EXPECT_EQ(request("/dev/x25", "0x5308", "0x4E04", "30", "140", record).out,
              "result 0 errno 0\n");
}

} // namespace
