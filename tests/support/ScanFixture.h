// A sample machine with an empty working database and what a scanner needs.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "config/clsSettings.h"
#include "scan/clsScanContext.h"
#include "store/clsTableMaint.h"
#include "support/NumberOf.h"
#include "support/Rows.h"
#include "support/SampleMachine.h"

namespace sandrel::test {

class ScanFixture : public testing::Test {
 protected:
  ScanFixture() { m_maint.CreateDatabase(m_path); }

  Lines Rows(const std::string& sql) { return test::Rows(m_path, sql); }
  std::string Cell(const std::string& sql) { return test::Cell(m_path, sql); }

  SampleMachine m_sample;
  TempFolder m_temp;
  std::string m_path = m_temp.Of("SandrelTemp.zqd");
  clsTableMaint m_maint;
  clsSettings m_settings{m_temp.Of("settings.ini")};
  std::shared_ptr<clsMachine> m_machine = clsMachine::Open(m_sample.Folder());
  clsLeftOut m_leftOut;
  std::function<void()> m_events = [] {};
  clsScanContext m_context{*m_machine, m_settings, m_leftOut, "/nowhere", [this] { m_events(); }};
};

}  // namespace sandrel::test
