// The side of a contender that answers: a process, and those that it named as its helpers.
#pragma once

#include <cstdint>
#include <vector>

#include "engine/contender.h"
#include "engine/process.h"

class Server final {
  public:
    /// Returns once it can be asked.
    Server(const Contender& contender, const Place& place, bool onFirstProcessor);

    /// Nanoseconds of processor time that they all have used so far.
    [[nodiscard]] uint64_t Time() const;

  private:
    struct Pipe {
        Pipe();
        Pipe(const Pipe&) = delete;
        Pipe& operator=(const Pipe&) = delete;
        ~Pipe();
        int read;
        int write;
    };

    void ReadReadyLine(const char* name);

    Pipe output_;
    ChildProcess process_;
    std::vector<pid_t> ids_;
};
