#include "Console/TProgress.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <new>
#include <system_error>

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
constexpr char kEraseBelow[] = "\r\033[J";  // this line and all below

// Starts a thread that gets no signals: they shall interrupt the thread that works. Where the
// system gives no more threads it returns none.
template <typename TFunction>
std::thread ThreadWithoutSignals(TFunction function) {
  const TSignalsBlocked blocked;
  try {
    return std::thread(function);
  } catch (const std::system_error&) {
    return {};
  }
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

// What cannot be drawn is not missed.
void Write(int descriptor, std::string_view text) {
  [[maybe_unused]] const ssize_t written = write(descriptor, text.data(), text.size());
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
  if (thread_.joinable()) thread_.join();
}

void TProgress::Begin(std::string_view line) {
  {
    const std::lock_guard lock(mutex_);
    script_line_ = 0;
    StartLine(line);
    command_start_ = line_start_;
    is_running_ = true;
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
  is_watched_ = TCommandLine(line_).BooleanOfTag("watch").value;
  curve_.Clear();
}

void TProgress::Work() {
  std::unique_lock lock(mutex_);
  while (!is_ending_) {
    if (!is_running_) {
      changed_.wait(lock);
      continue;
    }
    changed_.wait_for(lock, kRepeat);
    try {
      Look();
    } catch (const std::bad_alloc&) {  // the work may go on, and is drawn the next time
    }
  }
}

void TProgress::Look() {
  curve_.Add(done_.load(std::memory_order_relaxed), error_.load(std::memory_order_relaxed));
  if (is_running_ && TClock::now() - command_start_ >= kPatience) Draw();
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
  std::string text = kEraseLine + std::string(Screen::Fitting(Text(columns), columns));
  if (is_watched_) text += Curve(columns);
  is_drawn_ = true;
  Write(descriptor_, text);
}

// What draws the curve on the lines below and comes back to this one; nothing between its seconds.
std::string TProgress::Curve(std::size_t columns) {
  constexpr auto kPause = std::chrono::seconds(1);
  constexpr std::size_t kHighest = 14;
  constexpr std::size_t kOthers = 2;  // lines of the terminal that stay free
  if (TClock::now() - curve_drawn_ < kPause) return {};
  const std::size_t lines =
      std::min(std::max(Screen::Lines(descriptor_), kOthers) - kOthers, kHighest);
  const std::string drawing = curve_.Draw(columns, lines);
  if (drawing.empty()) return {};
  curve_drawn_ = TClock::now();
  std::string text = "\r\n\033[K";
  for (const char c : drawing.substr(0, drawing.size() - 1)) {
    if (c == '\n')
      text += "\r\n\033[K";
    else
      text += c;
  }
  return text + "\r\033[" + std::to_string(lines) + "A";
}

void TProgress::Erase() {
  if (!is_drawn_) return;
  is_drawn_ = false;
  Write(descriptor_, curve_drawn_ == TClock::time_point() ? kEraseLine : kEraseBelow);
  curve_drawn_ = {};
}

}  // namespace kiln
