// One field's value in a record: Null, a whole number, a real number or a text.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace sandrel::dao {

class Value {
 public:
  enum class Kind : std::uint8_t { Null, Integer, Real, Text };

  Value() = default;
  // One argument each and implicit on purpose: keys and field values are written as plain literals.
  Value(std::int64_t number) : m_kind(Kind::Integer), m_integer(number) {}  // NOLINT
  Value(int number) : Value(std::int64_t{number}) {}                        // NOLINT
  Value(double number) : m_kind(Kind::Real), m_real(number) {}              // NOLINT
  Value(std::string_view text) { SetText(text); }                           // NOLINT
  Value(const std::string& text) : Value(std::string_view(text)) {}         // NOLINT
  Value(const char* text) : Value(std::string_view(text)) {}                // NOLINT

  Kind Type() const { return m_kind; }
  bool IsNull() const { return m_kind == Kind::Null; }

  /// The number; a text gives the number at its start, Null gives 0.
  std::int64_t Integer() const;
  double Real() const;
  /// The text of a Text value, which lives as long as the value is unchanged; empty for other
  /// kinds.
  std::string_view Text() const;
  /// The value joined with an empty text: Null gives the empty text, numbers their decimal form.
  std::string ToText() const;

  // Setting keeps the text's buffer, so that a row loop allocates nothing.
  void SetNull() { m_kind = Kind::Null; }
  void SetInteger(std::int64_t number);
  void SetReal(double number);
  /// A text by its constructor too: a NUL in the text, which would end a comparison in the store,
  /// becomes U+2400.
  void SetText(std::string_view text);

 private:
  Kind m_kind = Kind::Null;
  union {
    std::int64_t m_integer = 0;
    double m_real;
  };
  std::string m_text;
};

/// A Date/Time field's value: UTC text "YYYY-MM-DD HH:MM:SS".
std::string DateText(std::time_t utcSeconds);

}  // namespace sandrel::dao
