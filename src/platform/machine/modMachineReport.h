// What there is to tell about the machine that is looked at.
#pragma once

#include <string>
#include <vector>

namespace sandrel {

class clsMachine;

/// A line of the report: what is told, and what it is.
struct MachineFact {
  std::string Name;  ///< "Machine", "Windows", "Drive", "Hive", "User", "Note"
  std::string Text;
};

/// "Wine prefix" or "offline Windows volume".
const char* KindText(const clsMachine& machine);

/// The machine in the host folder `folder`, read anew: its kind, Windows folder, drives, the files
/// of its registry and what is missing or doubtful. Raises nothing: without a machine the one line
/// says "none" and why.
std::vector<MachineFact> ReportMachine(const std::string& folder);

}  // namespace sandrel
