#include "DataTools/DataManip/TDataStats.h"
#include "Interpreter/Answers.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Shared/Text.h"

namespace kiln::commands {

namespace {

// Gives one figure of every column of a side.
using TFigures = std::vector<double> (TDataStats::*)();

struct TStatistic {
  std::string_view word;
  TFigures inputs;
  TFigures outputs;
};

constexpr TStatistic kStatistics[] = {
    {"max", &TDataStats::GetInputMaxima, &TDataStats::GetOutputMaxima},
    {"min", &TDataStats::GetInputMinima, &TDataStats::GetOutputMinima},
    {"average", &TDataStats::GetInputAverages, &TDataStats::GetOutputAverages},
};

const TStatistic& RequiredStatistic(const TCommandLine& line) {
  const std::string_view word = Selector(line, "getstats");
  for (const TStatistic& statistic : kStatistics) {
    if (EqualNoCase(statistic.word, word)) return statistic;
  }
  Fail("unknown statistics type");
}

}  // namespace

int GetStats(TInterpreter& interpreter, const TCommandLine& line) {
  const std::string_view alias = RequiredAlias(line, "alias");
  const auto stats = RequiredObject<TDataStats>(interpreter, alias, " is not of type DataStats");
  const TStatistic& statistic = RequiredStatistic(line);
  const bool inputs = RequiredBoolean(line, "inputs");
  const bool outputs = RequiredBoolean(line, "outputs");
  std::string answer;
  if (inputs) answer = "inputs " + AnswerArray((*stats.*statistic.inputs)());
  if (inputs && outputs) answer += ' ';
  if (outputs) answer += "outputs " + AnswerArray((*stats.*statistic.outputs)());
  interpreter.SetResult(answer);
  return kValue;
}

}  // namespace kiln::commands
