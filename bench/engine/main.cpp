// exchanges list              every contender and case, one pair a line
// exchanges measure ID CASE   one line of JSON, the limits measured just before included
#include <cstdio>
#include <cstring>
#include <exception>
#include <string>

#include "engine/contender.h"
#include "engine/measurement.h"

namespace {

void List() {
    for (const Case& how : Cases())
        for (const Contender* contender : Contenders())
            if (std::strchr(contender->cases, how.letter) != nullptr)
                std::printf("%s\t%s\n", contender->id, how.name);
}

void PrintFigures(const char* name, const Figures& figures) {
    std::printf(
        ", \"%s\": {\"median_us\": %.4f, \"p99_us\": %.4f, \"ops_per_s\": %.1f, \"cpu_us\": %.4f, "
        "\"fairness\": %.3f}",
        name, figures.medianUs, figures.p99Us, figures.opsPerSecond, figures.cpuUs, figures.fairness);
}

void MeasureRow(const Contender& contender, const Case& how) {
    const Figures polling = Measure(FindContender(contender.pollingLimit), how, how.shortSeconds);
    const Figures sleeping = Measure(FindContender(contender.sleepingLimit), how, how.shortSeconds);
    const Figures own = Measure(contender, how, contender.isPeer ? how.shortSeconds : how.seconds);
    std::printf("{\"id\": \"%s\", \"name\": \"%s\", \"case\": \"%s\"", contender.id, contender.name,
                how.name);
    PrintFigures("own", own);
    PrintFigures("polling", polling);
    PrintFigures("sleeping", sleeping);
    std::printf("}\n");
}

}  // namespace

int main(int argc, char** argv) {
    try {
        if (argc == 2 && std::string(argv[1]) == "list") {
            List();
            return 0;
        }
        if (argc == 4 && std::string(argv[1]) == "measure") {
            MeasureRow(FindContender(argv[2]), FindCase(argv[3]));
            return 0;
        }
        std::fprintf(stderr, "usage: exchanges list | exchanges measure ID CASE\n");
        return 2;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "exchanges: %s\n", failure.what());
        return 1;
    }
}
