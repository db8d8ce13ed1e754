// The same facts read from a printer's reply and from JSON, beside the mere copying of the reply's bytes.
// A framer is made for each reply, as the library does.
#include <benchmark/benchmark.h>
#include <simdjson.h>

#include <cstdlib>
#include <cstring>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "opl/opl_parser.h"

namespace {

constexpr size_t kListBytes = 60'000;
constexpr size_t kBlockBytes = 65'000;
constexpr int kRedials = 3;

struct Texts {
    std::string reply;
    std::string json;
    size_t facts;  // what a reader must find: a number, items, bytes of a block
};

Texts Setting() {
    return {"0000,DeviceSettings.Fax.Redials=3;", R"({"response":0,"DeviceSettings.Fax.Redials":3})",
            kRedials};
}

Texts List() {
    Texts texts{"0101,", R"({"response":101,"networks":[)", 0};
    while (texts.reply.size() < kListBytes) {
        const std::string index = std::to_string(texts.facts++);
        if (texts.facts > 1) {
            texts.reply += '&';
            texts.json += ',';
        }
        texts.reply += "GetAccessPoints[" + index + "].SSID=workshop " + index;
        texts.json += R"({"ssid":"workshop )" + index + "\"}";
    }
    texts.reply += ';';
    texts.json += "]}";
    return texts;
}

// JSON has no bytes; they travel as base64, four characters for three bytes.
Texts Block() {
    return {"0000,ZRGetStatus#65000=" + std::string(kBlockBytes, 'Z') + ';',
            R"({"response":0,"block":")" + std::string((kBlockBytes + 2) / 3 * 4, 'W') + "\"}", kBlockBytes};
}

void Check(bool right) {
    if (right) return;
    std::fprintf(stderr, "parsers: a wrong answer\n");
    std::abort();
}

std::string_view Frame(opl::OPLParser& framer, const std::string& reply) {
    const char* message = nullptr;
    uint32_t length = 0;
    Check(framer.ParseStream(reply.data(), static_cast<uint32_t>(reply.size()), message, length) ==
          opl::ParseResult::MessageReady);
    return {message, length};
}

// ---- what is measured: each takes the texts and reads the facts once ----

class Copy {
  public:
    void Read(const Texts& texts) {
        copy_.resize(texts.reply.size());
        std::memcpy(copy_.data(), texts.reply.data(), texts.reply.size());
        benchmark::DoNotOptimize(copy_.data());
        benchmark::ClobberMemory();
    }

  private:
    std::string copy_;
};

struct Framing {
    void Read(const Texts& texts) {
        opl::OPLParser framer;
        const std::string_view message = Frame(framer, texts.reply);
        benchmark::DoNotOptimize(message.data());
        Check(message.size() == texts.reply.size());
    }
};

struct OwnSetting {
    void Read(const Texts& texts) {
        opl::OPLParser framer;
        int32_t value = 0;
        Check(opl::OPLParser::GetIntValue(Frame(framer, texts.reply), value) &&
              value == static_cast<int32_t>(texts.facts));
    }
};

class OwnList {
  public:
    void Read(const Texts& texts) {
        opl::OPLParser framer;
        Check(opl::OPLParser::SplitList(Frame(framer, texts.reply), items_) &&
              items_.views.size() == texts.facts);
    }

  private:
    opl::ListItems items_;
};

class OwnBlock {
  public:
    void Read(const Texts& texts) {
        opl::OPLParser framer;
        Check(opl::OPLParser::GetBinaryValue(Frame(framer, texts.reply), bytes_) &&
              bytes_.size() == texts.facts);
    }

  private:
    std::vector<uint8_t> bytes_;
};

template <typename Take>
class Simd {
  public:
    void Read(const Texts& texts) {
        if (padded_.size() == 0) padded_ = simdjson::padded_string(texts.json);
        auto document = parser_.iterate(padded_);
        Check(Take()(document.value_unsafe(), texts.facts));
    }

  private:
    simdjson::ondemand::parser parser_;
    simdjson::padded_string padded_;
};

using SimdDocument = simdjson::ondemand::document;

struct SimdSetting {
    bool operator()(SimdDocument& document, size_t facts) const {
        return uint64_t(document["DeviceSettings.Fax.Redials"]) == facts;
    }
};

struct SimdList {
    bool operator()(SimdDocument& document, size_t facts) const {
        size_t items = 0;
        for (auto network : document["networks"]) {
            const std::string_view name = network["ssid"];
            items += !name.empty();
        }
        return items == facts;
    }
};

struct SimdBlock {
    bool operator()(SimdDocument& document, size_t facts) const {
        const std::string_view text = document["block"];
        return text.size() == (facts + 2) / 3 * 4;
    }
};

using Json = nlohmann::json;

template <typename Take>
struct Nlohmann {
    void Read(const Texts& texts) { Check(Take()(Json::parse(texts.json), texts.facts)); }
};

struct NlohmannSetting {
    bool operator()(const Json& json, size_t facts) const {
        return json["DeviceSettings.Fax.Redials"].get<size_t>() == facts;
    }
};

struct NlohmannList {
    bool operator()(const Json& json, size_t facts) const { return json["networks"].size() == facts; }
};

struct NlohmannBlock {
    bool operator()(const Json& json, size_t facts) const {
        return json["block"].get_ref<const std::string&>().size() == (facts + 2) / 3 * 4;
    }
};

template <typename Reader>
void Measure(benchmark::State& state, const Texts& texts) {
    Reader reader;
    for (auto _ : state)
        reader.Read(texts);
}

template <typename... Readers>
void Register(const std::string& fact, const Texts& texts, std::initializer_list<const char*> names) {
    const char* const* name = names.begin();
    (benchmark::RegisterBenchmark((fact + '/' + *name++).c_str(), Measure<Readers>, texts), ...);
}

}  // namespace

int main(int argc, char** argv) {
    Register<Copy, OwnSetting, Simd<SimdSetting>, Nlohmann<NlohmannSetting>>(
        "34-byte reply", Setting(), {"memcpy", "framed and read", "simdjson", "nlohmann-json"});
    Register<Copy, Framing, OwnList, Simd<SimdList>, Nlohmann<NlohmannList>>(
        "60 KB list", List(), {"memcpy", "framed", "framed and split", "simdjson", "nlohmann-json"});
    Register<Copy, Framing, OwnBlock, Simd<SimdBlock>, Nlohmann<NlohmannBlock>>(
        "65,000-byte block", Block(), {"memcpy", "framed", "framed and read", "simdjson", "nlohmann-json"});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
