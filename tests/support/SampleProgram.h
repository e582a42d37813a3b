// The bytes of a minimal Windows program with a version resource.
#pragma once

#include <cstdint>
#include <string>

namespace sandrel::test {

/// A PE32 (or, with `wide`, PE32+) file with one section that holds one version resource, whose
/// fixed file information has the given file version words. It can't be run.
inline std::string SampleProgram(std::uint32_t versionMS, std::uint32_t versionLS,
                                 bool wide = false) {
  std::string file(0x600, '\0');
  const auto put = [&file](std::size_t at, std::uint64_t value, std::size_t bytes) {
    for (std::size_t i = 0; i < bytes; ++i) file[at + i] = static_cast<char>(value >> 8 * i & 0xFF);
  };
  const std::size_t headers = 0x80;
  const std::size_t optional = headers + 24;
  const std::size_t optionalSize = wide ? 240 : 224;
  put(0, 0x5A4D, 2);  // MZ
  put(0x3C, headers, 4);
  put(headers, 0x4550, 4);  // PE
  put(headers + 4, wide ? 0x8664 : 0x14C, 2);
  put(headers + 6, 1, 2);  // sections
  put(headers + 20, optionalSize, 2);
  put(optional, wide ? 0x20B : 0x10B, 2);
  const std::size_t directories = optional + (wide ? 112 : 96);
  put(directories - 4, 16, 4);
  put(directories + 16, 0x1000, 4);  // resources: address, size
  put(directories + 20, 0x200, 4);
  const std::size_t section = optional + optionalSize;
  file.replace(section, 5, ".rsrc");
  put(section + 8, 0x200, 4);
  put(section + 12, 0x1000, 4);
  put(section + 16, 0x200, 4);
  put(section + 20, 0x400, 4);

  // Three directories of one entry each: type 16, name 1, a language; then the data's place.
  const std::size_t resources = 0x400;
  const auto directory = [&](std::size_t at, std::uint32_t id, std::uint32_t next) {
    put(resources + at + 14, 1, 2);
    put(resources + at + 16, id, 4);
    put(resources + at + 20, next, 4);
  };
  directory(0x00, 16, 0x80000018);
  directory(0x18, 1, 0x80000030);
  directory(0x30, 0x409, 0x48);
  put(resources + 0x48, 0x1060, 4);
  put(resources + 0x4C, 92, 4);

  const std::size_t version = resources + 0x60;
  put(version, 92, 2);
  put(version + 2, 52, 2);
  const char key[] = "VS_VERSION_INFO";
  for (std::size_t i = 0; key[i] != '\0'; ++i) file[version + 6 + 2 * i] = key[i];
  put(version + 40, 0xFEEF04BD, 4);
  put(version + 44, 0x10000, 4);
  put(version + 48, versionMS, 4);
  put(version + 52, versionLS, 4);
  return file;
}

}  // namespace sandrel::test
