// The longest request and the longest reply, against a counterpart that only moves them: what the channel
// costs, and what the reply costs once it is framed as well.
#include <kestrel/sdk.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include "ipc/opl_channel.h"
#include "kwt/object_names.h"
#include "library/library.h"
#include "library/printer.h"
#include "opl/opl_parser.h"

namespace {

constexpr uint32_t kNoLimit = 0xFFFFFFFF;

/// A block that fills a message from its first to its last byte.
std::string LargestMessage(const std::string& opening) {
    const std::string head = opening + "Bench.Block#";
    const size_t block = ipc::kMaxOplMessage - head.size() - std::strlen("65535=;");
    return head + std::to_string(block) + '=' + std::string(block, 'Z') + ';';
}

WideText ChannelName() {
    kwt::ObjectNameTable names;
    const std::string module = KESTREL_PRODUCT "MON.DLL";
    if (!names.Build({module.begin(), module.end()})) throw std::runtime_error("no channel name");
    return names[kwt::ObjectName::CommandChannelBase] + TEXT("USB001");
}

void Serve(const Place& place) {
    InstallPrinter(place);
    ipc::OPLChannel channel;
    if (!channel.Open(ipc::ChannelRole::Server, ChannelName().c_str()))
        throw std::runtime_error("the channel cannot be opened");
    const std::string large = LargestMessage("0000,");
    const std::string small = "0000,ZRPing;";
    std::vector<char> request(ipc::kMaxOplMessage);
    Ready();
    for (;;) {
        const uint32_t length = channel.Receive(request.data(), ipc::kMaxOplMessage, kNoLimit);
        const std::string& reply = length == ipc::kMaxOplMessage ? large : small;
        channel.Send(reply.data(), static_cast<uint32_t>(reply.size()), kTimeoutMs);
    }
}

class Raw : public Client {
  public:
    explicit Raw(const Place& place) { SelectInstalledPrinter(place); }

    void Exchange() override {
        length_ = 0;
        ::SendCmd(request_.data(), ipc::kMaxOplMessage, reply_.data(), ipc::kMaxOplMessage, &length_,
                  kTimeoutMs);
    }
    bool IsRight() override { return std::string_view(reply_.data(), length_) == expected_; }

  protected:
    const std::string expected_ = LargestMessage("0000,");
    std::vector<char> reply_ = std::vector<char>(ipc::kMaxOplMessage);
    uint32_t length_ = 0;

  private:
    const std::string request_ = LargestMessage("");
};

class Framed final : public Raw {
  public:
    using Raw::Raw;

    void Exchange() override {
        Raw::Exchange();
        message_ = nullptr;
        messageLength_ = 0;
        static_cast<void>(opl::OPLParser().ParseStream(reply_.data(), length_, message_, messageLength_));
    }
    bool IsRight() override { return messageLength_ == expected_.size() && Raw::IsRight(); }

  private:
    const char* message_ = nullptr;
    uint32_t messageLength_ = 0;
};

}  // namespace

const Contender kRawExchange = {
    "raw", "SendCmd, 65,791 bytes", "polling-large", "sleeping-large", Serve, Connect<Raw>, "h"};
const Contender kFramedExchange = {
    "framed", "SendCmd, 65,791 bytes framed", "polling-large", "sleeping-large", Serve, Connect<Framed>, "h"};
