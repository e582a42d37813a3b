// The one error type of the program.
//
// A class operation that fails raises a clsError; a class on the way up may raise it again under
// its own source text ("clsTableMaint.CreateDatabase"), keeping number and description. No other
// exception type leaves a class.
#pragma once

#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>

namespace sandrel {

/// Error numbers, as the user sees them in the error box and as handlers compare them.
namespace errnum {
// Language runtime.
inline constexpr std::int32_t InvalidArgument = 5;
inline constexpr std::int32_t Overflow = 6;
inline constexpr std::int32_t OutOfMemory = 7;
inline constexpr std::int32_t Internal = 51;     ///< a fault of the program's own
inline constexpr std::int32_t BadFileName = 52;  ///< a folder that can't be searched
inline constexpr std::int32_t FileNotFound = 53;
inline constexpr std::int32_t TypeMismatch = 13;
inline constexpr std::int32_t DeviceIo = 57;
inline constexpr std::int32_t DiskFull = 61;
inline constexpr std::int32_t PermissionDenied = 70;
inline constexpr std::int32_t PathFileAccess = 75;  ///< a file that vanished or can't be read
inline constexpr std::int32_t PathNotFound = 76;
inline constexpr std::int32_t NotSet = 91;  ///< an object that an earlier statement failed to make
// Database engine.
inline constexpr std::int32_t TableExists = 3010;
inline constexpr std::int32_t NoCurrentRecord = 3021;
inline constexpr std::int32_t DuplicateKey = 3022;
inline constexpr std::int32_t NoAddOrEdit = 3020;
inline constexpr std::int32_t DatabaseNotFound = 3024;
inline constexpr std::int32_t OutOfDiskSpace = 3026;
inline constexpr std::int32_t ReadOnly = 3027;
inline constexpr std::int32_t NoTransaction = 3034;
inline constexpr std::int32_t DiskError = 3043;
inline constexpr std::int32_t InvalidPath = 3044;
inline constexpr std::int32_t CorruptDatabase = 3049;
inline constexpr std::int32_t CannotOpen = 3051;
inline constexpr std::int32_t TooFewParameters = 3061;
inline constexpr std::int32_t SyntaxError = 3075;
inline constexpr std::int32_t NoSuchTable = 3078;
inline constexpr std::int32_t FieldTooLong = 3163;
inline constexpr std::int32_t DatabaseExists = 3204;
inline constexpr std::int32_t RecordLocked = 3218;
inline constexpr std::int32_t TableLocked = 3260;
inline constexpr std::int32_t NoSuchItem = 3265;
inline constexpr std::int32_t FieldRequired = 3314;
inline constexpr std::int32_t ZeroLength = 3315;
inline constexpr std::int32_t NoCurrentIndex = 3019;
inline constexpr std::int32_t InvalidOperation = 3219;
inline constexpr std::int32_t DataConversion = 3421;
// Controls.
inline constexpr std::int32_t IndexOutOfBounds = 35600;
inline constexpr std::int32_t ElementNotFound = 35601;
inline constexpr std::int32_t KeyNotUnique = 35602;
/// Numbers above this base are the program's own; the error box shows the offset alone.
inline constexpr std::int32_t UserBase = static_cast<std::int32_t>(0x80040000u);
/// The machine that is looked at: none there, or one that can't be read.
inline constexpr std::int32_t Machine = UserBase + 15000;
/// A registry hive that can't be read.
inline constexpr std::int32_t Hive = UserBase + 15001;
/// Another snapshot command works on the same home folder.
inline constexpr std::int32_t HomeBusy = UserBase + 15002;
}  // namespace errnum

class clsError : public std::exception {
 public:
  /// All texts are UTF-8. `source` is of the form "class.operation", or empty.
  clsError(std::int32_t number, std::string description, std::string source = {})
      : m_number(number), m_description(std::move(description)), m_source(std::move(source)) {}

  std::int32_t Number() const { return m_number; }
  const std::string& Description() const { return m_description; }
  const std::string& Source() const { return m_source; }
  const char* what() const noexcept override { return m_description.c_str(); }

  /// True when the store undid the open transaction by itself, so that what the running command had
  /// written is gone and repeating a statement can't mend it.
  bool RolledBack() const { return m_rolledBack; }
  void SetRolledBack() { m_rolledBack = true; }

  /// The same error under another source text.
  clsError WithSource(std::string source) const {
    clsError again = *this;
    again.m_source = std::move(source);
    return again;
  }
  /// The same error under another description.
  clsError WithDescription(std::string description) const {
    clsError again = *this;
    again.m_description = std::move(description);
    return again;
  }

 private:
  std::int32_t m_number;
  std::string m_description;
  std::string m_source;
  bool m_rolledBack = false;
};

/// Runs `body` and gives back what it gives; an error leaves again under `source`.
template <class Body>
auto RaiseAs(std::string_view source, Body&& body) -> decltype(body()) {
  try {
    return std::forward<Body>(body)();
  } catch (const clsError& error) {
    throw error.WithSource(std::string(source));
  } catch (const std::bad_alloc&) {
    throw clsError(errnum::OutOfMemory, "Out of memory", std::string(source));
  }
}

/// The object that an earlier statement was to make; raises 91 when it failed and the user chose to
/// go on.
template <class Pointer>
auto& Need(const Pointer& object) {
  if (!object) throw clsError(errnum::NotSet, "Object variable or With block variable not set");
  return *object;
}

/// An error for the present `errno` value `code`: its number is chosen by the kind of failure, its
/// description is `what` followed by the system's own words, as "Can't write x: No space left".
clsError ErrnoError(int code, std::string_view what);

}  // namespace sandrel
