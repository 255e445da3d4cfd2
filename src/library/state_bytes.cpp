#include "library/state_bytes.hpp"

#include "utils/bytes.hpp"

namespace quillmere {

namespace {

constexpr std::uint64_t mark = 0x32'65'74'61'74'53'6d'51;  // "QmState2" on most machines

[[noreturn]] void refuse() { throw Error("The bytes are no state of a simulation."); }

}  // namespace

State bytes_of(const SavedState& state) {
  State bytes;
  utils::MemorySink sink(bytes);
  const utils::ByteWriter write(sink);
  write(mark, state.clock, state.flow);
  return bytes;
}

SavedState state_of(const State& bytes) {
  SavedState state;
  std::uint64_t found = 0;
  utils::MemorySource source(bytes);
  const utils::ByteReader read(source);
  try {
    read(found);
    if (found != mark) refuse();
    read(state.clock, state.flow);
  } catch (const utils::BadBytes&) {
    refuse();
  }
  if (source.left() > 0) refuse();
  return state;
}

}  // namespace quillmere
