// The tables of the working database and of an analysis, as data: fields in their order, then
// indexes. Table and field names, misspelt ones included, are part of the file format.
#pragma once

#include <vector>

#include "platform/dao/Field.h"
#include "platform/dao/TableDef.h"

namespace sandrel {

struct TableShape {
  std::vector<dao::Field> Fields;
  std::vector<dao::Index> Indexes;
};

namespace shapes {
// The working database. Folders, registry keys and INI sections are shared by both snapshots, so
// that an id means the same thing in both; files, values and entries exist once for each snapshot.
const TableShape& Paths();
const TableShape& Files();
const TableShape& RegKeys();
const TableShape& RegValues();
const TableShape& IniSections();
const TableShape& IniValues();
const TableShape& LeftOut();   // exists once for each snapshot, as do the leaf tables
const TableShape& Settings();  // of both: times, machines, what is scanned
// An analysis.
const TableShape& NewOrOldFiles();
const TableShape& ChangedFiles();
const TableShape& NewOrOldRegEntries();
const TableShape& ChangedRegEntries();
const TableShape& NewOrOldIniEntries();
const TableShape& ChangedIniEntries();
const TableShape& HiveLookup();
const TableShape& ValueTypes();
const TableShape& Stats();
}  // namespace shapes

}  // namespace sandrel
