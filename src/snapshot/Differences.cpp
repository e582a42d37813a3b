#include "snapshot/Differences.h"

namespace sandrel {

const std::array<Difference, 9> Differences{{
    {"SELECT tblRegKey.Hive, tblRegKey.Branch, tblRegValue2.ValueName, tblRegValue2.Value, "
     "tblRegValue2.ValueType FROM (tblRegValue RIGHT JOIN tblRegValue2 ON "
     "(tblRegValue.ValueName = tblRegValue2.ValueName) AND (tblRegValue.KeyId = "
     "tblRegValue2.KeyId)) LEFT JOIN tblRegKey ON tblRegValue2.KeyId = tblRegKey.Id WHERE "
     "(((tblRegValue.KeyId) Is Null));",
     "tblNewRegistryEnteries", &clsTableMaint::CreateNewOrOldRegEntryTable, "Registry - New", 10,
     DifferenceOf::Registry, DifferenceKind::New},
    {"SELECT tblRegKey.Hive, tblRegKey.Branch, tblRegValue.ValueName, tblRegValue2.Value AS "
     "NewValue, tblRegValue2.ValueType AS NewValueType, tblRegValue.Value AS OldValue, "
     "tblRegValue.ValueType AS OldValueType FROM (tblRegValue INNER JOIN tblRegValue2 ON "
     "(tblRegValue.ValueName = tblRegValue2.ValueName) AND (tblRegValue.KeyId = "
     "tblRegValue2.KeyId)) INNER JOIN tblRegKey ON tblRegValue.KeyId = tblRegKey.Id WHERE "
     "(((tblRegValue.Value)<>[tblRegValue2].[value])) OR "
     "(((tblRegValue.ValueType)<>[tblRegValue2].[valueType]));",
     "tblChangedRegistryEnteries", &clsTableMaint::CreateChangedRegEntryTable, "Registry - Changed",
     20, DifferenceOf::Registry, DifferenceKind::Changed},
    {"SELECT tblRegKey.Branch, tblRegKey.Hive, tblRegValue.ValueName, tblRegValue.Value, "
     "tblRegValue.ValueType FROM (tblRegValue LEFT JOIN tblRegValue2 ON "
     "(tblRegValue.ValueName = tblRegValue2.ValueName) AND (tblRegValue.KeyId = "
     "tblRegValue2.KeyId)) LEFT JOIN tblRegKey ON tblRegValue.KeyId = tblRegKey.Id WHERE "
     "(((tblRegValue2.KeyId) Is Null));",
     "tblDeletedRegistryEnteries", &clsTableMaint::CreateNewOrOldRegEntryTable,
     "Registry - Deleted", 30, DifferenceOf::Registry, DifferenceKind::Deleted},
    {"SELECT tblPaths.PathName, tblFiles2.FileName, tblFiles2.Date, tblFiles2.Version, "
     "tblFiles2.Size, tblFiles2.Attributes FROM (tblFiles2 LEFT JOIN tblFiles ON "
     "(tblFiles2.FileName = tblFiles.FileName) AND (tblFiles2.PathId = tblFiles.PathId)) "
     "INNER JOIN tblPaths ON tblFiles2.PathId = tblPaths.Id WHERE (((tblFiles.PathId) Is "
     "Null));",
     "tblNewFiles", &clsTableMaint::CreateNewOrOldFilesTable, "Files - New", 40,
     DifferenceOf::Files, DifferenceKind::New},
    {"SELECT tblPaths.PathName, tblFiles.FileName, tblFiles2.Date AS NewDate, "
     "tblFiles2.Version AS NewVersion, tblFiles2.Size AS NewSize, tblFiles2.Attributes AS "
     "NewAttributes, tblFiles.Date AS OldDate, tblFiles.Version AS OldVersion, "
     "tblFiles.Size AS OldSize, tblFiles.Attributes AS OldAttributes FROM (tblFiles INNER "
     "JOIN tblFiles2 ON (tblFiles.FileName = tblFiles2.FileName) AND (tblFiles.PathId = "
     "tblFiles2.PathId)) INNER JOIN tblPaths ON tblFiles.PathId = tblPaths.Id WHERE "
     "(((tblFiles2.Date)<>[tblFiles].[Date])) OR "
     "(((tblFiles2.Version)<>[tblFiles].[version])) OR "
     "(((tblFiles2.Size)<>[tblFiles].[size])) OR "
     "(((tblFiles2.Attributes)<>[tblFiles].[attributes]));",
     "tblChangedFiles", &clsTableMaint::CreateChangedFilesTable, "Files - Changed", 50,
     DifferenceOf::Files, DifferenceKind::Changed},
    {"SELECT tblPaths.PathName, tblFiles.FileName, tblFiles.Date, tblFiles.Version, "
     "tblFiles.Size, tblFiles.Attributes FROM (tblFiles2 RIGHT JOIN tblFiles ON "
     "(tblFiles2.PathId = tblFiles.PathId) AND (tblFiles2.FileName = tblFiles.FileName)) "
     "LEFT JOIN tblPaths ON tblFiles.PathId = tblPaths.Id WHERE (((tblFiles2.PathId) Is "
     "Null));",
     "tblDeletedFiles", &clsTableMaint::CreateNewOrOldFilesTable, "Files - Deleted", 60,
     DifferenceOf::Files, DifferenceKind::Deleted},
    {"SELECT tblPaths.PathName, tblFiles2.FileName, tblIniSections.Section, "
     "tblIniValues2.Parameter, tblIniValues2.Value FROM (tblIniValues RIGHT JOIN "
     "tblIniValues2 ON (tblIniValues.SectionId = tblIniValues2.SectionId) AND "
     "(tblIniValues.Parameter = tblIniValues2.Parameter)) LEFT JOIN ((tblIniSections LEFT "
     "JOIN tblFiles2 ON tblIniSections.FileId = tblFiles2.Id) LEFT JOIN tblPaths ON "
     "tblFiles2.PathId = tblPaths.Id) ON tblIniValues2.SectionId = tblIniSections.Id WHERE "
     "(((tblIniValues.SectionId) Is Null));",
     "tblNewIniEnteries", &clsTableMaint::CreateNewOrOldIniEntryTable, "INI Entries - New", 70,
     DifferenceOf::IniEntries, DifferenceKind::New},
    {"SELECT tblPaths.PathName, tblFiles.FileName, tblIniSections.Section, "
     "tblIniValues.Parameter, tblIniValues2.Value AS NewValue, tblIniValues.Value AS "
     "OldValue FROM (((tblIniValues INNER JOIN tblIniValues2 ON (tblIniValues.SectionId = "
     "tblIniValues2.SectionId) AND (tblIniValues.Parameter = tblIniValues2.Parameter) AND "
     "(tblIniValues.Occurance = tblIniValues2.Occurance)) INNER JOIN tblIniSections ON "
     "tblIniValues.SectionId = tblIniSections.Id) INNER JOIN tblFiles ON "
     "tblIniSections.FileId = tblFiles.Id) INNER JOIN tblPaths ON tblFiles.PathId = "
     "tblPaths.Id WHERE (((tblIniValues.Value)<>[tblIniValues2].[value]));",
     "tblChangedIniEnteries", &clsTableMaint::CreateChangedIniEntryTable, "INI Entries - Changed",
     80, DifferenceOf::IniEntries, DifferenceKind::Changed},
    {"SELECT tblPaths.PathName, tblFiles.FileName, tblIniSections.Section, "
     "tblIniValues.Parameter, tblIniValues.Value FROM (((tblIniValues LEFT JOIN "
     "tblIniValues2 ON (tblIniValues.Parameter = tblIniValues2.Parameter) AND "
     "(tblIniValues.SectionId = tblIniValues2.SectionId)) LEFT JOIN tblIniSections ON "
     "tblIniValues.SectionId = tblIniSections.Id) LEFT JOIN tblFiles ON "
     "tblIniSections.FileId = tblFiles.Id) LEFT JOIN tblPaths ON tblFiles.PathId = "
     "tblPaths.Id WHERE (((tblIniValues2.SectionId) Is Null));",
     "tblDeletedIniEnteries", &clsTableMaint::CreateNewOrOldIniEntryTable, "INI Entries - Deleted",
     90, DifferenceOf::IniEntries, DifferenceKind::Deleted},
}};

}  // namespace sandrel
