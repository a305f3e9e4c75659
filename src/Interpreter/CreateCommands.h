#pragma once

#include "Interpreter/Commands.h"

// The kinds of object that "create" makes.
namespace kiln::commands {

// CreateData.cpp
int CreateData(TInterpreter& interpreter, const CommandLine& line);
int CreateDataStats(TInterpreter& interpreter, const CommandLine& line);

// CreateNetworks.cpp
int CreateMLP(TInterpreter& interpreter, const CommandLine& line);
int CreateTarn(TInterpreter& interpreter, const CommandLine& line);

// CreateTrainers.cpp
int CreateBPTrainer(TInterpreter& interpreter, const CommandLine& line);
int CreateLWFTrainer(TInterpreter& interpreter, const CommandLine& line);

// GeneticCommands.cpp
int CreateGATrainer(TInterpreter& interpreter, const CommandLine& line);

// KohonenCommands.cpp
int CreateKohonen(TInterpreter& interpreter, const CommandLine& line);
int CreateKohonenTrainer(TInterpreter& interpreter, const CommandLine& line);

}  // namespace kiln::commands
