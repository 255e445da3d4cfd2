#include "ugrid/ClassicFile.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
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
  put_values<std::uint32_t>(variable, record, 0, values);
}
void ClassicFile::put(std::size_t variable, std::size_t record, std::span<const float> values) {
  put_values<std::uint32_t>(variable, record, 0, values);
}
void ClassicFile::put(std::size_t variable, std::size_t record, std::span<const double> values) {
  put_values<std::uint64_t>(variable, record, 0, values);
}

void ClassicFile::put_part(std::size_t variable, std::size_t record, std::size_t first,
                           std::span<const int> values) {
  put_values<std::uint32_t>(variable, record, first, values);
}
void ClassicFile::put_part(std::size_t variable, std::size_t record, std::size_t first,
                           std::span<const float> values) {
  put_values<std::uint32_t>(variable, record, first, values);
}
void ClassicFile::put_part(std::size_t variable, std::size_t record, std::size_t first,
                           std::span<const double> values) {
  put_values<std::uint64_t>(variable, record, first, values);
}

void ClassicFile::put(std::size_t variable, std::string_view characters) {
  std::string filled_up(characters);
  filled_up.append((4 - characters.size() % 4) % 4, '\0');
  write_at(layout_.place(variable, 0), filled_up);
}

void ClassicFile::show(std::uint64_t records) {
  if (error_ == 0) error_ = file_.sync();
  if (error_ != 0) return;
  shown_ = records;
  write_count();
}

template <class Bits, class Value>
void ClassicFile::put_values(std::size_t variable, std::size_t record, std::size_t first,
                             std::span<const Value> values) {
  constexpr std::size_t piece_size = 1 << 20;  // bytes
  std::uint64_t place = layout_.place(variable, record) + first * sizeof(Bits);
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
  if (place < layout_.begin_of_records) return;
  if (error_ != 0) file_.cut_off(layout_.end_of_record(shown_));
  const std::uint64_t in_record = (place - layout_.begin_of_records) % layout_.record_size;
  if (in_record == 0) sum_ = utils::WordSum();
  sum_.add(in_record / utils::WordSum::word, bytes.data(), bytes.size());
}

void ClassicFile::write_count() {
  const std::uint32_t count = as_in_file(static_cast<std::uint32_t>(shown_));
  write_at(ClassicLayout::place_of_count, {reinterpret_cast<const char*>(&count), sizeof count});
}

std::string fault_of_start(const std::string& name, const ClassicLayout& layout,
                           std::uint64_t records) {
  std::error_code ignored;
  if (!std::filesystem::exists(name, ignored)) return "isn't there any more";
  if (!std::filesystem::is_regular_file(name, ignored)) return "is no regular file";
  std::ifstream file(name, std::ios::binary);
  std::string header(layout.header.size(), '\0');
  file.read(header.data(), static_cast<std::streamsize>(header.size()));
  const std::string count = header.substr(ClassicLayout::place_of_count, 4);
  header.replace(ClassicLayout::place_of_count, 4, 4, '\0');
  if (header != layout.header) {
    return "describes other results than this run's (model, mesh, title, place, date, precision "
           "and maxima must be those at the checkpoint; or give it another name)";
  }
  const auto lacks = [](std::uint64_t found, std::uint64_t before, const std::string& what) {
    return "has " + std::to_string(found) + " " + what + " of the " + std::to_string(before) +
           " that it had at the checkpoint";
  };
  std::uint32_t found = 0;
  std::memcpy(&found, count.data(), sizeof found);
  if (as_in_file(found) < records) return lacks(as_in_file(found), records, "snapshots");
  const std::uintmax_t size = std::filesystem::file_size(name, ignored);
  const std::uint64_t end = layout.end_of_record(records);
  return size < end ? lacks(size, end, "bytes") : "";
}

std::optional<std::uint64_t> checksum_of_record(const std::string& name,
                                                const ClassicLayout& layout, std::uint64_t record) {
  constexpr std::uint64_t piece_size = 1 << 20;  // bytes
  std::ifstream file(name, std::ios::binary);
  file.seekg(static_cast<std::streamoff>(layout.end_of_record(record)));  // of that before it
  utils::WordSum sum;
  std::vector<char> piece(std::min(piece_size, layout.record_size));
  for (std::uint64_t left = layout.record_size; left > 0;) {
    file.read(piece.data(),
              static_cast<std::streamsize>(std::min<std::uint64_t>(left, piece.size())));
    if (!file) return {};
    const auto count = static_cast<std::size_t>(file.gcount());
    sum.add((layout.record_size - left) / utils::WordSum::word, piece.data(), count);
    left -= count;
  }
  return sum.value();
}

}  // namespace ugrid
