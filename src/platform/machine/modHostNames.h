// File names of the host as Windows names and back.
//
// A host name is any bytes but NUL and "/". A byte that belongs to no UTF-8 sequence is the
// private-use letter U+F700 + byte in the Windows name; a letter of that range that stands in the
// host name itself (U+F780 to U+F7FF) is taken for three such bytes, so that two host names never
// share a Windows name.
#pragma once

#include <string>
#include <string_view>

namespace sandrel::hostnames {

enum class Form {
  Same,        ///< the Windows name has the same bytes
  Mapped,      ///< it has other bytes: some stood for no character
  Impossible,  ///< Windows can't have this name
};

/// Appends the Windows name of a host name to `windowsName`; nothing when it is impossible.
///
/// Impossible are \ : * ? " < > | and control characters. A name that ends in a blank or a dot is
/// possible: a Windows search gives it, only a path that names it gets there in other ways.
Form AppendWindowsName(std::string& windowsName, std::string_view hostName);

/// Appends the host name of a Windows name to `hostName`. False, with nothing appended, when no
/// host name has this Windows name.
bool AppendHostName(std::string& hostName, std::string_view windowsName);

}  // namespace sandrel::hostnames
