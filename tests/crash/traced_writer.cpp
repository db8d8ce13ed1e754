// By ptrace and not by functions of the same name: the C library's own calls are seen as well.
#include "traced_writer.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <sys/wait.h>
#include <unistd.h>

#include <optional>
#include <system_error>

namespace crash {
namespace {

namespace fs = std::filesystem;

// No file has that number: the call fails, and only who watches takes note of it.
constexpr int kAcknowledging = -2;

class Tracee final {
  public:
    Tracee(pid_t id, fs::path folder) : id_(id), folder_(std::move(folder)) {}

    [[nodiscard]] std::string Bytes(uint64_t address, size_t size) const {
        std::string bytes(size, '\0');
        const iovec own = {bytes.data(), size};
        const iovec its = {reinterpret_cast<void*>(address), size};
        const ssize_t count = ::process_vm_readv(id_, &own, 1, &its, 1, 0);
        bytes.resize(count > 0 ? static_cast<size_t>(count) : 0);
        return bytes;
    }
    // Nothing for what lies elsewhere.
    [[nodiscard]] std::optional<std::string> Watched(const fs::path& path) const {
        std::string inside = path.lexically_relative(folder_).string();
        if (inside.empty() || inside.starts_with("..")) return {};
        return inside;
    }
    [[nodiscard]] std::optional<std::string> Named(uint64_t address) const {
        std::string text;  // byte by byte: the page behind its end may not be there
        for (std::string next; text.size() < 4096; text += next) {
            next = Bytes(address + text.size(), 1);
            if (next.empty() || next[0] == 0) break;
        }
        return Watched(text);
    }
    [[nodiscard]] std::string OwnName(uint64_t file) const {
        return "/proc/" + std::to_string(id_) + "/fd/" + std::to_string(static_cast<int>(file));
    }
    [[nodiscard]] std::optional<std::string> Opened(uint64_t file) const {
        std::error_code none;
        const fs::path path = fs::read_symlink(OwnName(file), none);
        return none ? std::nullopt : Watched(path);
    }

    [[nodiscard]] std::optional<Step> StepOf(const __ptrace_syscall_info& call) const {
        const auto& args = call.entry.args;
        switch (call.entry.nr) {
            case SYS_write:
                if (static_cast<int>(args[0]) == kAcknowledging)
                    return Step{.kind = Step::Kind::Acknowledge, .generation = static_cast<int>(args[2])};
                return OnFile(Step::Kind::Write, args[0], -1, args[1], args[2]);
            case SYS_pwrite64:
                return OnFile(Step::Kind::Write, args[0], static_cast<long>(args[3]), args[1], args[2]);
            case SYS_ftruncate:
                return OnFile(Step::Kind::Truncate, args[0], static_cast<long>(args[1]), 0, 0);
            case SYS_fsync:
            case SYS_fdatasync:
                return OnFile(Step::Kind::Sync, args[0], 0, 0, 0);
            case SYS_renameat:
            case SYS_renameat2:
                return OnNames(Step::Kind::Rename, args[1], args[3]);
            case SYS_unlinkat:
                return OnNames(Step::Kind::Remove, args[1], 0);
#ifdef SYS_rename  // which newer processors do not have
            case SYS_rename:
                return OnNames(Step::Kind::Rename, args[0], args[1]);
            case SYS_unlink:
                return OnNames(Step::Kind::Remove, args[0], 0);
#endif
            default:
                return {};
        }
    }

    void WriteHalf(const Step& step, uint64_t file) const {
        if (step.kind != Step::Kind::Write) return;
        const int own = ::open(OwnName(file).c_str(), O_WRONLY | O_CLOEXEC | (step.at < 0 ? O_APPEND : 0));
        const ssize_t written = step.at < 0
                                    ? ::write(own, step.bytes.data(), step.bytes.size() / 2)
                                    : ::pwrite(own, step.bytes.data(), step.bytes.size() / 2, step.at);
        if (written < 0) throw std::system_error(errno, std::generic_category(), step.path);
        ::close(own);
    }

  private:
    [[nodiscard]] std::optional<Step> OnFile(Step::Kind kind, uint64_t file, long at, uint64_t address,
                                             size_t size) const {
        const auto path = Opened(file);
        if (!path) return {};
        return Step{.kind = kind, .path = *path, .at = at, .bytes = Bytes(address, size)};
    }
    [[nodiscard]] std::optional<Step> OnNames(Step::Kind kind, uint64_t path, uint64_t other) const {
        const auto name = Named(path);
        if (!name) return {};
        return Step{.kind = kind, .path = *name, .other = other != 0 ? Named(other).value_or("") : ""};
    }

    pid_t id_;
    fs::path folder_;
};

}  // namespace

void Acknowledge(int generation) {
    static_cast<void>(::syscall(SYS_write, kAcknowledging, nullptr, generation));
}

Seen Watch(const fs::path& folder, const std::function<bool()>& writer, Killing killing) {
    const pid_t id = ::fork();
    if (id == 0) {
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::raise(SIGSTOP);
        ::_exit(writer() ? 0 : 1);
    }
    int status = 0;
    ::waitpid(id, &status, 0);
    ::ptrace(PTRACE_SETOPTIONS, id, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    const Tracee tracee(id, folder);
    Seen seen;
    long signal = 0;
    for (;;) {
        // A killed one does not go on, and has yet to end.
        ::ptrace(PTRACE_SYSCALL, id, nullptr, signal);
        if (::waitpid(id, &status, 0) != id || !WIFSTOPPED(status)) break;
        signal = WSTOPSIG(status);
        if (signal != (SIGTRAP | 0x80)) continue;
        signal = 0;
        __ptrace_syscall_info call = {};
        ::ptrace(PTRACE_GET_SYSCALL_INFO, id, sizeof call, &call);
        if (call.op != PTRACE_SYSCALL_INFO_ENTRY) continue;
        auto step = tracee.StepOf(call);
        if (!step) continue;
        if (step->kind == Step::Kind::Acknowledge)
            seen.acknowledged = step->generation;
        else if (++seen.calls == killing.step) {
            if (killing.halfWritten) tracee.WriteHalf(*step, call.entry.args[0]);
            ::kill(id, SIGKILL);
        }
        seen.steps.push_back(*std::move(step));
    }
    seen.ended = WIFEXITED(status) && WEXITSTATUS(status) == 0;
    return seen;
}

}  // namespace crash
