#include "library/state_bytes.hpp"

#include <cstring>

namespace quillmere {

namespace {

constexpr std::uint64_t mark = 0x31'65'74'61'74'53'6d'51;  // "QmState1" on most machines

/// Calls visit(part) for all parts of a state, in their order.
template <class State, class Visit>
void for_each_part(State& state, const Visit& visit) {
  visit(state.clock.t);
  visit(state.clock.dt);
  visit(state.clock.steps);
  auto& flow = state.flow;
  for (const auto column : engine::columns_of_flow) visit(flow.*column);
  visit(flow.imposed_on_boundaries);
  visit(flow.imposed_rain);
  visit(flow.rain_clocks);
}

class Writer {
 public:
  explicit Writer(State& bytes) : bytes_(bytes) {}

  template <class Number>
  void operator()(const Number& number) const {
    append(&number, sizeof number);
  }
  template <class Value>
  void operator()(const std::vector<Value>& values) const {
    (*this)(static_cast<std::uint64_t>(values.size()));
    for (const Value& value : values) put(value);
  }

 private:
  void put(double value) const { (*this)(value); }
  void put(const physics::RainClock& clock) const {
    (*this)(clock.last_update_time);
    (*this)(clock.hyetogram_index);
    (*this)(clock.rain_dt);
  }
  void append(const void* from, std::size_t size) const {
    bytes_.resize(bytes_.size() + size);
    std::memcpy(bytes_.data() + bytes_.size() - size, from, size);
  }

  State& bytes_;
};

class Reader {
 public:
  Reader(const State& bytes, std::size_t& next) : bytes_(bytes), next_(next) {}

  template <class Number>
  void operator()(Number& number) const {
    if (bytes_.size() - next_ < sizeof number) refuse();
    std::memcpy(&number, bytes_.data() + next_, sizeof number);
    next_ += sizeof number;
  }
  template <class Value>
  void operator()(std::vector<Value>& values) const {
    std::uint64_t count = 0;
    (*this)(count);
    if (count > bytes_.size() - next_) refuse();  // a value has more than a byte
    values.resize(count);
    for (Value& value : values) take(value);
  }
  [[noreturn]] static void refuse() { throw Error("The bytes are no state of a simulation."); }

 private:
  void take(double& value) const { (*this)(value); }
  void take(physics::RainClock& clock) const {
    (*this)(clock.last_update_time);
    (*this)(clock.hyetogram_index);
    (*this)(clock.rain_dt);
  }

  const State& bytes_;
  std::size_t& next_;
};

}  // namespace

State bytes_of(const SavedState& state) {
  State bytes;
  const Writer write(bytes);
  write(mark);
  for_each_part(state, write);
  return bytes;
}

SavedState state_of(const State& bytes) {
  std::size_t next = 0;
  const Reader read(bytes, next);
  std::uint64_t found = 0;
  read(found);
  if (found != mark) Reader::refuse();
  SavedState state;
  for_each_part(state, read);
  if (next != bytes.size()) Reader::refuse();
  return state;
}

}  // namespace quillmere
