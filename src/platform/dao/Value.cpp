#include "platform/dao/Value.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <cstdlib>

#include "common/text.h"

namespace sandrel::dao {

std::int64_t Value::Integer() const {
  switch (m_kind) {
    case Kind::Integer:
      return m_integer;
    case Kind::Real:
      return static_cast<std::int64_t>(m_real);
    case Kind::Text:
      return std::strtoll(m_text.c_str(), nullptr, 10);
    case Kind::Null:
      break;
  }
  return 0;
}

double Value::Real() const {
  switch (m_kind) {
    case Kind::Integer:
      return static_cast<double>(m_integer);
    case Kind::Real:
      return m_real;
    case Kind::Text:
      return text::Val(m_text);
    case Kind::Null:
      break;
  }
  return 0;
}

std::string_view Value::Text() const {
  return m_kind == Kind::Text ? std::string_view(m_text) : std::string_view();
}

std::string Value::ToText() const {
  switch (m_kind) {
    case Kind::Integer:
      return fmt::to_string(m_integer);
    case Kind::Real:
      return fmt::to_string(m_real);
    case Kind::Text:
      return m_text;
    case Kind::Null:
      break;
  }
  return {};
}

void Value::SetInteger(std::int64_t number) {
  m_kind = Kind::Integer;
  m_integer = number;
}

void Value::SetReal(double number) {
  m_kind = Kind::Real;
  m_real = number;
}

void Value::SetText(std::string_view text) {
  m_kind = Kind::Text;
  m_text.assign(text);
  text::ReplaceNul(m_text);
}

std::string DateText(std::time_t utcSeconds) {
  // A file system can hold any 64-bit time; years that four digits can't show are the nearest that
  // do.
  constexpr std::time_t FirstSecond = -62135596800;  // 0001-01-01
  constexpr std::time_t LastSecond = 253402300799;   // 9999-12-31
  const std::time_t shown = std::min(std::max(utcSeconds, FirstSecond), LastSecond);
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", fmt::gmtime(shown));
}

}  // namespace sandrel::dao
