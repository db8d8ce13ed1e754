// Processes that end with the scope they were started in, and with this process should it be killed.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// A folder below /dev/shm, removed with all its content, and with the shared objects that are named after
/// it.
class TemporaryFolder final {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    [[nodiscard]] const std::string& Path() const { return path_; }

  private:
    std::string path_;
};

class ChildProcess final {
  public:
    /// Runs `body` in a group of its own, so that the processes that it starts end with it.
    explicit ChildProcess(const std::function<void()>& body);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    [[nodiscard]] pid_t Id() const { return id_; }
    [[nodiscard]] bool HasEnded() const;
    /// Waits for the end. False when the body threw or the process was killed.
    [[nodiscard]] bool Join();

  private:
    pid_t id_;
};

/// Starts a program that ends with the calling process; what it prints goes nowhere.
pid_t Spawn(const std::vector<std::string>& words);
/// Runs a program to its end; throws unless it succeeds.
void Run(const std::vector<std::string>& words);
/// Turns this process into the program.
[[noreturn]] void Become(const std::vector<std::string>& words);

void KeepOnProcessor(unsigned index);
/// A TCP and UDP port of this machine that nobody uses now.
uint16_t FreePort();
/// Nanoseconds of processor time that a process has used so far.
uint64_t ProcessorTime(pid_t process);
