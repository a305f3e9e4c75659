#pragma once

namespace kiln {

class TReport;
class TScratch;

// The rows of the table, in families.
void AddMemoryRows(TReport& report, const TScratch& scratch);
void AddTrainingRows(TReport& report, const TScratch& scratch);
void AddArrivalRows(TReport& report, const TScratch& scratch);
void AddRecallRows(TReport& report);
void AddMapRows(TReport& report, const TScratch& scratch);
void AddGeneticRows(TReport& report);
void AddFileRows(TReport& report, const TScratch& scratch);
void AddTeamRows(TReport& report, const TScratch& scratch);
void AddPythonRows(TReport& report);
void AddGrowthRows(TReport& report, const TScratch& scratch);

}  // namespace kiln
