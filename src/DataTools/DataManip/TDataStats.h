#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "DataObject/Data.h"
#include "DataTools/DataManip/TSideStats.h"

namespace kiln {

// The largest and smallest value of every column of a data set, the positions of the rows where
// these stand, and the average. The figures follow the set: after a change the next getter computes
// them anew. A set without rows leaves the figures as they were, zeros at first. Where several rows
// have the same extreme, the oldest of them counts.
//
// Computing the figures clears the set's column selections and resets its cursor.
//
// Every getter of one column throws TException "Invalid Input Data Column" or "Invalid Output Data
// Column" ("Invalid Data Output Column" in GetMinOutputRow) of category "Bad Parameter" for a
// column below 0 or beyond the number of columns; the number itself is accepted and gives 0.
class TDataStats {
 public:
  // REQUIRES: there is a source. It lives at least as long as its statistics.
  explicit TDataStats(std::shared_ptr<Data> source);

  double GetMaxInputs(int column);
  double GetMinInput(int column);
  int GetMaxInputRow(int column);
  int GetMinInputRow(int column);
  double GetAverageInput(int column);

  double GetMaxOutput(int column);
  double GetMinOutput(int column);
  int GetMaxOutputRow(int column);
  int GetMinOutputRow(int column);
  double GetAverageOutput(int column);

  // A getter of one value a column, as those below.
  using TFigures = std::vector<double> (TDataStats::*)();

  std::vector<double> GetInputMaxima();
  std::vector<double> GetInputMinima();
  std::vector<double> GetInputAverages();
  std::vector<double> GetOutputMaxima();
  std::vector<double> GetOutputMinima();
  std::vector<double> GetOutputAverages();

 private:
  // A side's figures as the source is now.
  const TSideStats& Inputs();
  const TSideStats& Outputs();
  void Update();

  std::shared_ptr<Data> PtrDatSource;
  TSideStats MbrStsInputs;
  TSideStats MbrStsOutputs;
  std::optional<int> MbrNdxChangeCount;  // of the source when the figures were computed
};

}  // namespace kiln
