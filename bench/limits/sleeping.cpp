#include "limits/sleeping.h"

#include <linux/futex.h>
#include <sys/syscall.h>

#include "engine/shared_file.h"
#include "limits/cells.h"

namespace {

void SleepWhile(std::atomic<uint32_t>& word, uint32_t value) {
    while (word.load(std::memory_order_acquire) == value)
        syscall(SYS_futex, &word, FUTEX_WAIT, value, nullptr, nullptr, 0);
}

void Wake(std::atomic<uint32_t>& word) {
    syscall(SYS_futex, &word, FUTEX_WAKE, 1, nullptr, nullptr, 0);
}

template <typename Payload>
struct Doors {
    typename Payload::Shared content;
    alignas(64) std::atomic<uint32_t> bell;  // counts the requests of all clients
};

template <typename Payload>
void Serve(const Place& place) {
    const SharedFile<Doors<Payload>> doors(place.File("doors"));
    auto& content = doors->content;
    Payload payload;
    uint32_t last[Payload::Shared::kClients] = {};
    Ready();
    for (;;) {
        const uint32_t rung = doors->bell.load(std::memory_order_acquire);
        for (size_t i = 0; i < std::size(last); ++i) {
            Cells& cells = content.cells[i];
            const uint32_t value = cells.request.load(std::memory_order_acquire);
            if (value == last[i]) continue;
            last[i] = value;
            payload.Answer(content);
            cells.reply.store(value, std::memory_order_release);
            Wake(cells.reply);
        }
        SleepWhile(doors->bell, rung);
    }
}

template <typename Payload>
class Sleeper final : public Client {
  public:
    Sleeper(const Place& place, unsigned index)
        : doors_(place.File("doors")), cells_(doors_->content.cells[index]) {}

    void Exchange() override {
        payload_.Send(doors_->content);
        cells_.request.store(next_ + 1, std::memory_order_release);
        doors_->bell.fetch_add(1, std::memory_order_acq_rel);
        Wake(doors_->bell);
        SleepWhile(cells_.reply, next_++);
        payload_.Receive(doors_->content);
    }

    bool IsRight() override { return payload_.IsRight(); }

  private:
    SharedFile<Doors<Payload>> doors_;
    Cells& cells_;
    Payload payload_;
    uint32_t next_ = 0;
};

}  // namespace

const Contender kSleepingLimit = {"sleeping",       "limit: sleeping",           "polling", "sleeping",
                                  Serve<NoPayload>, Connect<Sleeper<NoPayload>>, "h4m1"};
const Contender kLargeSleepingLimit = {"sleeping-large",
                                       "limit: sleeping, 65,791 bytes",
                                       "polling-large",
                                       "sleeping-large",
                                       Serve<LargePayload>,
                                       Connect<Sleeper<LargePayload>>,
                                       "h"};
