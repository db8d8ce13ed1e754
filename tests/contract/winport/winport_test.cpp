// What only winport promises: where its state lies, who may touch it, what kills and forks leave of it, and
// the few places where it differs from Windows on purpose.
#include <fcntl.h>
#include <psapi.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <windows.h>

#include <array>

#include "child_process.h"
#include "forked.h"
#include "support.h"
#include "winport/registry/slot_table.h"

namespace {

// In an environment with this home alone.
ChildProcess StartProbe(const char* command, const fs::path& home, const char* variable = "WINPORT_HOME") {
    return ChildProcess(
        {"/usr/bin/env", "-u", "WINPORT_HOME", variable + ("=" + home.string()), REGISTRY_PROBE, command});
}

int RunProbe(const fs::path& home, const char* command = "create") {
    return StartProbe(command, home).Wait();
}

// Of the file that this path leads to.
mode_t ModeOf(const fs::path& path) {
    struct stat status = {};
    EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
    return status.st_mode & 07777;
}

// The last of so many numbers that the probe has written and told.
DWORD ReadNumbers(ChildProcess& probe, int count) {
    std::string last = "0";
    while (count-- > 0)
        last = probe.ReadLine().value_or("nothing came");
    return static_cast<DWORD>(std::stoul(last));
}

class State : public testing::Test {
  protected:
    int RunIn(const fs::path& stateHome) { return StartProbe("create", stateHome, "XDG_STATE_HOME").Wait(); }

    TempFolder folder_;
};

class RegistryStore : public State {
  protected:
    const fs::path home_ = folder_.MakeFolder("home");
};

// From what Windows does, on purpose.
class Differences : public testing::Test {
  protected:
    UINT NumberOr7() const { return GetPrivateProfileIntW(TEXT("S"), TEXT("k"), 7, path_.c_str()); }

    const TempFolder folder_;
    const WideText path_ = folder_.WriteFile("p.ini", "[S]\nk=1\n[T]\n");
};

}  // namespace

TEST_F(State, Folders_are_made_closed_to_others) {
    const fs::path home = folder_.Host("a/b");
    ::mkdir(home.parent_path().c_str(), 0755);
    EXPECT_EQ(RunIn(home), 0);
    EXPECT_EQ(ModeOf(home.parent_path()), 0755u) << "it was there before";
    EXPECT_EQ(ModeOf(home / "winport"), 0700u);
}

TEST_F(State, What_others_could_have_put_in_the_folders_place_is_refused) {
    const auto folder = [this](const char* home, mode_t mode) {
        const fs::path path = folder_.Host(home) / "winport";
        fs::create_directories(path);
        ::chmod(path.c_str(), mode);
        return path;
    };
    folder("open", 0750);
    folder_.MakeFolder("linked");
    fs::create_directory_symlink(folder("elsewhere", 0700), folder_.Host("linked") / "winport");
    folder_.MakeFolder("filed");
    folder_.WriteFile("filed/winport", "");
    for (const char* home : {"open", "linked", "filed"})
        EXPECT_EQ(RunIn(folder_.Host(home)), ERROR_ACCESS_DENIED);
    if (::geteuid() != 0) return;  // only root can give a folder away
    ASSERT_EQ(::chown(folder("given", 0700).c_str(), 65534, 65534), 0);
    EXPECT_EQ(RunIn(folder_.Host("given")), ERROR_ACCESS_DENIED);
}

TEST_F(State, A_link_above_the_folder_is_followed) {
    fs::create_directory_symlink(folder_.MakeFolder("real"), folder_.Host("link"));
    EXPECT_EQ(RunIn(folder_.Host("link")), 0);
    EXPECT_TRUE(fs::exists(folder_.Host("real") / "winport/registry.db"));
}

TEST_F(State, A_chosen_home_may_be_shared_and_its_files_follow_its_mode) {
    const fs::path home = folder_.MakeFolder("shared");
    ::chmod(home.c_str(), 0770);
    EXPECT_EQ(RunProbe(home), 0);
    EXPECT_EQ(ModeOf(home / "state") & 0777, 0770u);
    EXPECT_EQ(ModeOf(home / "state/registry.db"), 0660u);
    EXPECT_EQ(RunProbe(home, "drivers"), 0);
    EXPECT_EQ(ModeOf(home / "state/spool/drivers") & 0777, 0770u);
}

TEST_F(State, Without_a_chosen_home_objects_lie_in_the_sessions_folder) {
    const fs::path session = folder_.MakeFolder("session");
    ChildProcess probe = StartProbe("objects", session, "XDG_RUNTIME_DIR");
    EXPECT_EQ(probe.ReadLine(), "0 0");
    EXPECT_TRUE(fs::exists(session / "winport/global.Probe"));
}

TEST_F(State, A_folder_in_the_place_of_a_file_that_objects_need_is_refused_with_5) {
    for (const auto& [file, errors] : {std::pair{"lock", "5 5"}, {"tokens", "0 5"}}) {
        const fs::path home = folder_.Host("home") / file;
        fs::create_directories(home / "kernel" / file);
        EXPECT_EQ(StartProbe("objects", home).ReadLine(), errors);
    }
}

TEST_F(State, An_account_that_is_on_no_list_has_no_home_but_the_root) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can become another account";
    ChildProcess probe({"/usr/bin/setpriv", "--reuid", "64321", "/usr/bin/env", "-u", "HOME", "-u",
                        "XDG_STATE_HOME", "-u", "WINPORT_HOME", REGISTRY_PROBE});
    EXPECT_EQ(probe.Wait(), ERROR_ACCESS_DENIED);
}

TEST_F(State, A_shared_home_serves_every_account_it_is_open_to_whatever_the_umask) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can become another account";
    // In a folder with the sticky bit one account cannot remove what another one left.
    for (const mode_t mode : {0770, 01777}) {
        SCOPED_TRACE(mode);
        constexpr gid_t kGroup = 64'300;
        const fs::path home = folder_.MakeFolder(mode == 0770 ? "group" : "all");
        ASSERT_EQ(::chown(home.c_str(), 0, kGroup), 0);
        ASSERT_EQ(::chmod(home.c_str(), mode), 0);
        const auto start = [&](const char* account, const char* command) {
            return ChildProcess({"/usr/bin/setpriv", "--reuid", account, "--regid", account, "--groups",
                                 std::to_string(kGroup), "/bin/sh", "-c", "umask 022; exec \"$@\"", "sh",
                                 REGISTRY_PROBE, command},
                                {{"WINPORT_HOME", home.string()}});
        };
        ChildProcess first = start("64321", "objects");
        EXPECT_EQ(first.ReadLine(), "0 0");
        ChildProcess second = start("64322", "objects");
        EXPECT_EQ(second.ReadLine(), "183 183");
        first = {};
        second = {};
        ChildProcess third = start("64322", "objects");
        EXPECT_EQ(third.ReadLine(), "0 0") << "what a dead process left";
        EXPECT_EQ(start("64321", "objects").ReadLine(), "183 183") << "which is another's now";
        EXPECT_EQ(start("64321", "create").Wait(), 0);
        EXPECT_EQ(start("64322", "create").Wait(), 0);
    }
}

TEST_F(RegistryStore, A_folder_that_another_process_keeps_gives_170_after_five_seconds) {
    fs::create_directory(home_ / "state");
    const int kept = ::open((home_ / "state").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(::flock(kept, LOCK_EX), 0);
    EXPECT_EQ(RunProbe(home_), ERROR_BUSY);
    ::close(kept);
    EXPECT_EQ(RunProbe(home_), 0);
}

TEST_F(RegistryStore, Processes_that_start_together_make_one_registry) {
    // The moment in which they get in each other's way is short: one fresh home seldom meets it.
    for (const char* fresh : {"1", "2", "3", "4", "5"})
        ASSERT_EQ(RunProbe(folder_.MakeFolder(fresh), "together"), 0);
}

TEST_F(RegistryStore, The_journal_that_each_process_reads_at_its_start_stays_short) {
    for (int process = 0; process < 6; ++process) {
        ChildProcess probe = StartProbe("count", home_);
        EXPECT_GE(ReadNumbers(probe, 50), 50u);
    }
    EXPECT_LT(fs::file_size(home_ / "state/registry.db-wal"), 300'000u);
}

TEST_F(RegistryStore, A_forked_child_outlives_its_parent_while_others_open_the_registry) {
    ChildProcess probe = StartProbe("orphan", home_);
    EXPECT_EQ(probe.Wait(), 0);
    for (int others = 0; others < 3; ++others) {
        EXPECT_GT(ReadNumbers(probe, 20), 0u);
        EXPECT_EQ(RunProbe(home_), 0);
    }
    EXPECT_GT(ReadNumbers(probe, 100), 0u);
}

TEST_F(RegistryStore, A_process_forks_while_its_threads_use_the_registry) {
    const auto read = [] {
        HKEY key = nullptr;
        const LSTATUS status = RegOpenKeyW(HKEY_CURRENT_USER, TEXT("None"), &key);
        return status == ERROR_FILE_NOT_FOUND;
    };
    const std::jthread reader([&](const std::stop_token& stop) {
        while (!stop.stop_requested())
            ASSERT_TRUE(read());
    });
    for (int i = 0; i < 50; ++i)
        EXPECT_TRUE(HoldsInChild(read));
}

TEST_F(RegistryStore, A_damaged_file_is_reported_and_left_alone) {
    folder_.MakeFolder("home/state");
    const fs::path file = folder_.WriteFile("home/state/registry.db", std::string(8192, 'x'));
    EXPECT_EQ(RunProbe(home_), ERROR_BADDB & 0xFF);
    EXPECT_EQ(fs::file_size(file), 8192u);
}

TEST(Clock, A_sleep_is_not_cut_short_by_a_signal) {
    struct sigaction ignores = {};
    ignores.sa_handler = [](int) {};
    ::sigaction(SIGUSR2, &ignores, nullptr);
    const std::jthread signals([sleeper = ::pthread_self()] {
        ::usleep(100'000);
        ::pthread_kill(sleeper, SIGUSR2);
    });
    const ULONGLONG start = GetTickCount64();
    Sleep(1000);
    EXPECT_GE(GetTickCount64() - start, 990u);
}

TEST(Ids, A_forked_child_has_ids_of_its_own) {
    const DWORD process = GetCurrentProcessId();
    const DWORD thread = GetCurrentThreadId();
    EXPECT_TRUE(HoldsInChild([&] {
        return GetCurrentProcessId() == static_cast<DWORD>(::getpid()) && GetCurrentProcessId() != process &&
               GetCurrentThreadId() != thread && GetCurrentThreadId() == GetCurrentProcessId();
    }));
}

bool IsListed(pid_t process) {
    std::array<DWORD, 16384> ids;
    DWORD needed = 0;
    EXPECT_TRUE(EnumProcesses(ids.data(), sizeof ids, &needed));
    return std::count(ids.begin(), ids.begin() + needed / sizeof(DWORD), static_cast<DWORD>(process)) == 1;
}

TEST(Ids, A_process_is_on_the_list_while_any_of_its_threads_runs) {
    Forked child([] {
        std::thread([] { ::pause(); }).detach();
        return static_cast<int>(::syscall(SYS_exit, 0));
    });
    std::string status;
    const std::string path = "/proc/" + std::to_string(child.Id()) + "/stat";
    while (status.find(") Z") == std::string::npos)
        std::getline(std::ifstream(path), status);
    EXPECT_TRUE(IsListed(child.Id()));
}

TEST(Ids, A_list_needs_a_descriptor_and_may_be_of_none) {
    DWORD needed = 9;
    EXPECT_TRUE(EnumProcesses(nullptr, 0, &needed));
    EXPECT_EQ(needed, 0u);
    EXPECT_REFUSED(ERROR_INVALID_PARAMETER, EnumProcesses(nullptr, 4, &needed));
    EXPECT_TRUE(HoldsInChild([&] {
        const rlimit none = {0, 0};
        ::setrlimit(RLIMIT_NOFILE, &none);
        return ErrorOf([&] { return EnumProcesses(nullptr, 0, &needed); }) == ERROR_TOO_MANY_OPEN_FILES;
    }));
}

TEST(Ids, An_ended_process_is_off_the_list_before_its_parent_has_asked_for_it) {
    Forked child([] { return 0; });
    siginfo_t info = {};
    ASSERT_EQ(::waitid(P_PID, child.Id(), &info, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(IsListed(child.Id()));
}

// The other threads of the parent are not there in the child, whatever they were waiting for.
TEST(Handles, A_forked_child_closes_what_a_thread_of_its_parent_is_waiting_for) {
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::jthread waiter([&](const std::stop_token& stop) {
        while (!stop.stop_requested())
            WaitForMultipleObjects(1, &event, FALSE, 0);
    });
    for (int i = 0; i < 50; ++i)
        ASSERT_TRUE(HoldsInChild([&] { return CloseHandle(event) != FALSE; }));
    waiter = {};
    EXPECT_TRUE(CloseHandle(event));
}

TEST(Handles, Of_keys_or_printers_are_four_million_at_most_and_a_closed_one_makes_room) {
    winport::SlotTable<char> table(1);
    std::uint64_t last = 0;
    for (int i = 0; i < 1 << 22; ++i)
        last = table.Add('x');
    ASSERT_NE(last, 0u);
    EXPECT_EQ(table.Add('x'), 0u);
    EXPECT_TRUE(table.Remove(last));
    EXPECT_NE(table.Add('x'), 0u);
}

TEST_F(Differences, A_UTF8_mark_is_ANSI_text_and_hides_the_first_section) {
    folder_.WriteFile("p.ini", "\xEF\xBB\xBF[S]\nk=1\n[T]\nk=\xC3\xA9\n");
    EXPECT_EQ(NumberOr7(), 7u);
    WCHAR value[8];
    EXPECT_EQ(GetPrivateProfileStringW(TEXT("T"), TEXT("k"), TEXT(""), value, 8, path_.c_str()), 2u);
}

TEST_F(Differences, A_file_above_4_MiB_was_named_by_mistake) {
    fs::resize_file(folder_.Host("p.ini"), 4'194'304);
    EXPECT_EQ(NumberOr7(), 1u);
    fs::resize_file(folder_.Host("p.ini"), 4'194'305);
    EXPECT_EQ(NumberOr7(), 7u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_MEMORY));
}

TEST_F(Differences, A_list_that_fits_ends_twice_where_there_is_room) {
    for (const WCHAR* section : {TEXT("S"), TEXT("T")}) {
        WCHAR buffer[] = TEXT("######");
        const DWORD count = GetPrivateProfileSectionW(section, buffer, 5, path_.c_str());
        EXPECT_EQ(buffer[count], 0);
        EXPECT_EQ(buffer[count + 1], count < 4 ? 0 : '#');
    }
}

TEST_F(Differences, Neither_classes_nor_times_of_keys_are_told) {
    WCHAR name[16];
    WCHAR className[16];
    DWORD length = 16;
    DWORD classLength = 16;
    FILETIME written = {};
    const auto ask = [&](LPWSTR text, LPDWORD size, FILETIME* time) {
        return RegEnumKeyExW(HKEY_LOCAL_MACHINE, 0, name, &length, nullptr, text, size, time);
    };
    EXPECT_EQ(ask(className, nullptr, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(ask(nullptr, &classLength, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(ask(nullptr, nullptr, &written), ERROR_INVALID_PARAMETER);
}

TEST_F(Differences, A_file_may_get_the_descriptor_of_a_closed_input) {
    EXPECT_TRUE(HoldsInChild([&] {
        ::close(STDIN_FILENO);
        return NumberOr7() == 1;
    }));
}

TEST(Messages, A_thread_keeps_10000_and_they_come_from_nowhere) {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    }
    int posted = 0;
    while (PostThreadMessageW(GetCurrentThreadId(), WM_USER, 0, 0))
        ++posted;
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_NOT_ENOUGH_QUOTA));
    EXPECT_EQ(posted, 10'000);
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        ASSERT_EQ(message.pt.x | message.pt.y, 0);
}

TEST_F(Differences, A_pipe_in_a_files_place_does_not_hold_the_reader) {
    fs::remove(folder_.Host("p.ini"));
    ASSERT_EQ(::mkfifo(folder_.Host("p.ini").c_str(), 0600), 0);
    EXPECT_EQ(NumberOr7(), 7u);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_ACCESS_DENIED));
}

TEST(Code_page_932, What_is_no_character_becomes_a_dot_between_words) {
    WCHAR wide = 0;
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "\x81", 1, &wide, 1), 1);
    EXPECT_EQ(wide, u'\u30FB');
}

TEST(Code_page_65001, Surrogates_pair_up_and_lone_ones_are_replaced) {
    ASSERT_EQ(GetACP(), 65001u);
    char buffer[16] = {};
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("\U0001F600"), -1, buffer, 16, nullptr, nullptr), 5);
    EXPECT_STREQ(buffer, "\xF0\x9F\x98\x80");
    const WCHAR lone[] = {0xD800, 0};
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, lone, -1, buffer, 16, nullptr, nullptr), 4);
    EXPECT_STREQ(buffer, "\xEF\xBF\xBD");
    BOOL used = FALSE;
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("x"), -1, buffer, 16, "?", nullptr), 0);
    EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, TEXT("x"), -1, buffer, 16, nullptr, &used), 0);
    WCHAR wide[16] = {};
    EXPECT_EQ(MultiByteToWideChar(CP_ACP, 0, "\xF0\x9F\x98\x80\xC0\xAF", -1, wide, 16), 5);
    EXPECT_EQ(WideText(wide), TEXT("\U0001F600\uFFFD\uFFFD"));
}
