#pragma once

#include "Interpreter/Commands.h"

// The kinds of object that "create" makes.
namespace kiln::commands {

// CreateData.cpp
int CreateData(TInterpreter& interpreter, const TCommandLine& line);
int CreateDataStats(TInterpreter& interpreter, const TCommandLine& line);

// CreateNetworks.cpp
int CreateMLP(TInterpreter& interpreter, const TCommandLine& line);
int CreateTarn(TInterpreter& interpreter, const TCommandLine& line);

// CreateTrainers.cpp
int CreateBPTrainer(TInterpreter& interpreter, const TCommandLine& line);
int CreateLWFTrainer(TInterpreter& interpreter, const TCommandLine& line);

// GeneticCommands.cpp
int CreateGATrainer(TInterpreter& interpreter, const TCommandLine& line);

// KohonenCommands.cpp
int CreateKohonen(TInterpreter& interpreter, const TCommandLine& line);
int CreateKohonenTrainer(TInterpreter& interpreter, const TCommandLine& line);

}  // namespace kiln::commands
