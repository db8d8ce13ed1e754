// What tests need of a program that runs, as each system gives it.
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class RunningProgram {
  public:
    // Its standard input and output are pipes to the caller, its errors go where the caller's go. Throws when
    // it cannot be started.
    static std::unique_ptr<RunningProgram> Start(const std::vector<std::string>& commandLine);

    RunningProgram() = default;
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;
    virtual ~RunningProgram() = default;

    [[nodiscard]] virtual unsigned Id() const = 0;
    // Once it has ended: 128 + n when signal n, or its like, did it.
    [[nodiscard]] virtual std::optional<int> ExitCode() = 0;
    virtual void Write(const std::string& text) = 0;
    // Appends what it has written, waiting for the first of it; false when nothing comes, or ever will.
    virtual bool Read(std::string& text, std::chrono::milliseconds patience) = 0;
    virtual void Kill() = 0;
    virtual void Terminate() = 0;
    virtual void Stop() = 0;
    virtual void Continue() = 0;
};
