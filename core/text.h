// A text of 8-bit characters that ends in a NUL, for the low-level code beside Buffer.
// Every change builds a fresh array of exactly the needed size; nothing grows in place. Nothing here throws: where
// memory runs out, each operation says what the text then holds.
// A text follows the rule of an int: many threads may read it, or one may change it.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string_view>

namespace SharedClasses {

class Buffer;

// Kept: the length is not always the C length (the position of the first NUL). An explicit length, loadFromFile() and
// clear() can leave it larger; copying, += and trimming measure afresh and bring it down.
class Text {
 public:
  Text() noexcept = default;
  Text(const char* characters) noexcept;
  Text(const char* characters, std::uint32_t length) noexcept;

  // The copy has the C length of the source; the source of a move is empty.
  Text(const Text& other) noexcept;
  Text(Text&& other) noexcept;
  ~Text() = default;

  // Takes the first `length` characters up to a NUL; 0 stands for the C length. `length` is the new length either way.
  // A null pointer makes the text empty, and so do memory that runs out and a length that 32 bits do not hold.
  void assign(const char* characters, std::uint32_t length) noexcept;
  Text& operator=(const char* characters) noexcept;
  Text& operator=(const Text& other) noexcept;  // keeps the length of `other`
  Text& operator=(Text&& other) noexcept;
  Text& operator=(const char& character) noexcept;  // a text of length 1, also for NUL

  // Makes `length` NUL characters. Memory that runs out, and a length of 2^32 - 1, leave the text empty.
  void alloc(std::uint32_t length) noexcept;
  // Overwrites the characters with the first `length` of `characters` up to a NUL and fills the rest with NUL; 0 stands
  // for the C length. Does nothing where the text has no array, `characters` is null or more are wanted than the text
  // is long.
  void copy(const char* characters, std::uint32_t length) noexcept;
  // Releases the array; the length is 0.
  void empty() noexcept;
  // Kept: wipes the characters but keeps the length, so that the text reads "" and length() is as before.
  void clear() noexcept;

  [[nodiscard]] std::uint32_t length() const noexcept { return mLength; }
  // Never null. Valid until the text is changed.
  [[nodiscard]] const char* cString() const noexcept {
    return mCharacters == nullptr ? &sEmptyString : mCharacters.get();
  }

  // The character at `index` as a signed value: -128 to 127. -1 behind the end.
  [[nodiscard]] int operator[](std::uint32_t index) const noexcept;

  // Appends up to a NUL on either side and measures the result. Unchanged when memory or 32 bits run out.
  Text& operator+=(const Text& text) noexcept;  // does nothing for a text of length 0
  Text& operator+=(const char* characters) noexcept;
  Text& operator+=(const char& character) noexcept;
  // A copy with `text` appended. Where memory runs out for one of the two, the other remains.
  [[nodiscard]] Text operator+(const Text& text) const noexcept;

  // Texts are equal when their lengths are and their characters up to a NUL.
  friend bool operator==(const Text& a, const Text& b) noexcept;
  // A null pointer equals a text without characters or of length 0.
  friend bool operator==(const Text& text, const char* characters) noexcept;

  // A new array with the length in byte 0 and the characters behind it; null when memory runs out.
  // Kept: a length above 255 counts modulo 256.
  [[nodiscard]] std::unique_ptr<std::uint8_t[]> pString() const noexcept;
  // Kept: a placeholder that gives 0 whatever the text holds.
  [[nodiscard]] int toInt() const noexcept;
  // The number at the start of the text, as "%lf" of the C locale reads it; 0 where there is none.
  [[nodiscard]] double toDouble() const noexcept;

  // The first or the last `count` characters; 0 gives the empty text, more than there are the whole.
  [[nodiscard]] Text left(std::uint32_t count) const noexcept;
  [[nodiscard]] Text right(std::uint32_t count) const noexcept;
  // `count` characters from `start` on, or as many as there are.
  // Kept: a start behind the end gives the whole text, and a count of 0 the rest from `start` on up to a NUL.
  [[nodiscard]] Text center(std::uint32_t start, std::uint32_t count) const noexcept;

  // Removes blanks, tabs and line breaks of ASCII from one end and measures what is left; gives the text itself.
  // Unchanged when memory runs out.
  Text& trimLeft() noexcept;
  Text& trimRight() noexcept;  // Kept: the first character is never removed, so that "   " gives " ".

  // The text that printf would write, cut at 127 characters; "ALLOC FAILED" when memory runs out. A null format gives
  // "".
  [[gnu::format(printf, 2, 3)]] void format(const char* format, ...) noexcept;

  // Prints the characters on standard output without a line break, "<empty Text>" for a text without any. Gives the
  // number of bytes printed, negative when that failed.
  int log() const noexcept;  // NOLINT(modernize-use-nodiscard): programs call it for the printing

  // Becomes what the file holds. The length is that of the file; the characters end at the file's first NUL. 0, or
  // negative when the file could not be read (Buffer::loadFromFile); the text is then empty.
  // Kept: when memory runs out only behind the reading, the text is empty and the status 0.
  [[nodiscard]] int loadFromFile(const Text& path) noexcept;
  // Kept: a placeholder that writes nothing and gives 0.
  [[nodiscard]] int saveToFile(const Text& path) const noexcept;

  // Appends `text` with a line feed behind it, unless it ends in one. A text that was empty begins with a blank line.
  // Unchanged, here and in appendHexBytes(), when memory runs out.
  void appendWithTicks(const Text& text) noexcept;
  void appendWithTicks(const char* text) noexcept;
  // Appends as a line the first `count` bytes in hex, at most 42, and, where the buffer holds more than are shown, how
  // many more there are and its last two: "01 and 1 more bytes ending in 01 ab".
  void appendHexBytes(const Buffer& buffer, std::uint64_t count) noexcept;

 private:
  // Appends `pieces`, which hold no NUL, to the characters up to a NUL; unchanged when memory or 32 bits run out.
  void append(std::initializer_list<std::string_view> pieces) noexcept;
  void appendLine(std::string_view line) noexcept;  // what appendWithTicks() does
  [[nodiscard]] std::string_view toFirstNUL() const noexcept;
  // The part of `length` characters from `start` on, both within the text; 0 stands for the rest up to a NUL.
  [[nodiscard]] Text part(std::uint32_t start, std::uint32_t length) const noexcept;

  static constexpr char sEmptyString = '\0';

  std::unique_ptr<char[]> mCharacters;  // mLength characters and a NUL; null when there never were any
  std::uint32_t mLength = 0;            // without the closing NUL
};

}  // namespace SharedClasses
