// Values as bytes and back, so that a state can be kept: numbers as they lie in memory, in the
// order in which a class names its parts.
//
// A class whose values can be kept has a static member
//   template <class Self, class Visit> static void visit_parts(Self& self, const Visit& visit);
// that calls visit(part, ...) for all its parts, of a value to be written and of one to be read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace utils {

using Bytes = std::vector<std::byte>;

/// Bytes do not hold what is read from them.
class BadBytes : public std::runtime_error {
 public:
  BadBytes() : std::runtime_error("what it holds makes no sense") {}
};

class ByteSink {
 public:
  virtual ~ByteSink() = default;
  virtual void put(const void* from, std::size_t count) = 0;
};

class ByteSource {
 public:
  virtual ~ByteSource() = default;
  /// Throws BadBytes where fewer are left.
  virtual void take(void* to, std::size_t count) = 0;
  virtual std::uint64_t left() const = 0;
};

template <class Value>
inline constexpr bool is_plain_value = std::is_arithmetic_v<Value> || std::is_enum_v<Value>;

/// Writes the parts of values to a sink.
class ByteWriter {
 public:
  explicit ByteWriter(ByteSink& sink) : sink_(sink) {}

  template <class... Parts>
  void operator()(const Parts&... parts) const {
    (write(parts), ...);
  }

 private:
  template <class Value>
  void write(const Value& value) const {
    if constexpr (is_plain_value<Value>) {
      sink_.put(&value, sizeof value);
    } else {
      Value::visit_parts(value, *this);
    }
  }
  void write(const std::string& text) const {
    write(static_cast<std::uint64_t>(text.size()));
    sink_.put(text.data(), text.size());
  }
  template <class Value>
  void write(const std::vector<Value>& values) const {
    write(static_cast<std::uint64_t>(values.size()));
    if constexpr (is_plain_value<Value>) {
      sink_.put(values.data(), values.size() * sizeof(Value));
    } else {
      for (const Value& value : values) write(value);
    }
  }
  template <class Value, std::size_t count>
  void write(const std::array<Value, count>& values) const {
    for (const Value& value : values) write(value);
  }
  template <class First, class Second>
  void write(const std::pair<First, Second>& pair) const {
    (*this)(pair.first, pair.second);
  }
  template <class Value>
  void write(const std::optional<Value>& value) const {
    write(value.has_value());
    if (value) write(*value);
  }
  template <class... Kinds>
  void write(const std::variant<Kinds...>& value) const {
    write(static_cast<std::uint8_t>(value.index()));
    std::visit([this](const auto& held) { this->write(held); }, value);
  }

  ByteSink& sink_;
};

/// Reads what a ByteWriter wrote. Throws BadBytes where it cannot have been that; takes no more
/// memory than the source has bytes for.
class ByteReader {
 public:
  explicit ByteReader(ByteSource& source) : source_(source) {}

  template <class... Parts>
  void operator()(Parts&... parts) const {
    (read(parts), ...);
  }

 private:
  template <class Value>
  void read(Value& value) const {
    if constexpr (is_plain_value<Value>) {
      source_.take(&value, sizeof value);
    } else {
      Value::visit_parts(value, *this);
    }
  }
  void read(bool& value) const {
    std::uint8_t number = 0;
    read(number);
    if (number > 1) throw BadBytes();
    value = number != 0;
  }
  void read(std::string& text) const {
    text.resize(count_of(1));
    source_.take(text.data(), text.size());
  }
  template <class Value>
  void read(std::vector<Value>& values) const {
    if constexpr (is_plain_value<Value>) {
      values.resize(count_of(sizeof(Value)));
      source_.take(values.data(), values.size() * sizeof(Value));
    } else {
      values.clear();
      for (std::size_t left = count_of(1); left > 0; --left) read(values.emplace_back());
    }
  }
  template <class Value, std::size_t count>
  void read(std::array<Value, count>& values) const {
    for (Value& value : values) read(value);
  }
  template <class First, class Second>
  void read(std::pair<First, Second>& pair) const {
    (*this)(pair.first, pair.second);
  }
  template <class Value>
  void read(std::optional<Value>& value) const {
    bool has_value = false;
    read(has_value);
    if (!has_value) return value.reset();
    if (!value) value.emplace();
    read(*value);
  }
  template <class... Kinds>
  void read(std::variant<Kinds...>& value) const {
    std::uint8_t index = 0;
    read(index);
    if (index >= sizeof...(Kinds)) throw BadBytes();
    std::uint8_t kind = 0;
    ((kind++ == index ? read(value.template emplace<Kinds>()) : void()), ...);
  }

  /// The number of values that follow, each of at least so many bytes.
  std::size_t count_of(std::size_t bytes_each) const {
    std::uint64_t count = 0;
    read(count);
    if (count > source_.left() / bytes_each) throw BadBytes();
    return count;
  }

  ByteSource& source_;
};

/// Appends to bytes in memory.
class MemorySink : public ByteSink {
 public:
  explicit MemorySink(Bytes& bytes) : bytes_(bytes) {}
  void put(const void* from, std::size_t count) override {
    if (count == 0) return;
    bytes_.resize(bytes_.size() + count);
    std::memcpy(bytes_.data() + bytes_.size() - count, from, count);
  }

 private:
  Bytes& bytes_;
};

class MemorySource : public ByteSource {
 public:
  /// The bytes must outlive it.
  explicit MemorySource(const Bytes& bytes) : bytes_(bytes) {}
  void take(void* to, std::size_t count) override {
    if (count > left()) throw BadBytes();
    if (count > 0) std::memcpy(to, bytes_.data() + next_, count);
    next_ += count;
  }
  std::uint64_t left() const override { return bytes_.size() - next_; }

 private:
  const Bytes& bytes_;
  std::size_t next_ = 0;
};

/// Puts a value into bytes, in place of what they held.
template <class Value>
void put_into(Bytes& bytes, const Value& value) {
  bytes.clear();
  MemorySink sink(bytes);
  ByteWriter write(sink);
  write(value);
}

/// Takes a value out of bytes that hold it and nothing else; throws BadBytes otherwise.
template <class Value>
void take_out_of(const Bytes& bytes, Value& value) {
  MemorySource source(bytes);
  const ByteReader read(source);
  read(value);
  if (source.left() > 0) throw BadBytes();
}

}  // namespace utils
