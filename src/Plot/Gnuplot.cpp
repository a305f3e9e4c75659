#include "Plot/Gnuplot.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>
#include <utility>

#include "Shared/Interruption.h"
#include "Shared/TDescriptor.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

[[noreturn]] void Fail(int reason = errno) {
  throw TGnuplotError("cannot run gnuplot: " + std::generic_category().message(reason));
}

// Two ends of a line between processes, both closed on exec. Writing to a socket whose other end is
// gone need not be a signal.
std::pair<TDescriptor, TDescriptor> MakeSockets() {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) Fail();
  return {TDescriptor(ends[0]), TDescriptor(ends[1])};
}

// A running gnuplot. At the latest the destructor ends it.
class TProcess {
 public:
  TProcess() {
    auto [script, its_input] = MakeSockets();
    auto [drawing, its_output] = MakeSockets();
    auto [complaints, its_errors] = MakeSockets();
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, its_input.Number(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, its_output.Number(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, its_errors.Number(), STDERR_FILENO);
    std::string name = "gnuplot";
    std::string option = "-d";  // nobody's settings
    char* arguments[] = {name.data(), option.data(), nullptr};
    const int fault = posix_spawnp(&process_, name.c_str(), &actions, nullptr, arguments, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (fault == ENOENT) throw TGnuplotMissing();
    if (fault != 0) Fail(fault);
    script_ = std::move(script);
    drawing_ = std::move(drawing);
    complaints_ = std::move(complaints);
  }

  ~TProcess() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    while (waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }

  TProcess(const TProcess&) = delete;
  TProcess& operator=(const TProcess&) = delete;

  // Feeds it the script and takes what it says, until it says nothing more.
  void Converse(std::string_view script, const std::function<void(std::string_view)>& take) {
    while (drawing_.IsOpen() || complaints_.IsOpen()) {
      if (script.empty()) script_.Close();
      std::array<pollfd, 3> ends = {{{script_.Number(), POLLOUT, 0},
                                     {drawing_.Number(), POLLIN, 0},
                                     {complaints_.Number(), POLLIN, 0}}};
      WaitFor(ends);
      if (ends[0].revents != 0) Feed(script);
      if (ends[1].revents != 0) TakeFrom(drawing_, take);
      if (ends[2].revents != 0) {
        TakeFrom(complaints_, [this](std::string_view piece) { complaint_ += piece; });
        if (complaint_.size() > kEnough) complaint_.resize(kEnough);
      }
    }
  }

  // Waits for its end and returns its status.
  int End() {
    int status = 0;
    while (waitpid(process_, &status, 0) < 0 && errno == EINTR) Interruption::Check();
    process_ = 0;
    return status;
  }

  // The last line of its complaints.
  std::string Complaint() const {
    const std::size_t end = complaint_.find_last_not_of(" \n");
    if (end == complaint_.npos) return {};
    const std::size_t line_break = complaint_.rfind('\n', end);
    const std::size_t begin = line_break == complaint_.npos ? 0 : line_break + 1;
    return std::string(TrimBlanks(std::string_view(complaint_).substr(begin, end - begin + 1)));
  }

 private:
  static constexpr std::size_t kEnough = 4000;  // characters of complaints

  // A request can come just before the wait, which it would then not end.
  template <std::size_t kSize>
  static void WaitFor(std::array<pollfd, kSize>& ends) {
    constexpr int kMoment = 100;  // milliseconds
    for (;;) {
      Interruption::Check();
      const int ready = poll(ends.data(), ends.size(), kMoment);
      if (ready > 0) return;
      if (ready < 0 && errno != EINTR) Fail();
    }
  }

  // What it does not want to read is its own business: its status will tell.
  void Feed(std::string_view& script) {
    const ssize_t count =
        send(script_.Number(), script.data(), script.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    if (count >= 0) {
      script.remove_prefix(static_cast<std::size_t>(count));
    } else if (errno != EAGAIN && errno != EINTR) {
      script = {};
    }
  }

  template <typename TTake>
  static void TakeFrom(TDescriptor& end, const TTake& take) {
    std::array<char, 16384> piece = {};
    const ssize_t count = ReadSome(end.Number(), piece.data(), piece.size());
    if (count > 0) {
      take(std::string_view(piece.data(), static_cast<std::size_t>(count)));
    } else {
      end.Close();
    }
  }

  pid_t process_ = 0;
  TDescriptor script_;
  TDescriptor drawing_;
  TDescriptor complaints_;
  std::string complaint_;
};

}  // namespace

void RunGnuplot(std::string_view script, const std::function<void(std::string_view piece)>& take) {
  TProcess gnuplot;
  bool has_drawn = false;
  gnuplot.Converse(script, [&](std::string_view piece) {
    has_drawn = true;
    take(piece);
  });
  const int status = gnuplot.End();
  if (status == 0 && has_drawn) return;
  Interruption::Check();
  if (WIFSIGNALED(status)) {
    throw TGnuplotError(std::string("gnuplot was ended by a signal: ") +
                        strsignal(WTERMSIG(status)));
  }
  const std::string complaint = gnuplot.Complaint();
  throw TGnuplotError(complaint.empty() ? "gnuplot has drawn nothing"
                                        : "gnuplot failed: " + complaint);
}

}  // namespace kiln
