// SPDX-License-Identifier: MIT
/// @file Nouns.hpp
/// The nouns of the command. A noun is a source file of its own in nouns/ that defines the function which adds it; here
/// it gets its line.
#pragma once

namespace dorn::tool {

class Program;

void addServiceNoun(Program& program);
void addRadNoun(Program& program);
void addTagNoun(Program& program);
void addMsgNoun(Program& program);
void addLogNoun(Program& program);
void addAlarmNoun(Program& program);
void addRedundancyNoun(Program& program);
void addGatewayNoun(Program& program);
void addBoardNoun(Program& program);
void addRamlNoun(Program& program);
void addImageNoun(Program& program);
void addRpramNoun(Program& program);
void addSrioNoun(Program& program);
void addPostNoun(Program& program);
void addSnapshotNoun(Program& program);
void addNewNoun(Program& program);
void addCompletionNoun(Program& program);

/// Adds them all, in the order of the help.
inline void addNouns(Program& program)
{
    addServiceNoun(program);
    addRadNoun(program);
    addTagNoun(program);
    addMsgNoun(program);
    addLogNoun(program);
    addAlarmNoun(program);
    addRedundancyNoun(program);
    addGatewayNoun(program);
    addBoardNoun(program);
    addRamlNoun(program);
    addImageNoun(program);
    addRpramNoun(program);
    addSrioNoun(program);
    addPostNoun(program);
    addSnapshotNoun(program);
    addNewNoun(program);
    addCompletionNoun(program);
}

} // namespace dorn::tool
