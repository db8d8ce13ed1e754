// A program that a test starts. It never outlives the test: what is still running at the end is killed.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using Environment = std::vector<std::pair<std::string, std::string>>;

class ChildProcess final {
  public:
    ChildProcess() = default;
    // The child's standard input and output are pipes to the test; its errors go where the test's go.
    // `extra` replaces or adds variables; Windows has no program to do that. Throws when it cannot be
    // started.
    explicit ChildProcess(std::vector<std::string> commandLine, const Environment& extra = {});
    ChildProcess(ChildProcess&& other) noexcept { *this = std::move(other); }
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    ~ChildProcess();

    [[nodiscard]] bool WasStarted() const { return program_.id != 0; }
    [[nodiscard]] bool IsRunning();
    [[nodiscard]] unsigned Id() const { return program_.id; }

    void WriteLine(const std::string& line);
    // One line without its end; nothing when the time is over or the child has closed its output.
    std::optional<std::string> ReadLine(std::chrono::milliseconds patience = std::chrono::seconds(10));
    // Everything until the child closes its output.
    std::string ReadAll();

    void Kill() { Do(Action::Kill); }            // at once, without a chance to clean up
    void Terminate() { Do(Action::Terminate); }  // asks it to end
    void Stop() { Do(Action::Stop); }            // freezes it
    void Continue() { Do(Action::Continue); }
    // The exit code; 128 + n when signal n, or its like, ended it. A child that does not end in time is
    // killed: -1.
    int Wait(std::chrono::milliseconds patience = std::chrono::seconds(10));

  private:
    enum class Action { Kill, Terminate, Stop, Continue };
    void Do(Action action) {
        if (IsRunning()) Act(action);
    }

    // As each system has it.
    void Start(std::vector<std::string> commandLine);
    [[nodiscard]] std::optional<int> ExitCode() const;
    // Appends what it has written, waiting for the first of it; false when nothing comes, or ever will.
    bool Read(std::chrono::milliseconds patience);
    void Act(Action action) const;
    void Close() const;

    struct Program {
        unsigned id = 0;
        intptr_t process = 0;  // a handle, where there are such
        intptr_t input = 0;
        intptr_t output = 0;
    };
    Program program_;
    std::string pending_;
    std::optional<int> exitCode_;
};

struct ProgramResult {
    int code = -1;
    std::string output;
};

// Runs a program to its end.
ProgramResult RunProgram(const std::vector<std::string>& commandLine);
