#include "vprinter/service/server.h"

#include <fmt/format.h>

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>

#include "ipc/late_reply.h"
#include "kwt/object_names.h"
#include "shared/process.h"

namespace vprinter {
namespace {

constexpr uint32_t kNoLimit = 0xFFFFFFFF;
// A reply waits for the section's own lock alone, which this process shares with nobody.
constexpr uint32_t kSendTimeoutMs = 1000;
constexpr int kMaxFailures = 20;
constexpr uint32_t kPauseAfterFailureMs = 50;

WideText ToWide(const std::string& text) {
    const std::u16string wide = std::filesystem::path(text).u16string();
    return {wide.begin(), wide.end()};
}

using Clock = std::chrono::steady_clock;

}  // namespace

WideText ChannelName(const std::string& product, const std::string& port) {
    kwt::ObjectNameTable names;
    if (!names.Build(ToWide(product + "MON.DLL"))) return {};
    return names[kwt::ObjectName::CommandChannelBase] + ToWide(port);
}

// A backslash would make part of the name a namespace.
PrinterClaim::PrinterClaim(const WideText& channelName) {
    WideText name = channelName + TEXT("VirtualPrinter");
    std::replace(name.begin(), name.end(), TEXT('\\'), TEXT('B'));
    mutex_.Create(name.c_str(), true);
}

bool PrinterClaim::Take() {
    kwt::WaitResult result = mutex_.Lock(0);
    if (result == kwt::WaitResult::Abandoned) result = mutex_.Lock(0);
    return result == kwt::WaitResult::Signaled;
}

/// One request on its way through the printer.
struct PrinterServer::Turn {
    std::string_view request;
    uint32_t client = 0;
    ULONGLONG receivedTick = 0;                  // of the coarse clock, which costs no system call
    std::chrono::system_clock::time_point time;  // these two are taken for a trace only
    Clock::time_point received;
    const Fault* fault = nullptr;
    std::string_view reply;
    const char* remark = "";
};

PrinterServer::PrinterServer(std::string port, WideText channelName, DeviceModel model, FaultScript faults,
                             Shared shared)
    : port_(std::move(port)),
      channelName_(std::move(channelName)),
      model_(std::move(model)),
      responder_(model_),
      faults_(std::move(faults)),
      shared_(std::move(shared)),
      control_(shared_.controlFile, port_),
      savedRevision_(model_.Revision()) {}

PrinterServer::~PrinterServer() {
    Stop();
}

std::future<bool> PrinterServer::Start() {
    std::promise<bool> opened;
    std::future<bool> future = opened.get_future();
    thread_ = std::thread(&PrinterServer::Serve, this, std::move(opened));
    return future;
}

void PrinterServer::Stop() {
    if (!thread_.joinable()) return;
    {
        const std::lock_guard guard(stopLock_);
        stopping_ = true;
    }
    stopSignal_.notify_all();
    channel_.Cancel();
    thread_.join();
}

void PrinterServer::Serve(std::promise<bool> opened) {
    const bool isOpen = channel_.Open(ipc::ChannelRole::Server, channelName_.c_str());
    if (!isOpen) Fail(fmt::format("its channel cannot be opened (error {})", GetLastError()));
    opened.set_value(isOpen);
    if (!isOpen) return;
    try {
        ServeRequests();
    } catch (const std::exception& error) {
        Fail(error.what());
    }
    KeepState();
    channel_.Close();
}

void PrinterServer::ServeRequests() {
    const auto buffer = std::make_unique_for_overwrite<char[]>(ipc::kMaxOplMessage);
    int failures = 0;
    while (!stopping_) {
        const uint32_t length = channel_.Receive(buffer.get(), ipc::kMaxOplMessage, kNoLimit);
        if (length > 0) {
            failures = 0;
            AnswerRequest({buffer.get(), length});
            continue;
        }
        // Nothing arrived: a request withdrawn at the last moment, or a wait that was cancelled.
        const DWORD error = GetLastError();
        if (error == NO_ERROR || error == ERROR_OPERATION_ABORTED) continue;
        if (++failures == kMaxFailures) return Fail(fmt::format("its channel fails (error {})", error));
        static_cast<void>(WaitUnlessStopped(kPauseAfterFailureMs));
    }
}

void PrinterServer::AnswerRequest(std::string_view request) {
    Turn turn;
    turn.request = request;
    turn.client = channel_.LastClientProcessId();
    turn.receivedTick = GetTickCount64();
    if (shared_.trace.IsOn()) {
        turn.time = std::chrono::system_clock::now();
        turn.received = Clock::now();
    }
    ApplyControl();
    turn.fault = faults_.Next(request);
    CarryOut(turn);
    if (stopping_) return;
    SendReply(turn);
    if (shared_.trace.IsOn()) WriteTrace(turn);
    KeepState();
    if (turn.fault != nullptr && turn.fault->action == FaultAction::CrashAfter) tools::EndAbruptly();
}

void PrinterServer::CarryOut(Turn& turn) {
    if (turn.fault == nullptr) {
        turn.reply = responder_.Answer(turn.request, turn.client);
        return;
    }
    turn.remark = "as scripted";
    if (turn.fault->delayMs > 0 && !WaitUnlessStopped(turn.fault->delayMs)) return;
    if (turn.fault->action == FaultAction::CrashBefore) tools::EndAbruptly();
    turn.reply = FaultyReply(*turn.fault, responder_.Answer(turn.request, turn.client), faultyReply_);
}

void PrinterServer::SendReply(Turn& turn) {
    if (turn.fault != nullptr && turn.fault->action == FaultAction::NoReply) {
        turn.reply = {};
        return;
    }
    const bool late = responder_.HasGivenUp(turn.client, GetTickCount64() - turn.receivedTick);
    if (late && (turn.fault == nullptr || !turn.fault->late)) {
        turn.remark = "not sent: the client has given up";
        return;
    }
    const ipc::ReplySent sent = ipc::SendPastLateReply(
        channel_, [&] { return Post(turn) > 0 || turn.reply.empty(); },
        [this](uint32_t milliseconds) { static_cast<void>(WaitUnlessStopped(milliseconds)); });
    if (sent == ipc::ReplySent::PastLateReply)
        turn.remark = "sent after the unread reply to another client was taken back";
    if (sent == ipc::ReplySent::Never) turn.remark = "the reply could not be sent";
}

uint32_t PrinterServer::Post(const Turn& turn) {
    const auto length = static_cast<uint32_t>(turn.reply.size());
    const FaultAction action = turn.fault != nullptr ? turn.fault->action : FaultAction::None;
    if (action == FaultAction::OtherProcess) {
        const auto target = static_cast<uint32_t>(turn.fault->number);
        return channel_.SendTo(target != 0 ? target : GetCurrentProcessId(), false, turn.reply.data(), length,
                               kSendTimeoutMs);
    }
    if (action == FaultAction::Aborted) {
        return channel_.SendTo(turn.client, true, turn.reply.data(), length, kSendTimeoutMs);
    }
    return channel_.Send(turn.reply.data(), length, kSendTimeoutMs);
}

bool PrinterServer::WaitUnlessStopped(uint32_t milliseconds) {
    std::unique_lock guard(stopLock_);
    return !stopSignal_.wait_for(guard, std::chrono::milliseconds(milliseconds),
                                 [&] { return stopping_.load(); });
}

void PrinterServer::WriteTrace(const Turn& turn) {
    Exchange exchange;
    exchange.time = turn.time;
    exchange.port = port_;
    exchange.clientProcessId = turn.client;
    exchange.request = turn.request;
    exchange.reply = turn.reply;
    exchange.duration = Clock::now() - turn.received;
    exchange.remark = turn.remark;
    shared_.trace.Write(exchange);
}

void PrinterServer::ApplyControl() {
    const std::string problem = control_.Apply(model_);
    if (!problem.empty()) fmt::print(stderr, "kestrel-vprinter: {}\n", problem);
}

void PrinterServer::KeepState() {
    if (shared_.state == nullptr || model_.Revision() == savedRevision_) return;
    savedRevision_ = model_.Revision();
    if (shared_.state->Save(port_, model_.ChangedValues())) return;
    fmt::print(
        stderr,
        "kestrel-vprinter: printer {}: a changed setting could not be kept in the state file; check the "
        "permissions of its folder and the free space\n",
        port_);
}

void PrinterServer::Fail(const std::string& what) {
    fmt::print(stderr, "kestrel-vprinter: printer {}: {}\n", port_, what);
    failed_ = true;
    if (shared_.onFailure) shared_.onFailure();
}

}  // namespace vprinter
