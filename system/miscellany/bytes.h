// Bytes as people and controllers see them: Internet addresses, checksums, hex dumps. Pure but for the log; safe on any
// thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "core/buffer.h"

namespace SharedClasses::Utilities {

// "192.168.0.1" for 0xC0A80001: the most significant byte first, each 0 to 255.
[[nodiscard]] std::string ipAddressFromInt(std::int32_t address);

// The sum of all bytes modulo 256: 0 for an empty buffer, 255 for null.
[[nodiscard]] std::uint8_t checkSum(const Buffer* buffer);

// What makes the sum of all bytes and this a multiple of 65536: 0 for an empty buffer, 65535 for null.
[[nodiscard]] std::uint16_t checkSum16Bit(const Buffer* buffer);

// `logBytesToString:count:`
// A hex dump, ten bytes a row: "\t0000: 0x1f 0x00 … \n\t000a: 0x2b ". Each byte is followed by a blank, each row led by
// the offset of its first byte in at least four digits. Empty for no bytes, and for a null pointer whatever the count.
// Kept: the rows hold ten bytes while their offsets are in hexadecimal: 0000, 000a, 0014.
[[nodiscard]] std::string logBytesToString(std::span<const std::uint8_t> bytes);

// Appends to `dump` the row of it that begins at `offset`, a multiple of kBytesInDumpRow, without a line break: for a
// dump that is written as it is made. Nothing at the end of the bytes and beyond.
inline constexpr std::size_t kBytesInDumpRow = 10;
void appendDumpRow(std::string& dump, std::span<const std::uint8_t> bytes, std::size_t offset);

// `logBytes:count:`
// Logs the dump between a line break and two. The system's log cuts it after a mebibyte, which shows about 170 KB.
void logBytes(std::span<const std::uint8_t> bytes);

}  // namespace SharedClasses::Utilities
