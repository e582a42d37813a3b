// Makes an analysis from a working database and prints how long each comparison took.
//
//   bench_analysis DATABASE ANALYSIS
//
// One line a comparison, separated by tabs: the table, seconds of the statement, seconds of the
// copy of its rows, rows. DATABASE stays as it is: a copy is compared.

#include <fmt/format.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/clsCliShell.h"
#include "snapshot/clsAnalysis.h"
#include "support/SampleMachine.h"
#include "support/TempFolder.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Step {
  std::string Table;
  double Statement = 0, Copy = 0;
};

int Run(const std::string& database, const std::string& analysis) {
  sandrel::test::TempFolder temp;
  const sandrel::test::SampleMachine sample;
  const sandrel::clsHome home = sandrel::clsHome::Find(temp.Of("home"));
  std::filesystem::create_directory(home.Path());
  std::filesystem::copy_file(database, home.WorkingDatabase());
  sandrel::clsSettings settings(temp.Of("settings.ini"));
  sandrel::clsCliShell shell(true);
  sandrel::clsAnalysis command(shell, settings, home, sandrel::clsMachine::Open(sample.Folder()));

  std::vector<Step> steps;
  Clock::time_point begun;
  double Step::*running = nullptr;
  command.OnPhase = [&](std::string_view phase, std::string_view table) {
    const Clock::time_point now = Clock::now();
    if (running != nullptr)
      steps.back().*running = std::chrono::duration<double>(now - begun).count();
    if (phase == "statement") steps.push_back({std::string(table)});
    running = phase == "statement" ? &Step::Statement : phase == "copy" ? &Step::Copy : nullptr;
    begun = Clock::now();
  };
  if (!command.CreateViews(analysis)) return 1;
  for (const Step& step : steps) {
    sandrel::dao::Workspace workspace("Bench");
    const auto rows = workspace.OpenDatabase(analysis)
                          ->OpenRecordset(step.Table, sandrel::dao::RecordsetType::Table)
                          ->RecordCount();
    fmt::print("{}\t{:.6f}\t{:.6f}\t{}\n", step.Table, step.Statement, step.Copy, rows);
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    fmt::print(stderr, "bench_analysis DATABASE ANALYSIS\n");
    return 2;
  }
  try {
    return Run(argv[1], argv[2]);
  } catch (const std::exception& error) {
    fmt::print(stderr, "bench_analysis: {}\n", error.what());
    return 2;
  }
}
