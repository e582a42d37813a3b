#include "store/TableShapes.h"

#include <utility>

namespace sandrel::shapes {
namespace {

using dao::Field;
using dao::FieldType;
using dao::Index;

// UTF-16 units, as the platform allows.
constexpr int LongestPath = 32767;
constexpr int LongestValueName = 16383;

Field Id(const char* name) {
  return {name, FieldType::Long, 0, true, false, dao::AutoIncrement};
}
Field Long(const char* name, bool required = false) {
  return {name, FieldType::Long, 0, required};
}
Field Integer(const char* name) {
  return {name, FieldType::Integer};
}
Field Date(const char* name) {
  return {name, FieldType::Date};
}

enum class Empty : bool { Refused, Allowed };
Field Text(const char* name, int size, Empty empty, bool required = false) {
  return {name, FieldType::Text, size, required, empty == Empty::Allowed};
}
Field Memo(const char* name) {
  return {name, FieldType::Memo, 0, false, true};
}

Index Primary(std::vector<std::string> fields) {
  return {"PrimaryKey", std::move(fields), true, true};
}
// For the tables with most rows: one tree to fill and to search instead of two.
Index Clustered(std::vector<std::string> fields) {
  return {"PrimaryKey", std::move(fields), true, true, true};
}
Index Unique(const char* name) {
  return {name, {name}, false, true};
}

}  // namespace

const TableShape& Paths() {
  static const TableShape shape{{Id("Id"), Text("PathName", LongestPath, Empty::Refused, true)},
                                {Primary({"PathName"}), Unique("Id")}};
  return shape;
}

const TableShape& Files() {
  static const TableShape shape{
      {Id("Id"), Long("PathId", true), Text("FileName", 255, Empty::Allowed, true), Date("Date"),
       Text("Version", 20, Empty::Allowed), Long("Size"), Integer("Attributes")},
      {Primary({"PathId", "FileName"}), Unique("Id")}};
  return shape;
}

const TableShape& RegKeys() {
  static const TableShape shape{
      {Long("Hive"), Text("Branch", LongestPath, Empty::Allowed), Id("Id")},
      {Primary({"Hive", "Branch"}), Unique("Id")}};
  return shape;
}

const TableShape& RegValues() {
  static const TableShape shape{
      {Long("KeyId", true), Text("ValueName", LongestValueName, Empty::Allowed), Memo("Value"),
       Long("ValueType")},
      {Clustered({"KeyId", "ValueName"})}};
  return shape;
}

const TableShape& IniSections() {
  static const TableShape shape{
      {Id("Id"), Long("FileId", true), Text("Section", 255, Empty::Refused, true)},
      {Primary({"Section", "FileId"}), Unique("Id")}};
  return shape;
}

const TableShape& IniValues() {
  static const TableShape shape{{Long("SectionId", true), Text("Parameter", 255, Empty::Allowed),
                                 Long("Occurance", true), Memo("Value")},
                                {Clustered({"SectionId", "Parameter", "Occurance"})}};
  return shape;
}

const TableShape& LeftOut() {
  static const TableShape shape{{Text("What", 20, Empty::Refused, true), Long("Hive", true),
                                 Memo("Path"), Memo("Name"), Memo("Reason")},
                                {Clustered({"What", "Hive", "Path", "Name", "Reason"})}};
  return shape;
}

const TableShape& Settings() {
  static const TableShape shape{{Text("Section", 255, Empty::Refused, true),
                                 Text("Key", 255, Empty::Refused, true), Memo("Value")},
                                {Clustered({"Section", "Key"})}};
  return shape;
}

const TableShape& NewOrOldFiles() {
  static const TableShape shape{
      {Text("PathName", LongestPath, Empty::Refused), Text("FileName", 255, Empty::Allowed),
       Text("Version", 20, Empty::Allowed), Long("Size"), Integer("Attributes"), Date("Date")},
      {Primary({"PathName", "FileName"})}};
  return shape;
}

const TableShape& ChangedFiles() {
  static const TableShape shape{
      {Text("PathName", LongestPath, Empty::Refused), Text("FileName", 255, Empty::Allowed),
       Date("OldDate"), Text("OldVersion", 20, Empty::Allowed), Long("OldSize"),
       Integer("OldAttributes"), Date("NewDate"), Text("NewVersion", 20, Empty::Allowed),
       Long("NewSize"), Integer("NewAttributes")},
      {Primary({"PathName", "FileName"})}};
  return shape;
}

const TableShape& NewOrOldRegEntries() {
  static const TableShape shape{
      {Long("Hive"), Text("Branch", LongestPath, Empty::Allowed),
       Text("ValueName", LongestValueName, Empty::Allowed), Memo("Value"), Long("ValueType")},
      {Primary({"Hive", "Branch", "ValueName"})}};
  return shape;
}

const TableShape& ChangedRegEntries() {
  static const TableShape shape{
      {Long("Hive"), Text("Branch", LongestPath, Empty::Allowed),
       Text("ValueName", LongestValueName, Empty::Allowed), Memo("OldValue"), Memo("NewValue"),
       Long("OldValueType"), Long("NewValueType")},
      {Primary({"Hive", "Branch", "ValueName"})}};
  return shape;
}

const TableShape& NewOrOldIniEntries() {
  // The only table without a primary key: a parameter may repeat.
  static const TableShape shape{
      {Text("PathName", LongestPath, Empty::Refused), Text("FileName", 255, Empty::Allowed),
       Text("Section", 255, Empty::Allowed), Text("Parameter", 255, Empty::Allowed), Memo("Value")},
      {{"PathByFileBySectionByParam",
        {"PathName", "FileName", "Section", "Parameter"},
        false,
        false}}};
  return shape;
}

const TableShape& ChangedIniEntries() {
  static const TableShape shape{
      {Text("PathName", LongestPath, Empty::Refused), Text("FileName", 255, Empty::Allowed),
       Text("Section", 255, Empty::Allowed), Text("Parameter", 255, Empty::Allowed),
       Memo("OldValue"), Memo("NewValue")},
      {Primary({"PathName", "FileName", "Section", "Parameter"})}};
  return shape;
}

const TableShape& HiveLookup() {
  static const TableShape shape{{Long("Hive"), Text("Name", 20, Empty::Refused)},
                                {Primary({"Hive"})}};
  return shape;
}

const TableShape& ValueTypes() {
  static const TableShape shape{{Long("ValueType"), Text("Name", 30, Empty::Refused)},
                                {Primary({"valueType"})}};
  return shape;
}

const TableShape& Stats() {
  static const TableShape shape{
      {Text("Description", 255, Empty::Refused), Id("id"), Text("Value", 50, Empty::Allowed)},
      {Primary({"id"}), {"Description", {"Description"}, false, false}}};
  return shape;
}

}  // namespace sandrel::shapes
