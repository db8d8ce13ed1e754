#include "statusmon/settings.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "shared/user_error.h"

namespace statusmon {
namespace {

using nlohmann::json;

std::string AllLetters() {
    std::string all;
    for (const RequestKind& kind : kRequestKinds)
        all += fmt::format("{}{}", all.empty() ? "" : ", ", kind.letters);
    return all;
}

uint32_t Milliseconds(const json& value) {
    if (!value.is_number_unsigned() || value.get<uint64_t>() > UINT32_MAX)
        throw tools::UserError("expected a number of milliseconds instead of " + value.dump());
    return value.get<uint32_t>();
}

void ApplyWish(const WishName& name, const json& codes, Settings& settings) {
    for (const json& code : codes.is_array() ? codes : json::array({codes}))
        settings.Apply(name.wish, code.get<std::string>());
}

void ApplyKey(const std::string& key, const json& value, Settings& settings) {
    for (const WishName& name : kWishNames)
        if (key == name.key) return ApplyWish(name, value, settings);
    if (key == "slow") {
        for (const auto& [code, milliseconds] : value.items())
            settings.Delay(code, Milliseconds(milliseconds));
    } else if (key == "exitAfter") {
        settings.exitAfterMs = Milliseconds(value);
    } else if (key == "log") {
        settings.logFile = value.get<std::string>();
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
    std::ifstream file(path, std::ios::binary);
    if (!file) throw tools::UserError(path + " cannot be read; check its permissions");
    try {
        const json document = json::parse(file);
        if (!document.is_object()) throw tools::UserError("expected an object in braces");
        for (const auto& [key, value] : document.items())
            ApplyKey(key, value, settings);
    } catch (const json::exception& problem) {
        throw tools::UserError(fmt::format("{}: {}; correct or delete the file", path, problem.what()));
    } catch (const tools::UserError& problem) {
        throw tools::UserError(fmt::format("{}: {}", path, problem.what()));
    }
}

}  // namespace statusmon
