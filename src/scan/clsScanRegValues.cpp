// Single registry values: reading, decoding and writing.

#include <algorithm>
#include <charconv>
#include <cstring>

#include "common/clsError.h"
#include "common/text.h"
#include "scan/clsScanReg.h"

namespace sandrel {
namespace {

constexpr char HexDigits[] = "0123456789ABCDEF";
constexpr std::int32_t NoSuchComputer = 53;

void HexOf(std::string_view bytes, std::string& hex) {
  hex.resize(bytes.empty() ? 0 : bytes.size() * 3 - 1);
  char* out = hex.data();
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const auto byte = static_cast<unsigned char>(bytes[i]);
    if (i > 0) *out++ = ' ';
    *out++ = HexDigits[byte >> 4];
    *out++ = HexDigits[byte & 0x0F];
  }
}

// The number that a query into a 32-bit buffer gives: short data leave the rest 0, longer data
// fail.
bool ReadNumber(std::string_view data, std::int32_t& number) {
  if (data.size() > sizeof number) return false;
  std::uint32_t value = 0;
  for (std::size_t i = data.size(); i-- > 0;)
    value = value << 8 | static_cast<unsigned char>(data[i]);
  number = static_cast<std::int32_t>(value);
  return true;
}

// Texts end before their terminating zero; what stands behind an earlier zero belongs to them.
std::string_view WithoutTerminator(std::string_view data) {
  return data.size() >= 2 ? data.substr(0, data.size() / 2 * 2 - 2) : std::string_view();
}

bool IsNumber(std::uint32_t type) {
  return type == regtype::Dword || type == regtype::DwordBigEndian;
}

// Numbers and texts as the store takes them, for the types whose form is the same decoded and
// undecoded.
bool ReadPlain(std::uint32_t type, std::string_view data, dao::Value& value, std::string& buffer) {
  if (IsNumber(type)) {
    std::int32_t number = 0;
    if (!ReadNumber(data, number)) {
      value.SetText("");
    } else {
      value.SetInteger(type == regtype::Dword ? number : clsScanReg::SwapEndian(number));
    }
  } else if (type == regtype::Sz || type == regtype::ExpandSz) {
    buffer.clear();
    text::AppendUtf16Le(buffer, WithoutTerminator(data));
    value.SetText(buffer);
  } else if (type == regtype::None) {
    value.SetText(text::FromCp1252(data));
  } else {
    return false;
  }
  return true;
}

}  // namespace

std::int32_t clsScanReg::SwapEndian(std::int32_t KeyVal) {
  char digits[8];
  const auto end = std::to_chars(digits, digits + 8, static_cast<std::uint32_t>(KeyVal), 16).ptr;
  std::string hex(digits, end);
  std::transform(hex.begin(), hex.end(), hex.begin(),
                 [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
  std::string swapped;
  for (const std::size_t at : {6, 4, 2, 0}) {
    if (at < hex.size()) swapped += hex.substr(at, 2);
  }
  return Dec(swapped);
}

std::int32_t clsScanReg::Dec(std::string_view psvHex) {
  std::uint32_t sum = 0;
  std::uint32_t multiplier = 1;
  for (auto c = psvHex.rbegin(); c != psvHex.rend(); ++c) {
    const bool letter = *c >= 'A' && *c <= 'F';
    const bool digit = *c >= '0' && *c <= '9';
    const int value = letter ? *c - 55 : digit ? *c - '0' : 0;
    sum += static_cast<std::uint32_t>(value) * multiplier;
    multiplier *= 16;
  }
  return static_cast<std::int32_t>(sum);
}

std::string clsScanReg::DecodeBinary(std::string_view psvBinStr) {
  std::string hex;
  HexOf(text::ToCp1252(psvBinStr, text::Lacking::Utf8), hex);
  return hex;
}

void clsScanReg::Decode(std::uint32_t type, dao::Value& value) {
  if (ReadPlain(type, m_data, value, m_text)) return;
  if (type == regtype::MultiSz) {
    value.SetText(DecodeBinary(text::FromUtf16Le(m_data)));
  } else {
    HexOf(m_data, m_text);
    value.SetText(m_text);
  }
}

std::int32_t clsScanReg::QueryValueEx(clsRegistry& registry, const clsRegistry::Handle& key,
                                      std::string_view name, dao::Value& value) {
  std::uint32_t type = 0;
  std::string data;
  const std::int32_t status = registry.RegQueryValueEx(key, name, type, data);
  if (status != regstatus::Success) {
    value.SetText("");
    return status;
  }
  m_lastType = type;
  if (!ReadPlain(type, data, value, m_text)) {
    value.SetText(type == regtype::MultiSz ? text::FromUtf16Le(data) : text::FromCp1252(data));
  }
  return status;
}

dao::Value clsScanReg::GetElement(std::uint32_t KeyRoot, const std::string& KeyName,
                                  const std::string& SubKeyRef) {
  clsRegistry& registry = m_context.Machine.Registry();
  clsRegistry::Handle key;
  dao::Value value;
  if (registry.RegOpenKeyEx(KeyRoot, KeyName, key) != regstatus::Success ||
      QueryValueEx(registry, key, SubKeyRef, value) != regstatus::Success) {
    value.SetNull();
  }
  return value;
}

clsRegistry& clsScanReg::GetHKey(std::uint32_t hive, const std::string& path,
                                 const std::string& machine) {
  return RaiseAs("clsScanReg.GetHKey", [&]() -> clsRegistry& {
    clsRegistry* registry = RegistryOf(machine);
    CheckRegOK(registry == nullptr ? NoSuchComputer : registry->RegCreateKeyEx(hive, path));
    return *registry;
  });
}

void clsScanReg::SetValue(std::uint32_t plHiveKey, const std::string& KeyName,
                          const std::string& psvValueName, std::uint32_t plValueType,
                          const dao::Value& vValue, const std::string& psvMachineName) {
  RaiseAs("clsScanReg.SetValue", [&] {
    clsRegistry& registry = GetHKey(plHiveKey, KeyName, psvMachineName);
    std::string data;
    switch (plValueType) {
      case regtype::Sz:
      case regtype::ExpandSz:
      case regtype::MultiSz:
        data = text::ToUtf16Le(text::WithNul(vValue.ToText())) + std::string(2, '\0');
        break;
      case regtype::Binary:
        // One zero byte more than the data, which readers of such values expect.
        data = text::ToCp1252(vValue.ToText(), text::Lacking::QuestionMark) + '\0';
        break;
      case regtype::Dword: {
        const auto number = static_cast<std::uint32_t>(vValue.Integer());
        for (int shift = 0; shift < 32; shift += 8) {
          data.push_back(static_cast<char>(number >> shift & 0xFF));
        }
        break;
      }
      default:
        Finish(registry, regstatus::Success);  // the key is made all the same
        return;
    }
    Finish(registry, registry.RegSetValueEx(plHiveKey, KeyName, psvValueName, plValueType, data));
  });
}

void clsScanReg::DeleteValue(std::uint32_t plHiveKey, const std::string& psvKey,
                             const std::string& psvValueName, const std::string& psvMachineName) {
  RaiseAs("clsScanReg.DeleteValue", [&] {
    clsRegistry& registry = GetHKey(plHiveKey, psvKey, psvMachineName);
    Finish(registry, registry.RegDeleteValue(plHiveKey, psvKey, psvValueName));
  });
}

void clsScanReg::Finish(clsRegistry& registry, std::int32_t status) {
  // What can't be written is forgotten, or it would go along with the next change.
  const std::int32_t written = registry.Flush();
  if (written != regstatus::Success) {
    m_remote.reset();
    m_context.Machine.CloseRegistry();
  }
  CheckRegOK(status);
  CheckRegOK(written);
}

bool clsScanReg::CheckRegOK(std::int32_t status) {
  if (status == regstatus::Success) return true;
  static constexpr const char* Texts[] = {
      "",
      "The registry database is corrupt.",
      "The registry key is invalid.",
      "The registry key could not be opened.",
      "The registry key could not be read.",
      "The registry key could not be written.",
      "Out of memory during registry operation.",
      "Invalid parameter in registry request.",
      "Access denied to registry key or branch.",
  };
  const bool known = status > 0 && status < static_cast<std::int32_t>(std::size(Texts));
  throw clsError(errnum::UserBase + 14000 + status,
                 known ? Texts[status] : "Undefined registry error.", "clsScanReg.CheckRegOK");
}

}  // namespace sandrel
