#include "ugrid/ClassicFile.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace ugrid {

ClassicFile::ClassicFile(utils::WritableFile& file, ClassicLayout layout)
    : file_(file), layout_(std::move(layout)) {}

void ClassicFile::begin() { write_at(0, layout_.header); }

void ClassicFile::go_on(std::uint64_t records) {
  shown_ = records;
  write_count();
  if (error_ == 0) error_ = file_.sync();
  if (error_ == 0) error_ = file_.cut_off(layout_.end_of_record(records));
}

void ClassicFile::put(std::size_t variable, std::size_t record, std::span<const int> values) {
  put_values<std::uint32_t>(variable, record, values);
}
void ClassicFile::put(std::size_t variable, std::size_t record, std::span<const float> values) {
  put_values<std::uint32_t>(variable, record, values);
}
void ClassicFile::put(std::size_t variable, std::size_t record, std::span<const double> values) {
  put_values<std::uint64_t>(variable, record, values);
}

void ClassicFile::show(std::uint64_t records) {
  if (error_ == 0) error_ = file_.sync();
  if (error_ != 0) return;
  shown_ = records;
  write_count();
  if (error_ == 0) error_ = file_.sync();
}

template <class Bits, class Value>
void ClassicFile::put_values(std::size_t variable, std::size_t record,
                             std::span<const Value> values) {
  constexpr std::size_t piece_size = 1 << 20;  // bytes
  std::uint64_t place = layout_.place(variable, record);
  while (!values.empty()) {
    const std::size_t count = std::min(values.size(), piece_size / sizeof(Bits));
    piece_.resize(count * sizeof(Bits));
    for (std::size_t i = 0; i < count; ++i) {
      const Bits bits = as_in_file(std::bit_cast<Bits>(values[i]));
      std::memcpy(piece_.data() + i * sizeof bits, &bits, sizeof bits);
    }
    write_at(place, {piece_.data(), piece_.size()});
    place += piece_.size();
    values = values.subspan(count);
  }
}

void ClassicFile::write_at(std::uint64_t place, std::string_view bytes) {
  if (error_ != 0) return;
  error_ = file_.write_at(place, bytes);
  const bool is_in_a_record = place >= layout_.begin_of_records;
  if (error_ != 0 && is_in_a_record) file_.cut_off(layout_.end_of_record(shown_));
}

void ClassicFile::write_count() {
  const std::uint32_t count = as_in_file(static_cast<std::uint32_t>(shown_));
  write_at(ClassicLayout::place_of_count, {reinterpret_cast<const char*>(&count), sizeof count});
}

}  // namespace ugrid
