// The text form of a registry hive, as Wine's server writes it.
//
//   WINE REGISTRY Version 2
//   ;; All keys relative to REGISTRY\\Machine
//
//   #arch=win64
//
//   [Software\\Wine] 1290444000          seconds since 1970
//   #time=1cb8a5c1f3a2b00                100 ns units since 1601, hexadecimal
//   #class="text"
//   #link                                the key is a symbolic link
//   @="default value"
//   "Name"="text"                        str(2):"text" and str(7):"text" for other types of text
//   "Name"=dword:0000002a
//   "Name"=hex:01,02,\                   hex(b):01 for other types, in hexadecimal
//     03,04
//
// Characters beyond ASCII stand as UTF-16 units in escapes. A key that has neither values nor class
// and isn't a link stands there only when it has no subkeys.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/registry/clsKeyTree.h"

namespace sandrel {

struct TextHive {
  std::shared_ptr<clsKeyTree> tree;
  std::string head;  ///< everything before the first key, without the empty line that ends it
};

/// Reads a hive out of the content of the file at `path`, which serves the error texts. Raises
/// errnum::Hive with the line and what is wrong with it when the content is damaged or cut off, and
/// when it holds no key at all, as an empty hive would report everything as deleted.
TextHive ReadTextHive(std::string_view content, const std::string& path);

/// The content of the file for a hive. What Wine has written and `ReadTextHive` has read comes out
/// byte for byte.
std::string WriteTextHive(const TextHive& hive);

}  // namespace sandrel
