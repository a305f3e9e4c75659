// Writes a syntax file for vim to the standard output: what the table of commands knows is
// coloured, a command at the start of a line and all else behind one.
#include <iostream>
#include <set>
#include <string_view>

#include "Interpreter/TCommand.h"

namespace {

void WriteKeywords(const char* group, const std::set<std::string_view>& words) {
  std::cout << "syntax keyword " << group << " contained";
  for (const std::string_view word : words) std::cout << ' ' << word;
  std::cout << '\n';
}

}  // namespace

int main() {
  std::set<std::string_view> commands;
  std::set<std::string_view> forms;
  std::set<std::string_view> tags;
  for (const kiln::TFamily* family : kiln::Families()) {
    for (const kiln::TCommand& command : family->commands) {
      commands.insert(command.word);
      for (const kiln::TForm& form : command.forms) {
        if (!form.word.empty()) forms.insert(form.word);
        for (const kiln::TTag& tag : form.tags) {
          if (&tag != form.Positional(command.word)) tags.insert(tag.name);
        }
      }
    }
  }
  std::cout << "\" Vim syntax file: commands of Kiln\n"
               "if exists('b:current_syntax')\n  finish\nendif\n";
  WriteKeywords("kilnTag", tags);
  WriteKeywords("kilnForm", forms);
  std::cout << R"(syntax match kilnComment /^ *#.*/
syntax match kilnArguments / .*/ contained contains=kilnForm,kilnTag,kilnFile,kilnName,kilnNumber
syntax match kilnFile /([^)]*)/ contained contains=kilnName
syntax match kilnName /\$\h\w*/ contained
syntax match kilnNumber /[-+]\?\<\d\+\(\.\d*\)\?\([eE][-+]\?\d\+\)\?\>/ contained
syntax match kilnCommand /^ *\c\%()";
  for (const char* separator = ""; const std::string_view command : commands) {
    std::cout << separator << command;
    separator = "\\|";
  }
  std::cout << R"(\)\>/ nextgroup=kilnArguments
highlight default link kilnCommand Statement
highlight default link kilnForm Type
highlight default link kilnTag Identifier
highlight default link kilnComment Comment
highlight default link kilnFile String
highlight default link kilnName PreProc
highlight default link kilnNumber Number
let b:current_syntax = 'kiln'
)";
}
