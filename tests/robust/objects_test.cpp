// The places where kernel objects lie are taken by something else, damaged, full, or out of reach.
#include <sched.h>
#include <sys/mount.h>

#include <iterator>

#include "child_process.h"
#include "effort.h"
#include "occupied_file.h"
#include "precompiled.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using winport::ObjectKind;

// Of a channel: each one's name, behind the channel's, and its kind.
const std::pair<std::string, ObjectKind> kObjects[] = {
    {"Cmd", ObjectKind::Section},
    {"CmdNotifyEvent", ObjectKind::Event},
    {"CmdCancelEvent", ObjectKind::Event},
    {"Resp", ObjectKind::Section},
    {"RespNotifyEvent", ObjectKind::Event},
    {"RespCancelEvent", ObjectKind::Event},
    {"TransactionMutex", ObjectKind::Mutex},
    {"ServerIdleEvent", ObjectKind::Event},
};

constexpr uint64_t kSectionBytes = 65791 + 12;

class Objects : public testing::Test {
  protected:
    Objects() : home_("/dev/shm/kestrel-objects-" + std::to_string(getpid())) {
        fs::create_directory(home_);
        fs::permissions(home_, fs::perms::owner_all);
        EXPECT_EQ(0, ErrorOf("First"));  // makes the folder and its lock file
    }
    ~Objects() override { fs::remove_all(home_); }

    [[nodiscard]] std::string Folder() const { return home_ + "/kernel"; }

    // Of opening a channel, in a process of its own; 0 when it is done. `prefix`: what starts it.
    [[nodiscard]] long ErrorOf(const std::string& channel, std::vector<std::string> prefix = {}) const {
        for (const std::string& word : {std::string(CHANNEL_CLIENT), channel, "1"s, "0"s, "0"s})
            prefix.push_back(word);
        ChildProcess opener(prefix, {{"WINPORT_HOME", home_}});
        const std::string line = opener.ReadLine().value_or("error -1");
        if (line == "ready") opener.WriteLine("close");
        EXPECT_EQ(0, opener.Wait()) << channel;
        return line == "ready" ? 0 : std::stol(line.substr(std::strlen("error ")));
    }
    // Only what was there before.
    [[nodiscard]] long Files() const {
        return std::distance(fs::directory_iterator(Folder()), fs::directory_iterator());
    }

    std::string home_;
};

TEST_F(Objects, A_squatted_object_is_refused_cleanly_and_nothing_outside_is_written) {
    const std::string outside = home_ + "/outside";
    std::ofstream(outside) << "untouched";
    fs::permissions(outside, fs::perms::owner_read | fs::perms::owner_write);
    const long before = Files();
    for (const auto& [suffix, kind] : kObjects) {
        SCOPED_TRACE(suffix);
        const std::string name = "Squat" + suffix;
        const uint64_t data = kind == ObjectKind::Section ? kSectionBytes : 0;
        const size_t whole = winport::kPageSize * (data == 0 ? 1 : 18);
        const ObjectKind other = kind == ObjectKind::Event ? ObjectKind::Mutex : ObjectKind::Event;
        std::vector<std::pair<std::string, long>> pages = {{PageOf(name, other, data, whole), 6},
                                                           {PageOf(name, kind, data, 100), 1392},
                                                           {PageOf(name, kind, data, whole + 4096), 1392}};
        if (data != 0) pages.emplace_back(PageOf(name, kind, 4096, 8192), 1610);
        for (const auto& [page, error] : pages) {
            const OccupiedFile squatter(Folder(), name, page);
            EXPECT_EQ(error, ErrorOf("Squat"));
        }
        // A link belongs to nobody: the first to open the folder sweeps it away, itself and not what it
        // names.
        fs::create_symlink(outside, Folder() + "/global." + name);
        EXPECT_EQ(0, ErrorOf("Squat"));
        fs::create_directory(Folder() + "/global." + name);
        EXPECT_EQ(5, ErrorOf("Squat"));
        fs::remove(Folder() + "/global." + name);
        EXPECT_EQ(before, Files());
        EXPECT_EQ(0, ErrorOf("Squat"));
    }
    std::ifstream file(outside);
    EXPECT_EQ("untouched", std::string(std::istreambuf_iterator<char>(file), {}));
}

TEST_F(Objects, An_unreadable_object_is_refused_with_5) {
    constexpr int kNobody = 65534;
    const std::vector<std::string> asNobody = {"/usr/bin/setpriv", "--reuid=65534", "--regid=65534",
                                               "--clear-groups"};
    if (geteuid() != 0 || chown(home_.c_str(), kNobody, kNobody) != 0 ||
        chown(Folder().c_str(), kNobody, kNobody) != 0 ||
        chown((Folder() + "/lock").c_str(), kNobody, kNobody) != 0)
        GTEST_SKIP() << "only root can be somebody else";
    for (const auto& [suffix, kind] : kObjects) {
        const OccupiedFile secret(Folder(), "Secret" + suffix, "x");
        fs::permissions(Folder() + "/global.Secret" + suffix, fs::perms::none);
        EXPECT_EQ(5, ErrorOf("Secret", asNobody)) << suffix;
    }
    EXPECT_EQ(0, ErrorOf("Secret", asNobody));
}

TEST_F(Objects, A_header_that_was_changed_in_any_byte_is_refused) {
    std::mt19937 random = effort.Random();
    const std::string name = "HeaderServerIdleEvent";
    const std::string good = PageOf(name, ObjectKind::Event, 0, winport::kPageSize);
    constexpr size_t kJudged[] = {
        offsetof(winport::ObjectPage, magic),        offsetof(winport::ObjectPage, layoutVersion),
        offsetof(winport::ObjectPage, kind),         offsetof(winport::ObjectPage, dataSize),
        offsetof(winport::ObjectPage, dataSize) + 4, offsetof(winport::ObjectPage, nameLength)};
    const size_t nameStart = offsetof(winport::ObjectPage, name);
    const size_t nameBytes = 2 * (name.size() + 7);
    for (int i = 0; i < effort.Of(2000, 200); ++i) {
        std::string changed = good;
        const size_t place = i % 2 == 0 ? kJudged[random() % std::size(kJudged)] + random() % 4
                                        : nameStart + random() % nameBytes;
        changed[place] = static_cast<char>(changed[place] ^ static_cast<char>(1 + random() % 255));
        const OccupiedFile occupied(Folder(), name, changed);
        const long error = ErrorOf("Header");
        EXPECT_TRUE(error == 6 || error == 1392) << error << ", byte " << place;
    }
}

TEST_F(Objects, A_full_memory_file_system_gives_112_and_leaves_no_file) {
    if (unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        GTEST_SKIP() << "only root can mount";
    const auto mounted = [&](const std::string& options) {
        return mount("none", home_.c_str(), "tmpfs", 0, ("mode=0700," + options).c_str()) == 0;
    };
    // Six objects of a page, two sections of eighteen.
    constexpr int kNeeded = (6 + 2 * 18) * 4096;
    for (const int size : {4096, 65536, 131072, kNeeded - 4096}) {
        ASSERT_TRUE(mounted("size=" + std::to_string(size)));
        for (const bool isFilled : {false, true}) {
            if (isFilled) {
                std::ofstream filler(home_ + "/filler");
                filler << std::string(static_cast<size_t>(size), 'x') << std::flush;
            }
            EXPECT_EQ(112, ErrorOf("Full")) << size;
            EXPECT_EQ(1, Files()) << "more than the lock file, " << size;
        }
        fs::remove(home_ + "/filler");
        ASSERT_EQ(0, mount("none", home_.c_str(), "tmpfs", MS_REMOUNT, "size=1m"));
        EXPECT_EQ(0, ErrorOf("Full"));
        umount(home_.c_str());
    }
    // The registry takes more than that.
    const auto makeKey = [&] {
        return ChildProcess({REGISTRY_PROBE, "create"}, {{"WINPORT_HOME", home_}}).Wait();
    };
    ASSERT_TRUE(mounted("size=64k"));
    EXPECT_EQ(112, makeKey());
    ASSERT_EQ(0, mount("none", home_.c_str(), "tmpfs", MS_REMOUNT, "size=1m"));
    EXPECT_EQ(0, makeKey());
    umount(home_.c_str());

    ASSERT_TRUE(mounted("size=" + std::to_string(kNeeded)));
    EXPECT_EQ(0, ErrorOf("Full")) << "the limit is where it is said to be";
    umount(home_.c_str());
}

TEST_F(Objects, Without_a_free_descriptor_an_opening_fails_and_says_so) {
    if (kIsSanitized) GTEST_SKIP() << "a sanitizer needs descriptors of its own";
    // The standard streams, the lock file, and one object at a time.
    for (const int limit : {4, 5, 6}) {
        const std::string option = "--nofile=" + std::to_string(limit) + ":" + std::to_string(limit);
        // Whoever runs the tests may have left more open.
        const std::vector<std::string> start = {
            "/bin/sh",          "-c",  "exec 3>&- 4>&- 5>&- 6>&- 7>&- 8>&- 9>&-; exec \"$@\"", "sh",
            "/usr/bin/prlimit", option};
        EXPECT_EQ(limit > 4 ? 0 : 4, ErrorOf("Few", start)) << limit;
    }
}

}  // namespace
