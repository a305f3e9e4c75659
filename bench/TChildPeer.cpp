#include "TChildPeer.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

namespace kiln {

namespace {

// Closed in every process that becomes another program: a peer must not hold the ends of others.
struct TPipe {
  TPipe() {
    if (pipe2(ends, O_CLOEXEC) != 0) {
      throw std::system_error(errno, std::generic_category(), "pipe");
    }
  }
  int ends[2];  // to read from, to write to
};

[[noreturn]] void Become(const std::vector<std::string>& command) {
  std::vector<char*> arguments;
  for (const std::string& word : command) arguments.push_back(const_cast<char*>(word.c_str()));
  arguments.push_back(nullptr);
  execvp(arguments.front(), arguments.data());
  _exit(127);
}

}  // namespace

TChildPeer::TChildPeer(const std::vector<std::string>& command) {
  const TPipe requests;
  const TPipe answers;
  process_ = fork();
  if (process_ < 0) throw std::system_error(errno, std::generic_category(), "fork");
  if (process_ == 0) {
    dup2(requests.ends[0], STDIN_FILENO);
    dup2(answers.ends[1], STDOUT_FILENO);
    Become(command);
  }
  close(requests.ends[0]);
  close(answers.ends[1]);
  requests_ = fdopen(requests.ends[1], "w");
  answers_ = fdopen(answers.ends[0], "r");
}

TChildPeer::~TChildPeer() {
  std::fclose(requests_);
  std::fclose(answers_);
  waitpid(process_, nullptr, 0);
}

double TChildPeer::Ask(const std::string& request) {
  std::fprintf(requests_, "%s\n", request.c_str());
  std::fflush(requests_);
  char answer[64];
  double seconds = 0.0;
  if (std::fgets(answer, sizeof answer, answers_) == nullptr ||
      std::sscanf(answer, "%lf", &seconds) != 1) {
    throw std::runtime_error("no answer to: " + request);
  }
  return seconds;
}

}  // namespace kiln
