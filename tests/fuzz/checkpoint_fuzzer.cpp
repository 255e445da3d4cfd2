// Reads a checkpoint of any bytes: as a file, and as its parts, which in a file are met behind
// checksums that no mutation gets right.
#include <cstdint>
#include <sstream>
#include <string>

#include "checkpoint/checkpoint_file.hpp"
#include "fuzz/fuzzing.hpp"

namespace {

void read_file(const std::string& text) {
  std::istringstream stream(text);
  try {
    checkpoint::read_file(stream);
  } catch (const checkpoint::BadFile&) {
  }
}

void read_parts(const utils::Bytes& bytes) {
  checkpoint::Checkpoint contents;
  try {
    utils::take_out_of(bytes, contents);
  } catch (const utils::BadBytes&) {
    return;
  }
  utils::Bytes again;
  utils::put_into(again, contents);
  if (again != bytes) __builtin_trap();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  fuzzing::start();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const auto* const begin = reinterpret_cast<const std::byte*>(bytes);
  read_file(std::string(reinterpret_cast<const char*>(bytes), size));
  read_parts(utils::Bytes(begin, begin + size));
  return 0;
}
