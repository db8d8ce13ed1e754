// A small machine over the characters: quotes may hold commas, line ends and doubled quotes.
#include "kestrel/text/csv.h"

#include <fmt/core.h>

#include <algorithm>

#include "kestrel/failure.h"
#include "kestrel/text/text.h"

namespace cli {
namespace {

class CsvReader final {
  public:
    explicit CsvReader(std::string_view text) : rest_(WithoutByteOrderMark(text)) {}

    std::vector<CsvRow> Read() {
        std::vector<CsvRow> rows;
        while (!rest_.empty()) {
            if (TakeLineEnd()) continue;
            rows.push_back(TakeRow());
        }
        return rows;
    }

  private:
    CsvRow TakeRow() {
        CsvRow row;
        do {
            row.push_back(rest_.starts_with('"') ? TakeQuoted() : TakePlain());
        } while (Take(","));
        if (!rest_.empty() && !TakeLineEnd()) Refuse("text follows a closing quote");
        return row;
    }

    std::string TakePlain() {
        const std::string_view field = rest_.substr(0, rest_.find_first_of(",\r\n\""));
        rest_.remove_prefix(field.size());
        if (rest_.starts_with('"')) Refuse("a quote stands inside a field that is not quoted");
        return std::string(field);
    }

    std::string TakeQuoted() {
        std::string field;
        const size_t opened = line_;
        rest_.remove_prefix(1);
        while (true) {
            const size_t quote = rest_.find('"');
            if (quote == std::string_view::npos) {
                line_ = opened;
                Refuse("a quote is opened and not closed");
            }
            field += rest_.substr(0, quote);
            line_ += static_cast<size_t>(std::count(rest_.begin(), rest_.begin() + quote, '\n'));
            rest_.remove_prefix(quote + 1);
            if (!Take("\"")) return field;
            field += '"';
        }
    }

    bool TakeLineEnd() {
        if (!Take("\r\n") && !Take("\n") && !Take("\r")) return false;
        ++line_;
        return true;
    }

    bool Take(std::string_view text) {
        if (!rest_.starts_with(text)) return false;
        rest_.remove_prefix(text.size());
        return true;
    }

    [[noreturn]] void Refuse(std::string_view what) const {
        throw ValueFailure(
            fmt::format("line {}: {}", line_, what),
            "put a field with commas, quotes or line ends into quotes and double the quotes in it");
    }

    std::string_view rest_;
    size_t line_ = 1;
};

}  // namespace

std::vector<CsvRow> ParseCsv(std::string_view text) {
    return CsvReader(text).Read();
}

std::string CsvLine(const CsvRow& row) {
    std::string line;
    for (const std::string& field : row) {
        if (&field != &row.front()) line += ',';
        if (field.find_first_of(",\"\r\n") == std::string::npos) {
            line += field;
            continue;
        }
        line += '"';
        for (const char c : field) {
            if (c == '"') line += '"';
            line += c;
        }
        line += '"';
    }
    return line + "\r\n";
}

}  // namespace cli
