// Whatever is written to disk, by writers killed at each of their calls and on disks that lost their power:
// the last acknowledged generation is there or the one being written, whole, and the next can be written.
#include <stdlib.h>

#include "../robust/effort.h"
#include "disk_model.h"
#include "forked.h"
#include "kestrel/installation/product_configuration.h"
#include "own_folder.h"
#include "shared/file.h"
#include "shared/json.h"
#include "shared/line_file.h"
#include "traced_writer.h"
#include "vprinter/files/state_file.h"

namespace {

namespace fs = std::filesystem;
using crash::DiskModel;

constexpr int kDamaged = 255;  // as an exit code; generations stay below

// Of several pages, and of another number of them each time.
std::string TextOf(int generation) {
    return std::string(500 + static_cast<size_t>(generation) * 7919 % 20'000, static_cast<char>(generation)) +
           '\n';
}

int GenerationOf(const std::optional<std::string>& text) {
    if (!text) return 0;
    const int generation = text->empty() ? 0 : static_cast<unsigned char>(text->front());
    return generation > 0 && *text == TextOf(generation) ? generation : kDamaged;
}

bool WriteRegistry(const fs::path& folder, int generation) {
    SetVariable("WINPORT_HOME", folder.string());
    HKEY key = nullptr;
    if (RegCreateKeyW(HKEY_LOCAL_MACHINE, u"Software\\Crash", &key) != ERROR_SUCCESS) return false;
    const std::string text = TextOf(generation);
    const auto* bytes = reinterpret_cast<const BYTE*>(text.data());
    const LSTATUS status =
        RegSetValueExW(key, u"Text", 0, REG_BINARY, bytes, static_cast<DWORD>(text.size()));
    RegCloseKey(key);
    return status == ERROR_SUCCESS;
}

int ReadRegistry(const fs::path& folder) {
    SetVariable("WINPORT_HOME", folder.string());
    HKEY key = nullptr;
    const LSTATUS opened = RegOpenKeyW(HKEY_LOCAL_MACHINE, u"Software\\Crash", &key);
    if (opened != ERROR_SUCCESS) return opened == ERROR_FILE_NOT_FOUND ? 0 : kDamaged;
    std::string text(32'768, '\0');
    DWORD size = static_cast<DWORD>(text.size());
    const LSTATUS read =
        RegQueryValueExW(key, u"Text", nullptr, nullptr, reinterpret_cast<BYTE*>(text.data()), &size);
    RegCloseKey(key);
    if (read == ERROR_FILE_NOT_FOUND) return 0;
    text.resize(size);
    return read == ERROR_SUCCESS ? GenerationOf(text) : kDamaged;
}

bool WriteWhole(const fs::path& folder, int generation) {
    return !tools::RewriteFile(folder / "dump.json", TextOf(generation));
}

int ReadWhole(const fs::path& folder) {
    return GenerationOf(tools::ReadFile(folder / "dump.json"));
}

bool WriteState(const fs::path& folder, int generation) {
    vprinter::StateFile file((folder / "state.json").string());
    file.Load();
    return file.Save("P", {{"generation", std::to_string(generation)}, {"text", std::string(9000, 'x')}});
}

int ReadState(const fs::path& folder) {
    try {
        vprinter::StateFile((folder / "state.json").string()).Load();
        const auto text = tools::ReadFile(folder / "state.json");
        if (!text) return 0;
        return std::stoi(tools::Json::Parse(*text).At("printers").At("P").At("generation").Text());
    } catch (const std::exception&) {
        return kDamaged;
    }
}

bool WriteProduct(const fs::path& folder, int generation) {
    cli::WriteConfiguration(folder / "P.INI", TextOf(generation));
    return true;
}

// The old one is kept, as whole as the new one.
int ReadProduct(const fs::path& folder) {
    const int kept = GenerationOf(tools::ReadFile(folder / "P.INI.bak"));
    const int now = GenerationOf(tools::ReadFile(folder / "P.INI"));
    return kept == 0 || kept <= now ? now : kDamaged;
}

bool WriteLine(const fs::path& folder, int generation) {
    tools::LineFile file(stderr);
    if (!file.Open((folder / "record").string())) return false;
    file.Write(TextOf(generation));
    return true;
}

int ReadLines(const fs::path& folder) {
    std::string expected;
    const std::string text = tools::ReadFile(folder / "record").value_or("");
    for (int generation = 0; generation < kDamaged; expected += TextOf(++generation))
        if (text.size() == expected.size()) return text == expected ? generation : kDamaged;
    return kDamaged;
}

struct Subject {
    const char* name;
    bool (*write)(const fs::path& folder, int generation);
    int (*read)(const fs::path& folder);
    bool isDurable = true;  // what is acknowledged outlasts a power loss
    bool mayBeTorn = true;  // by a kill in the middle of a call, as the kernel's own write is not
};

constexpr Subject kSubjects[] = {
    {"registry", WriteRegistry, ReadRegistry},      {"dump", WriteWhole, ReadWhole},
    {"state file", WriteState, ReadState},          {"product configuration", WriteProduct, ReadProduct},
    {"record", WriteLine, ReadLines, false, false},
};

// 220 of them make the registry empty its log several times.
const int kGenerations = effort.Of(220, 5);

class Place final {
  public:
    Place() {
        std::string made = "/dev/shm/kestrel-crash-XXXXXX";
        path = ::mkdtemp(made.data());
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() { fs::remove_all(path); }

    fs::path path;
};

crash::Seen Write(const Subject& subject, const fs::path& folder, crash::Killing killing = {}) {
    return crash::Watch(
        folder,
        [&] {
            for (int generation = 1; generation <= kGenerations; ++generation) {
                if (!subject.write(folder, generation)) return false;
                crash::Acknowledge(generation);
            }
            return true;
        },
        killing);
}

bool HasLeftovers(const fs::path& folder) {
    return std::ranges::any_of(fs::directory_iterator(folder),
                               [](const auto& entry) { return entry.path().extension() == ".new"; });
}

// By processes of their own: one after the other, as after a start of the computer.
void ExpectWhole(const Subject& subject, const fs::path& folder, int acknowledged, const std::string& when) {
    const int found = Forked([&] { return subject.read(folder); }).Wait();
    SCOPED_TRACE(subject.name + (", " + when));
    EXPECT_TRUE(found == acknowledged || found == acknowledged + 1) << found << " after " << acknowledged;
    if (found == kDamaged) return;
    EXPECT_TRUE(HoldsInChild([&] { return subject.write(folder, found + 1); }));
    EXPECT_EQ(Forked([&] { return subject.read(folder); }).Wait(), found + 1);
    EXPECT_FALSE(HasLeftovers(folder));
}

TEST(Kills, A_writer_killed_at_any_call_leaves_the_last_generation_or_the_next) {
    std::mt19937 random = effort.Random();
    for (const Subject& subject : kSubjects) {
        const Place whole;
        const crash::Seen seen = Write(subject, whole.path);
        ASSERT_TRUE(seen.ended && seen.acknowledged == kGenerations && seen.calls >= kGenerations)
            << subject.name;
        const int kills = effort.Of(1000, std::min(2 * seen.calls, 120));
        for (int i = 0; i < kills && !HasFailure(); ++i) {
            const Place place;
            const auto chosen = kills > seen.calls ? static_cast<unsigned>(i) : random();
            const int step = 1 + static_cast<int>(chosen % static_cast<unsigned>(seen.calls));
            const crash::Killing killing = {step, subject.mayBeTorn && random() % 2 == 0};
            const crash::Seen killed = Write(subject, place.path, killing);
            ASSERT_FALSE(killed.ended);
            ExpectWhole(
                subject, place.path, killed.acknowledged,
                "killed at call " + std::to_string(step) + (killing.halfWritten ? ", half written" : ""));
        }
        std::printf("%s: %d kills at %d calls\n", subject.name, kills, seen.calls);
    }
}

TEST(PowerLoss, What_was_acknowledged_is_on_the_disk_whole) {
    using enum DiskModel::Unsynced;
    std::mt19937 random = effort.Random();
    for (const Subject& subject : kSubjects) {
        if (!subject.isDurable) continue;
        const Place whole;
        const crash::Seen seen = Write(subject, whole.path);
        ASSERT_TRUE(seen.ended) << subject.name;
        DiskModel disk;
        int acknowledged = 0, images = 0;
        for (const crash::Step& step : seen.steps) {
            disk.Do(step);
            if (step.kind == crash::Step::Kind::Acknowledge) acknowledged = step.generation;
            for (const auto names : {Lost, Kept})
                for (const auto bytes : {Lost, Kept, Any}) {
                    if (HasFailure()) return;
                    if (effort.isLong && random() % 6 != 0) continue;  // of far more calls
                    const Place place;
                    disk.WriteImage(place.path, names, bytes, random);
                    ExpectWhole(subject, place.path, acknowledged,
                                "after " + std::to_string(++images) + " images");
                }
        }
        std::printf("%s: %d images of %zu calls\n", subject.name, images, seen.steps.size());
    }
}

// What a planted link or a device would suffer from a file put in its place.
TEST(RewrittenFiles, Are_their_owners_and_replace_nothing_but_files) {
    const Place place;
    const fs::path path = place.path / "file";
    using tools::Readers;
    for (const auto& [readers, mode] : {std::pair{Readers::Owner, 0600u}, {Readers::All, 0644u}}) {
        ASSERT_FALSE(tools::RewriteFile(path, "text", readers));
        EXPECT_EQ(static_cast<unsigned>(fs::status(path).permissions()), mode);
    }
    fs::create_symlink("/dev/null", place.path / "null");
    EXPECT_FALSE(tools::RewriteFile(place.path / "null", "text"));
    EXPECT_TRUE(fs::is_symlink(place.path / "null"));
    fs::create_directory(place.path / "folder");
    EXPECT_EQ(tools::RewriteFile(place.path / "folder", "text"), std::errc::is_a_directory);
    EXPECT_EQ(tools::RewriteFile(place.path / "none/file", "text"), std::errc::no_such_file_or_directory);
    EXPECT_FALSE(HasLeftovers(place.path));
}

// One text of one of them, and nobody's failure.
TEST(RewrittenFiles, May_be_written_by_several_at_the_same_time) {
    const Place place;
    std::vector<Forked> writers;
    for (int writer = 1; writer <= 4; ++writer)
        writers.emplace_back([&place, writer] {
            for (int i = 0; i < 200; ++i)
                if (!WriteWhole(place.path, writer)) return 1;
            return 0;
        });
    for (int i = 0; i < 200; ++i)
        ASSERT_NE(ReadWhole(place.path), kDamaged);
    for (Forked& writer : writers)
        EXPECT_EQ(writer.Wait(), 0);
    EXPECT_FALSE(HasLeftovers(place.path));
}

}  // namespace
