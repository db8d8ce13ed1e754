#include "child_process.h"

#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& commandLine, const Environment& extra)
    : program_(RunningProgram::Start(commandLine, extra)) {}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept {
    *this = std::move(other);
}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    std::swap(program_, other.program_);
    std::swap(pending_, other.pending_);
    std::swap(exitCode_, other.exitCode_);
    return *this;
}

ChildProcess::~ChildProcess() {
    if (!IsRunning()) return;
    Kill();
    Wait();
}

bool ChildProcess::IsRunning() {
    if (program_ == nullptr || exitCode_) return false;
    exitCode_ = program_->ExitCode();
    return !exitCode_;
}

void ChildProcess::WriteLine(const std::string& line) {
    program_->Write(line + '\n');
}

std::optional<std::string> ChildProcess::ReadLine(std::chrono::milliseconds patience) {
    const Clock::time_point deadline = Clock::now() + patience;
    for (;;) {
        if (const size_t end = pending_.find('\n'); end != std::string::npos) {
            std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            return line;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0 || !program_->Read(pending_, left)) return std::nullopt;
    }
}

std::string ChildProcess::ReadAll() {
    while (program_->Read(pending_, std::chrono::seconds(60))) {
    }
    return std::exchange(pending_, {});
}

void ChildProcess::Kill() {
    if (IsRunning()) program_->Kill();
}

void ChildProcess::Terminate() {
    if (IsRunning()) program_->Terminate();
}

void ChildProcess::Stop() {
    if (IsRunning()) program_->Stop();
}

void ChildProcess::Continue() {
    if (IsRunning()) program_->Continue();
}

int ChildProcess::Wait(std::chrono::milliseconds patience) {
    const Clock::time_point deadline = Clock::now() + patience;
    while (IsRunning() && Clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    if (IsRunning()) {
        program_->Kill();
        while (IsRunning())
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        exitCode_ = -1;
    }
    return exitCode_.value_or(-1);
}
