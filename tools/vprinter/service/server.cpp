// One turn of the serving thread: receive, carry out, post, trace, keep.
#include "vprinter/service/server.h"

#include <fmt/core.h>

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>

#include "ipc/late_reply.h"
#include "kwt/object_names.h"
#include "shared/process.h"
#include "vprinter/faults/faulty_reply.h"

namespace vprinter {
namespace {

constexpr uint32_t kNoLimit = 0xFFFFFFFF;
// A reply waits for the section's own lock alone, which this process shares with nobody.
constexpr uint32_t kSendTimeoutMs = 1000;
constexpr int kMaxFailures = 20;
constexpr uint32_t kPauseAfterFailureMs = 50;
// Between two messages for one client: time to take the first. It asks nothing while this printer is not
// idle.
constexpr uint32_t kBetweenPartsMs = 50;
constexpr std::chrono::milliseconds kLongestForWork{2000};

WideText ToWide(const std::string& text) {
    const std::u16string wide = std::filesystem::path(text).u16string();
    return {wide.begin(), wide.end()};
}

using Clock = std::chrono::steady_clock;

bool IsSilent(FaultAction action) {
    return action == FaultAction::NoReply || action == FaultAction::Lost || action == FaultAction::Hang ||
           action == FaultAction::Restart;
}

Reach ReachUnder(FaultAction action) {
    if (action == FaultAction::Busy) return Reach::Busy;
    return action == FaultAction::Offline ? Reach::NotReached : Reach::Reached;
}

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
    bool shown = false;                          // somebody wants to know of it
    std::chrono::system_clock::time_point time;  // these two are taken only then
    Clock::time_point received;
    std::optional<Fault> fault;
    std::string_view reply;
    std::string_view secondPart;  // a message of its own behind the reply
    const char* remark = "";
    std::string departure;  // of a replay
};

PrinterServer::PrinterServer(std::string port, WideText channelName, DeviceModel model, Origin origin,
                             std::vector<FaultRule> faults, std::optional<Replay> replay, Shared shared)
    : port_(std::move(port)),
      channelName_(std::move(channelName)),
      model_(std::move(model)),
      responder_(model_),
      faults_(std::move(faults), GetTickCount64()),
      replay_(std::move(replay)),
      shared_(std::move(shared)),
      control_(shared_.controlFile, port_),
      savedRevision_(model_.Revision()) {
    responder_.Adopt(std::move(origin));
}

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
        channel_.Cancel();  // not while the thread closes it
    }
    stopSignal_.notify_all();
    thread_.join();
    if (ending_.joinable()) ending_.join();
}

void PrinterServer::Serve(std::promise<bool> opened) {
    const bool isOpen = channel_.Open(ipc::ChannelRole::Server, channelName_.c_str());
    if (!isOpen) Fail(fmt::format("its channel cannot be opened (error {})", GetLastError()));
    if (isOpen) work_.Open();
    opened.set_value(isOpen);
    if (!isOpen) return;
    try {
        ServeRequests();
    } catch (const std::exception& error) {
        Fail(error.what());
    }
    work_.Close();
    KeepState();
    const std::lock_guard guard(stopLock_);
    channel_.Close();
}

void PrinterServer::ServeRequests() {
    const auto buffer = std::make_unique_for_overwrite<char[]>(ipc::kMaxOplMessage);
    int failures = 0;
    while (!stopping_) {
        if (work_.IsWaiting()) DoPostedWork();
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
    turn.shown = IsLookedAt();
    if (turn.shown) {
        turn.time = std::chrono::system_clock::now();
        turn.received = Clock::now();
    }
    ApplyControl(turn.receivedTick);
    turn.fault = faults_.Next(request, turn.receivedTick);
    CarryOut(turn);
    if (stopping_) return;
    SendReply(turn);
    if (turn.shown) Show(turn);
    KeepState();
    EndReplay();
    if (turn.fault && turn.fault->action == FaultAction::CrashAfter) tools::EndAbruptly();
    if (faults_.HasRules()) previousReply_ = turn.reply;
}

void PrinterServer::CarryOut(Turn& turn) {
    if (turn.fault)
        CarryOutBadly(turn, *turn.fault);
    else
        turn.reply = Answer(turn, Reach::Reached);
}

void PrinterServer::CarryOutBadly(Turn& turn, const Fault& fault) {
    turn.remark = "as scripted";
    if (fault.delayMs > 0 && !DelayAnswer(fault.delayMs)) return;
    switch (fault.action) {
        case FaultAction::CrashBefore:
            tools::EndAbruptly();
        case FaultAction::Lost:
            return;
        case FaultAction::Hang:
            static_cast<void>(DelayAnswer(static_cast<uint32_t>(fault.number)));
            return;
        case FaultAction::Restart:
            static_cast<void>(DelayAnswer(static_cast<uint32_t>(fault.number)));
            return responder_.Restart();
        case FaultAction::LockLost:
            responder_.ForgetLock();
            break;
        default:
            break;
    }
    const bool inVain = fault.action == FaultAction::NotKept && !replay_;
    const std::string_view good =
        inVain ? responder_.AnswerInVain(turn.request, turn.client) : Answer(turn, ReachUnder(fault.action));
    turn.reply = FaultyReply(fault, good, previousReply_, faultyReply_);
    if (fault.action == FaultAction::Duplicate) turn.secondPart = turn.reply;
    if (fault.action == FaultAction::Split && fault.number < turn.reply.size()) {
        turn.secondPart = turn.reply.substr(fault.number);
        turn.reply = turn.reply.substr(0, fault.number);
    }
}

// A record has no announcements of time-outs: the printer takes them itself. Of a device that is not reached
// it says nothing either.
std::string_view PrinterServer::Answer(Turn& turn, Reach reach) {
    const bool recorded = replay_ && reach == Reach::Reached;
    if (!recorded || turn.request.starts_with(opl::KeyText(opl::Key::TimeoutParam)))
        return responder_.Answer(turn.request, turn.client, reach);
    Replay::Answer answer = replay_->Next(turn.request);
    if (!answer.departure.empty()) {
        constexpr size_t kMostTold = 20;  // the trace has all
        if (replay_->Departures() <= kMostTold)
            fmt::print(stderr, "kestrel-vprinter: {} departs from the record at {}\n", port_,
                       answer.departure);
        turn.departure = "departs from the record at " + answer.departure;
        turn.remark = turn.departure.c_str();
    }
    if (answer.delayMs > 0) static_cast<void>(DelayAnswer(answer.delayMs));
    return answer.reply;
}

// The client of the last exchange shall find its reply, and be told if it goes on.
void PrinterServer::EndReplay() {
    constexpr uint32_t kLastReplyMs = 500;
    if (replayedAll_ || !replay_ || !replay_->IsOver()) return;
    replayedAll_ = true;
    ending_ = std::thread([this] {
        if (WaitUnlessStopped(kLastReplyMs) && shared_.onEnd) shared_.onEnd();
    });
}

void PrinterServer::SendReply(Turn& turn) {
    if (turn.fault && IsSilent(turn.fault->action)) {
        turn.reply = {};
        return;
    }
    const bool asAlways = !turn.fault || turn.fault->action == FaultAction::None;
    if (asAlways && turn.reply.empty()) {
        if (turn.departure.empty()) turn.remark = "not answered, as the file says";
        return;
    }
    const bool late = responder_.HasGivenUp(turn.client, GetTickCount64() - turn.receivedTick);
    if (late && !(turn.fault && turn.fault->late)) {
        turn.remark = "not sent: the client has given up";
        return;
    }
    const ipc::ReplySent sent = ipc::SendPastLateReply(
        channel_, [&] { return Post(turn) > 0 || turn.reply.empty(); },
        [this](uint32_t milliseconds) { static_cast<void>(WaitUnlessStopped(milliseconds)); });
    if (sent == ipc::ReplySent::PastLateReply)
        turn.remark = "sent after the unread reply to another client was taken back";
    if (sent == ipc::ReplySent::Never) turn.remark = "the reply could not be sent";
    if (!turn.secondPart.empty()) SendSecondPart(turn);
}

void PrinterServer::SendSecondPart(const Turn& turn) {
    if (!WaitUnlessStopped(kBetweenPartsMs)) return;
    static_cast<void>(
        channel_.Send(turn.secondPart.data(), static_cast<uint32_t>(turn.secondPart.size()), kSendTimeoutMs));
}

uint32_t PrinterServer::Post(const Turn& turn) {
    const auto length = static_cast<uint32_t>(turn.reply.size());
    const FaultAction action = turn.fault ? turn.fault->action : FaultAction::None;
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

// The reply is not made yet: what is done meanwhile is in time for it.
bool PrinterServer::DelayAnswer(uint32_t milliseconds) {
    const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
    const auto interrupted = [&] { return stopping_.load() || work_.IsWaiting(); };
    for (;;) {
        {
            std::unique_lock guard(stopLock_);
            if (!stopSignal_.wait_until(guard, end, interrupted)) return true;
        }
        if (stopping_) return false;
        DoPostedWork();
    }
}

bool PrinterServer::Do(const PrinterWork& work) {
    const PrinterParts parts{port_, model_, responder_, faults_, GetTickCount64()};
    const auto wake = [this] {
        channel_.EndReceive();
        // Whoever is about to wait for the signal has either seen the work or waits already.
        { const std::lock_guard guard(stopLock_); }
        stopSignal_.notify_all();
    };
    return work_.Do([&] { work(parts); }, wake, kLongestForWork);
}

void PrinterServer::DoPostedWork() {
    ApplyControl(GetTickCount64());
    work_.DoAll();
    if (shared_.traffic != nullptr) shared_.traffic->NoteRevision(port_, model_.Revision());
    KeepState();
}

bool PrinterServer::IsLookedAt() const {
    return shared_.trace.IsOn() || (shared_.traffic != nullptr && shared_.traffic->IsWatched());
}

void PrinterServer::Show(const Turn& turn) {
    Exchange exchange;
    exchange.time = turn.time;
    exchange.port = port_;
    exchange.clientProcessId = turn.client;
    exchange.request = turn.request;
    exchange.reply = turn.reply;
    exchange.duration = Clock::now() - turn.received;
    exchange.remark = turn.remark;
    shared_.trace.Write(exchange);
    if (shared_.traffic == nullptr || !shared_.traffic->IsWatched()) return;
    shared_.traffic->Add(exchange);
    shared_.traffic->NoteRevision(port_, model_.Revision());
}

void PrinterServer::ApplyControl(uint64_t nowMs) {
    const std::string problem = control_.Apply(model_, faults_, nowMs);
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
    if (shared_.onEnd) shared_.onEnd();
}

}  // namespace vprinter
