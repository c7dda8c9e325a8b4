#pragma once

#include <cstddef>
#include <cstdint>

// The run-length encoding of entry data: pairs (count 1..255, value) ended
// by a single count of 0.
namespace sxiRunLength {

// Encodes into a buffer that is reused from entry to entry.
class Encoder {
 public:
  Encoder() = default;
  ~Encoder();
  Encoder(const Encoder&) = delete;
  Encoder& operator=(const Encoder&) = delete;

  // False when the data are not worth encoding: fewer than 10 bytes, or a
  // stream that would reach the size of the data. Then they are stored raw.
  bool compressRLE(const unsigned char* in, std::size_t n);
  const unsigned char* data() const { return out; }
  std::size_t size() const { return length; }

 private:
  unsigned char* out = nullptr;
  std::size_t capacity = 0;
  std::size_t length = 0;
};

// The most bytes that a stream of `count` bytes can decode to.
std::size_t maxDecodedSize(std::uint32_t count);

// Decodes the stream into out, which holds size bytes (left as they are
// beyond the stream's end). False for a stream that lacks its end mark, is
// cut in the middle of a pair or decodes to more than size bytes.
bool decode(const unsigned char* stream, std::size_t count, unsigned char* out, std::size_t size);

}  // namespace sxiRunLength
