#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include "FileTestTools.h"
#include "Interpreter/Commands.h"
#include "Interpreter/LineCheck.h"
#include "Interpreter/Usage.h"
#include "Shared/TAssertion.h"
#include "Shared/Text.h"

namespace kiln {
namespace {

// Every test starts in an empty folder with the objects and files that the examples speak of.
class CommandTable : public testing::Test {
 protected:
  void SetUp() override {
    before_ = std::filesystem::current_path();
    folder_ = ScratchPath();
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    std::filesystem::current_path(folder_);
    std::ofstream("rain.kiln") << "create Data alias rain inputs 1 outputs 1 rows 1 labels off\n";
    TScene scene;
    for (const char* line :
         {"save Data alias d filename (d.dat)", "save CSV alias d filename (d.csv)",
          "save MLP alias net filename (net.net)", "save Tarn alias fuzzy filename (fuzzy.net)",
          "save Kohonen alias k filename (k.net)",
          "save TarnLabels alias words filename (wind.labels)",
          "save FuzzyRules alias found filename (wind.rules)"}) {
      scene.Do(line);
    }
  }

  void TearDown() override {
    std::filesystem::current_path(before_);
    std::filesystem::remove_all(folder_);
  }

  struct TScene {
    TScene() {
      for (const char* line :
           {"create Data alias d inputs 2 outputs 1 rows 3 labels on",
            "append alias d inputs {0.1, 0.5} outputs {1} labels {up}",
            "append alias d inputs {0.4, 0.2} outputs {0} labels {down}",
            "create DataStats alias s source d",
            "create MLP alias net inputs 2 layers 3 hidden {2} outputs 1 bias on seed 1",
            "create Tarn alias fuzzy inputs 2 condition {2, 2} rules 3 outputs 1 action {2} seed 1",
            "create BPTrainer alias teacher network net", "train alias teacher data d epochs 2",
            "create GATrainer alias breeder network net minweight -1 maxweight 1 population 10",
            "create Kohonen alias k inputs 2 dimensions 2 mapdim {3, 3} seed 1",
            "create KohonenTrainer alias guide network k", "map network k input d output m",
            "labeltarn network fuzzy labels words",
            "retarn network fuzzy labels words rules found"}) {
        Do(line);
      }
    }

    void Do(const std::string& line) {
      ASSERT_GE(interpreter.Execute(line), 0) << line << ": " << interpreter.GetError();
    }

    // Takes away the objects that the example is going to make.
    void MakeRoom(const TForm& form) {
      for (const TTag& tag : form.tags) {
        if (tag.kind != TValueKind::kNewAlias) continue;
        interpreter.Remove(TCommandLine(form.example).Word(tag.name).value);
      }
    }

    TInterpreter interpreter;
  };

  static void ForEachForm(const std::function<void(const TCommand&, const TForm&)>& visit) {
    for (const TFamily* family : Families()) {
      for (const TCommand& command : family->commands) {
        for (const TForm& form : command.forms) visit(command, form);
      }
    }
  }

 private:
  std::filesystem::path before_;
  std::filesystem::path folder_;
};

// The line with `tag` spelled in a way that no command knows.
std::string Without(std::string line, std::string_view tag) {
  const std::string word = std::string(tag).insert(0, 1, ' ').append(" ");
  const std::size_t at = line.find(word);
  return at == line.npos ? line : line.replace(at, word.size(), " zzz ");
}

TEST_F(CommandTable, HasExamplesThatWorkAndTagsThatAreRequired) {
  ForEachForm([](const TCommand& command, const TForm& form) {
    TScene scene;
    scene.MakeRoom(form);
    const std::string example(form.example);
    EXPECT_FALSE(FindOddity(command, form, example)) << example;
    EXPECT_EQ(&command.choose(command, scene.interpreter, TCommandLine(example)), &form);
    for (const TTag& tag : form.tags) {
      if (tag.IsRequired() && &tag != form.Positional(command.word)) {
        EXPECT_LT(scene.interpreter.Execute(Without(example, tag.name)), 0) << tag.name;
      }
      if (tag.kind == TValueKind::kAlias && !tag.words.empty()) {
        const auto* node = scene.interpreter.Find(TCommandLine(example).Word(tag.name).value);
        EXPECT_TRUE(!node || HasWord(tag.words, node->Kind())) << example << ": " << tag.name;
      }
    }
    scene.Do(example);
  });
}

// The line with this value behind `tag`, which may have had another one or none.
std::string WithValue(std::string line, std::string_view tag, const std::string& value) {
  const std::string_view old = TCommandLine(line).Word(tag).value;
  if (old.empty()) return line.append(" ").append(tag).append(" ").append(value);
  return line.replace(line.find(old, line.find(tag) + tag.size()), old.size(), value);
}

TEST_F(CommandTable, RefusesWrongAliasesBooleansAndPathsBeforeAnythingChanges) {
  ForEachForm([](const TCommand&, const TForm& form) {
    TScene scene;
    scene.Do("copy source d destination taken");
    scene.MakeRoom(form);
    const std::string example(form.example);
    for (const TTag& tag : form.tags) {
      if (form.word == "aliasexists" || (form.word == "fired" && tag.name == "network")) continue;
      std::vector<std::string> wrong;
      if (tag.kind == TValueKind::kNewAlias) wrong = {"taken"};
      if (tag.kind == TValueKind::kAlias) wrong = {"nobody"};
      if (tag.kind == TValueKind::kAlias && !tag.words.empty()) {
        wrong.emplace_back(HasWord(tag.words, "DataStats") ? "d" : "s");
      }
      if (tag.kind == TValueKind::kBoolean) wrong = {"maybe"};
      if (tag.kind == TValueKind::kPath) wrong = {"none.txt", "(none/none.txt)"};
      for (const std::string& value : wrong) {
        const std::string line = WithValue(example, tag.name, value);
        EXPECT_LT(scene.interpreter.Execute(line), 0) << line;
      }
    }
    scene.Do(example);
  });
}

// More lines for forms that do not read all of their tags in each.
constexpr std::string_view kMoreExamples[] = {"divide source d destination {one} rows {1}",
                                              "labeltarn network fuzzy labels words terms {a} "
                                              "outputterms {b}",
                                              "query fired network fuzzy inputs {0.1, 0.5}",
                                              "plot fuzzy data d method terms filename (n.txt)",
                                              "plot k data d columns {0} filename (k.txt)",
                                              "train alias teacher data d epochs 5 method rprop"};

// A handler cannot read what its row does not list; here, that it reads all that the row lists.
TEST_F(CommandTable, ListsNoTagThatNoHandlerReads) {
  ForEachForm([](const TCommand& command, const TForm& form) {
    for (const TTag& tag : form.tags) {
      if (tag.kind == TValueKind::kPhrase) continue;
      std::vector<TTag> others;
      for (const TTag& other : form.tags) {
        if (other.name != tag.name) others.push_back(other);
      }
      TForm less = form;
      less.tags = others;
      TScene scene;
      scene.MakeRoom(form);
      const auto reads = [&](std::string_view line) {
        try {
          form.handler(scene.interpreter, TCommandLine(line, less));
        } catch (const TAssertion& assertion) {
          return std::string(assertion.what()).find("the row of the command") != std::string::npos;
        } catch (const std::exception&) {
        }
        return false;
      };
      const auto reads_of_this = [&](std::string_view line) {
        const TCommandLine more(line);
        return EqualNoCase(more.CommandWord(), command.word) &&
               &command.choose(command, scene.interpreter, more) == &form && reads(line);
      };
      EXPECT_TRUE(reads(form.example) || std::ranges::any_of(kMoreExamples, reads_of_this))
          << "nobody reads " << tag.name << " of " << form.example;
    }
  });
}

TEST_F(CommandTable, FitsATerminalOf80Columns) {
  std::string pages = "Result: " + Overview();
  for (const TFamily* family : Families()) {
    for (const TCommand& command : family->commands) pages += "\nResult: " + Describe(command);
  }
  ForEachForm([&](const TCommand& command, const TForm& form) {
    pages += "\nResult: " + Describe(command, form);
  });
  std::istringstream lines(pages);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
}

// --- The reference for users -----------------------------------------------------------------

// The section of a page under the first heading that has the word.
std::string Section(const std::string& page, std::string_view word) {
  std::istringstream lines(page);
  std::string section;
  bool is_inside = false;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("##")) {
      if (is_inside) break;
      is_inside = HasWord(line, word) && line.starts_with("###");
    }
    if (is_inside) section += line + '\n';
  }
  return section;
}

// Whether a word stands in a text between anything but letters.
bool Mentions(const std::string& text, std::string_view word) {
  for (std::size_t at = text.find(word); at != text.npos; at = text.find(word, at + 1)) {
    const auto is_letter = [&](std::size_t i) { return i < text.size() && std::isalnum(text[i]); };
    if (!is_letter(at - 1) && !is_letter(at + word.size())) return true;
  }
  return false;
}

// The words in the first cells of all tables of tags.
std::vector<std::string> TabledTags(const std::string& section) {
  std::istringstream lines(section);
  std::vector<std::string> tags;
  bool is_inside = false;
  for (std::string line; std::getline(lines, line);) {
    if (!line.starts_with('|')) is_inside = false;
    if (line.starts_with("| Tag")) is_inside = true;
    if (!is_inside || !line.starts_with("| `")) continue;
    std::istringstream cell(line.substr(1, line.find('|', 1) - 1));
    for (std::string tag; std::getline(cell, tag, '`') && std::getline(cell, tag, '`');) {
      tags.push_back(tag);
    }
  }
  return tags;
}

TEST_F(CommandTable, IsWhatTheReferenceDescribes) {
  std::ifstream file(KILN_DOCS "/commands.md");
  const std::string page(std::istreambuf_iterator<char>(file), {});
  for (const TFamily* family : Families()) {
    for (const TCommand& command : family->commands) {
      const std::string section = Section(page, command.word);
      EXPECT_FALSE(section.empty()) << command.word << " has no section in commands.md";
      for (const TForm& form : command.forms) {
        EXPECT_TRUE(Mentions(section, form.word)) << command.word << ' ' << form.word;
        for (const TTag& tag : form.tags) {
          EXPECT_TRUE(Mentions(section, tag.name)) << command.word << ": " << tag.name;
        }
      }
      for (const std::string& tag : TabledTags(section)) {
        EXPECT_TRUE(std::ranges::any_of(
            command.forms, [&](const TForm& form) { return FindTag(form.tags, tag) != nullptr; }))
            << tag << " is no tag of " << command.word;
      }
    }
  }
}

TEST_F(CommandTable, FitsThePageOfTheReference) {
  std::ifstream page(KILN_DOCS "/commands.md");
  for (std::string line; std::getline(page, line);) {
    if (!line.starts_with('|')) continue;
    std::istringstream cells(line);
    for (std::string cell; std::getline(cells, cell, '|');) EXPECT_LE(cell.size(), 122U) << cell;
  }
}

}  // namespace
}  // namespace kiln
