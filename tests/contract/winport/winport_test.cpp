// What only winport promises: where its state lies, who may touch it, what kills and forks leave of it, and
// the few places where it differs from Windows on purpose.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <psapi.h>
#include <signal.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <windows.h>
#include <winspool.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "support.h"

namespace {

namespace fs = std::filesystem;

constexpr int kSignalled = -1;

int ExitCode(pid_t child) {
    int status = 0;
    if (::waitpid(child, &status, 0) != child || !WIFEXITED(status)) return kSignalled;
    return WEXITSTATUS(status);
}

struct Probe {
    pid_t id = 0;
    FILE* output = nullptr;
};

// Starts the probe with its output in a pipe.
Probe StartProbe(const char* command, std::vector<std::string> environment) {
    int ends[2] = {};
    EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    std::vector<char*> variables;
    for (std::string& variable : environment)
        variables.push_back(variable.data());
    variables.push_back(nullptr);
    std::string program = REGISTRY_PROBE;
    std::string argument = command;
    char* const arguments[] = {program.data(), argument.data(), nullptr};
    Probe probe;
    EXPECT_EQ(::posix_spawn(&probe.id, program.c_str(), &actions, nullptr, arguments, variables.data()), 0);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    probe.output = ::fdopen(ends[0], "r");
    return probe;
}

int RunProbe(std::vector<std::string> environment, const char* command = "create") {
    const Probe probe = StartProbe(command, std::move(environment));
    std::fclose(probe.output);
    return ExitCode(probe.id);
}

DWORD StoredCount() {
    HKEY key = nullptr;
    DWORD number = 0;
    DWORD size = sizeof number;
    EXPECT_EQ(RegOpenKeyW(HKEY_CURRENT_USER, TEXT("Probe"), &key), ERROR_SUCCESS);
    EXPECT_EQ(
        RegQueryValueExW(key, TEXT("Count"), nullptr, nullptr, reinterpret_cast<LPBYTE>(&number), &size),
        ERROR_SUCCESS);
    RegCloseKey(key);
    return number;
}

std::string OwnHomeVariable() {
    return std::string("WINPORT_HOME=") + std::getenv("WINPORT_HOME");
}

class State : public testing::Test {
  protected:
    fs::path Host(WideView name) const { return folder_.Path(name); }
    int RunIn(const fs::path& stateHome) { return RunProbe({"XDG_STATE_HOME=" + stateHome.string()}); }

    TempFolder folder_;
};

}  // namespace

TEST_F(State, Folders_are_made_closed_to_others) {
    const fs::path home = Host(TEXT("a/b"));
    EXPECT_EQ(RunIn(home), 0);
    struct stat status = {};
    ASSERT_EQ(::stat((home / "winport").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700u);
}

TEST_F(State, What_others_could_have_put_in_the_folders_place_is_refused) {
    const auto folder = [this](WideView home, mode_t mode) {
        const fs::path path = Host(home) / "winport";
        fs::create_directories(path);
        ::chmod(path.c_str(), mode);
        return path;
    };
    folder(TEXT("open"), 0750);
    folder_.MakeFolder(TEXT("linked"));
    fs::create_directory_symlink(folder(TEXT("elsewhere"), 0700), Host(TEXT("linked")) / "winport");
    folder_.MakeFolder(TEXT("filed"));
    folder_.WriteFile(TEXT("filed/winport"), "");
    for (const WCHAR* home : {TEXT("open"), TEXT("linked"), TEXT("filed")})
        EXPECT_EQ(RunIn(Host(home)), ERROR_ACCESS_DENIED);
    if (::geteuid() != 0) return;  // only root can give a folder away
    ASSERT_EQ(::chown(folder(TEXT("given"), 0700).c_str(), 65534, 65534), 0);
    EXPECT_EQ(RunIn(Host(TEXT("given"))), ERROR_ACCESS_DENIED);
}

TEST_F(State, A_link_above_the_folder_is_followed) {
    fs::create_directory_symlink(folder_.MakeFolder(TEXT("real")), Host(TEXT("link")));
    EXPECT_EQ(RunIn(Host(TEXT("link"))), 0);
    EXPECT_TRUE(fs::exists(Host(TEXT("real")) / "winport/registry.db"));
}

TEST_F(State, A_chosen_home_may_be_shared_and_its_files_follow_its_mode) {
    const fs::path home = folder_.MakeFolder(TEXT("shared"));
    ::chmod(home.c_str(), 0770);
    EXPECT_EQ(RunProbe({"WINPORT_HOME=" + home.string()}), 0);
    struct stat status = {};
    ASSERT_EQ(::stat((home / "state").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0770u);
    ASSERT_EQ(::stat((home / "state/registry.db").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0660u);
}

TEST(RegistryStore, A_killed_writer_loses_nothing_that_it_had_written) {
    for (int round = 0; round < 5; ++round) {
        const Probe probe = StartProbe("count", {OwnHomeVariable()});
        unsigned acknowledged = 0;
        for (int line = 0; line < 20 + 7 * round; ++line)
            ASSERT_EQ(std::fscanf(probe.output, "%u", &acknowledged), 1);
        ::kill(probe.id, SIGKILL);
        EXPECT_EQ(ExitCode(probe.id), kSignalled);
        // What the pipe still holds was written before the kill too.
        while (std::fscanf(probe.output, "%u", &acknowledged) == 1) {
        }
        std::fclose(probe.output);
        EXPECT_GE(StoredCount(), acknowledged);
    }
}

TEST(RegistryStore, Processes_that_start_together_make_one_registry) {
    // The moment in which they get in each other's way is short: one fresh home seldom meets it.
    for (int round = 0; round < 5; ++round) {
        const TempFolder folder;
        const std::string home = "WINPORT_HOME=" + fs::path(folder.MakeFolder(TEXT("fresh"))).string();
        ASSERT_EQ(RunProbe({home}, "together"), 0);
    }
}

TEST(RegistryStore, A_forked_child_outlives_its_parent_while_others_open_the_registry) {
    const TempFolder folder;
    const std::string home = "WINPORT_HOME=" + fs::path(folder.MakeFolder(TEXT("fresh"))).string();
    const Probe probe = StartProbe("orphan", {home});
    EXPECT_EQ(ExitCode(probe.id), 0);
    unsigned number = 0;
    for (int others = 0; others < 3; ++others) {
        for (int line = 0; line < 20; ++line)
            ASSERT_EQ(std::fscanf(probe.output, "%u", &number), 1);
        EXPECT_EQ(RunProbe({home}), 0);
    }
    for (int line = 0; line < 100; ++line)
        ASSERT_EQ(std::fscanf(probe.output, "%u", &number), 1);
    std::fclose(probe.output);
}

TEST(RegistryStore, A_forked_child_and_its_parent_both_go_on) {
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, TEXT("Fork"), &key), ERROR_SUCCESS);
    const auto write = [key](const WCHAR* name) {
        for (DWORD number = 0; number < 50; ++number) {
            const auto* bytes = reinterpret_cast<const BYTE*>(&number);
            if (const LSTATUS status = RegSetValueExW(key, name, 0, REG_DWORD, bytes, 4); status != 0)
                return status;
        }
        return LSTATUS{0};
    };
    ASSERT_EQ(write(TEXT("before")), 0);
    const pid_t child = ::fork();
    if (child == 0) ::_exit(write(TEXT("child")));
    EXPECT_EQ(write(TEXT("parent")), 0);
    EXPECT_EQ(ExitCode(child), 0);
    for (const WCHAR* name : {TEXT("before"), TEXT("child"), TEXT("parent")}) {
        DWORD number = 0;
        DWORD size = 4;
        EXPECT_EQ(RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<LPBYTE>(&number), &size), 0);
        EXPECT_EQ(number, 49u);
    }
    RegCloseKey(key);
}

TEST(RegistryStore, A_damaged_file_is_reported_and_left_alone) {
    const TempFolder folder;
    folder.MakeFolder(TEXT("home/state"));
    const std::string junk(8192, 'x');
    folder.WriteFile(TEXT("home/state/registry.db"), junk);
    EXPECT_EQ(RunProbe({"WINPORT_HOME=" + fs::path(folder.Path(TEXT("home"))).string()}), ERROR_BADDB & 0xFF);
    EXPECT_EQ(fs::file_size(fs::path(folder.Path(TEXT("home/state/registry.db")))), junk.size());
}

TEST(Ids, A_forked_child_has_ids_of_its_own) {
    const DWORD process = GetCurrentProcessId();
    const DWORD thread = GetCurrentThreadId();
    const pid_t child = ::fork();
    if (child == 0) {
        const bool own = GetCurrentProcessId() == static_cast<DWORD>(::getpid()) &&
                         GetCurrentProcessId() != process && GetCurrentThreadId() != thread;
        ::_exit(own ? 0 : 1);
    }
    EXPECT_EQ(ExitCode(child), 0);
}

TEST(Ids, An_ended_process_is_off_the_list_before_its_parent_has_asked_for_it) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(0);
    siginfo_t info = {};
    ASSERT_EQ(::waitid(P_PID, child, &info, WEXITED | WNOWAIT), 0);
    std::array<DWORD, 16384> ids;
    DWORD needed = 0;
    ASSERT_TRUE(EnumProcesses(ids.data(), sizeof ids, &needed));
    EXPECT_EQ(std::count(ids.begin(), ids.begin() + needed / sizeof(DWORD), static_cast<DWORD>(child)), 0);
    EXPECT_EQ(ExitCode(child), 0);
}

TEST(StoppedSpooler, Every_call_says_so_until_it_runs_again) {
    HKEY print = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, TEXT("SYSTEM\\CurrentControlSet\\Control\\Print"), &print),
              0);
    const DWORD yes = 1;
    ASSERT_EQ(RegSetValueExW(print, TEXT("Stopped"), 0, REG_DWORD, reinterpret_cast<const BYTE*>(&yes), 4),
              0);
    DWORD needed = 0;
    DWORD count = 0;
    HANDLE printer = nullptr;
    EXPECT_FALSE(EnumPrintersW(PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS, nullptr, 1, nullptr, 0, &needed,
                               &count));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(RPC_S_SERVER_UNAVAILABLE));
    EXPECT_FALSE(OpenPrinterW(nullptr, &printer, nullptr));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(RPC_S_SERVER_UNAVAILABLE));
    EXPECT_FALSE(GetPrinterDriverDirectoryW(nullptr, nullptr, 1, nullptr, 0, &needed));
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(RPC_S_SERVER_UNAVAILABLE));
    EXPECT_EQ(RegDeleteValueW(print, TEXT("Stopped")), 0);
    EXPECT_TRUE(EnumPrintersW(PRINTER_ENUM_LOCAL, nullptr, 2, nullptr, 0, &needed, &count));
    RegCloseKey(print);
}

// The other threads of the parent are not there in the child, whatever they were waiting for.
TEST(Handles, A_forked_child_closes_what_a_thread_of_its_parent_is_waiting_for) {
    constexpr unsigned kPatienceSeconds = 5;
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::atomic<bool> stop{false};
    std::thread waiter([&] {
        while (!stop)
            WaitForMultipleObjects(1, &event, FALSE, 0);
    });
    for (int i = 0; i < 50; ++i) {
        const pid_t child = ::fork();
        if (child == 0) {
            ::alarm(kPatienceSeconds);
            ::_exit(CloseHandle(event) ? 0 : 1);
        }
        ASSERT_EQ(0, ExitCode(child));
    }
    stop = true;
    waiter.join();
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Handles, A_closed_one_stays_refused_when_its_place_is_taken) {
    HANDLE closed = nullptr;
    HANDLE open = nullptr;
    ASSERT_TRUE(OpenPrinterW(nullptr, &closed, nullptr));
    ASSERT_TRUE(ClosePrinter(closed));
    ASSERT_TRUE(OpenPrinterW(nullptr, &open, nullptr));
    EXPECT_FALSE(ClosePrinter(closed));
    EXPECT_EQ(RegCloseKey(reinterpret_cast<HKEY>(open)), ERROR_INVALID_HANDLE);
    EXPECT_TRUE(ClosePrinter(open));
}

TEST(Differences, A_text_that_looks_like_another_is_not_turned_into_it) {
    for (const WCHAR* text : {TEXT("\u0100"), TEXT("\uFF21"), TEXT("\u2212"), TEXT("\u03B1")}) {
        char buffer[2] = {};
        EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, text, -1, buffer, 2, nullptr, nullptr), 2);
        EXPECT_STREQ(buffer, "?");
    }
}

TEST(Differences, A_UTF8_mark_is_ANSI_text_and_hides_the_first_section) {
    const TempFolder folder;
    const WideText path = folder.WriteFile(TEXT("p.ini"), "\xEF\xBB\xBF[S]\nk=1\n[T]\nk=\xC3\xA9\n");
    EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), 7, path.c_str()), 7u);
    WCHAR value[8];
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("T"), TEXT("k"), TEXT(""), value, 8, path.c_str()), 2u);
}

TEST(Differences, A_pipe_in_a_files_place_does_not_hold_the_reader) {
    const TempFolder folder;
    const fs::path pipe = folder.Path(TEXT("p.ini"));
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(GetPrivateProfileIntW(TEXT("S"), TEXT("k"), 7, folder.Path(TEXT("p.ini")).c_str()), 7u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST(Code_page_65001, Surrogates_pair_up_and_lone_ones_are_replaced) {
    ASSERT_EQ(GetACP(), 65001u);
    char buffer[16] = {};
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("\U0001F600"), -1, buffer, 16, nullptr, nullptr), 5);
    EXPECT_STREQ(buffer, "\xF0\x9F\x98\x80");
    const WCHAR lone[] = {0xD800, 0};
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, lone, -1, buffer, 16, nullptr, nullptr), 4);
    EXPECT_STREQ(buffer, "\xEF\xBF\xBD");
    WCHAR wide[16] = {};
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "\xF0\x9F\x98\x80\xC0\xAF", -1, wide, 16), 5);
    EXPECT_EQ(WideText(wide), TEXT("\U0001F600\uFFFD\uFFFD"));
}
