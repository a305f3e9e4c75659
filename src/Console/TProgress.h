#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "Console/TErrorCurve.h"

namespace kiln {

// Shows on a terminal how far a command has come: one line, from half a second on, written anew ten
// times a second and gone at the end; beneath it, where a training is to be watched, the curve of
// its errors, drawn once a second. A thread of its own draws it, so that whoever works has nothing
// to do but to store where he stands. Where the system has no thread to give nothing is shown.
class TProgress {
 public:
  // Draws on an open descriptor of a terminal, which stays its owner's.
  explicit TProgress(int descriptor);
  ~TProgress();

  TProgress(const TProgress&) = delete;
  TProgress& operator=(const TProgress&) = delete;

  // A command begins, or ends.
  void Begin(std::string_view line);
  void End();

  // The command has come to this line of a script.
  void EnterLine(const std::string& path, std::int64_t number, std::string_view line);

  // A training has done so many epochs or generations, and its error.
  void Step(int done, double error) {
    error_.store(error, std::memory_order_relaxed);
    done_.store(done, std::memory_order_relaxed);
  }

  // Calls `write` while the line is gone.
  void Interrupt(const std::function<void()>& write);

 private:
  using TClock = std::chrono::steady_clock;

  void Work();
  void Look();
  void StartLine(std::string_view line);
  std::string Place(std::size_t columns) const;
  std::string Text(std::size_t columns) const;
  void Draw();
  std::string Curve(std::size_t columns);
  void Erase();

  const int descriptor_;
  std::atomic<int> done_ = 0;
  std::atomic<double> error_ = 0.0;

  std::mutex mutex_;  // for all below
  std::condition_variable changed_;
  bool is_running_ = false;  // a command
  bool is_ending_ = false;   // the thread
  bool is_drawn_ = false;
  bool is_watched_ = false;  // the line wants a curve
  TErrorCurve curve_;
  TClock::time_point curve_drawn_;  // never where there is none to be seen
  TClock::time_point command_start_;
  TClock::time_point line_start_;
  std::string line_;              // that is carried out
  std::string script_;            // the path of the script that it stands in
  std::int64_t script_line_ = 0;  // its number there; 0 where it is not of a script

  std::thread thread_;  // if there is one; the last member, since it uses the others
};

}  // namespace kiln
