// The settings file, read key by key.
#include "statusmon/settings.h"

#include <fmt/core.h>

#include <filesystem>

#include "shared/file.h"
#include "shared/json.h"
#include "shared/user_error.h"

namespace statusmon {
namespace {

using tools::Json;

std::string AllLetters() {
    std::string all;
    for (const RequestKind& kind : kRequestKinds)
        all += fmt::format("{}{}", all.empty() ? "" : ", ", kind.letters);
    return all;
}

uint32_t Milliseconds(const Json& value) {
    if (!value.IsUnsigned() || value.Unsigned() > UINT32_MAX)
        throw tools::UserError("expected a number of milliseconds instead of " + value.Dump());
    return static_cast<uint32_t>(value.Unsigned());
}

void ApplyWish(const WishName& name, const Json& codes, Settings& settings) {
    if (!codes.IsArray()) return settings.Apply(name.wish, codes.Text());
    for (const Json& code : codes.Items())
        settings.Apply(name.wish, code.Text());
}

void ApplyKey(const std::string& key, const Json& value, Settings& settings) {
    for (const WishName& name : kWishNames)
        if (key == name.key) return ApplyWish(name, value, settings);
    if (key == "slow") {
        for (const auto& [code, milliseconds] : value.Members())
            settings.Delay(code, Milliseconds(milliseconds));
    } else if (key == "exitAfter") {
        settings.exitAfterMs = Milliseconds(value);
    } else if (key == "log") {
        settings.logFile = value.Text();
    } else {
        throw tools::UserError(fmt::format(
            "there is no setting \"{}\"; expected refuse, silent, slow, die, dieAfter, exitAfter or log",
            key));
    }
}

}  // namespace

Behaviour& Settings::At(std::string_view letters) {
    const RequestKind* const kind = FindRequestKind(letters);
    if (kind == nullptr)
        throw tools::UserError(
            fmt::format("there is no request \"{}\"; expected one of {}", letters, AllLetters()));
    return behaviours_[static_cast<size_t>(kind - kRequestKinds)];
}

void Settings::Apply(Wish wish, std::string_view letters) {
    Behaviour& behaviour = At(letters);
    switch (wish) {
        case Wish::Refuse:
            behaviour.answer = Answer::Refused;
            break;
        case Wish::Silent:
            behaviour.answer = Answer::None;
            break;
        case Wish::Die:
            behaviour.death = Death::BeforeAnswer;
            break;
        case Wish::DieAfter:
            behaviour.death = Death::AfterAnswer;
            break;
    }
}

void Settings::Delay(std::string_view letters, uint32_t milliseconds) {
    At(letters).delayMs = milliseconds;
}

void ReadSettingsFile(const std::string& path, Settings& settings) {
    std::error_code error;
    if (!std::filesystem::exists(path, error)) return;
    const std::optional<std::string> text = tools::ReadFile(path);
    if (!text) throw tools::UserError(path + " cannot be read; check its permissions");
    try {
        const Json document = Json::Parse(*text);
        if (!document.IsObject()) throw tools::UserError("expected an object in braces");
        for (const auto& [key, value] : document.Members())
            ApplyKey(key, value, settings);
    } catch (const tools::JsonError& problem) {
        throw tools::UserError(fmt::format("{}: {}; correct or delete the file", path, problem.what()));
    } catch (const tools::UserError& problem) {
        throw tools::UserError(fmt::format("{}: {}", path, problem.what()));
    }
}

}  // namespace statusmon
