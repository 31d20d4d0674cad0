#include "core/buffer.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <limits>
#include <new>
#include <span>
#include <utility>

#include "core/text.h"
#include "platform/files.h"

namespace SharedClasses {

namespace {

constexpr std::int64_t kMaximumLength = std::numeric_limits<std::uint32_t>::max();
constexpr int kFailed = -1;

const std::uint8_t* bytesOf(const Text& text) {
  return reinterpret_cast<const std::uint8_t*>(text.cString());
}

}  // namespace

constinit thread_local std::uint8_t deadBeef = 0xBF;

Buffer::Buffer(std::int64_t length) noexcept {
  alloc(length);
}

Buffer::Buffer(const std::uint8_t* bytes, std::int64_t length) noexcept {
  setData(bytes, length);
}

Buffer::Buffer(const Text& text) noexcept {
  setString(text);
}

Buffer::Buffer(const Buffer& other) noexcept {
  setData(other.mData.get(), other.mDataLen);
}

Buffer::Buffer(Buffer&& other) noexcept : mData(std::move(other.mData)), mDataLen(std::exchange(other.mDataLen, 0)) {}

Buffer& Buffer::operator=(const Buffer& other) noexcept {
  if (this != &other) {
    setData(other.mData.get(), other.mDataLen);
  }
  return *this;
}

Buffer& Buffer::operator=(Buffer&& other) noexcept {
  if (this != &other) {
    mData = std::move(other.mData);
    mDataLen = std::exchange(other.mDataLen, 0);
  }
  return *this;
}

void Buffer::alloc(std::int64_t length) noexcept {
  empty();
  if (length > 0 && length <= kMaximumLength) {
    mData.reset(new (std::nothrow) std::uint8_t[static_cast<std::size_t>(length)]());
    mDataLen = mData == nullptr ? 0 : length;
  }
}

void Buffer::setData(const std::uint8_t* bytes, std::int64_t length) noexcept {
  Buffer fresh(length);
  if (bytes != nullptr && fresh.mData != nullptr) {
    std::memcpy(fresh.mData.get(), bytes, static_cast<std::size_t>(length));
  }
  // Only now: `bytes` may be this buffer's own.
  *this = std::move(fresh);
}

void Buffer::setString(const Text& text) noexcept {
  setData(bytesOf(text), text.length());
}

void Buffer::empty() noexcept {
  mData.reset();
  mDataLen = 0;
}

void Buffer::clear() noexcept {
  if (mData != nullptr) {
    std::memset(mData.get(), 0, static_cast<std::size_t>(mDataLen));
  }
}

void Buffer::append(const std::uint8_t* bytes, std::int64_t length) noexcept {
  if (bytes == nullptr || length <= 0 || length > kMaximumLength - mDataLen) {
    return;
  }
  Buffer sum(mDataLen + length);
  if (sum.mData == nullptr) {
    return;
  }
  getData(sum.mData.get(), mDataLen);
  std::memcpy(sum.mData.get() + mDataLen, bytes, static_cast<std::size_t>(length));
  *this = std::move(sum);
}

void Buffer::append(const Buffer& other) noexcept {
  append(other.mData.get(), other.mDataLen);
}

Buffer& Buffer::operator+=(const Buffer& other) noexcept {
  append(other);
  return *this;
}

void Buffer::getData(std::uint8_t* destination, std::int64_t maximum) const noexcept {
  getDataAt(destination, 0, std::min(maximum, mDataLen));
}

void Buffer::getDataAt(std::uint8_t* destination, std::int64_t offset, std::int64_t count) const noexcept {
  if (destination != nullptr && offset >= 0 && count >= 1 && offset < mDataLen && count <= mDataLen - offset) {
    // `destination` may lie in this buffer.
    std::memmove(destination, mData.get() + offset, static_cast<std::size_t>(count));
  }
}

std::uint8_t Buffer::operator[](std::int64_t index) const noexcept {
  return index >= 0 && index < mDataLen ? mData[static_cast<std::size_t>(index)] : 0xFF;
}

std::uint8_t& Buffer::operator[](std::int64_t index) noexcept {
  if (index >= 0 && index < mDataLen) {
    return mData[static_cast<std::size_t>(index)];
  }
  if (mData == nullptr) {
    std::printf(" Buffer ASSERT: DATA = nil");
  }
  std::printf("Buffer ASSERT: Index %" PRId64 " > ( mDataLen %" PRId64 " - 1 )\n", index, mDataLen);
  std::printf("Buffer ASSERT: [] failed\n");
  return deadBeef;
}

void Buffer::trim(std::int64_t fromFront, std::int64_t fromBack) noexcept {
  const std::int64_t front = std::max<std::int64_t>(fromFront, 0);
  const std::int64_t back = std::max<std::int64_t>(fromBack, 0);
  if (front >= mDataLen || back >= mDataLen - front) {
    empty();
    return;
  }
  if (Buffer kept(mData.get() + front, mDataLen - front - back); kept.mData != nullptr) {
    *this = std::move(kept);
  }
}

int Buffer::loadFromFile(const Text& path) noexcept {
  empty();
  if (path == "") {
    return kFailed;
  }
  const std::int64_t size = platform::sizeOfFile(path.cString());
  if (size < 1) {
    return size < 0 ? kFailed : 0;
  }
  alloc(size);
  if (mDataLen != size || !platform::readFileInto(path.cString(), {mData.get(), static_cast<std::size_t>(size)})) {
    empty();
    return kFailed;
  }
  return 0;
}

int Buffer::saveToFile(const Text& /*path*/) const noexcept {
  return 0;
}

int Buffer::log(const char* prefix, std::uint64_t maximum) const noexcept {
  const auto shown = static_cast<std::int64_t>(std::min(maximum, static_cast<std::uint64_t>(mDataLen)));
  for (std::int64_t i = 0; i < shown; ++i) {
    if (i % 10 == 0) {
      std::printf("%s%s\t", i == 0 ? "" : "\n", prefix == nullptr ? "" : prefix);
    }
    std::printf("0x%02x ", (*this)[i]);
  }
  return std::printf("\n\n");
}

long lwrite(int /*descriptor*/, const void* /*bytes*/, unsigned long /*count*/) noexcept {
  return 0;
}

long lread(int /*descriptor*/, const void* /*bytes*/, unsigned long /*count*/) noexcept {
  return 0;
}

}  // namespace SharedClasses
