#include "core/text.h"

#include <algorithm>
#include <array>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "core/buffer.h"

namespace SharedClasses {

namespace {

// With the closing NUL an array must still be counted by 32 bits.
constexpr std::uint64_t kMaximumLength = std::numeric_limits<std::uint32_t>::max() - 1;
constexpr std::size_t kFormatSize = 128;  // bytes, the closing NUL included
constexpr std::uint64_t kMaximumHexBytes = 42;

// What the C library's isspace() finds in the C locale.
constexpr bool isSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

// The C locale in this thread while it lives: numbers are read alike whatever the host has set.
class CLocaleScope {
 public:
  CLocaleScope() : mBefore(sLocale() == nullptr ? nullptr : ::uselocale(sLocale())) {}
  CLocaleScope(const CLocaleScope&) = delete;
  CLocaleScope& operator=(const CLocaleScope&) = delete;
  ~CLocaleScope() {
    if (mBefore != nullptr) {
      ::uselocale(mBefore);
    }
  }

 private:
  static locale_t sLocale() {
    static const locale_t sLocale = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return sLocale;
  }

  locale_t mBefore;
};

}  // namespace

Text::Text(const char* characters) noexcept {
  assign(characters, 0);
}

Text::Text(const char* characters, std::uint32_t length) noexcept {
  assign(characters, length);
}

Text::Text(const Text& other) noexcept {
  assign(other.mCharacters.get(), 0);
}

Text::Text(Text&& other) noexcept
    : mCharacters(std::move(other.mCharacters)), mLength(std::exchange(other.mLength, 0)) {}

void Text::assign(const char* characters, std::uint32_t length) noexcept {
  Text fresh;
  if (characters != nullptr) {
    const std::uint64_t wanted = length != 0 ? length : std::strlen(characters);
    if (wanted <= kMaximumLength) {
      fresh.alloc(static_cast<std::uint32_t>(wanted));
      fresh.copy(characters, fresh.mLength);
    }
  }
  // Only now: `characters` may be this text's own.
  *this = std::move(fresh);
}

Text& Text::operator=(const char* characters) noexcept {
  assign(characters, 0);
  return *this;
}

Text& Text::operator=(const Text& other) noexcept {
  if (this != &other) {
    assign(other.mCharacters.get(), other.mLength);
  }
  return *this;
}

Text& Text::operator=(Text&& other) noexcept {
  if (this != &other) {
    mCharacters = std::move(other.mCharacters);
    mLength = std::exchange(other.mLength, 0);
  }
  return *this;
}

Text& Text::operator=(const char& character) noexcept {
  assign(&character, 1);
  return *this;
}

void Text::alloc(std::uint32_t length) noexcept {
  empty();
  if (length <= kMaximumLength) {
    mCharacters.reset(new (std::nothrow) char[std::size_t{length} + 1]());
    mLength = mCharacters == nullptr ? 0 : length;
  }
}

void Text::copy(const char* characters, std::uint32_t length) noexcept {
  if (mCharacters == nullptr || characters == nullptr) {
    return;
  }
  const std::size_t wanted = length != 0 ? length : std::strlen(characters);
  if (wanted > mLength) {
    return;
  }
  const std::size_t copied = ::strnlen(characters, wanted);
  std::memmove(mCharacters.get(), characters, copied);
  std::memset(mCharacters.get() + copied, 0, mLength + 1 - copied);
}

void Text::empty() noexcept {
  mCharacters.reset();
  mLength = 0;
}

void Text::clear() noexcept {
  if (mCharacters != nullptr) {
    std::memset(mCharacters.get(), 0, mLength);
  }
}

int Text::operator[](std::uint32_t index) const noexcept {
  return index < mLength ? static_cast<signed char>(mCharacters[index]) : -1;
}

Text& Text::operator+=(const Text& text) noexcept {
  if (text.mLength != 0 && std::uint64_t{mLength} + text.mLength <= kMaximumLength) {
    append({text.toFirstNUL()});
  }
  return *this;
}

Text& Text::operator+=(const char* characters) noexcept {
  if (characters != nullptr && *characters != '\0') {
    append({characters});
  }
  return *this;
}

Text& Text::operator+=(const char& character) noexcept {
  append({std::string_view(&character, character == '\0' ? 0 : 1)});
  return *this;
}

Text Text::operator+(const Text& text) const noexcept {
  Text sum(*this);
  sum += text;
  return sum;
}

bool operator==(const Text& a, const Text& b) noexcept {
  return a.mLength == b.mLength && std::strncmp(a.cString(), b.cString(), a.mLength) == 0;
}

bool operator==(const Text& text, const char* characters) noexcept {
  if (characters == nullptr) {
    return text.mLength == 0;
  }
  return std::strlen(characters) == text.mLength && std::memcmp(text.cString(), characters, text.mLength) == 0;
}

std::unique_ptr<std::uint8_t[]> Text::pString() const noexcept {
  std::unique_ptr<std::uint8_t[]> bytes(new (std::nothrow) std::uint8_t[std::size_t{mLength} + 1]);
  if (bytes != nullptr) {
    bytes[0] = static_cast<std::uint8_t>(mLength);
    std::memcpy(bytes.get() + 1, cString(), mLength);
  }
  return bytes;
}

int Text::toInt() const noexcept {
  return 0;
}

double Text::toDouble() const noexcept {
  const CLocaleScope scope;
  double number = 0.0;
  return std::sscanf(cString(), "%lf", &number) == 1 ? number : 0.0;  // NOLINT(cert-err34-c): "%lf" is the contract
}

Text Text::left(std::uint32_t count) const noexcept {
  return count == 0 ? Text() : part(0, std::min(count, mLength));
}

Text Text::right(std::uint32_t count) const noexcept {
  const std::uint32_t kept = std::min(count, mLength);
  return count == 0 ? Text() : part(mLength - kept, kept);
}

Text Text::center(std::uint32_t start, std::uint32_t count) const noexcept {
  return start > mLength ? part(0, mLength) : part(start, std::min(count, mLength - start));
}

Text Text::part(std::uint32_t start, std::uint32_t length) const noexcept {
  Text taken;
  if (mCharacters != nullptr) {
    taken.assign(mCharacters.get() + start, length);
  }
  return taken;
}

Text& Text::trimLeft() noexcept {
  const char* rest = cString();
  while (isSpace(*rest)) {
    ++rest;
  }
  if (Text trimmed(rest); trimmed.mCharacters != nullptr) {
    *this = std::move(trimmed);
  }
  return *this;
}

Text& Text::trimRight() noexcept {
  std::uint64_t kept = toFirstNUL().size();
  while (kept > 1 && isSpace(mCharacters[kept - 1])) {
    --kept;
  }
  // A length of 0 would stand for the C length, which here is the same.
  if (Text trimmed(cString(), static_cast<std::uint32_t>(kept)); trimmed.mCharacters != nullptr) {
    *this = std::move(trimmed);
  }
  return *this;
}

void Text::format(const char* format, ...) noexcept {  // NOLINT(cert-dcl50-cpp): the compiler checks its arguments
  std::array<char, kFormatSize> result{};
  if (format != nullptr) {
    std::va_list arguments;
    va_start(arguments, format);
    // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): the line above begins the list
    if (std::vsnprintf(result.data(), result.size(), format, arguments) < 0) {
      result[0] = '\0';
    }
    va_end(arguments);
  }
  assign(result.data(), 0);
  if (mCharacters == nullptr) {
    assign("ALLOC FAILED", 0);
  }
}

int Text::log() const noexcept {
  return std::printf("%s", mCharacters == nullptr ? "<empty Text>" : cString());
}

int Text::loadFromFile(const Text& path) noexcept {
  Buffer buffer;
  const int status = buffer.loadFromFile(path);
  empty();  // Only now: `path` may be this text.
  if (status == 0 && buffer.length() > 0) {
    assign(reinterpret_cast<const char*>(buffer.getDataPtr()), static_cast<std::uint32_t>(buffer.length()));
  }
  return status;
}

int Text::saveToFile(const Text& path) const noexcept {
  return Buffer(*this).saveToFile(path);
}

void Text::appendWithTicks(const Text& text) noexcept {
  appendLine(text.toFirstNUL());
}

void Text::appendWithTicks(const char* text) noexcept {
  appendLine(text == nullptr ? "" : text);
}

void Text::appendHexBytes(const Buffer& buffer, std::uint64_t count) noexcept {
  const auto length = static_cast<std::uint64_t>(buffer.length());
  const std::uint64_t shown = std::min({length, count, kMaximumHexBytes});
  std::array<char, 256> line{};
  std::size_t used = 0;
  const auto print = [&line, &used](const char* format, auto... numbers) {
    const int written = std::snprintf(line.data() + used, line.size() - used, format, numbers...);
    used += static_cast<std::size_t>(std::max(written, 0));
  };
  for (std::uint64_t i = 0; i < shown; ++i) {
    print("%02x ", buffer[static_cast<std::int64_t>(i)]);
  }
  if (shown < length) {
    print("and %lu more bytes", length - shown);
    print(" ending in %02x %02x", buffer[buffer.length() - 2], buffer[buffer.length() - 1]);
  }
  appendLine(line.data());
}

void Text::append(std::initializer_list<std::string_view> pieces) noexcept {
  const std::string_view own = toFirstNUL();
  std::uint64_t length = own.size();
  for (const std::string_view piece : pieces) {
    length += piece.size();
  }
  Text sum;
  if (length <= kMaximumLength) {
    sum.alloc(static_cast<std::uint32_t>(length));
  }
  if (sum.mCharacters == nullptr) {
    return;
  }
  char* end = std::ranges::copy(own, sum.mCharacters.get()).out;
  for (const std::string_view piece : pieces) {
    end = std::ranges::copy(piece, end).out;
  }
  // Only now: the pieces may be this text's own.
  *this = std::move(sum);
}

void Text::appendLine(std::string_view line) noexcept {
  append({mLength == 0 ? "\n" : "", line, line.ends_with('\n') ? "" : "\n"});
}

std::string_view Text::toFirstNUL() const noexcept {
  return {cString(), ::strnlen(cString(), mLength)};
}

}  // namespace SharedClasses
