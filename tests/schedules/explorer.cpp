// Every schedule of the channel within bounds: two clients of two exchanges each and a server, each a process
// of its own over the real objects. After each schedule a fresh client must be served.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <new>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "control.h"

namespace schedules {

namespace {

constexpr uint64_t kMostStates = uint64_t{1} << 24;
constexpr std::array<uint32_t, 5> kDocumentedErrors = {0, 1460, 735, 32, 995};
constexpr std::array<const char*, 3> kKindNames = {"switch", "kill", "timeout"};

struct Bounds {
    Spent most = {1, 1, 1, 1};
    int actions = 6;
    bool opening = false, merge = false, listsLate = false;
    double seconds = 1e9;
    std::optional<std::string> replay;
};

template <typename T>
T* Shared(size_t count) {
    void* const memory = ::mmap(nullptr, count * sizeof(T), PROT_READ | PROT_WRITE,
                                MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED) throw std::bad_alloc();
    return static_cast<T*>(memory);
}

std::string Line(const Schedule& schedule) {
    std::string line;
    for (uint32_t i = 0; i < schedule.count; ++i) {
        const Decision& decision = schedule.decisions[i];
        line += (i == 0 ? "" : " ") + std::string(kKindNames[static_cast<size_t>(decision.kind)]) + "@" +
                std::to_string(decision.point) + ":" + kActorNames[decision.actor];
    }
    return line;
}

// False when the line is none.
bool Parse(const std::string& line, Schedule& schedule) {
    schedule = {};
    std::istringstream words(line);
    for (std::string word; words >> word;) {
        const size_t at = word.find('@');
        const size_t colon = word.find(':');
        if (at == std::string::npos || colon == std::string::npos || schedule.count == kMaxDecisions)
            return false;
        const auto kind = std::find(kKindNames.begin(), kKindNames.end(), word.substr(0, at));
        const auto actor = std::find(kActorNames.begin(), kActorNames.end(), word.substr(colon + 1));
        if (kind == kKindNames.end() || actor == kActorNames.end()) return false;
        schedule.decisions[schedule.count++] = {
            static_cast<uint32_t>(std::strtoul(word.c_str() + at + 1, nullptr, 10)),
            static_cast<Kind>(kind - kKindNames.begin()), static_cast<uint8_t>(actor - kActorNames.begin())};
    }
    return true;
}

// One schedule at a time, in processes of its own.
class Runner final {
  public:
    Runner(const Bounds& bounds, std::string home)
        : bounds_(bounds), home_(std::move(home)), control_(*Shared<Control>(1)) {
        control_.visited = Shared<std::atomic<uint64_t>>(kMostStates);
        control_.visitedMask = kMostStates - 1;
        control_.states = Shared<std::atomic<uint64_t>>(1);
    }

    // What went wrong, or nothing.
    std::string Run(const Schedule& schedule, bool checksVisited, bool prints) {
        Begin(schedule, checksVisited, prints);
        std::string fault = Conduct();
        if (fault.empty() && control_.verdict == Verdict::Over) {
            fault = Judge();
            if (fault.empty()) fault = ServeFreshClient();
        }
        EndAll();
        return fault;
    }

    [[nodiscard]] const Control& Seen() const { return control_; }
    // Of the fresh client until it was served; more than it has when it never was.
    [[nodiscard]] uint32_t Attempts() const {
        const auto& all = control_.exchanges[kFresh];
        uint32_t number = 0;
        while (number < all.size() && all[number].got != static_cast<int32_t>(number))
            ++number;
        return number + 1;
    }
    [[nodiscard]] uint64_t States() const { return control_.states->load(); }

  private:
    void Begin(const Schedule& schedule, bool checksVisited, bool prints) {
        Control& c = control_;
        for (auto& go : c.go)
            go = 0;
        static_cast<Progress&>(c) = {};
        c.places.fill("");
        c.prints = prints;
        c.checksVisited = checksVisited;
        c.opensFirst = !bounds_.opening;
        c.mergesSections = bounds_.merge;
        c.schedule = schedule;
        for (const uint32_t actor : {kServer, kClientA, kClientB}) {
            Start(actor);
            if (!c.opensFirst) continue;
            Wake(c, actor);
            if (!AwaitActors()) break;
        }
        c.opensFirst = false;
        c.verdict = Verdict::None;
    }

    void Start(uint32_t actor) {
        static_cast<void>(std::fflush(stdout));
        const pid_t child = ::fork();
        if (child == 0) RunActor(control_, actor);
        if (child < 0) throw std::bad_alloc();
        control_.fates[actor] = Fate::Running;
        control_.processIds[actor] = static_cast<uint32_t>(child);
    }

    // False when an actor's process has hung.
    bool AwaitActors() { return WaitForGo(control_, kScheduler); }

    // Lets the actors run until the run is over.
    std::string Conduct() {
        control_.running = bounds_.opening ? kServer : kClientA;
        Wake(control_, control_.running);
        for (;;) {
            if (!AwaitActors()) return "a process ended or hung, last at " + Places();
            switch (control_.verdict) {
                case Verdict::KillAsked:
                    if (!KillAndGoOn()) return {};
                    break;
                case Verdict::Stuck:
                    return "all wait for ever: " + Places();
                case Verdict::Endless:
                    return "no end: " + Places();
                case Verdict::Mismatch:
                    return std::string("the objects differ from their model: ") + control_.mismatch;
                default:
                    return {};
            }
        }
    }

    // False when nobody is left.
    bool KillAndGoOn() {
        const uint32_t victim = control_.schedule.decisions[control_.nextDecision - 1].actor;
        const bool isRunning = victim == control_.running;
        Kill(victim);
        NoteEnd(control_, victim, Fate::Killed);
        if (IsOver(control_)) {
            control_.verdict = Verdict::Over;
            return false;
        }
        if (isRunning) control_.running = NextInTurn(control_, victim);
        if (control_.running == kNobody) return false;
        Wake(control_, control_.running);
        return true;
    }

    void Kill(uint32_t actor) {
        if (control_.processIds[actor] == 0 || control_.fates[actor] == Fate::Killed) return;
        const auto process = static_cast<pid_t>(control_.processIds[actor]);
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
    }

    void EndAll() {
        for (uint32_t actor = 0; actor < kActors; ++actor)
            Kill(actor);
        std::error_code error;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(home_, error))
            if (entry.is_regular_file(error)) std::filesystem::remove(entry.path(), error);
    }

    [[nodiscard]] std::string Places() const {
        std::string text;
        for (uint32_t actor = 0; actor < kActors; ++actor)
            if (control_.fates[actor] == Fate::Running)
                text += std::string(text.empty() ? "" : ", ") + kActorNames[actor] + " at \"" +
                        control_.places[actor] + "\"";
        return text;
    }

    [[nodiscard]] std::string Judge() const {
        for (const uint32_t actor : {kClientA, kClientB}) {
            for (uint32_t number = 0; number < kExchanges; ++number) {
                const Exchange& exchange = control_.exchanges[actor][number];
                if (exchange.endedAt == 0) continue;
                const std::string who =
                    std::string(kActorNames[actor]) + "'s exchange " + std::to_string(number);
                if (std::ranges::count(kDocumentedErrors, exchange.error) == 0)
                    return who + " ended with " + std::to_string(exchange.error);
                if (exchange.got == -2) return who + " got what nobody sent it";
                if (exchange.got == -3 || (exchange.got == -1 && exchange.error == 0))
                    return who + " got nothing, without an error";
                if (exchange.got >= 0 && exchange.got != static_cast<int32_t>(number) &&
                    !IsForced(actor, exchange))
                    return who + " got another's reply, which nothing forces";
            }
        }
        return {};
    }

    // The one way to another exchange's reply: the client gave that exchange up, and the server, which had
    // its request, answered only then.
    [[nodiscard]] bool IsForced(uint32_t actor, const Exchange& exchange) const {
        const Exchange& other = control_.exchanges[actor][static_cast<size_t>(exchange.got)];
        return &other < &exchange && other.got == -1 && other.error != 0 && other.servedAt != 0 &&
               other.endedAt <= exchange.posted &&
               (other.answeredAt == 0 || other.answeredAt > exchange.posted);
    }

    std::string ServeFreshClient() {
        Control& c = control_;
        c.isFreshPhase = true;
        c.verdict = Verdict::None;
        if (c.fates[kServer] != Fate::Running) {
            Start(kNewServer);
            c.running = kNewServer;
        }
        Start(kFresh);
        c.running = c.fates[kNewServer] == Fate::Running ? kNewServer : kFresh;
        Wake(c, c.running);
        if (!AwaitActors()) return "the fresh client or its server ended or hung: " + Places();
        if (c.verdict != Verdict::Over) return "the fresh client waits for ever: " + Places();
        return Attempts() <= kFreshAttempts ? "" : "the fresh client was not served";
    }

    const Bounds& bounds_;
    const std::string home_;
    Control& control_;
};

class Explorer final {
  public:
    Explorer(const Bounds& bounds, Runner& runner) : bounds_(bounds), runner_(runner) {}

    int Explore() {
        const auto start = std::chrono::steady_clock::now();
        const auto seconds = [&] {
            return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        };
        open_.push_back({});
        while (!open_.empty() && faults_ < 20 && seconds() < bounds_.seconds) {
            const Schedule schedule = open_.back();
            open_.pop_back();
            const std::string fault = runner_.Run(schedule, true, false);
            ++schedules_;
            pruned_ += runner_.Seen().verdict == Verdict::Pruned ? 1 : 0;
            if (fault.empty()) {
                Note(schedule);
            } else {
                ++faults_;
                std::printf("FAULT  %s\n       tests/schedules/run --replay '%s'\n", fault.c_str(),
                            Line(schedule).c_str());
            }
            AddFollowers(schedule);
        }
        Report(seconds());
        return faults_ == 0 && open_.empty() ? 0 : 1;
    }

  private:
    void AddFollowers(const Schedule& schedule) {
        if (schedule.count == kMaxDecisions || static_cast<int>(schedule.count) >= bounds_.actions) return;
        for (uint32_t i = 0; i < runner_.Seen().optionCount; ++i) {
            const auto& [decision, isBlocked] = runner_.Seen().options[i];
            const bool isChoice = decision.kind == Kind::Switch && isBlocked;
            const size_t what = isChoice ? kChoices : static_cast<size_t>(decision.kind);
            Schedule next = schedule;
            next.decisions[next.count++] = decision;
            if (++next.spent[what] <= bounds_.most[what]) open_.push_back(next);
        }
    }

    void Note(const Schedule& schedule) {
        const Control& seen = runner_.Seen();
        for (const uint32_t actor : {kClientA, kClientB})
            for (uint32_t number = 0; number < kExchanges; ++number) {
                const Exchange& exchange = seen.exchanges[actor][number];
                if (exchange.endedAt == 0) continue;
                ++outcomes_[exchange.error];
                if (exchange.got >= 0 && exchange.got != static_cast<int32_t>(number))
                    late_.push_back(Line(schedule));
            }
        if (seen.verdict != Verdict::Over || runner_.Attempts() <= worstAttempts_) return;
        worst_ = Line(schedule);
        worstAttempts_ = runner_.Attempts();
    }

    void Report(double seconds) const {
        std::printf(
            "%ld schedules (%ld of them ended at a state that was known), %llu states, %.1f s, %.0f "
            "schedules a second\n",
            schedules_, pruned_, static_cast<unsigned long long>(runner_.States()), seconds,
            static_cast<double>(schedules_) / seconds);
        if (!open_.empty())
            std::printf("NOT ALL: %zu schedules were left when time was over\n", open_.size());
        std::printf("exchanges by error:");
        for (const auto& [error, count] : outcomes_)
            std::printf(" %u: %ld;", error, count);
        std::printf(" a fresh client was served at attempt %u at the latest ('%s')\n", worstAttempts_,
                    worst_.c_str());
        std::printf("%zu late replies, each forced by the protocol; %d faults\n", late_.size(), faults_);
        if (!bounds_.listsLate) return;
        for (const std::string& line : late_)
            std::printf("  %s\n", line.c_str());
    }

    const Bounds& bounds_;
    Runner& runner_;
    std::vector<Schedule> open_;
    long schedules_ = 0, pruned_ = 0;
    int faults_ = 0;
    uint32_t worstAttempts_ = 0;
    std::string worst_;
    std::map<uint32_t, long> outcomes_;
    std::vector<std::string> late_;
};

int Replay(Runner& runner, const std::string& line) {
    Schedule schedule;
    if (!Parse(line, schedule)) {
        std::fprintf(
            stderr,
            "'%s' is no schedule: expected words such as switch@120:B, kill@133:server, timeout@150:A\n",
            line.c_str());
        return 2;
    }
    const std::string fault = runner.Run(schedule, false, true);
    for (const uint32_t actor : {kClientA, kClientB, kFresh})
        for (uint32_t number = 0; number < kFreshAttempts; ++number) {
            const Exchange& it = runner.Seen().exchanges[actor][number];
            if (it.endedAt == 0) continue;
            std::printf("%s %u: begun %u, taken %u, answered %u, ended %u, error %u, got %d\n",
                        kActorNames[actor], number, it.posted, it.servedAt, it.answeredAt, it.endedAt,
                        it.error, it.got);
        }
    std::printf("%s\n", fault.empty() ? "no fault" : fault.c_str());
    return fault.empty() ? 0 : 1;
}

bool ReadArguments(int argc, char** argv, Bounds& bounds) {
    const std::map<std::string, int*> numbers = {{"--switches", &bounds.most[0]},
                                                 {"--kills", &bounds.most[1]},
                                                 {"--timeouts", &bounds.most[2]},
                                                 {"--choices", &bounds.most[kChoices]},
                                                 {"--decisions", &bounds.actions}};
    const std::map<std::string, bool*> flags = {
        {"--opening", &bounds.opening}, {"--merge", &bounds.merge}, {"--late", &bounds.listsLate}};
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const bool hasValue = i + 1 < argc;
        if (const auto number = numbers.find(word); number != numbers.end() && hasValue)
            *number->second = static_cast<int>(std::strtol(argv[++i], nullptr, 10));
        else if (word == "--seconds" && hasValue)
            bounds.seconds = std::strtod(argv[++i], nullptr);
        else if (word == "--replay" && hasValue)
            bounds.replay = argv[++i];
        else if (const auto flag = flags.find(word); flag != flags.end())
            *flag->second = true;
        else
            return false;
    }
    return true;
}

}  // namespace

}  // namespace schedules

int main(int argc, char** argv) {
    schedules::Bounds bounds;
    if (!schedules::ReadArguments(argc, argv, bounds)) {
        static_cast<void>(std::fprintf(
            stderr,
            "%s [--switches N] [--kills N] [--timeouts N] [--choices N] [--decisions N] [--opening] "
            "[--merge] [--late] [--seconds N] [--replay LINE]\n",
            argv[0]));
        return 2;
    }
    char home[] = "/dev/shm/kestrel-schedules-XXXXXX";
    if (::mkdtemp(home) == nullptr) return 2;
    ::setenv("WINPORT_HOME", home, 1);
    int result = 2;
    {
        schedules::Runner runner(bounds, home);
        result = bounds.replay ? schedules::Replay(runner, *bounds.replay)
                               : schedules::Explorer(bounds, runner).Explore();
    }
    std::error_code error;
    std::filesystem::remove_all(home, error);
    return result;
}
