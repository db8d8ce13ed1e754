// What a printer remembers of its client processes.
#pragma once

#include <array>
#include <cstdint>

namespace vprinter {

/// The time-outs that the clients have announced, for as many processes as any user has; the one that has
/// been silent longest makes room for a new one.
class SessionTable final {
  public:
    /// `announcedMs` is what the client announces: 0.95 of its time-out, negative for one without practical
    /// limit.
    void Announce(uint32_t processId, int32_t announcedMs);

    /// Whether a client whose request arrived `elapsedMs` ago waits no more for the reply.
    [[nodiscard]] bool HasGivenUp(uint32_t processId, uint64_t elapsedMs) const;

  private:
    struct Session {
        uint32_t processId = 0;
        int32_t announcedMs = -1;
        uint64_t order = 0;
    };

    std::array<Session, 64> sessions_;
    uint64_t nextOrder_ = 1;
};

}  // namespace vprinter
