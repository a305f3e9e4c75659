#include "Program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <thread>
#include <utility>

namespace kiln {

namespace {

constexpr std::size_t kLongestAnswer = std::size_t{1} << 24;  // in bytes

}  // namespace

Program::Program(const std::filesystem::path& executable, std::string prompt)
    : prompt_(std::move(prompt)) {
  int input[2];
  int output[2];
  if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0)
    throw std::runtime_error("cannot make a pipe");
  pid_ = fork();
  if (pid_ < 0) throw std::runtime_error("cannot start a process");
  if (pid_ == 0) {
    setpgid(0, 0);  // a group of its own, so that its children can be ended with it
    if (dup2(input[0], STDIN_FILENO) >= 0 && dup2(output[1], STDOUT_FILENO) >= 0)
      execl(executable.c_str(), executable.c_str(), nullptr);
    _exit(127);
  }
  setpgid(pid_, pid_);  // here too: whichever of the two processes comes first
  close(input[0]);
  close(output[1]);
  input_ = input[1];
  output_ = output[0];
  fcntl(input_, F_SETFL, O_NONBLOCK);  // a program that does not read must not make us wait
  std::signal(SIGPIPE, SIG_IGN);
}

Program::~Program() {
  kill(-pid_, SIGKILL);
  if (!reaped_) waitpid(pid_, nullptr, 0);
  CloseInput();
  close(output_);
}

void Program::Type(std::string line) {
  line += '\n';
  if (write(input_, line.data(), line.size()) != static_cast<ssize_t>(line.size()))
    throw std::runtime_error("the program does not read its input");
}

std::string Program::ReadAnswer() {
  std::string answer;
  const auto deadline = Clock::now() + kPatience;
  while (!at_end_ && !answer.ends_with(prompt_)) ReadSome(answer, deadline);
  if (!at_end_) answer.resize(answer.size() - prompt_.size());
  return answer;
}

void Program::ReadSome(std::string& text, Clock::time_point deadline) {
  using std::chrono::milliseconds;
  const auto left = std::chrono::duration_cast<milliseconds>(deadline - Clock::now()).count();
  pollfd ready{output_, POLLIN, 0};
  if (left <= 0 || text.size() > kLongestAnswer || poll(&ready, 1, static_cast<int>(left)) <= 0)
    throw std::runtime_error("no prompt follows this answer:\n" + text.substr(0, 4096));
  char buffer[4096];
  const ssize_t count = read(output_, buffer, sizeof buffer);
  at_end_ = count <= 0;
  if (!at_end_) text.append(buffer, static_cast<std::size_t>(count));
}

void Program::CloseInput() {
  if (input_ >= 0) close(input_);
  input_ = -1;
}

std::string Program::AwaitEnd() {
  int status = 0;
  for (const auto deadline = Clock::now() + kPatience; waitpid(pid_, &status, WNOHANG) == 0;) {
    if (Clock::now() > deadline) return "still running";
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  reaped_ = true;
  return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                             : "status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace kiln
