// Starting programs. posix_spawn runs nothing of ours between the copy and the execution, so threads of the
// host do no harm, and it reports a failed execution to the caller.
#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <windows.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "winport/files/error_map.h"
#include "winport/handles/handle_table.h"
#include "winport/process/command_line.h"
#include "winport/process/environment_block.h"
#include "winport/process/program_object.h"
#include "winport/process/program_search.h"
#include "winport/process/token_object.h"
#include "winport/text/utf.h"

namespace winport {

namespace {

struct Launch {
    std::string file;
    std::vector<std::string> arguments;    // with the program's name as the first
    std::vector<std::string> environment;  // taken when `ownEnvironment`
    bool ownEnvironment = false;
    std::string folder;  // empty: the caller's
    bool detached = false;
};

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

class SpawnActions final {
  public:
    SpawnActions() { posix_spawn_file_actions_init(&actions_); }
    ~SpawnActions() { posix_spawn_file_actions_destroy(&actions_); }
    SpawnActions(const SpawnActions&) = delete;
    SpawnActions& operator=(const SpawnActions&) = delete;

    void UseNullDevice(int descriptor) {
        posix_spawn_file_actions_addopen(&actions_, descriptor, "/dev/null", O_RDWR, 0);
    }
    void CloseFrom(int descriptor) { posix_spawn_file_actions_addclosefrom_np(&actions_, descriptor); }
    void ChangeFolder(const std::string& folder) {
        posix_spawn_file_actions_addchdir_np(&actions_, folder.c_str());
    }
    [[nodiscard]] const posix_spawn_file_actions_t* Get() const { return &actions_; }

  private:
    posix_spawn_file_actions_t actions_;
};

class SpawnAttributes final {
  public:
    // The program starts with no signal blocked or ignored, whatever the calling thread has set.
    explicit SpawnAttributes(bool ownSession) {
        posix_spawnattr_init(&attributes_);
        sigset_t signals;
        sigemptyset(&signals);
        posix_spawnattr_setsigmask(&attributes_, &signals);
        sigfillset(&signals);
        posix_spawnattr_setsigdefault(&attributes_, &signals);
        const int session = ownSession ? POSIX_SPAWN_SETSID : 0;
        posix_spawnattr_setflags(
            &attributes_, static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | session));
    }
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }
    SpawnAttributes(const SpawnAttributes&) = delete;
    SpawnAttributes& operator=(const SpawnAttributes&) = delete;

    [[nodiscard]] const posix_spawnattr_t* Get() const { return &attributes_; }

  private:
    posix_spawnattr_t attributes_;
};

DWORD ErrorOfStart(int number) {
    switch (number) {
        case ENOEXEC:
            return ERROR_BAD_EXE_FORMAT;
        case E2BIG:
            return ERROR_FILENAME_EXCED_RANGE;
        default:
            return ErrorFromErrno(number);
    }
}

DWORD Spawn(Launch& launch, pid_t& id) {
    SpawnActions actions;
    if (launch.detached) {
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            actions.UseNullDevice(descriptor);
    }
    actions.CloseFrom(STDERR_FILENO + 1);
    if (!launch.folder.empty()) actions.ChangeFolder(launch.folder);
    const SpawnAttributes attributes(launch.detached);
    const std::vector<char*> arguments = Pointers(launch.arguments);
    const std::vector<char*> environment = Pointers(launch.environment);
    return ErrorOfStart(posix_spawn(&id, launch.file.c_str(), actions.Get(), attributes.Get(),
                                    arguments.data(), launch.ownEnvironment ? environment.data() : environ));
}

void AddArguments(Launch& launch, std::u16string_view text) {
    for (const std::u16string& argument : SplitArguments(text))
        launch.arguments.push_back(ToUtf8(argument));
}

// A program given by itself is taken as it stands; else the command line names it.
DWORD FindWhatToRun(Launch& launch, LPCWSTR program, LPCWSTR commandLine) {
    if (program != nullptr) {
        launch.file = ToHostPath(program);
        if (commandLine != nullptr) AddArguments(launch, commandLine);
        if (launch.arguments.empty()) launch.arguments.push_back(launch.file);
        return ERROR_SUCCESS;
    }
    for (const ProgramCandidate& candidate : ProgramCandidates(commandLine)) {
        launch.file = FindProgram(candidate.name);
        if (launch.file.empty()) continue;
        launch.arguments.push_back(ToUtf8(candidate.name));
        AddArguments(launch, candidate.rest);
        return ERROR_SUCCESS;
    }
    return ERROR_FILE_NOT_FOUND;
}

DWORD CheckFolder(const std::string& folder) {
    struct stat status = {};
    return folder.empty() || (::stat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
               ? ERROR_SUCCESS
               : ERROR_DIRECTORY;
}

// A program whose exit code nobody else will take.
void EndUnwatched(pid_t id) {
    ::kill(id, SIGKILL);
    while (::waitpid(id, nullptr, 0) < 0 && errno == EINTR) {
    }
}

// Handles for a program that has been started. One that nobody could watch or name is ended again.
DWORD OpenHandles(pid_t id, PROCESS_INFORMATION& information) {
    const ObjectReference process(std::make_unique<ProgramObject>(ObjectKind::Process, id).release());
    const ObjectReference thread(std::make_unique<ProgramObject>(ObjectKind::Thread, id).release());
    auto& program = static_cast<ProgramObject&>(*process.Get());
    if (!WatchProgram(program, static_cast<ProgramObject&>(*thread.Get()))) {
        EndUnwatched(id);
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    information = {OpenHandle(process.Get()), OpenHandle(thread.Get()), static_cast<DWORD>(id),
                   static_cast<DWORD>(id)};
    if (information.hProcess != nullptr && information.hThread != nullptr) return ERROR_SUCCESS;
    for (const HANDLE handle : {information.hProcess, information.hThread})
        if (handle != nullptr) CloseHandle(handle);
    information = {};
    program.Terminate(0);
    return ERROR_TOO_MANY_OPEN_FILES;
}

DWORD Start(LPCWSTR program, LPCWSTR commandLine, DWORD flags, const WCHAR* environment, LPCWSTR folder,
            PROCESS_INFORMATION& information) {
    Launch launch;
    launch.detached = (flags & DETACHED_PROCESS) != 0;
    if (DWORD error = FindWhatToRun(launch, program, commandLine); error != ERROR_SUCCESS) return error;
    if (folder != nullptr) launch.folder = ToHostPath(folder);
    if (DWORD error = CheckFolder(launch.folder); error != ERROR_SUCCESS) return error;
    if (environment != nullptr) {
        launch.ownEnvironment = true;
        launch.environment = VariablesOf(environment);
    }
    pid_t id = 0;
    if (DWORD error = Spawn(launch, id); error != ERROR_SUCCESS) return error;
    try {
        return OpenHandles(id, information);
    } catch (const std::bad_alloc&) {
        EndUnwatched(id);
        throw;
    }
}

// What is not honoured is refused.
DWORD CheckArguments(bool named, BOOL inheritHandles, DWORD flags, bool hasEnvironment,
                     const STARTUPINFOW* startup, const PROCESS_INFORMATION* information) {
    if (!named || startup == nullptr || information == nullptr) return ERROR_INVALID_PARAMETER;
    if ((flags & ~DWORD{DETACHED_PROCESS | CREATE_UNICODE_ENVIRONMENT}) != 0) return ERROR_INVALID_PARAMETER;
    if (hasEnvironment && (flags & CREATE_UNICODE_ENVIRONMENT) == 0) return ERROR_INVALID_PARAMETER;
    const bool handlesPassed =
        inheritHandles != FALSE || (startup->dwFlags & ~DWORD{STARTF_USESHOWWINDOW}) != 0;
    return handlesPassed ? ERROR_NOT_SUPPORTED : ERROR_SUCCESS;
}

}  // namespace

}  // namespace winport

using namespace winport;

BOOL CreateProcessW(LPCWSTR program, LPWSTR commandLine, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES,
                    BOOL inheritHandles, DWORD flags, LPVOID environment, LPCWSTR folder,
                    LPSTARTUPINFOW startup, LPPROCESS_INFORMATION process) {
    if (process != nullptr) *process = {};
    DWORD error = CheckArguments(program != nullptr || commandLine != nullptr, inheritHandles, flags,
                                 environment != nullptr, startup, process);
    try {
        const auto* variables = static_cast<const WCHAR*>(environment);
        if (error == ERROR_SUCCESS) error = Start(program, commandLine, flags, variables, folder, *process);
    } catch (const std::bad_alloc&) {
        error = ERROR_NOT_ENOUGH_MEMORY;
    }
    SetLastError(error);
    return error == ERROR_SUCCESS ? TRUE : FALSE;
}

BOOL CreateProcessAsUserW(HANDLE token, LPCWSTR program, LPWSTR commandLine,
                          LPSECURITY_ATTRIBUTES processSecurity, LPSECURITY_ATTRIBUTES threadSecurity,
                          BOOL inheritHandles, DWORD flags, LPVOID environment, LPCWSTR folder,
                          LPSTARTUPINFOW startup, LPPROCESS_INFORMATION process) {
    if (process != nullptr) *process = {};
    if (!IsTokenFor(token, TOKEN_QUERY | TOKEN_DUPLICATE | TOKEN_ASSIGN_PRIMARY)) return FALSE;
    {
        const UsedObject used(token, ObjectKind::Token);
        if (!used) return FALSE;
        if (static_cast<const TokenObject*>(used.Get())->Type() != TokenPrimary) {
            SetLastError(ERROR_BAD_TOKEN_TYPE);
            return FALSE;
        }
    }
    return CreateProcessW(program, commandLine, processSecurity, threadSecurity, inheritHandles, flags,
                          environment, folder, startup, process);
}
