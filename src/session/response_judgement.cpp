// The numbers and what they stand for are rows of the public header; the commonest comes first.
#include "session/response_judgement.h"

#include <algorithm>
#include <iterator>

#include "kestrel/sdk_errors.h"

namespace session {
namespace {

struct Judgement {
    uint32_t first;
    uint32_t last;
    uint32_t error;
};
#define JUDGEMENT(first, last, error, name, text, advice) {first, last, error},
// The last row has every number.
constexpr Judgement kJudgements[] = {KESTREL_SDK_RESPONSES(JUDGEMENT)};
#undef JUDGEMENT

}  // namespace

uint32_t ErrorOfResponse(uint32_t number) {
    return std::find_if(std::begin(kJudgements), std::end(kJudgements),
                        [number](const Judgement& judgement) {
                            return number >= judgement.first && number <= judgement.last;
                        })
        ->error;
}

}  // namespace session
