// Measures Kiln beside its peers; see run.

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>

#include "Rows.h"
#include "TReport.h"
#include "TScratch.h"

namespace {

void Measure(int repetitions, const char* filter) {
  using namespace kiln;
  const TScratch scratch;
  TReport report(repetitions, filter);
  // Memory first: the heap that other rows leave behind would hide what is taken.
  AddMemoryRows(report, scratch);
  AddTrainingRows(report, scratch);
  AddArrivalRows(report, scratch);
  AddRecallRows(report);
  AddMapRows(report, scratch);
  AddGeneticRows(report);
  AddFileRows(report, scratch);
  AddTeamRows(report, scratch);
  AddPythonRows(report);
  AddGrowthRows(report, scratch);
  report.PrintSummary();
}

}  // namespace

int main(int argc, char** argv) {
  const int repetitions = argc > 1 ? std::atoi(argv[1]) : 3;
  if (repetitions < 1) {
    std::fputs("usage: kiln_bench [REPETITIONS [FILTER]]\n", stderr);
    return 2;
  }
  std::signal(SIGPIPE, SIG_IGN);  // a peer that has ended is an error, told at the next answer
  try {
    Measure(repetitions, argc > 2 ? argv[2] : "");
    return 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
  }
}
