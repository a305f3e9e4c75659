// Fitting from Python.

#include <string>

#include "Peers.h"
#include "Rows.h"
#include "TReport.h"

namespace kiln {

void AddPythonRows(TReport& report) {
  if (!PythonFitting("kiln")) return;
  constexpr double kAllowed = 0.030;  // seconds
  const auto allowed = [](int passes) { return kAllowed * passes; };
  const std::string overhead = "fitting 1000 × 16 from Python, beyond the training";
  if (report.Wants(overhead)) {
    report.AddComparison(overhead, PythonFitting("overhead"), "allowed", allowed, 1.0, 1.0);
  }
  const std::string fitting = "fitting 1000 × 16 from Python, 100 epochs";
  if (report.Wants(fitting)) {
    report.AddComparison(fitting, PythonFitting("kiln"), "scikit-learn", PythonFitting("scikit"),
                         1.0, 1.2);
  }
}

}  // namespace kiln
