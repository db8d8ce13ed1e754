// Whoever answers requests of another process: the library, a limit or a peer.
#pragma once

#include <sys/types.h>

#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <type_traits>

/// What the two sides of one measurement share: an empty folder of their own, in memory.
struct Place {
    std::string folder;

    [[nodiscard]] std::string File(const char* name) const { return folder + '/' + name; }
};

/// One connection of one client process.
class Client {
  public:
    Client() = default;
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    virtual ~Client() = default;

    /// One request and its answer: what is timed.
    virtual void Exchange() = 0;
    /// Whether the last answer was the right one; not timed.
    [[nodiscard]] virtual bool IsRight() = 0;
};

/// For the table below: some connections want to know which of several clients they are.
template <typename OneClient>
std::unique_ptr<Client> Connect(const Place& place, unsigned clientIndex) {
    if constexpr (std::is_constructible_v<OneClient, const Place&, unsigned>)
        return std::make_unique<OneClient>(place, clientIndex);
    else
        return std::make_unique<OneClient>(place);
}

struct Contender {
    const char* id;
    const char* name;
    /// The names of the limits that it is compared with.
    const char* pollingLimit;
    const char* sleepingLimit;
    /// Runs in a process of its own until it is killed; says `Ready` when it can be asked.
    void (*serve)(const Place& place);
    std::unique_ptr<Client> (*connect)(const Place& place, unsigned clientIndex);
    /// Which cases it is measured in, as the letters of their ids.
    const char* cases;
    /// Somebody else's way: measured for as short a time as the limits are.
    bool isPeer = false;
};

std::span<const Contender* const> Contenders();
/// Throws when there is none of that name.
const Contender& FindContender(const std::string& id);

/// Called by a server. The processor time of the processes named here counts as well as its own.
void Ready(std::initializer_list<pid_t> helpers = {});
