// What passes between clients and printers, kept for those who look on. While nobody does, an exchange costs
// one relaxed load.
#pragma once

#include <array>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "shared/json.h"
#include "vprinter/trace/trace.h"

namespace vprinter::api {

/// An exchange with texts of its own.
struct KeptExchange {
    uint64_t number = 0;  // counted over all printers
    Exchange exchange;    // without its texts
    std::string port;
    std::string request;  // the first kMostKept bytes
    std::string reply;
    size_t replyBytes = 0;  // of the whole one
    std::string remark;
};

/// With secrets hidden: the texts of the trace, the reply's bytes, and what it says in names and values.
[[nodiscard]] tools::Json ExchangeView(const KeptExchange& kept);

/// A ring of the last exchanges, and how often each printer has changed. Any thread.
class Traffic final {
  public:
    static constexpr size_t kRing = 512;
    static constexpr size_t kMostKept = 4096;
    static constexpr int kMostViewers = 8;

    [[nodiscard]] bool IsWatched() const { return viewers_.load(std::memory_order_relaxed) != 0; }
    void Add(const Exchange& exchange);
    /// `revision`: of the printer's model.
    void NoteRevision(const std::string& port, uint64_t revision);
    /// Ends every wait, now and later.
    void End();

    /// Somebody who looks on.
    class Viewer final {
      public:
        /// Of what comes from now on; nothing when too many look on already.
        [[nodiscard]] static std::shared_ptr<Viewer> Begin(Traffic& traffic);
        explicit Viewer(Traffic& traffic);
        Viewer(const Viewer&) = delete;
        Viewer& operator=(const Viewer&) = delete;
        ~Viewer();

        struct News {
            std::vector<KeptExchange> exchanges;
            uint64_t missed = 0;  // exchanges that the ring no longer had
            std::map<std::string, uint64_t> revisions;
            bool ended = false;

            [[nodiscard]] bool IsEmpty() const {
                return exchanges.empty() && missed == 0 && revisions.empty();
            }
        };
        /// What is new, waited for at most that long.
        [[nodiscard]] News Next(std::chrono::milliseconds longest);

      private:
        Traffic& traffic_;
        uint64_t next_;
        std::map<std::string, uint64_t> known_;
    };

  private:
    std::atomic<int> viewers_ = 0;
    std::mutex lock_;
    std::condition_variable news_;
    std::array<KeptExchange, kRing> ring_;
    uint64_t count_ = 0;
    std::map<std::string, uint64_t> revisions_;
    bool ended_ = false;
};

/// The text of an event for the browser; `revisions` tell which printers are worth asking again.
[[nodiscard]] std::string EventText(const Traffic::Viewer::News& news);

}  // namespace vprinter::api
