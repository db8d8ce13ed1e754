// Offers made of the catalogue's rows.
#include "kestrel/settings/offers.h"

#include <fmt/core.h>

#include "kestrel/failure.h"
#include "kestrel/settings/settings.h"

namespace cli {
namespace {

template <typename Wanted>
tools::Offer Keys(Wanted isWanted) {
    tools::Offer offer;
    for (const catalogue::Row& row : catalogue::Rows())
        if (isWanted(row)) offer.words.push_back({std::string(row.name), std::string(row.about)});
    return offer;
}

std::vector<tools::Explained> ValueWords(const catalogue::Row& row) {
    switch (FormOf(row)) {
        case ValueForm::Bool:
            return {{"yes", {}}, {"no", {}}};
        case ValueForm::Integer:
            return {
                {std::to_string(row.lowest), fmt::format("lowest of {} to {}", row.lowest, row.highest)},
                {std::to_string(row.highest), fmt::format("highest of {} to {}", row.lowest, row.highest)}};
        case ValueForm::Word: {
            std::vector<tools::Explained> words;
            for (const catalogue::EnumEntry& entry : row.words)
                words.push_back({entry.name, {}});
            return words;
        }
        case ValueForm::Text:
        case ValueForm::Address:
            break;
    }
    return {};
}

}  // namespace

tools::Offer OfferReadable(const std::vector<std::string>&) {
    return Keys([](const catalogue::Row& row) { return row.CanRead(); });
}
tools::Offer OfferWritable(const std::vector<std::string>&) {
    return Keys([](const catalogue::Row& row) { return row.CanWrite(); });
}
tools::Offer OfferSettings(const std::vector<std::string>&) {
    return Keys([](const catalogue::Row&) { return true; });
}

tools::Offer OfferValues(const catalogue::Row& row) {
    const std::string allowed = FormOf(row) == ValueForm::Integer
                                    ? fmt::format("{} to {}", row.lowest, row.highest)
                                    : AllowedValues(row);
    return {ValueWords(row), fmt::format("{}: {}", row.about, allowed)};
}

tools::Offer OfferValuesOfKey(const std::vector<std::string>& before) {
    try {
        return OfferValues(FindWritableSetting(before.front()));
    } catch (const Failure& failure) {
        return {{}, failure.text};
    }
}

}  // namespace cli
