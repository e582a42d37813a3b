#include "common/clsPathText.h"

#include "common/text.h"

namespace sandrel {

std::string clsPathText::TextAfterLast(std::string_view text, std::string_view separator) {
  const std::size_t at = text.rfind(separator);
  return std::string(at == std::string_view::npos ? text : text.substr(at + separator.size()));
}

std::string clsPathText::TextBeforeLast(std::string_view text, std::string_view separator) {
  const std::size_t at = text.rfind(separator);
  return std::string(at == std::string_view::npos ? std::string_view() : text.substr(0, at));
}

std::string clsPathText::ExtensionOf(std::string_view name) {
  const std::size_t at = name.rfind('.');
  return std::string(at == std::string_view::npos ? std::string_view() : name.substr(at + 1));
}

std::string clsPathText::AddSeparator(std::string_view path, std::string_view separator) {
  std::string result(path);
  if (!path.ends_with(separator)) result += separator;
  return result;
}

std::string clsPathText::RemoveSeparator(std::string_view path, std::string_view separator) {
  if (path.ends_with(separator)) path.remove_suffix(separator.size());
  return std::string(path);
}

std::string clsPathText::NormaliseFolder(std::string_view folder) {
  std::string result;
  for (const char c : text::Trim(folder)) {
    const char next = c == '/' ? '\\' : c;
    // Two leading backslashes begin the name of a share; anywhere else one is enough.
    if (next == '\\' && result.size() > 1 && result.back() == '\\') continue;
    result.push_back(next);
  }
  return result;
}

std::string clsPathText::BareMachineName(std::string_view name) {
  name = text::Trim(name);
  while (!name.empty() && name.front() == '\\') name.remove_prefix(1);
  while (!name.empty() && name.back() == '\\') name.remove_suffix(1);
  return std::string(text::Trim(name));
}

std::string clsPathText::MachineNameForConnect(std::string_view name) {
  return "\\\\" + BareMachineName(name);
}

}  // namespace sandrel
