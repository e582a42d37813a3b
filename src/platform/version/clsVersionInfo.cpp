#include "platform/version/clsVersionInfo.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <string_view>
#include <system_error>

namespace sandrel {
namespace {

constexpr std::uint32_t VersionResource = 16;  // the type's number
constexpr std::uint32_t Subdirectory = 0x80000000u;
constexpr std::size_t FirstPiece =
    1024;  // holds the headers and the section table of most programs

std::uint32_t Little(const char* bytes, int count) {
  std::uint32_t value = 0;
  for (int i = count - 1; i >= 0; --i) value = value << 8 | static_cast<unsigned char>(bytes[i]);
  return value;
}

// A file that is read in small pieces, all reads checked against what is there.
class clsPieces {
 public:
  explicit clsPieces(const std::string& path)
      : m_descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY)) {
    if (m_descriptor < 0) m_failure = errno;
    m_firstSize = Read(0, m_first.data(), m_first.size());
  }
  ~clsPieces() {
    if (m_descriptor >= 0) close(m_descriptor);
  }
  clsPieces(const clsPieces&) = delete;
  clsPieces& operator=(const clsPieces&) = delete;

  // Fills `piece` from the offset `at`; false when the file ends before.
  bool Get(std::uint64_t at, char* piece, std::size_t size) const {
    if (at + size <= m_firstSize) {
      std::memcpy(piece, m_first.data() + at, size);
      return true;
    }
    return Read(at, piece, size) == size;
  }

  // The system's number of the first error; 0 when there was none.
  int Failure() const { return m_failure; }

  std::uint64_t Size() const {
    struct stat status {};
    return fstat(m_descriptor, &status) == 0 ? static_cast<std::uint64_t>(status.st_size) : 0;
  }

 private:
  std::size_t Read(std::uint64_t at, char* piece, std::size_t size) const {
    std::size_t done = 0;
    while (done < size) {
      const ssize_t got =
          pread(m_descriptor, piece + done, size - done, static_cast<off_t>(at + done));
      if (got < 0 && errno == EINTR) continue;
      if (got < 0 && m_failure == 0) m_failure = errno;
      if (got <= 0) break;
      done += static_cast<std::size_t>(got);
      if (at == 0 && size == FirstPiece) break;  // a small file need not be asked for its end
    }
    return done;
  }

  int m_descriptor;
  mutable int m_failure = 0;
  std::array<char, FirstPiece> m_first;
  std::size_t m_firstSize = 0;
};

struct Place {
  std::uint64_t Offset;
  std::size_t Size;
};

// The headers of a PE file as far as they lead to its resources.
struct Headers {
  std::uint64_t Sections = 0;  // offset of the section table
  std::uint32_t SectionCount = 0;
  std::uint32_t Resources = 0;  // address of the resource directory in memory
};

std::optional<Headers> ReadHeaders(const clsPieces& file) {
  std::array<char, 64> dos;
  if (!file.Get(0, dos.data(), dos.size()) || dos[0] != 'M' || dos[1] != 'Z') return {};
  const std::uint64_t start = Little(dos.data() + 0x3C, 4);
  std::array<char, 24> nt;
  if (!file.Get(start, nt.data(), nt.size()) || std::memcmp(nt.data(), "PE\0\0", 4) != 0) return {};
  const std::uint64_t optional = start + nt.size();
  const std::uint32_t optionalSize = Little(nt.data() + 20, 2);
  Headers headers;
  headers.SectionCount = Little(nt.data() + 6, 2);
  headers.Sections = optional + optionalSize;

  std::array<char, 2> magic;
  if (!file.Get(optional, magic.data(), magic.size())) return {};
  const std::uint32_t kind = Little(magic.data(), 2);
  if (kind != 0x10B && kind != 0x20B) return {};
  // The number of data directories, then the directories: the third is that of the resources.
  const std::uint32_t count = kind == 0x10B ? 92 : 108;
  std::array<char, 4 + 3 * 8> directories;
  if (count + directories.size() > optionalSize ||
      !file.Get(optional + count, directories.data(), directories.size()) ||
      Little(directories.data(), 4) < 3) {
    return {};
  }
  headers.Resources = Little(directories.data() + 4 + 2 * 8, 4);
  if (headers.Resources == 0) return {};
  return headers;
}

// Where the address lies in the file, with what its section has there from it on. Nothing when no
// section holds it.
std::optional<Place> PlaceOf(const clsPieces& file, const Headers& headers, std::uint32_t address) {
  constexpr std::size_t SectionSize = 40;
  std::array<char, SectionSize> section;
  for (std::uint32_t i = 0; i < headers.SectionCount; ++i) {
    if (!file.Get(headers.Sections + i * SectionSize, section.data(), section.size())) return {};
    const std::uint32_t base = Little(section.data() + 12, 4);
    const std::uint32_t size = Little(section.data() + 16, 4);
    if (address < base || address - base >= size) continue;
    const std::uint32_t inSection = address - base;
    return Place{std::uint64_t{Little(section.data() + 20, 4)} + inSection, size - inSection};
  }
  return {};
}

// The entry of the resource directory at `directory` (from the start of all resources) with the
// number `id`, or its first entry without one: what it leads to, as stored.
std::optional<std::uint32_t> FindEntry(const clsPieces& file, const Place& resources,
                                       std::uint32_t directory, std::optional<std::uint32_t> id) {
  std::array<char, 16> head;
  if (std::uint64_t{directory} + head.size() > resources.Size ||
      !file.Get(resources.Offset + directory, head.data(), head.size())) {
    return {};
  }
  const std::uint32_t named = Little(head.data() + 12, 2);
  const std::uint32_t numbered = Little(head.data() + 14, 2);
  std::array<char, 8> entry;
  // Those with names stand first; a number is searched for behind them.
  for (std::uint32_t i = id ? named : 0; i < named + numbered; ++i) {
    const std::uint64_t at = std::uint64_t{directory} + head.size() + i * entry.size();
    if (at + entry.size() > resources.Size ||
        !file.Get(resources.Offset + at, entry.data(), entry.size())) {
      return {};
    }
    if (!id || Little(entry.data(), 4) == *id) return Little(entry.data() + 4, 4);
  }
  return {};
}

// Where the version resource lies: type 16, its first name, its first language.
std::optional<Place> FindVersion(const clsPieces& file) {
  const std::optional<Headers> headers = ReadHeaders(file);
  if (!headers) return {};
  const std::optional<Place> resources = PlaceOf(file, *headers, headers->Resources);
  if (!resources) return {};
  const auto name = FindEntry(file, *resources, 0, VersionResource);
  if (!name || (*name & Subdirectory) == 0) return {};
  const auto language = FindEntry(file, *resources, *name & ~Subdirectory, {});
  if (!language || (*language & Subdirectory) == 0) return {};
  const auto data = FindEntry(file, *resources, *language & ~Subdirectory, {});
  if (!data || (*data & Subdirectory) != 0) return {};
  std::array<char, 16> leaf;
  if (std::uint64_t{*data} + leaf.size() > resources->Size ||
      !file.Get(resources->Offset + *data, leaf.data(), leaf.size())) {
    return {};
  }
  std::optional<Place> place = PlaceOf(file, *headers, Little(leaf.data(), 4));
  if (!place) return {};
  const std::uint64_t fileSize = file.Size();
  if (place->Offset >= fileSize) return {};
  place->Size =
      std::min<std::uint64_t>({place->Size, Little(leaf.data() + 4, 4), fileSize - place->Offset});
  return place->Size == 0 ? std::nullopt : place;
}

}  // namespace

std::size_t clsVersionInfo::GetFileVersionInfoSize(const std::string& hostPath,
                                                   std::string* failure) {
  const clsPieces file(hostPath);
  const std::optional<Place> place = FindVersion(file);
  if (failure != nullptr && file.Failure() != 0) {
    *failure = std::generic_category().message(file.Failure());
  }
  return place ? place->Size : 0;
}

bool clsVersionInfo::GetFileVersionInfo(const std::string& hostPath, std::size_t size,
                                        std::string& buffer) {
  const clsPieces file(hostPath);
  const std::optional<Place> place = FindVersion(file);
  buffer.clear();
  if (!place) return false;
  buffer.resize(std::min(size, place->Size));
  if (file.Get(place->Offset, buffer.data(), buffer.size())) return true;
  buffer.clear();
  return false;
}

bool clsVersionInfo::VerQueryRoot(const std::string& buffer, FixedFileInfo& info) {
  // Length, value length and type (16 bits each), the key in UTF-16 with its zero, then the value
  // at the next multiple of four.
  constexpr std::string_view Key("V\0S\0_\0V\0E\0R\0S\0I\0O\0N\0_\0I\0N\0F\0O\0\0\0", 32);
  constexpr std::size_t ValueAt = 40;
  constexpr std::size_t ValueSize = 52;
  constexpr std::uint32_t Signature = 0xFEEF04BDu;
  if (buffer.size() < ValueAt + ValueSize || std::string_view(buffer).substr(6, 32) != Key ||
      Little(buffer.data() + 2, 2) < ValueSize || Little(buffer.data() + ValueAt, 4) != Signature) {
    return false;
  }
  info.FileVersionMS = Little(buffer.data() + ValueAt + 8, 4);
  info.FileVersionLS = Little(buffer.data() + ValueAt + 12, 4);
  return true;
}

}  // namespace sandrel
