// Durations counted in classes of less than one per cent of their value, in memory that never grows: samples
// kept one by one would fault pages in while others are taken.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

class Histogram {
  public:
    void Add(uint64_t nanoseconds) {
        ++counts_[Class(nanoseconds)];
        ++total_;
    }

    void Add(const Histogram& other) {
        for (size_t i = 0; i < kClasses; ++i)
            counts_[i] += other.counts_[i];
        total_ += other.total_;
    }

    [[nodiscard]] uint64_t Total() const { return total_; }

    /// The duration in nanoseconds that `part` of all samples do not exceed.
    [[nodiscard]] double Quantile(double part) const {
        const auto wanted = static_cast<uint64_t>(part * static_cast<double>(total_));
        uint64_t passed = 0;
        for (size_t i = 0; i < kClasses; ++i) {
            passed += counts_[i];
            if (passed > wanted) return Middle(i);
        }
        return 0;
    }

  private:
    static constexpr unsigned kExactBits = 8;
    static constexpr size_t kExact = 1u << kExactBits;  // below it every nanosecond is a class
    static constexpr size_t kPerOctave = kExact / 2;
    static constexpr unsigned kOctaves = 40;
    static constexpr size_t kClasses = kExact + kPerOctave * kOctaves;

    static size_t Class(uint64_t value) {
        if (value < kExact) return value;
        const auto shift = static_cast<unsigned>(std::bit_width(value)) - kExactBits;
        if (shift > kOctaves) return kClasses - 1;
        return kExact + (shift - 1) * kPerOctave + ((value >> shift) - kPerOctave);
    }

    static double Middle(size_t index) {
        if (index < kExact) return static_cast<double>(index);
        const size_t shift = (index - kExact) / kPerOctave + 1;
        const size_t low = ((index - kExact) % kPerOctave + kPerOctave) << shift;
        return static_cast<double>(low) + static_cast<double>(size_t{1} << shift) / 2;
    }

    std::array<uint64_t, kClasses> counts_{};
    uint64_t total_ = 0;
};
