// Text: UTF-8 inside the program, with what Windows' own forms need round it.
//
// A std::string that is called text holds UTF-8. Lone surrogates, which Windows allows in names,
// are kept in their three-byte form; a byte that belongs to no sequence passes through every
// operation unchanged. Lengths and positions that the user can see count UTF-16 units.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace sandrel::text {

/// The number of ASCII bytes at the start: that much needs no decoding.
std::size_t AsciiLength(std::string_view text);

/// Decodes the character at `position` and moves past it. A stray byte b comes as 0x110000 + b.
char32_t Next(std::string_view text, std::size_t& position);

/// Appends one character, in the form that `Next` gives it.
void Append(std::string& text, char32_t character);

/// True when every byte belongs to a valid sequence; lone surrogates count as invalid.
bool IsValidUtf8(std::string_view text);

/// Length in UTF-16 units; a stray byte counts one.
std::size_t Length(std::string_view text);

/// The first `units` UTF-16 units; never cuts a character in two.
std::string_view Left(std::string_view text, std::size_t units);

/// The character folded by Unicode's simple case rules, one character to one.
char32_t Fold(char32_t character);

/// The text with every character folded: equal texts but for case give equal results.
std::string Fold(std::string_view text);

/// Folds ASCII letters only: the same texts are equal as in the store's keys.
std::string FoldAscii(std::string_view text);

bool EqualNoCase(std::string_view a, std::string_view b);
bool StartsWithNoCase(std::string_view text, std::string_view prefix);

/// Lower-cases one character to one.
std::string Lower(std::string_view text);
/// Upper-cases one character to one.
std::string Upper(std::string_view text);

/// Without blanks (U+0020 only) at both ends.
std::string_view Trim(std::string_view text);
/// Without blanks and tabs at both ends.
std::string_view TrimWhite(std::string_view text);

/// UTF-16 little endian, no byte order mark; an odd last byte is dropped.
std::string FromUtf16Le(std::string_view bytes);
std::string FromUtf16Be(std::string_view bytes);
/// Appends to `text`, for callers that reuse a buffer.
void AppendUtf16Le(std::string& text, std::string_view bytes);
std::string ToUtf16Le(std::string_view text);

/// Appends Latin-1 bytes.
void AppendLatin1(std::string& text, std::string_view bytes);
/// Code page 1252; its five holes are the C1 controls of the same number.
std::string FromCp1252(std::string_view bytes);

/// What becomes of a character that code page 1252 lacks.
enum class Lacking {
  Utf8,          ///< its UTF-8 bytes, so that different texts stay different
  QuestionMark,  ///< "?"
};
/// The bytes of a text in code page 1252; U+2400, which stands for NUL in the store, becomes 00.
/// `lost`, when given, is raised by the number of characters that the page lacks.
std::string ToCp1252(std::string_view text, Lacking lacking, std::size_t* lost = nullptr);

/// The text as the store keeps it: NUL, which ends a comparison there, becomes U+2400.
void ReplaceNul(std::string& text);
/// The other way round, for bytes that leave the store.
std::string WithNul(std::string_view text);

/// The text for a terminal or a log, which names of a machine must not command: C0 and C1 controls
/// and what turns the direction of writing stand as "\\x1b", "\\u202e"; line ends and tabs as
/// "\\n",
/// "\\r", "\\t".
std::string Escaped(std::string_view text);
/// True for a character that changes how others are shown, or that nobody sees.
bool IsControl(char32_t character);

/// The number at the text's start, 0 where there is none: "1", " 1 ", "1x" give 1.
double Val(std::string_view text);

/// A Boolean as the settings store it, "True" or "False".
std::string BooleanText(bool value);
/// Reads "True", "False" in any case, or a number; anything else gives `fallback`.
bool ReadBoolean(std::string_view text, bool fallback);

}  // namespace sandrel::text
