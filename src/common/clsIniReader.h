// Reads INI files.
//
// The rules: a line is text up to CR, LF or CR LF; it loses blanks and tabs at both ends. Empty
// lines and lines that begin with ";" are dropped. A line that begins with "[" and holds "]" is a
// section header, its name what stands between them. Entries before the first header belong to no
// section. A section that appears again, in any case, adds its entries to the first one.
//
// A file with a byte order mark is read by it (UTF-8, UTF-16); otherwise as UTF-8 when it is valid,
// else as code page 1252.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace sandrel {

class clsIniReader {
 public:
  using Lines = std::vector<std::string_view>;

  /// The section names of the file at the host path `path`, in file order, each once in its first
  /// spelling. Reads the file anew. Raises 75 when the file can't be read. What this and
  /// `ListEntries` give stands until the next `ListSections`.
  const Lines& ListSections(const std::string& path);

  /// The entries of a section, whole lines as "parameter=value", in file order. Takes what the last
  /// `ListSections` read when it was of the same path. An unknown section has no entries.
  const Lines& ListEntries(const std::string& path, std::string_view section);

 private:
  void Parse();

  std::string m_path;
  std::string m_text;  // the whole file; names and entries point into it
  Lines m_names;
  std::vector<Lines> m_entries;                            // in step with m_names
  std::unordered_map<std::string, std::size_t> m_indexes;  // by folded name
};

}  // namespace sandrel
