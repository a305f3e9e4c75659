// The peers that live in R and Python, each behind a process of its own.

#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "Peers.h"
#include "TChildPeer.h"
#include "TScratch.h"

namespace kiln {

namespace {

// The peer of a script, started when it is asked for first; null where it is not installed.
std::shared_ptr<TChildPeer> Start(bool installed, const char* interpreter, const char* script) {
  if (!installed) return nullptr;
  return std::make_shared<TChildPeer>(
      std::vector<std::string>{interpreter, std::string(KILN_PEERS "/") + script});
}

std::shared_ptr<TChildPeer> Kohonen() {
  static const auto peer = Start(KILN_HAVE_KOHONEN, KILN_R, "kohonen.R");
  return peer;
}

std::shared_ptr<TChildPeer> Scikit() {
  static const auto peer = Start(KILN_HAVE_SCIKIT, KILN_PYTHON, "scikit.py");
  return peer;
}

std::shared_ptr<TChildPeer> ScikitByTwo() {
  if (!KILN_HAVE_SCIKIT) return nullptr;
  static const auto peer = std::make_shared<TChildPeer>(std::vector<std::string>{
      "env", "OPENBLAS_NUM_THREADS=2", KILN_PYTHON, KILN_PEERS "/scikit.py", "wall"});
  return peer;
}

std::shared_ptr<TChildPeer> Pandas() {
  static const auto peer = Start(KILN_HAVE_PANDAS, KILN_PYTHON, "pandas_text.py");
  return peer;
}

// Puts words and numbers into one request.
template <typename... TWords>
std::string Request(const TWords&... words) {
  std::ostringstream line;
  ((line << words << ' '), ...);
  return line.str();
}

TWork ScikitWork(const std::shared_ptr<TChildPeer>& peer, const TScratch& scratch,
                 const TPerceptronTask& task) {
  if (!peer) return {};
  const std::string numbers = scratch.WriteNumbers("training", task.data);
  std::string sizes;
  for (const int size : task.sizes) sizes += std::to_string(size) + ' ';
  return [=](int passes) {
    return peer->Ask(Request(numbers, kLearningRate, kMomentum, passes, sizes));
  };
}

}  // namespace

TWork KohonenWork(const TScratch& scratch, const std::string& mode, const Data& data,
                  const TMapShape& shape, double rate) {
  const auto peer = Kohonen();
  if (!peer) return {};
  const std::string numbers = scratch.WriteNumbers("map", data);
  return [=](int passes) {
    return peer->Ask(Request(mode, numbers, shape.inputs, shape.side, shape.radius, rate, passes));
  };
}

TWork ScikitTraining(const TScratch& scratch, const TPerceptronTask& task) {
  return ScikitWork(Scikit(), scratch, task);
}

TWork ScikitTrainingByTwo(const TScratch& scratch, const TPerceptronTask& task) {
  return ScikitWork(ScikitByTwo(), scratch, task);
}

TArrival ScikitArrival(const TScratch& scratch, const TArrivalTask& task, const char* solver,
                       double error) {
  static const auto peer = Start(KILN_HAVE_SCIKIT, KILN_PYTHON, "scikit_arrival.py");
  if (!peer) return {};
  const std::string learn = scratch.WriteNumbers("learn", *task.learn);
  const std::string judged = scratch.WriteNumbers("judged", *task.judged);
  const std::string request = Request(solver, learn, judged, task.sizes[0], task.sizes[1],
                                      task.sizes[2], error * task.unit);
  return [request](int seed) { return peer->Ask(request + std::to_string(seed)); };
}

TWork PythonFitting(const std::string& who) {
  if (!KILN_HAVE_SCIKIT) return {};
  static const auto peer = std::make_shared<TChildPeer>(std::vector<std::string>{
      KILN_PYTHON, KILN_PEERS "/python_fit.py", KILN_PROGRAM, KILN_PACKAGE});
  return [who](int passes) { return peer->Ask(Request(who, passes)); };
}

TWork PandasSaving(const TScratch& scratch, const Data& data) {
  const auto peer = Pandas();
  if (!peer) return {};
  const std::string request = Request("save", scratch.WriteNumbers("table", data), data.Inputs(),
                                      scratch.Path("table.csv"));
  return [=](int) { return peer->Ask(request); };
}

TWork PandasLoading(const TScratch& scratch, const Data& data) {
  const TWork saving = PandasSaving(scratch, data);
  if (!saving) return {};
  saving(1);
  return [peer = Pandas(), request = Request("load", scratch.Path("table.csv"))](int) {
    return peer->Ask(request);
  };
}

}  // namespace kiln
