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

constexpr int kHistorySize = 1000;

// Where the history is kept; empty when there is no place. Makes the folder.
std::string HistoryPath() {
  if (const char* state = std::getenv("XDG_STATE_HOME"); state && *state) {
    const std::filesystem::path folder = std::filesystem::path(state) / "kiln";
    std::error_code failure;
    std::filesystem::create_directories(folder, failure);
    if (!failure) return folder / "history";
  }
  const char* const home = std::getenv("HOME");
  return home && *home ? std::string(home) + "/.kiln_history" : std::string();
}

// What all of the words begin with.
std::string CommonStart(const std::vector<std::string>& words) {
  std::string start = words.front();
  for (const std::string& word : words) {
    const auto different = std::ranges::mismatch(start, word).in1;
    start.erase(different, start.end());
  }
  return start;
}

// Lines that a person types at a terminal: edited, completed by the tabulator key, and kept in a
// history that outlives the session.
class TLineEditor : public TLineSource {
 public:
  TLineEditor(const TInterpreter& interpreter, std::ostream& out);
  ~TLineEditor() override;

  // Whether the terminal can be edited on. If not, nothing else may be called.
  bool IsReady() const { return editor_ != nullptr; }

  bool Next(std::string_view prompt) override;
  std::string_view Line() const override { return line_; }
  std::string_view Fault() const override { return fault_; }

 private:
  struct TEnd {
    void operator()(EditLine* editor) const { el_end(editor); }
    void operator()(History* history) const { history_end(history); }
  };

  static TLineEditor& Of(EditLine* editor);
  static int ReadCharacter(EditLine* editor, wchar_t* character);
  static unsigned char CompleteWord(EditLine* editor, int key);

  void SetUp();
  void LoadHistory();
  ssize_t ReadByte(char& byte);
  std::size_t RowsBefore(const char* place) const;
  void Redraw(Signals::TScreenChange change);
  void Drop();
  unsigned char Complete();
  void Show(const std::vector<std::string>& words) const;
  void Remember();

  using THistory = std::unique_ptr<History, TEnd>;

  const TInterpreter& interpreter_;
  std::ostream& out_;
  THistory history_;
  std::unique_ptr<EditLine, TEnd> editor_;
  std::string history_path_;  // empty: there is no place for it
  std::string prompt_;
  std::string line_;
  std::string_view fault_;
  bool is_interrupted_ = false;
};

TLineEditor::TLineEditor(const TInterpreter& interpreter, std::ostream& out)
    : interpreter_(interpreter), out_(out), history_(history_init()) {
  std::setlocale(LC_CTYPE, "");  // the terminal's characters may have several bytes
  editor_.reset(el_init("kiln", stdin, stdout, stderr));
  if (editor_ && history_) SetUp();
}

TLineEditor::~TLineEditor() = default;

void TLineEditor::SetUp() {
  EditLine* const editor = editor_.get();
  el_set(editor, EL_CLIENTDATA, this);
  el_set(editor, EL_EDITOR, "emacs");
  el_set(
      editor, EL_PROMPT, +[](EditLine* of) { return Of(of).prompt_.data(); });
  el_set(editor, EL_GETCFN, ReadCharacter);
  el_set(editor, EL_HIST, history, history_.get());
  el_set(editor, EL_ADDFN, "kiln-complete", "completes a word", CompleteWord);
  el_set(editor, EL_BIND, "^I", "kiln-complete", nullptr);
  el_set(editor, EL_BIND, "^R", "em-inc-search-prev", nullptr);

  LoadHistory();
}

void TLineEditor::LoadHistory() {
  HistEvent event;
  ::history(history_.get(), &event, H_SETSIZE, kHistorySize);
  ::history(history_.get(), &event, H_SETUNIQUE, 1);
  history_path_ = HistoryPath();
  if (history_path_.empty()) return;
  const int lines = ::history(history_.get(), &event, H_LOAD, history_path_.c_str());
  // A file that is missing, no history or too long is written anew.
  if (lines < 0 || lines > kHistorySize) {
    ::history(history_.get(), &event, H_SAVE, history_path_.c_str());
  }
}

TLineEditor& TLineEditor::Of(EditLine* editor) {
  void* self = nullptr;
  el_get(editor, EL_CLIENTDATA, &self);
  return *static_cast<TLineEditor*>(self);
}

// Reads on through signals, but for the wish to drop the line. Returns what read() does.
ssize_t TLineEditor::ReadByte(char& byte) {
  for (;;) {
    const ssize_t count = read(STDIN_FILENO, &byte, 1);
    const int error = errno;
    const Signals::TScreenChange change = Signals::TakeScreenChange();
    if (change != Signals::TScreenChange::kNone) Redraw(change);
    if (count >= 0 || error != EINTR) return count;
    if (!Interruption::IsRequested()) continue;
    Drop();
    return count;
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
  const std::string text(el_line(editor_.get())->buffer, place);
  return Screen::Width(prompt_ + text) / Screen::Columns(STDOUT_FILENO);
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
  line_.assign(text, static_cast<std::size_t>(count));
  while (line_.ends_with('\n') || line_.ends_with('\r')) line_.pop_back();
  line_ = std::string(TrimBlanks(line_));
  if (line_.size() > TLineReader::kLongest) fault_ = "line too long";
  if (!line_.empty() && fault_.empty()) Remember();
  return true;
}

// Each line goes behind the others at once: a session may end in many ways, and several may write
// to one history.
void TLineEditor::Remember() {
  HistEvent event;
  ::history(history_.get(), &event, H_ENTER, line_.c_str());
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      history_path_.empty() ? nullptr : std::fopen(history_path_.c_str(), "ae"), std::fclose);
  const THistory line(history_init());
  if (!file || !line || std::fseek(file.get(), 0, SEEK_END) != 0) return;
  ::history(line.get(), &event, H_SETSIZE, 1);
  ::history(line.get(), &event, H_ENTER, line_.c_str());
  ::history(line.get(), &event, H_SAVE_FP, file.get());
}

unsigned char TLineEditor::CompleteWord(EditLine* editor, int /*key*/) {
  return Of(editor).Complete();
}

unsigned char TLineEditor::Complete() {
  const LineInfo* const typed = el_line(editor_.get());
  const std::string before(typed->buffer, typed->cursor);
  const TCompletion completion = kiln::Complete(interpreter_, before);
  if (completion.words.empty()) return CC_REFRESH_BEEP;
  const std::string start = CommonStart(completion.words);
  if (start.size() <= before.size() - completion.begin) {
    Show(completion.words);
    return CC_REDISPLAY;
  }
  el_deletestr(editor_.get(), static_cast<int>(before.size() - completion.begin));
  el_insertstr(editor_.get(), start.c_str());
  return CC_REFRESH;
}

// Words in columns, without what would follow them.
void TLineEditor::Show(const std::vector<std::string>& words) const {
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
    if (i % columns == 0) out_ << '\n';
    out_ << shown[i] << std::string(widest - Screen::Width(shown[i]), ' ');
  }
  out_ << '\n' << std::flush;
}

}  // namespace

std::unique_ptr<TLineSource> MakeLineEditor(const TInterpreter& interpreter, std::ostream& out) {
  auto editor = std::make_unique<TLineEditor>(interpreter, out);
  return editor->IsReady() ? std::move(editor) : nullptr;
}

}  // namespace kiln
