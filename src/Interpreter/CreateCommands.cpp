#include "Interpreter/CreateCommands.h"

namespace kiln::commands {

namespace {

constexpr TCommand kKinds[] = {
    {"MLP", CreateMLP},
    {"Tarn", CreateTarn},
    {"Kohonen", CreateKohonen},
    {"BPTrainer", CreateBPTrainer},
    {"LWFTrainer", CreateLWFTrainer},
    {"GATrainer", CreateGATrainer},
    {"KohonenTrainer", CreateKohonenTrainer},
    {"Data", CreateData},
    {"DataStats", CreateDataStats},
};

}  // namespace

int Create(TInterpreter& interpreter, const TCommandLine& line) {
  return Dispatch(kKinds, Selector(line, "create"), "unknown argument to create", interpreter,
                  line);
}

}  // namespace kiln::commands
