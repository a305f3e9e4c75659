#include "Console/LineEditor.h"

#include <histedit.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <filesystem>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "Console/Completion.h"
#include "Console/Screen.h"
#include "Console/Signals.h"
#include "Interpreter/TLineReader.h"
#include "Shared/Interruption.h"
#include "Shared/Text.h"

namespace kiln {

namespace {

struct TEnd {
  void operator()(EditLine* editor) const { el_end(editor); }
  void operator()(History* history) const { history_end(history); }
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// --- The history -----------------------------------------------------------------------------

// Where it is kept; empty when there is no place. Makes the folder.
std::string HistoryPath() {
  const char* const state = std::getenv("XDG_STATE_HOME");
  const std::filesystem::path folder = std::filesystem::path(state ? state : "") / "kiln";
  std::error_code failure;
  if (folder.is_absolute()) std::filesystem::create_directories(folder, failure);
  if (folder.is_absolute() && !failure) return folder / "history";
  const char* const home = std::getenv("HOME");
  if (!home || !*home) return {};
  return std::string(home) + "/.kiln_history";
}

// The last lines of all sessions, in a file where there is a place for it.
class TLineHistory {
 public:
  TLineHistory();

  // Null when there is no memory for it; then nothing may be added.
  History* Get() const { return lines_.get(); }

  // Each line goes behind the others in the file at once: a session may end in many ways, and
  // several may write to one file.
  void Add(const std::string& line);

 private:
  using TLines = std::unique_ptr<History, TEnd>;

  static TLines UpTo(int size);

  static constexpr int kSize = 1000;
  TLines lines_;
  std::string path_;  // empty: there is no place
};

TLineHistory::TLines TLineHistory::UpTo(int size) {
  TLines lines(history_init());
  HistEvent event;
  if (lines) history(lines.get(), &event, H_SETSIZE, size);
  return lines;
}

TLineHistory::TLineHistory() : lines_(UpTo(kSize)), path_(HistoryPath()) {
  std::error_code fault;
  const std::filesystem::file_status place = status(std::filesystem::path(path_), fault);
  // Whoever wants no history may lead it to /dev/null, whose mode the library would change.
  if (exists(place) && !is_regular_file(place)) path_.clear();
  if (!lines_) return;
  HistEvent event;
  history(lines_.get(), &event, H_SETUNIQUE, 1);
  if (path_.empty()) return;
  const int count = history(lines_.get(), &event, H_LOAD, path_.c_str());
  // A file that is missing, no history or too long is written anew.
  if (count < 0 || count > kSize) history(lines_.get(), &event, H_SAVE, path_.c_str());
}

void TLineHistory::Add(const std::string& line) {
  HistEvent event;
  history(lines_.get(), &event, H_ENTER, line.c_str());
  if (path_.empty()) return;
  const std::unique_ptr<std::FILE, TEnd> file(std::fopen(path_.c_str(), "ae"));
  const TLines alone = UpTo(1);
  if (!file || !alone || std::fseek(file.get(), 0, SEEK_END) != 0) return;
  history(alone.get(), &event, H_ENTER, line.c_str());
  history(alone.get(), &event, H_SAVE_FP, file.get());
}

// --- Completion ------------------------------------------------------------------------------

// How many characters of the locale a text has; nothing where it holds what is none.
std::optional<int> Characters(const std::string& text) {
  const std::size_t count = std::mbstowcs(nullptr, text.c_str(), 0);
  if (count == static_cast<std::size_t>(-1)) return std::nullopt;
  return static_cast<int>(count);
}

// What all of the words begin with, in whole characters.
std::string CommonStart(const std::vector<std::string>& words) {
  std::string start = words.front();
  for (const std::string& word : words) {
    const auto different = std::ranges::mismatch(start, word).in1;
    start.erase(different, start.end());
  }
  while (!Characters(start)) start.pop_back();
  return start;
}

// Writes words in columns, without what would follow them.
void ShowWords(const std::vector<std::string>& words, std::ostream& out) {
  constexpr std::size_t kGap = 2;
  std::vector<std::string> shown;
  std::size_t widest = 0;
  for (const std::string& word : words) {
    shown.push_back(Printable(word.substr(0, word.find_last_not_of(" )") + 1)));
    widest = std::max(widest, Screen::Width(shown.back()) + kGap);
  }
  const std::size_t columns =
      std::max<std::size_t>((Screen::Columns(STDOUT_FILENO) - 1) / widest, 1);
  for (std::size_t i = 0; i < shown.size(); ++i) {
    if (i % columns == 0) out << '\n';
    out << shown[i] << std::string(widest - Screen::Width(shown[i]), ' ');
  }
  out << '\n' << std::flush;
}

// --- The editor ------------------------------------------------------------------------------

// Lines that a person types at a terminal: edited, completed by the tabulator key, and kept in a
// history that outlives the session.
class TLineEditor : public TLineSource {
 public:
  TLineEditor(const TInterpreter& interpreter, std::ostream& out);
  ~TLineEditor() override;

  // Whether the terminal can be edited on. If not, nothing else may be called.
  bool IsReady() const { return editor_ && history_.Get(); }

  bool Next(std::string_view prompt) override;
  std::string_view Line() const override { return line_; }
  std::string_view Fault() const override { return fault_; }

 private:
  static TLineEditor& Of(EditLine* editor);
  static int ReadCharacter(EditLine* editor, wchar_t* character);
  static unsigned char CompleteWord(EditLine* editor, int key);

  void SetUp();
  ssize_t ReadByte(char& byte);
  std::size_t RowsBefore(const char* place) const;
  void Redraw(Signals::TScreenChange change);
  void Drop();
  void Take(std::string_view text);
  unsigned char Complete();

  const TInterpreter& interpreter_;
  std::ostream& out_;
  TLineHistory history_;
  std::unique_ptr<EditLine, TEnd> editor_;
  std::string prompt_;
  std::string line_;
  std::string_view fault_;
  bool is_interrupted_ = false;
};

TLineEditor::TLineEditor(const TInterpreter& interpreter, std::ostream& out)
    : interpreter_(interpreter), out_(out) {
  std::setlocale(LC_CTYPE, "");  // the terminal's characters may have several bytes
  editor_.reset(el_init("kiln", stdin, stdout, stderr));
  if (editor_ && history_.Get()) SetUp();
}

TLineEditor::~TLineEditor() = default;

void TLineEditor::SetUp() {
  EditLine* const editor = editor_.get();
  el_set(editor, EL_CLIENTDATA, this);
  el_set(editor, EL_EDITOR, "emacs");
  el_set(
      editor, EL_PROMPT, +[](EditLine* of) { return Of(of).prompt_.data(); });
  el_set(editor, EL_GETCFN, ReadCharacter);
  el_set(editor, EL_HIST, history, history_.Get());
  el_set(editor, EL_ADDFN, "kiln-complete", "completes a word", CompleteWord);
  el_set(editor, EL_BIND, "^I", "kiln-complete", nullptr);
  el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);
}

TLineEditor& TLineEditor::Of(EditLine* editor) {
  void* self = nullptr;
  el_get(editor, EL_CLIENTDATA, &self);
  return *static_cast<TLineEditor*>(self);
}

// Reads on through signals, but for the wish to drop the line. Returns what read() does.
ssize_t TLineEditor::ReadByte(char& byte) {
  for (;;) {
    Signals::WaitForKey(STDIN_FILENO);
    const Signals::TScreenChange change = Signals::TakeScreenChange();
    if (change != Signals::TScreenChange::kNone) Redraw(change);
    if (Interruption::IsRequested()) {
      Drop();
      errno = EINTR;
      return -1;
    }
    if (change != Signals::TScreenChange::kNone) continue;
    const ssize_t count = read(STDIN_FILENO, &byte, 1);
    if (count >= 0 || errno != EINTR) return count;
  }
}

// Returns how many characters there were: 1, 0 at the end of the input, or -1.
int TLineEditor::ReadCharacter(EditLine* editor, wchar_t* character) {
  std::mbstate_t state = {};
  for (;;) {
    char byte = 0;
    const ssize_t count = Of(editor).ReadByte(byte);
    if (count <= 0) return static_cast<int>(count);
    const std::size_t length = std::mbrtowc(character, &byte, 1, &state);
    constexpr auto kUnfinished = static_cast<std::size_t>(-2);
    if (length == kUnfinished) continue;
    if (length == static_cast<std::size_t>(-1)) *character = L'?';
    return 1;
  }
}

// How many rows of the screen the line fills before this place in it.
std::size_t TLineEditor::RowsBefore(const char* place) const {
  const std::string_view text(el_line(editor_.get())->buffer, place);
  return (Screen::Width(prompt_) + Screen::Width(text)) / Screen::Columns(STDOUT_FILENO);
}

// Draws the line that is being edited where it stands or, when others have used the screen, where
// these have stopped. Terminals break lines anew when they are resized.
void TLineEditor::Redraw(Signals::TScreenChange change) {
  EditLine* const editor = editor_.get();
  if (change == Signals::TScreenChange::kResized) {
    const std::size_t rows = RowsBefore(el_line(editor)->cursor);
    if (rows > 0) out_ << "\033[" << rows << 'A';
  }
  out_ << "\r\033[J" << std::flush;
  el_resize(editor);
  el_set(editor, EL_PREP_TERM, 0);  // or else the library would not set the modes again
  el_set(editor, EL_PREP_TERM, 1);
  el_set(editor, EL_REFRESH);
}

// Leaves the line as it stands on the screen.
void TLineEditor::Drop() {
  is_interrupted_ = true;
  const LineInfo* const typed = el_line(editor_.get());
  const std::size_t rows = RowsBefore(typed->lastchar) - RowsBefore(typed->cursor);
  if (rows > 0) out_ << "\033[" << rows << 'B';
  out_ << "^C" << std::flush;
}

bool TLineEditor::Next(std::string_view prompt) {
  prompt_ = prompt;
  fault_ = {};
  line_.clear();
  is_interrupted_ = false;
  Interruption::Forget();
  out_.flush();
  const Signals::TEditScope edit;
  el_resize(editor_.get());
  el_set(editor_.get(), EL_PREP_TERM, 1);  // or else keys pressed at once would be echoed twice
  int count = 0;
  const char* const text = el_gets(editor_.get(), &count);
  if (is_interrupted_) {
    fault_ = TInterrupted().what();
    return true;
  }
  if (!text || count <= 0) return false;
  try {
    Take({text, static_cast<std::size_t>(count)});
  } catch (const std::bad_alloc&) {
    fault_ = "not enough memory";
  }
  return true;
}

void TLineEditor::Take(std::string_view text) {
  while (text.ends_with('\n') || text.ends_with('\r')) text.remove_suffix(1);
  line_ = TrimBlanks(text);
  if (line_.size() > TLineReader::kLongest) fault_ = "line too long";
  if (!line_.empty() && fault_.empty()) history_.Add(line_);
}

// The library knows nothing of exceptions.
unsigned char TLineEditor::CompleteWord(EditLine* editor, int /*key*/) {
  try {
    return Of(editor).Complete();
  } catch (const std::bad_alloc&) {
    return CC_REFRESH_BEEP;
  }
}

unsigned char TLineEditor::Complete() {
  const LineInfo* const typed = el_line(editor_.get());
  const std::string before(typed->buffer, typed->cursor);
  const TCompletion completion = kiln::Complete(interpreter_, before);
  if (completion.words.empty()) return CC_REFRESH_BEEP;
  const std::string start = CommonStart(completion.words);
  if (start.size() <= before.size() - completion.begin) {
    ShowWords(completion.words, out_);
    return CC_REDISPLAY;
  }
  const std::string word = before.substr(completion.begin);
  el_deletestr(editor_.get(), Characters(word).value_or(0));
  el_insertstr(editor_.get(), start.c_str());
  return CC_REFRESH;
}

}  // namespace

std::unique_ptr<TLineSource> MakeLineEditor(const TInterpreter& interpreter, std::ostream& out) {
  auto editor = std::make_unique<TLineEditor>(interpreter, out);
  return editor->IsReady() ? std::move(editor) : nullptr;
}

}  // namespace kiln
