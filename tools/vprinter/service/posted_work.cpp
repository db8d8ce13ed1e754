// Whoever claims a job first decides what becomes of it: the serving thread does it, or its owner gives it
// up.
#include "vprinter/service/posted_work.h"

#include <utility>

namespace vprinter {

bool PostedWork::Do(const Work& work, const std::function<void()>& wake, std::chrono::milliseconds longest) {
    const auto job = std::make_shared<Job>(work);
    std::future<bool> done = job->done.get_future();
    {
        const std::lock_guard guard(lock_);
        if (!open_) return false;
        jobs_.push_back(job);
        waiting_ = true;
        wake();
    }
    const bool inTime = done.wait_for(longest) == std::future_status::ready;
    if (!inTime && !job->claimed.exchange(true)) return false;
    return done.get();
}

void PostedWork::Open() {
    const std::lock_guard guard(lock_);
    open_ = true;
}

void PostedWork::Close() {
    {
        const std::lock_guard guard(lock_);
        open_ = false;
    }
    for (const std::shared_ptr<Job>& job : TakeAll())
        if (!job->claimed.exchange(true)) job->done.set_value(false);
}

void PostedWork::DoAll() {
    for (const std::shared_ptr<Job>& job : TakeAll()) {
        if (job->claimed.exchange(true)) continue;
        job->work();
        job->done.set_value(true);
    }
}

std::deque<std::shared_ptr<PostedWork::Job>> PostedWork::TakeAll() {
    const std::lock_guard guard(lock_);
    waiting_ = false;
    return std::exchange(jobs_, {});
}

}  // namespace vprinter
