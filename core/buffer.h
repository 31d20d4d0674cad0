// A run of raw bytes that owns exactly as many as it holds: bounds-checked access, trimming, reading a file, a hex
// dump. Nothing here throws: where memory runs out, each operation says what the buffer then holds. Lengths are in
// bytes; a negative one counts as 0. A buffer stays below 4 GiB: more is refused as if memory had run out.
// A buffer follows the rule of an int: many threads may read it, or one may change it.
#pragma once

#include <cstdint>
#include <memory>

namespace SharedClasses {

class Text;

// What a failed writable index refers to: a wrong write lands here instead of outside the buffer. Each thread has its
// own, 0xBF until such a write.
extern constinit thread_local std::uint8_t deadBeef;  // NOLINT(readability-identifier-naming): programs know this name

class Buffer {
 public:
  Buffer() noexcept = default;
  explicit Buffer(std::int64_t length) noexcept;  // zero bytes
  Buffer(const std::uint8_t* bytes, std::int64_t length) noexcept;
  explicit Buffer(const Text& text) noexcept;  // without the closing NUL

  // The source of a move is empty.
  Buffer(const Buffer& other) noexcept;
  Buffer(Buffer&& other) noexcept;
  Buffer& operator=(const Buffer& other) noexcept;
  Buffer& operator=(Buffer&& other) noexcept;
  ~Buffer() = default;

  // Each replaces what the buffer held, and leaves it empty when memory runs out.
  void alloc(std::int64_t length) noexcept;                               // zero bytes
  void setData(const std::uint8_t* bytes, std::int64_t length) noexcept;  // zero bytes where `bytes` is null
  void setString(const Text& text) noexcept;                              // without the closing NUL
  void empty() noexcept;
  // Fills the bytes with 0; the length stays.
  void clear() noexcept;

  [[nodiscard]] std::uint8_t* getDataPtr() noexcept { return mData.get(); }  // null when empty
  [[nodiscard]] const std::uint8_t* getDataPtr() const noexcept { return mData.get(); }
  [[nodiscard]] std::int64_t length() const noexcept { return mDataLen; }

  // Unchanged for a null pointer and when memory runs out.
  void append(const std::uint8_t* bytes, std::int64_t length) noexcept;
  void append(const Buffer& other) noexcept;
  Buffer& operator+=(const Buffer& other) noexcept;

  // Copies the first bytes to `destination`, `maximum` at most; nothing where `destination` is null.
  void getData(std::uint8_t* destination, std::int64_t maximum) const noexcept;
  // Copies `count` bytes from `offset` on; nothing unless all of them are there.
  void getDataAt(std::uint8_t* destination, std::int64_t offset, std::int64_t count) const noexcept;

  // The byte at `index`; 0xFF where there is none.
  [[nodiscard]] std::uint8_t operator[](std::int64_t index) const noexcept;
  // The same for writing. Where there is none, says so on standard output and gives `deadBeef`.
  [[nodiscard]] std::uint8_t& operator[](std::int64_t index) noexcept;

  // Drops bytes at both ends; all of them where no byte would be left. Unchanged when memory runs out.
  void trim(std::int64_t fromFront, std::int64_t fromBack) noexcept;

  // Becomes what the file holds; empty first, whatever follows. 0, also for an empty file, a pipe and a device, whose
  // size is 0; -1, with the buffer empty, when the path is "" or the file cannot be read whole. Never waits for a pipe.
  [[nodiscard]] int loadFromFile(const Text& path) noexcept;
  // Kept: a placeholder that writes nothing and gives 0.
  [[nodiscard]] int saveToFile(const Text& path) const noexcept;

  // Prints at most `maximum` bytes on standard output, ten a line, each line led by `prefix` (null for none) and a tab,
  // and two line feeds. Gives the count of the last bytes printed: 2, or negative when that failed.
  int log(const char* prefix, std::uint64_t maximum) const noexcept;

 private:
  std::unique_ptr<std::uint8_t[]> mData;  // mDataLen bytes; null when empty
  std::int64_t mDataLen = 0;
};

// Kept: placeholders that do nothing and give 0.
long lwrite(int descriptor, const void* bytes, unsigned long count) noexcept;
long lread(int descriptor, const void* bytes, unsigned long count) noexcept;

}  // namespace SharedClasses
