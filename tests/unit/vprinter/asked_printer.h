// A virtual printer without a channel, with a clock that the test moves.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "vprinter/files/control_file.h"
#include "vprinter/requests/responder.h"

namespace vprinter {

class AskedPrinter : public testing::Test {
  protected:
    static constexpr uint32_t kClient = 100;
    static constexpr uint32_t kDead = 300;

    void TearDown() override { std::filesystem::remove(path_); }

    std::string Ask(std::string_view request, uint32_t client = kClient) {
        return std::string(responder_.Answer(request, client));
    }
    /// What the reply says behind its first '='.
    std::string Value(std::string_view key) {
        const std::string reply = Ask(std::string(key) + "?");
        return reply.substr(reply.find('=') + 1, reply.size() - reply.find('=') - 2);
    }
    void Write(std::string_view text) const { std::ofstream(path_) << text; }
    /// What is wrong with this control file.
    std::string Control(std::string_view text) {
        Write(text);
        return control_.Apply(model_, faults_, 0);
    }

    const std::string path_ = std::string(std::getenv("KESTREL_TEST_FOLDER")) + "/printer.json";
    uint64_t tickMs_ = 1'000'000;
    int64_t localSeconds_ = 394'459'200;  // 2012-07-01 12:00:00
    DeviceModel model_;
    ControlFile control_{path_, "USB001"};
    FaultScript faults_;
    Responder responder_{model_,
                         {[](uint32_t processId) { return processId != kDead; }, [this] { return tickMs_; },
                          [this] { return localSeconds_; }}};
};

}  // namespace vprinter
