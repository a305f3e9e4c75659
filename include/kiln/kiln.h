#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

// Kiln inside another program. This is all of the library that is promised to stay.
namespace kiln {

// A session: what is typed at the console, as calls. A process may have several, each with objects
// of its own, and threads may take turns; but one session at a time carries out a command, since
// all share a generator of random numbers. A session that has been moved from may only be assigned
// to or destroyed.
class TSession {
 public:
  struct TReply {
    bool ok;           // whether the command succeeded
    std::string text;  // its value, empty where it has none, or what was wrong
  };

  // Follows a training: called after each epoch or generation, counted from 0, with the error that
  // it ended with. Training goes on as long as it returns true. Must neither throw nor call the
  // session.
  using TObserver = std::function<bool(int step, double error)>;

  // Takes what Kiln has to say besides replies, such as warnings: a line each, without its end.
  using TListener = std::function<void(std::string_view line)>;

  TSession();
  ~TSession();

  TSession(TSession&& other) noexcept;
  TSession& operator=(TSession&& other) noexcept;

  // Carries out a command, "create MLP alias net ..."; see the reference of commands. Whatever is
  // wrong with it is in the reply, and has changed nothing; nothing is thrown.
  TReply Execute(std::string_view command);

  // From now on refuses commands with anything odd in them, such as a tag that there is not.
  void BeStrict();

  void SetObserver(TObserver observer);

  // For all sessions: how many threads share large work, from 1, as at first, to 1024; other
  // numbers count as the nearest of these. Results are the same for any number. REQUIRES: no
  // session is carrying out a command.
  static void SetThreads(int threads);

  // For all sessions; without a listener such lines go to the standard output.
  static void SetListener(TListener listener);

 private:
  class TImplementation;
  std::unique_ptr<TImplementation> implementation_;
};

// The version of the library, "0.9".
std::string_view Version();

}  // namespace kiln
