#pragma once

#include <functional>
#include <string>

#include "Measure.h"
#include "TArrivalTask.h"
#include "TPerceptronTask.h"

namespace kiln {

class TScratch;

// The work of the peers, ready to be timed; an empty one where the peer is not installed. Data and
// network sizes are those of the tasks, whose data must live as long as the work does.

// FANN, double precision. A pass is an epoch over the set of the task; a batch has no momentum
// there.
TWork FannPatternTraining(const TPerceptronTask& task);
TWork FannBatchTraining(const TPerceptronTask& task);

// A pass runs every pattern and copies what it gives.
TWork FannRecall(const TPerceptronTask& task);

// The seconds of processor time in which a peer comes to an error on a task, starting from a seed,
// infinity where it does not; empty where it is not installed.
using TArrival = std::function<double(int seed)>;

// FANN, iRPROP-, at most 10000 epochs; weights from [-1, 1], as Kiln's.
TArrival FannArrival(const TArrivalTask& task, double error);

// scikit-learn, from weights of its own: "lbfgs", whose time is that of the shortest training that
// arrives, or "adam", at a rate of 0.01 in batches of 200, at most 1000 epochs.
TArrival ScikitArrival(const TScratch& scratch, const TArrivalTask& task, const char* solver,
                       double error);

// GAlib, the simple genetic algorithm. A pass is a generation.
TWork GaLibBreeding(int individuals, int genes, double mutation);

// Genetic training of a perceptron by hand: GAlib's simple genetic algorithm breeds the weights,
// from -1 to 1, and FANN's network recalls the set. A pass is a generation.
TWork FannGaLibTraining(const TPerceptronTask& task, int individuals, double mutation);

// A square map, and how far its neighbourhoods reach.
struct TMapShape {
  int inputs;
  int side;
  double radius;
};

// The kohonen package. A pass is training in the mode "online", as many presentations as the set
// has rows, drawn at random, or "pbatch", where each unit becomes the mean of its neighbourhood;
// or, in the mode "map", finding the winner of each row.
TWork KohonenWork(const TScratch& scratch, const std::string& mode, const Data& data,
                  const TMapShape& shape, double rate);

// scikit-learn, full batches. A pass is an epoch.
TWork ScikitTraining(const TScratch& scratch, const TPerceptronTask& task);

// The same with two threads of OpenBLAS, in seconds on the clock on the wall.
TWork ScikitTrainingByTwo(const TScratch& scratch, const TPerceptronTask& task);

// Fitting a perceptron from Python, a pass being one fit; peers/python_fit.py says who can do it.
// Empty where scikit-learn is not installed.
TWork PythonFitting(const std::string& who);

// pandas. A pass writes the inputs of the set as text, or reads what was written.
TWork PandasSaving(const TScratch& scratch, const Data& data);
TWork PandasLoading(const TScratch& scratch, const Data& data);

}  // namespace kiln
