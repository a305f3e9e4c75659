#include "Console/TProgress.h"

#include <unistd.h>

#include <cmath>
#include <filesystem>

#include "Console/Screen.h"
#include "Interpreter/TCommandLine.h"
#include "Shared/NumberFormat.h"
#include "Shared/TSignalsBlocked.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

constexpr auto kPatience = std::chrono::milliseconds(500);
constexpr auto kRepeat = std::chrono::milliseconds(100);
constexpr char kEraseLine[] = "\r\033[K";

// They shall interrupt the thread that works.
template <typename TFunction>
std::thread ThreadWithoutSignals(TFunction function) {
  const TSignalsBlocked blocked;
  return std::thread(function);
}

// "12 s", "3 min", "5 h".
std::string Duration(double seconds) {
  constexpr double kMinute = 60.0;
  constexpr double kHour = 3600.0;
  if (seconds < 2 * kMinute) return FormatFixed(std::ceil(seconds), 0) + " s";
  if (seconds < 2 * kHour) return FormatFixed(seconds / kMinute, 0) + " min";
  return FormatFixed(seconds / kHour, 0) + " h";
}

double SecondsSince(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

}  // namespace

TProgress::TProgress(int descriptor)
    : descriptor_(descriptor), thread_(ThreadWithoutSignals([this] { Work(); })) {}

TProgress::~TProgress() {
  {
    const std::lock_guard lock(mutex_);
    is_ending_ = true;
  }
  changed_.notify_one();
  thread_.join();
}

void TProgress::Begin(std::string_view line) {
  {
    const std::lock_guard lock(mutex_);
    is_running_ = true;
    script_line_ = 0;
    StartLine(line);
    command_start_ = line_start_;
  }
  changed_.notify_one();
}

void TProgress::End() {
  const std::lock_guard lock(mutex_);
  is_running_ = false;
  Erase();
}

void TProgress::EnterLine(const std::string& path, std::int64_t number, std::string_view line) {
  const std::lock_guard lock(mutex_);
  script_ = path;
  script_line_ = number;
  StartLine(line);
}

void TProgress::Interrupt(const std::function<void()>& write) {
  const std::lock_guard lock(mutex_);
  Erase();
  write();
}

// REQUIRES of this and all below: the mutex is held.
void TProgress::StartLine(std::string_view line) {
  constexpr std::size_t kEnough = 1000;  // to find the tags of a training in
  line_.assign(line.substr(0, kEnough));
  line_start_ = TClock::now();
  done_ = 0;
}

void TProgress::Work() {
  std::unique_lock lock(mutex_);
  while (!is_ending_) {
    if (!is_running_) {
      changed_.wait(lock);
      continue;
    }
    changed_.wait_for(lock, kRepeat);
    if (is_running_ && TClock::now() - command_start_ >= kPatience) Draw();
  }
}

// The place of the line, where it is one of a script: at most half of what there is room for.
std::string TProgress::Place(std::size_t columns) const {
  if (script_line_ == 0) return {};
  const std::string name = std::filesystem::path(script_).filename();
  return std::string(Screen::Fitting(name, columns / 2))
      .append(" line ")
      .append(std::to_string(script_line_))
      .append("   ");
}

std::string TProgress::Text(std::size_t columns) const {
  const TCommandLine line(line_);
  const int done = done_.load(std::memory_order_relaxed);
  const double seconds = SecondsSince(line_start_);
  std::string text = Place(columns);
  if (done == 0) return text.append(line.CommandWord()).append("   ").append(Duration(seconds));

  const bool breeds = line.Word("generations").code == TReadCode::kRead;
  const std::string_view unit = breeds ? "generation" : "epoch";
  const std::int64_t all = line.Long(breeds ? "generations" : "epochs").value;
  text.append(unit).append(" ").append(std::to_string(done));
  if (all > 0) text.append(" of ").append(std::to_string(all));
  text.append("   error ").append(FormatGeneral(error_.load(std::memory_order_relaxed), 3));
  if (all >= done) {
    const double left = seconds / done * static_cast<double>(all - done);
    text.append("   ").append(Duration(left)).append(" left");
  }
  return text;
}

void TProgress::Draw() {
  const std::size_t columns = Screen::Columns(descriptor_) - 1;
  const std::string text = kEraseLine + std::string(Screen::Fitting(Text(columns), columns));
  is_drawn_ = true;
  // What cannot be drawn is not missed.
  [[maybe_unused]] const ssize_t written = write(descriptor_, text.data(), text.size());
}

void TProgress::Erase() {
  if (!is_drawn_) return;
  is_drawn_ = false;
  [[maybe_unused]] const ssize_t written = write(descriptor_, kEraseLine, sizeof kEraseLine - 1);
}

}  // namespace kiln
