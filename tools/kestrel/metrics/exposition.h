// The text in which monitoring systems read metrics.
#pragma once

#include <string>
#include <string_view>

#include "exporter/exporter.h"

namespace cli::metrics {

using exporter::Format;

/// Info is what never changes as a number: labels, and the value 1.
enum class Kind { Gauge, Counter, Histogram, Info };

/// `name` without the ending that the kind's samples have: "_total" of a counter, "_info".
struct Family final {
    std::string_view name;
    Kind kind = Kind::Gauge;
    std::string_view help;
};

/// `name="value"`, escaped; to be joined by commas.
[[nodiscard]] std::string LabelText(std::string_view name, std::string_view value);

/// All samples of a family stand together, below their heading.
class Exposition final {
  public:
    explicit Exposition(Format format) : format_(format) {}

    void Begin(const Family& family);
    /// Of the family begun last. `labels` as LabelText makes them; `ending` behind the name: "_bucket".
    void Sample(std::string_view labels, double value, std::string_view ending = {});

    /// The whole text, with the end that the format wants.
    [[nodiscard]] std::string Take() &&;

  private:
    Format format_;
    Family family_;
    std::string text_;
};

}  // namespace cli::metrics
