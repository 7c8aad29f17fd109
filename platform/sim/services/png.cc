#include "platform/sim/services/png.h"

#include <algorithm>
#include <string_view>

namespace {

std::string bigEndian(std::uint32_t number) {
  std::string bytes;
  for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<char>((number >> shift) & 0xFF));
  return bytes;
}

std::uint32_t crc(std::string_view bytes) {
  std::uint32_t sum = 0xFFFFFFFF;
  for (const char c : bytes) {
    sum ^= static_cast<unsigned char>(c);
    for (int bit = 0; bit < 8; ++bit) sum = (sum >> 1) ^ ((sum & 1) != 0 ? 0xEDB88320 : 0);
  }
  return ~sum;
}

std::uint32_t adler(std::string_view bytes) {
  constexpr std::uint32_t kPrime = 65521;
  std::uint32_t low = 1;
  std::uint32_t high = 0;
  for (const char c : bytes) {
    low = (low + static_cast<unsigned char>(c)) % kPrime;
    high = (high + low) % kPrime;
  }
  return high << 16 | low;
}

std::string chunk(const std::string& kind, const std::string& content) {
  return bigEndian(static_cast<std::uint32_t>(content.size())) + kind + content + bigEndian(crc(kind + content));
}

// Blocks that are stored as they are: the picture is small, and a compressor would be another library.
std::string stored(std::string_view bytes) {
  constexpr std::size_t kLongest = 65535;
  std::string stream = "\x78\x01";
  for (std::size_t at = 0; at < bytes.size(); at += kLongest) {
    const std::size_t length = std::min(kLongest, bytes.size() - at);
    stream.push_back(at + length == bytes.size() ? '\1' : '\0');
    for (const std::size_t number : {length, ~length}) {
      stream.push_back(static_cast<char>(number & 0xFF));
      stream.push_back(static_cast<char>((number >> 8) & 0xFF));
    }
    stream += bytes.substr(at, length);
  }
  return stream + bigEndian(adler(bytes));
}

}  // namespace

std::string HLBlankPng(std::uint32_t width, std::uint32_t height) {
  // One bit a pixel, gray; each line begins with its filter, which is none.
  const std::string line = std::string(1, '\0') + std::string((width + 7) / 8, '\xFF');
  std::string pixels;
  for (std::uint32_t i = 0; i < height; ++i) pixels += line;
  const std::string header = bigEndian(width) + bigEndian(height) + std::string("\1\0\0\0\0", 5);
  return "\x89PNG\r\n\x1a\n" + chunk("IHDR", header) + chunk("IDAT", stored(pixels)) + chunk("IEND", "");
}
