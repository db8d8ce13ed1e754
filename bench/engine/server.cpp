#include "engine/server.h"

#include <unistd.h>

#include <cstdio>
#include <sstream>
#include <stdexcept>
#include <string>

Server::Pipe::Pipe() {
    int files[2];
    if (pipe(files) != 0) throw std::runtime_error("no pipe");
    read = files[0];
    write = files[1];
}

Server::Pipe::~Pipe() {
    close(read);
}

Server::Server(const Contender& contender, const Place& place, bool onFirstProcessor)
    : process_([&] {
          dup2(output_.write, STDOUT_FILENO);
          close(output_.write);
          if (onFirstProcessor) KeepOnProcessor(0);
          contender.serve(place);
      }) {
    close(output_.write);
    ReadReadyLine(contender.name);
}

uint64_t Server::Time() const {
    uint64_t sum = 0;
    for (const pid_t id : ids_)
        sum += ProcessorTime(id);
    return sum;
}

// "ready" and the helpers' ids; a program may say something else behind it.
void Server::ReadReadyLine(const char* name) {
    char line[256] = {};
    if (read(output_.read, line, sizeof(line) - 1) <= 0)
        throw std::runtime_error(std::string("the server did not start: ") + name);
    ids_.push_back(process_.Id());
    std::istringstream words(line);
    std::string ready;
    words >> ready;
    for (pid_t id = 0; words >> id;)
        ids_.push_back(id);
}

void Ready(std::initializer_list<pid_t> helpers) {
    std::printf("ready");
    for (const pid_t id : helpers)
        std::printf(" %d", id);
    std::printf("\n");
    std::fflush(stdout);
}
