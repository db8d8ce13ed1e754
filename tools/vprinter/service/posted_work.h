// Work that other threads have for a printer's serving thread, which does it between two requests.
#pragma once

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <mutex>

namespace vprinter {

class PostedWork final {
  public:
    using Work = std::function<void()>;

    /// Any thread: has `work` done, and returns when it is; false when nobody began it within `longest`, or
    /// nobody takes any. `wake` is called while work is taken, and tells the serving thread.
    [[nodiscard]] bool Do(const Work& work, const std::function<void()>& wake,
                          std::chrono::milliseconds longest);

    // The serving thread alone.
    void Open();
    /// From now on none is taken; what waits is given back undone.
    void Close();
    [[nodiscard]] bool IsWaiting() const { return waiting_.load(std::memory_order_relaxed); }
    void DoAll();

  private:
    struct Job {
        explicit Job(const Work& posted) : work(posted) {}

        const Work& work;  // of the thread that waits
        std::atomic<bool> claimed = false;
        std::promise<bool> done;
    };

    [[nodiscard]] std::deque<std::shared_ptr<Job>> TakeAll();

    std::mutex lock_;
    bool open_ = false;
    std::atomic<bool> waiting_ = false;
    std::deque<std::shared_ptr<Job>> jobs_;
};

}  // namespace vprinter
