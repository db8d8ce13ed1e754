#include "child_process.h"

#include <thread>

using std::chrono::steady_clock;

ChildProcess::ChildProcess(std::vector<std::string> commandLine, const Environment& extra) {
    for (const auto& [name, value] : extra)
        commandLine.insert(commandLine.begin(), name + '=' + value);
    if (!extra.empty()) commandLine.insert(commandLine.begin(), "/usr/bin/env");
    Start(std::move(commandLine));
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(program_, other.program_);
    std::swap(pending_, other.pending_);
    std::swap(exitCode_, other.exitCode_);
    return *this;
}

ChildProcess::~ChildProcess() {
    if (IsRunning()) {
        Kill();
        Wait();
    }
    if (WasStarted()) Close();
}

bool ChildProcess::IsRunning() {
    if (!WasStarted() || exitCode_) return false;
    exitCode_ = ExitCode();
    return !exitCode_;
}

std::optional<std::string> ChildProcess::ReadLine(std::chrono::milliseconds patience) {
    const steady_clock::time_point deadline = steady_clock::now() + patience;
    for (;;) {
        if (const size_t end = pending_.find('\n'); end != std::string::npos) {
            std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            return line;
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - steady_clock::now());
        if (left.count() <= 0 || !Read(left)) return std::nullopt;
    }
}

std::string ChildProcess::ReadAll() {
    while (Read(std::chrono::seconds(60))) {
    }
    return std::exchange(pending_, {});
}

int ChildProcess::Wait(std::chrono::milliseconds patience) {
    const steady_clock::time_point deadline = steady_clock::now() + patience;
    bool isLate = false;
    while (IsRunning()) {
        isLate = isLate || steady_clock::now() >= deadline;
        if (isLate) Act(Action::Kill);
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return isLate ? -1 : exitCode_.value_or(-1);
}

ProgramResult RunProgram(const std::vector<std::string>& commandLine) {
    ChildProcess program(commandLine);
    ProgramResult result;
    result.output = program.ReadAll();
    result.code = program.Wait();
    return result;
}
