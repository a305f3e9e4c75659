#include "DataTools/DataManip/TDataStats.h"

#include <utility>

#include "Shared/TAssertion.h"
#include "Shared/TException.h"

namespace kiln {

namespace {

constexpr char kInputColumn[] = "Invalid Input Data Column";
constexpr char kOutputColumn[] = "Invalid Output Data Column";

// The figure of a column. The spare slot behind the last column can be read too.
template <typename T>
T FigureOf(const std::vector<T>& figures, int column, const char* message, const char* function) {
  if (column < 0 || static_cast<std::size_t>(column) >= figures.size())
    throw TException(message, "Bad Parameter", function);
  return figures[static_cast<std::size_t>(column)];
}

// The figures of all columns, without the spare slot.
std::vector<double> Columns(const std::vector<double>& figures) {
  return {figures.begin(), figures.end() - 1};
}

// The source, checked before anything is read from it.
std::shared_ptr<Data> Present(std::shared_ptr<Data> source) {
  Assert(source != nullptr, "source != nullptr");
  return source;
}

}  // namespace

TDataStats::TDataStats(std::shared_ptr<Data> source)
    : PtrDatSource(Present(std::move(source))),
      MbrStsInputs(PtrDatSource->Inputs()),
      MbrStsOutputs(PtrDatSource->Outputs()) {}

const TSideStats& TDataStats::Inputs() {
  Update();
  return MbrStsInputs;
}

const TSideStats& TDataStats::Outputs() {
  Update();
  return MbrStsOutputs;
}

void TDataStats::Update() {
  Data& source = *PtrDatSource;
  if (MbrNdxChangeCount == source.ChangeCount()) return;
  MbrNdxChangeCount = source.ChangeCount();
  source.SetSelections({}, {});
  if (source.DataRows() == 0) return;
  source.ResetCursor();
  const DataRow oldest = source.Row(0);
  MbrStsInputs.Begin(oldest.Inputs, oldest.Position);
  MbrStsOutputs.Begin(oldest.Outputs, oldest.Position);
  for (int n = 1; n < source.DataRows(); ++n) {
    const DataRow row = source.Row(n);
    MbrStsInputs.Add(row.Inputs, row.Position);
    MbrStsOutputs.Add(row.Outputs, row.Position);
  }
  MbrStsInputs.Finish(source.DataRows());
  MbrStsOutputs.Finish(source.DataRows());
}

double TDataStats::GetMaxInputs(int column) {
  return FigureOf(Inputs().DyaMaxima, column, kInputColumn, "TDataStats::GetMaxInputs");
}

double TDataStats::GetMinInput(int column) {
  return FigureOf(Inputs().DyaMinima, column, kInputColumn, "TDataStats::GetMinInput");
}

int TDataStats::GetMaxInputRow(int column) {
  return FigureOf(Inputs().DyaMaximumPositions, column, kInputColumn, "TDataStats::GetMaxInputRow");
}

int TDataStats::GetMinInputRow(int column) {
  return FigureOf(Inputs().DyaMinimumPositions, column, kInputColumn, "TDataStats::GetMinInputRow");
}

double TDataStats::GetAverageInput(int column) {
  return FigureOf(Inputs().DyaAverages, column, kInputColumn, "TDataStats::GetAverageInput");
}

double TDataStats::GetMaxOutput(int column) {
  // Users know the name of the function with a single colon.
  return FigureOf(Outputs().DyaMaxima, column, kOutputColumn, "TDataStats:GetMaxOutput");
}

double TDataStats::GetMinOutput(int column) {
  return FigureOf(Outputs().DyaMinima, column, kOutputColumn, "TDataStats::GetMinOutput");
}

int TDataStats::GetMaxOutputRow(int column) {
  return FigureOf(Outputs().DyaMaximumPositions, column, kOutputColumn,
                  "TDataStats::GetMaxOutputRow");
}

int TDataStats::GetMinOutputRow(int column) {
  // This message has its words in another order than the others; users know it so.
  return FigureOf(Outputs().DyaMinimumPositions, column, "Invalid Data Output Column",
                  "TDataStats::GetMinOutputRow");
}

double TDataStats::GetAverageOutput(int column) {
  return FigureOf(Outputs().DyaAverages, column, kOutputColumn, "TDataStats::GetAverageOutput");
}

std::vector<double> TDataStats::GetInputMaxima() {
  return Columns(Inputs().DyaMaxima);
}

std::vector<double> TDataStats::GetInputMinima() {
  return Columns(Inputs().DyaMinima);
}

std::vector<double> TDataStats::GetInputAverages() {
  return Columns(Inputs().DyaAverages);
}

std::vector<double> TDataStats::GetOutputMaxima() {
  return Columns(Outputs().DyaMaxima);
}

std::vector<double> TDataStats::GetOutputMinima() {
  return Columns(Outputs().DyaMinima);
}

std::vector<double> TDataStats::GetOutputAverages() {
  return Columns(Outputs().DyaAverages);
}

}  // namespace kiln
