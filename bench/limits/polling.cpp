#include "limits/polling.h"

#include "engine/shared_file.h"
#include "limits/cells.h"

namespace {

template <typename Payload>
void Serve(const Place& place) {
    const SharedFile<typename Payload::Shared> shared(place.File("cells"));
    Payload payload;
    uint32_t last[Payload::Shared::kClients] = {};
    Ready();
    for (;;) {
        for (size_t i = 0; i < std::size(last); ++i) {
            Cells& cells = shared->cells[i];
            const uint32_t value = cells.request.load(std::memory_order_acquire);
            if (value == last[i]) continue;
            last[i] = value;
            payload.Answer(*shared);
            cells.reply.store(value, std::memory_order_release);
        }
    }
}

template <typename Payload>
class Poller final : public Client {
  public:
    Poller(const Place& place, unsigned index)
        : shared_(place.File("cells")), cells_(shared_->cells[index]) {}

    void Exchange() override {
        const uint32_t value = ++next_;
        payload_.Send(*shared_);
        cells_.request.store(value, std::memory_order_release);
        while (cells_.reply.load(std::memory_order_acquire) != value) {
        }
        payload_.Receive(*shared_);
    }

    bool IsRight() override { return payload_.IsRight(); }

  private:
    SharedFile<typename Payload::Shared> shared_;
    Cells& cells_;
    Payload payload_;
    uint32_t next_ = 0;
};

}  // namespace

const Contender kPollingLimit = {"polling",        "limit: polling",           "polling", "sleeping",
                                 Serve<NoPayload>, Connect<Poller<NoPayload>>, "h4m1"};
const Contender kLargePollingLimit = {"polling-large",
                                      "limit: polling, 65,791 bytes",
                                      "polling-large",
                                      "sleeping-large",
                                      Serve<LargePayload>,
                                      Connect<Poller<LargePayload>>,
                                      "h"};
