// A program that a test starts. It never outlives the test: what is still running at the end is killed.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using Environment = std::vector<std::pair<std::string, std::string>>;

class ChildProcess final {
  public:
    ChildProcess() = default;
    // The child's standard input and output are pipes to the test; its errors go where the test's go.
    explicit ChildProcess(const std::vector<std::string>& commandLine, const Environment& extra = {});
    ChildProcess(ChildProcess&& other) noexcept;
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    ~ChildProcess();

    [[nodiscard]] bool WasStarted() const { return id_ >= 0; }
    [[nodiscard]] bool IsRunning();
    [[nodiscard]] unsigned Id() const;

    void WriteLine(const std::string& line);
    // One line without its end; nothing when the time is over or the child has closed its output.
    std::optional<std::string> ReadLine(std::chrono::milliseconds patience = std::chrono::seconds(10));
    // Everything until the child closes its output.
    std::string ReadAll();

    void Kill();       // at once, without a chance to clean up
    void Terminate();  // asks it to end
    void Stop();       // freezes it
    void Continue();
    // The exit code; 128 + n when a signal ended it. A child that does not end in time is killed: -1.
    int Wait(std::chrono::milliseconds patience = std::chrono::seconds(10));

  private:
    int id_ = -1;
    int input_ = -1;
    int output_ = -1;
    std::string pending_;
    std::optional<int> exitCode_;

    bool FillPending(std::chrono::milliseconds patience);
    void Reap(int status);
    void CloseAll();
};
