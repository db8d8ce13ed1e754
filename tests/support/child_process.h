// A program that a test starts. It never outlives the test: what is still running at the end is killed.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "running_program.h"

using Environment = std::vector<std::pair<std::string, std::string>>;

class ChildProcess final {
  public:
    ChildProcess() = default;
    // The child's standard input and output are pipes to the test; its errors go where the test's go.
    // `extra` replaces or adds variables; Windows has no program to do that.
    explicit ChildProcess(std::vector<std::string> commandLine, const Environment& extra = {});
    ChildProcess(ChildProcess&& other) noexcept { *this = std::move(other); }
    ChildProcess& operator=(ChildProcess&& other) noexcept;
    ~ChildProcess();

    [[nodiscard]] bool WasStarted() const { return program_ != nullptr; }
    [[nodiscard]] bool IsRunning();
    [[nodiscard]] unsigned Id() const { return program_->Id(); }

    void WriteLine(const std::string& line) { program_->Write(line + '\n'); }
    // One line without its end; nothing when the time is over or the child has closed its output.
    std::optional<std::string> ReadLine(std::chrono::milliseconds patience = std::chrono::seconds(10));
    // Everything until the child closes its output.
    std::string ReadAll();

    void Kill() { Do(&RunningProgram::Kill); }            // at once, without a chance to clean up
    void Terminate() { Do(&RunningProgram::Terminate); }  // asks it to end
    void Stop() { Do(&RunningProgram::Stop); }            // freezes it
    void Continue() { Do(&RunningProgram::Continue); }
    // The exit code; 128 + n when a signal ended it. A child that does not end in time is killed: -1.
    int Wait(std::chrono::milliseconds patience = std::chrono::seconds(10));

  private:
    void Do(void (RunningProgram::*action)()) {
        if (IsRunning()) ((*program_).*action)();
    }

    std::unique_ptr<RunningProgram> program_;
    std::string pending_;
    std::optional<int> exitCode_;
};

struct ProgramResult {
    int code = -1;
    std::string output;
};

// Runs a program to its end.
ProgramResult RunProgram(const std::vector<std::string>& commandLine);
