// What the program is told to do: how it meets each request, when it ends by itself, where its log goes.
#pragma once

#include <array>
#include <cstdint>

#include <string>
#include <string_view>

#include "statusmon/requests.h"

namespace statusmon {

enum class Answer : uint8_t { Done, Refused, None };
enum class Death : uint8_t { None, BeforeAnswer, AfterAnswer };

struct Behaviour {
    Answer answer = Answer::Done;
    Death death = Death::None;
    uint32_t delayMs = 0;  // before the answer
};

/// What can be asked of the requests in one option, or under one key of the settings file.
enum class Wish : uint8_t { Refuse, Silent, Die, DieAfter };
struct WishName {
    Wish wish;
    const char* option;
    const char* key;
    const char* help;
};
inline constexpr WishName kWishNames[] = {
    {Wish::Refuse, "--refuse", "refuse", "refuse these requests"},
    {Wish::Silent, "--silent", "silent", "give no answer to these requests"},
    {Wish::Die, "--die", "die", "break off instead of answering one of these requests"},
    {Wish::DieAfter, "--die-after", "dieAfter", "break off after answering one of these requests"},
};

class Settings final {
  public:
    /// Throws a UserError when there is no request of these letters.
    void Apply(Wish wish, std::string_view letters);
    void Delay(std::string_view letters, uint32_t milliseconds);

    [[nodiscard]] const Behaviour& Of(const RequestKind& kind) const {
        return behaviours_[static_cast<size_t>(&kind - kRequestKinds)];
    }

    uint32_t exitAfterMs = 0;  // without a request; 0: never
    std::string logFile;       // empty: the output, or the log of the state folder

  private:
    [[nodiscard]] Behaviour& At(std::string_view letters);

    std::array<Behaviour, kRequestKindCount> behaviours_;
};

/// Takes over what a JSON file says; nothing when there is no such file. Throws a UserError for a file that
/// cannot be read or understood.
void ReadSettingsFile(const std::string& path, Settings& settings);

}  // namespace statusmon
