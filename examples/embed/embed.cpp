// Teaches exclusive or to a perceptron inside a program of its own, and asks it.
#include <kiln/kiln.h>

#include <cstdio>
#include <cstdlib>
#include <string>

int main() {
  kiln::TSession session;
  session.BeStrict();
  session.SetObserver([](int epoch, double error) {
    if (epoch % 500 == 0) std::printf("epoch %4d  error %.4f\n", epoch, error);
    return error > 0.02;  // good enough
  });
  const auto tell = [&](const std::string& command) {
    const auto [ok, text] = session.Execute(command);
    if (ok) return text;
    std::fprintf(stderr, "%s: %s\n", command.c_str(), text.c_str());
    std::exit(EXIT_FAILURE);
  };

  tell("create Data alias xor inputs 2 outputs 1 rows 4 labels off");
  for (const char* row :
       {"{0, 0} outputs {0}", "{0, 1} outputs {1}", "{1, 0} outputs {1}", "{1, 1} outputs {0}"})
    tell(std::string("append alias xor inputs ") + row);
  tell("create MLP alias net inputs 2 layers 3 hidden {4} outputs 1 bias on seed 1");
  tell("create BPTrainer alias teacher network net");
  std::printf("error %s\n",
              tell("train alias teacher data xor epochs 9000 LearningRate 0.5").c_str());
  tell("recall network net input xor output answers");
  for (int row = 0; row < 4; ++row) std::puts(tell("query getnextrow answers").c_str());
}
