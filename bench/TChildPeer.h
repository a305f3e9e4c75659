#pragma once

#include <cstdio>
#include <string>
#include <vector>

namespace kiln {

// A peer that lives in another interpreter: a process that reads one request a line and answers
// each with a line that holds the seconds it took. It is started once, so that its own start is in
// no measurement.
class TChildPeer {
 public:
  // Starts the program `command` names, with the arguments behind it. Throws std::system_error.
  explicit TChildPeer(const std::vector<std::string>& command);

  // Ends the process by ending its input.
  ~TChildPeer();
  TChildPeer(const TChildPeer&) = delete;
  TChildPeer& operator=(const TChildPeer&) = delete;

  // Throws std::runtime_error when anything but seconds comes back.
  double Ask(const std::string& request);

 private:
  int process_;
  std::FILE* requests_;
  std::FILE* answers_;
};

}  // namespace kiln
