#include "checkpoint/checkpoint_file.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <vector>

#include "utils/Checksum.hpp"
#include "utils/WritableFile.hpp"

namespace checkpoint {

namespace {

constexpr std::uint32_t version = 6;  // to be counted up with every change of what is written
constexpr std::uint32_t byte_order = 0x01020304;
constexpr std::uint32_t largest_block = 4 << 20;
constexpr std::array<char, 8> start_mark = {'Q', 'm', 'C', 'h', 'e', 'c', 'k', '\n'};
constexpr std::array<char, 8> end_mark = {'Q', 'm', 'W', 'h', 'o', 'l', 'e', '\n'};

// Without padding.
struct Header {
  std::array<char, 8> mark = start_mark;
  std::uint32_t order = byte_order;
  std::uint32_t format = version;
  std::uint64_t number = 0;
};
struct BlockHead {
  std::uint32_t size = 0;      ///< bytes that follow
  std::uint32_t encoding = 0;  ///< 0: as they are
  std::uint64_t checksum = 0;
};
struct Footer {
  std::uint64_t number = 0;
  std::uint64_t blocks = 0;
  std::uint64_t bytes = 0;     ///< in them
  std::uint64_t checksum = 0;  ///< of the checksums of all blocks
  std::array<char, 8> mark = end_mark;
};

std::uint64_t size_of_file(std::uint64_t blocks, std::uint64_t bytes) {
  return sizeof(Header) + blocks * sizeof(BlockHead) + bytes + sizeof(Footer);
}

/// Tells a block from the same one at another place or in another file.
utils::Checksum checksum_of_block(std::uint64_t number, std::uint64_t block) {
  constexpr std::uint64_t odd = 0xD6E8FEB86659FD93U;
  return utils::Checksum((number * odd) ^ block);
}

std::string reason_of(int error) { return std::generic_category().message(error); }

template <class Record>
bool read_record(std::istream& file, Record& record) {
  return static_cast<bool>(file.read(reinterpret_cast<char*>(&record), sizeof record));
}

std::uint64_t size_of(std::istream& file) {
  file.clear();
  file.seekg(0, std::ios::end);
  const std::istream::pos_type end = file.tellg();
  return end < 0 ? 0 : static_cast<std::uint64_t>(end);
}

}  // namespace

/// Writes bytes in blocks; after an error nothing more.
class FileWriter::BlockWriter : public utils::ByteSink {
 public:
  BlockWriter(utils::WritableFile& file, std::uint64_t number) : file_(file) {
    footer_.number = number;
    Header header;
    header.number = number;
    write(&header, sizeof header);
    block_.reserve(largest_block);
  }

  void put(const void* from, std::size_t count) override {
    const auto* next = static_cast<const char*>(from);
    while (count > 0 && error_ == 0) {
      const std::size_t taken = std::min<std::size_t>(count, largest_block - block_.size());
      block_.append(next, taken);
      next += taken;
      count -= taken;
      if (block_.size() == largest_block) write_block();
    }
  }
  /// Brings all blocks to the disk. An error number, as below; 0: all went well.
  int finish_blocks() {
    if (!block_.empty()) write_block();
    return error_ != 0 ? error_ : file_.sync();
  }
  int finish() {
    footer_.checksum = sums_.value();
    write(&footer_, sizeof footer_);
    return error_ != 0 ? error_ : file_.sync();
  }

 private:
  void write_block() {
    utils::Checksum sum = checksum_of_block(footer_.number, footer_.blocks);
    sum.add(block_.data(), block_.size());
    const BlockHead head = {static_cast<std::uint32_t>(block_.size()), 0, sum.value()};
    sums_.add(&head.checksum, sizeof head.checksum);
    write(&head, sizeof head);
    write(block_.data(), block_.size());
    ++footer_.blocks;
    footer_.bytes += block_.size();
    block_.clear();
  }
  void write(const void* bytes, std::size_t count) {
    if (error_ == 0) error_ = file_.write({static_cast<const char*>(bytes), count});
  }

  utils::WritableFile& file_;
  std::string block_;
  utils::Checksum sums_;
  Footer footer_;
  int error_ = 0;
};

// --- Reading -------------------------------------------------------------------------------------

/// Reads blocks as if they were one, each after its checksum has been found to be right.
class FileReader::BlockReader : public utils::ByteSource {
 public:
  /// Reads header and footer; throws a BadFile.
  explicit BlockReader(std::istream& file) : file_(file) {
    const Look look = look_at(file);
    if (!look.trouble.empty()) throw BadFile(look.trouble);
    file.seekg(-static_cast<std::streamoff>(sizeof(Footer)), std::ios::end);
    read_record(file, footer_);
    file.seekg(sizeof(Header));
  }

  void take(void* to, std::size_t count) override {
    auto* next = static_cast<char*>(to);
    while (count > 0) {
      if (next_ == block_.size()) read_block();
      const std::size_t taken = std::min(count, block_.size() - next_);
      std::memcpy(next, block_.data() + next_, taken);
      next_ += taken;
      next += taken;
      count -= taken;
    }
  }
  std::uint64_t number() const { return footer_.number; }
  std::uint64_t left() const override { return footer_.bytes - read_ + (block_.size() - next_); }

  /// Throws a BadFile unless the footer belongs to all that was read.
  void finish() const {
    if (blocks_ != footer_.blocks || sums_.value() != footer_.checksum) {
      throw BadFile("its end does not belong to it");
    }
  }

 private:
  void read_block() {
    if (read_ == footer_.bytes) throw utils::BadBytes();
    BlockHead head;
    const bool is_there = read_record(file_, head) && head.size > 0 && head.encoding == 0 &&
                          head.size <= largest_block && head.size <= footer_.bytes - read_;
    if (!is_there) refuse_block();
    block_.resize(head.size);
    if (!file_.read(block_.data(), head.size)) refuse_block();
    utils::Checksum sum = checksum_of_block(footer_.number, blocks_);
    sum.add(block_.data(), block_.size());
    if (sum.value() != head.checksum) refuse_block();
    sums_.add(&head.checksum, sizeof head.checksum);
    ++blocks_;
    read_ += head.size;
    next_ = 0;
  }
  [[noreturn]] void refuse_block() const {
    throw BadFile("block " + std::to_string(blocks_) + " (counted from 0) is damaged");
  }

  std::istream& file_;
  Footer footer_;
  std::vector<char> block_;
  std::size_t next_ = 0;  ///< in the block
  std::uint64_t blocks_ = 0, read_ = 0;
  utils::Checksum sums_;
};

FileWriter::FileWriter(const std::string& name, std::uint64_t number, const Checkpoint& contents) {
  error_ = file_.open(name);
  if (error_ != 0) return;
  blocks_ = std::make_unique<BlockWriter>(file_, number);
  const utils::ByteWriter write(*blocks_);
  write(contents);
}

FileWriter::~FileWriter() = default;

void FileWriter::put(const void* from, std::size_t count) {
  if (blocks_) blocks_->put(from, count);
}

std::string FileWriter::finish(const std::function<bool()>& may_count) {
  if (error_ != 0) return reason_of(error_);
  if (const int error = blocks_->finish_blocks(); error != 0) return reason_of(error);
  if (!may_count()) return "a result before it was lost";
  if (const int error = blocks_->finish(); error != 0) return reason_of(error);
  const int error = file_.close();
  return error == 0 ? "" : reason_of(error);
}

Look look_at(std::istream& file) {
  const std::string incomplete = "it is not complete";
  const std::uint64_t size = size_of(file);
  file.seekg(0);
  Header header;
  header.mark.fill('\0');
  const auto in_mark = static_cast<std::streamsize>(std::min<std::uint64_t>(size, sizeof header));
  file.read(reinterpret_cast<char*>(&header), in_mark);
  const auto marked = std::min<std::ptrdiff_t>(in_mark, start_mark.size());
  if (!std::equal(header.mark.begin(), header.mark.begin() + marked, start_mark.begin())) {
    return {.is_foreign = true, .trouble = "it is no checkpoint"};
  }
  if (size < sizeof(Header)) return {.trouble = incomplete};
  if (header.order != byte_order) {
    return {.trouble = "it was written by a machine with another order of bytes"};
  }
  if (header.format != version) {
    return {.trouble = "it is of version " + std::to_string(header.format) +
                       " of the format, and this program reads version " + std::to_string(version)};
  }
  Footer footer;
  if (size < sizeof(Header) + sizeof(Footer)) return {.trouble = incomplete};
  file.seekg(-static_cast<std::streamoff>(sizeof(Footer)), std::ios::end);
  const bool is_whole = read_record(file, footer) && footer.mark == end_mark &&
                        footer.number == header.number && footer.bytes <= size &&
                        footer.blocks <= size && size_of_file(footer.blocks, footer.bytes) == size;
  if (!is_whole) return {.trouble = incomplete};
  return {.number = header.number};
}

FileReader::FileReader(std::istream& file) : blocks_(std::make_unique<BlockReader>(file)) {
  try {
    const utils::ByteReader read(*blocks_);
    read(contents_);
  } catch (const utils::BadBytes& bad) {
    throw BadFile(bad.what());
  }
}

FileReader::~FileReader() = default;

void FileReader::take(void* to, std::size_t count) {
  try {
    blocks_->take(to, count);
  } catch (const utils::BadBytes& bad) {
    throw BadFile(bad.what());
  }
}

std::uint64_t FileReader::number() const { return blocks_->number(); }

std::uint64_t FileReader::left() const { return blocks_->left(); }

void FileReader::finish() const { blocks_->finish(); }

Checkpoint read_file(std::istream& file) {
  FileReader reader(file);
  const fields::SavedFlow& flow = reader.contents().flow;
  const std::uint64_t bytes = reader.left(), per_row = flow.bytes_per_row();
  const bool is_whole =
      per_row == 0 ? bytes == 0 : bytes % per_row == 0 && bytes / per_row == flow.cells;
  if (!is_whole) throw BadFile(utils::BadBytes().what());
  std::vector<char> piece(std::min<std::uint64_t>(bytes, largest_block));
  while (reader.left() > 0)
    reader.take(piece.data(), std::min(reader.left(), std::uint64_t{piece.size()}));
  reader.finish();
  return reader.contents();
}

}  // namespace checkpoint
