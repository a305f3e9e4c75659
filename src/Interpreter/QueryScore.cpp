#include "Interpreter/QueryScore.h"

#include "DataObject/Data.h"
#include "Interpreter/Checks.h"
#include "Interpreter/Commands.h"
#include "Interpreter/NetworkObjects.h"
#include "NeuralNets/Maps/TKohonenNetwork.h"
#include "NeuralNets/Maps/TMapScore.h"
#include "NeuralNets/TScore.h"

namespace kiln::commands {

namespace {

// A network and the set that it is to answer.
struct TExamination {
  std::string_view network_alias;
  std::shared_ptr<TBasicNetwork> network;
  std::string_view set_alias;
  std::shared_ptr<Data> set;
};

// The network and the set that the line names.
TExamination RequiredExamination(const TInterpreter& interpreter, const TCommandLine& line) {
  TExamination exam;
  exam.network_alias = RequiredAlias(line, "network");
  exam.network = AsNetwork(RequiredEntry(interpreter, exam.network_alias));
  if (!exam.network) Fail(exam.network_alias, " is not an ANN");
  exam.set_alias = RequiredAlias(line, "data");
  exam.set = RequiredObject<Data>(interpreter, exam.set_alias, " is not of type Data");
  RequireColumns(exam.set_alias, exam.set->Inputs(), "inputs", exam.network_alias,
                 exam.network->NumInputs());
  if (exam.set->DataRows() == 0) Fail(exam.set_alias, " has no rows");
  return exam;
}

void RequireOutputs(const TExamination& exam) {
  RequireColumns(exam.set_alias, exam.set->Outputs(), "outputs", exam.network_alias,
                 exam.network->NumOutputs());
}

}  // namespace

TAnswer Score(TInterpreter& interpreter, const TCommandLine& line) {
  const TExamination exam = RequiredExamination(interpreter, line);
  std::string answer = "rows " + std::to_string(exam.set->DataRows());
  if (const auto* map = dynamic_cast<const TKohonenNetwork*>(exam.network.get())) {
    const TMapScore score = MeasureMap(*map, *exam.set);
    return answer + " quantisation " + AnswerGeneral(score.quantisation) + " topographic " +
           AnswerGeneral(score.topographic);
  }
  RequireOutputs(exam);
  const TScore score = MeasureScore(*exam.network, *exam.set);
  answer += " error " + AnswerGeneral(score.error);
  if (score.right) answer += " right " + std::to_string(*score.right);
  return answer;
}

TAnswer Confusion(TInterpreter& interpreter, const TCommandLine& line) {
  const TExamination exam = RequiredExamination(interpreter, line);
  if (std::dynamic_pointer_cast<TKohonenNetwork>(exam.network)) {
    Fail(exam.network_alias, " is a map, which tells no classes");
  }
  RequireOutputs(exam);
  const auto confusion = MeasureConfusion(*exam.network, *exam.set);
  if (!confusion) Fail("the outputs of ", exam.set_alias, " are not classes");
  std::vector<std::string> rows;
  for (std::size_t expected = 0; expected < confusion->Classes(); ++expected) {
    std::vector<int> counts;
    for (std::size_t answered = 0; answered < confusion->Classes(); ++answered) {
      counts.push_back(confusion->Count(expected, answered));
    }
    rows.push_back(AnswerArray(counts));
  }
  return AnswerArray(rows);
}

}  // namespace kiln::commands
