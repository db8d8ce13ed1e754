// One contender in one case: a server process, its clients, and what their exchanges took.
#pragma once

#include <string>

#include "engine/contender.h"

struct Case {
    char letter;  // in `Contender::cases`
    const char* name;
    unsigned clients;
    unsigned pauseUs;   // between the beginnings of two requests; 0: one after the other
    bool oneProcessor;  // both sides are kept on the first one; otherwise the system places them
    double seconds;
    double shortSeconds;  // for peers, and for each limit that is measured just before
};

struct Figures {
    double medianUs = 0;
    double p99Us = 0;
    double opsPerSecond = 0;
    double cpuUs = 0;     // both sides, for each exchange
    double fairness = 1;  // the most served client's exchanges to the least served one's
};

/// Throws when there is none of that name.
const Case& FindCase(const std::string& name);
std::span<const Case> Cases();

/// Throws when an answer is wrong.
Figures Measure(const Contender& contender, const Case& how, double seconds);
