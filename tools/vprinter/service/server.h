// One printer in service: its channel, its model and the thread that answers.
#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include "ipc/opl_channel.h"
#include "kwt/win_mutex.h"
#include "vprinter/api/printer_parts.h"
#include "vprinter/api/traffic.h"
#include "vprinter/device/model.h"
#include "vprinter/faults/fault_script.h"
#include "vprinter/files/control_file.h"
#include "vprinter/files/state_file.h"
#include "vprinter/replay/replay.h"
#include "vprinter/requests/responder.h"
#include "vprinter/service/posted_work.h"
#include "vprinter/trace/trace.h"

namespace vprinter {

/// The channel name of a printer: the product's command channel and the port.
[[nodiscard]] WideText ChannelName(const std::string& product, const std::string& port);

/// The claim of this process on one printer. A printer is served by one process at a time; the claim of a
/// process that died counts for nothing. Taken and given up by one thread.
class PrinterClaim final {
  public:
    explicit PrinterClaim(const WideText& channelName);

    /// False when a living process serves the printer.
    [[nodiscard]] bool Take();

  private:
    kwt::WinMutex mutex_;
};

class PrinterServer final {
  public:
    /// What several printers of one process have in common; outlives the servers.
    struct Shared {
        Trace& trace;
        StateFile* state;                 // null: nothing is kept
        std::string controlFile;          // empty: nothing changes from outside
        std::function<void()> onEnd;      // a printer cannot go on, or its record is over; on its thread
        api::Traffic* traffic = nullptr;  // null: nobody can look on
    };

    PrinterServer(std::string port, WideText channelName, DeviceModel model, Origin origin,
                  std::vector<FaultRule> faults, std::optional<Replay> replay, Shared shared);
    PrinterServer(const PrinterServer&) = delete;
    PrinterServer& operator=(const PrinterServer&) = delete;
    /// Stops first.
    ~PrinterServer();

    [[nodiscard]] const std::string& Port() const { return port_; }

    /// Opens the channel and serves it on a thread of its own. The future tells whether the channel opened.
    [[nodiscard]] std::future<bool> Start();
    /// Ends a wait or a delayed answer, closes the channel and returns when the thread has ended.
    void Stop();

    [[nodiscard]] bool HasFailed() const { return failed_; }
    /// Of a printer that has been stopped; null when it does not replay.
    [[nodiscard]] const Replay* Replayed() const { return replay_ ? &*replay_ : nullptr; }
    [[nodiscard]] bool HasReplayedAll() const { return replayedAll_; }

    /// What the printer does wrong; may be changed while it serves.
    [[nodiscard]] FaultScript& Faults() { return faults_; }

    /// Any thread: runs `work` on the serving thread, between two requests or while an answer is delayed, and
    /// returns when it is done; false when the printer does not get there within two seconds.
    [[nodiscard]] bool Do(const PrinterWork& work);

  private:
    struct Turn;

    void Serve(std::promise<bool> opened);
    void ServeRequests();
    void AnswerRequest(std::string_view request);
    void CarryOut(Turn& turn);
    void CarryOutBadly(Turn& turn, const Fault& fault);
    [[nodiscard]] std::string_view Answer(Turn& turn, Reach reach);
    void EndReplay();
    void SendReply(Turn& turn);
    void SendSecondPart(const Turn& turn);
    [[nodiscard]] uint32_t Post(const Turn& turn);
    [[nodiscard]] bool WaitUnlessStopped(uint32_t milliseconds);
    [[nodiscard]] bool DelayAnswer(uint32_t milliseconds);
    void DoPostedWork();
    [[nodiscard]] bool IsLookedAt() const;
    void Show(const Turn& turn);
    void ApplyControl(uint64_t nowMs);
    void KeepState();
    void Fail(const std::string& what);

    std::string port_;
    WideText channelName_;
    DeviceModel model_;
    Responder responder_;
    FaultScript faults_;
    std::optional<Replay> replay_;
    Shared shared_;
    ControlFile control_;
    uint64_t savedRevision_;

    ipc::OPLChannel channel_;
    std::string faultyReply_;
    std::string previousReply_;  // kept while there are rules
    PostedWork work_;
    std::thread thread_;
    std::thread ending_;  // once a record is over
    std::atomic<bool> failed_ = false;
    std::atomic<bool> replayedAll_ = false;
    std::atomic<bool> stopping_ = false;
    std::mutex stopLock_;
    std::condition_variable stopSignal_;
};

}  // namespace vprinter
