// Result files that a killed run leaves without damage, as far as the system allows. A file that
// cannot be created is warned about and the run goes on without it; one that cannot be written to
// its end (a full disk), or put in its place, ends the run, after the other outputs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "utils/Checksum.hpp"
#include "utils/TextBuffer.hpp"
#include "utils/WritableFile.hpp"

namespace utils {

/// A file without its name yet, into which several processes write.
struct SharedPart {
  std::string name;  ///< the temporary one
  std::string mark;  ///< what the file begins with until it is written: others may have the name

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.name, self.mark);
  }
};

/// Opens it in one of these processes. Answers the number of an error, also where another file has
/// the name, as on machines with disks of their own.
int open_shared(const SharedPart& part, WritableFile& file);

/// A file written whole: it grows under a temporary name and takes its own when it is complete, so
/// that an earlier complete file is there until then. A link to a file stays, and the file that it
/// leads to is replaced. Devices and pipes are written directly.
class WholeFile {
 public:
  explicit WholeFile(std::string name);

  /// Writes the buffer out and empties it once it has grown large; to be called after every row.
  void drain(TextBuffer& buffer);
  /// Writes the rest and puts the file in its place; an earlier file stays if that fails. False if
  /// the run must end, which has been said.
  bool commit(const TextBuffer& rest);

  /// Before anything is written: lets several processes write the file instead. Nothing for a file
  /// that is written directly, or cannot be written.
  std::optional<SharedPart> share();
  /// They could not: it is written here as if it had never been shared.
  void unshare();
  /// They have written so many bytes, or have failed with an error (its number, else 0): goes on as
  /// commit().
  bool commit_shared(std::uint64_t size, int error);

 private:
  void create();
  void put(const TextBuffer& text);
  void put_in_place();
  void fail(const std::string& trouble);

  std::string name_;
  bool has_failed_ = false;
  std::string place_;           ///< the name, or that of the file that a link of the name leads to
  std::string temporary_name_;  ///< empty for a file that is written directly
  WritableFile file_;
  int error_ = 0;  ///< number of the error that kept the file from being complete
};

/// The lines that a run has written into a file.
struct WrittenLines {
  std::string name;
  std::uint64_t size = 0;      ///< bytes
  std::uint64_t checksum = 0;  ///< of these bytes

  template <class Self, class Visit>
  static void visit_parts(Self& self, const Visit& visit) {
    visit(self.name, self.size, self.checksum);
  }
};

/// A file that grows line by line for the whole run. Each line is handed to the system in one piece
/// and is on its way to the disk at once: a reader sees complete lines. A signal that ends the run
/// waits for the line that is being written. Only what a process cannot hold back (SIGKILL) may cut
/// a long line while the system takes it: of the file of a killed run the last line may lack its
/// end; all lines before it are complete.
class LineFile {
 public:
  /// Creates or truncates the file; a failure is warned about. A file that the run has read is not
  /// touched: the run ends. To be called on the main thread.
  void open(const std::string& name);
  /// Opens a file that an earlier run has written, cuts off what stands behind these lines, and
  /// goes on there. What is not there any more is said by require_lines(), to be called before. To
  /// be called on the main thread.
  void open_behind(const WrittenLines& lines);
  /// All lines so far; none while another thread writes.
  WrittenLines lines() const { return {name_, size_, checksum_.value()}; }
  /// Whether the file could be created.
  bool is_open() const { return is_created_; }
  /// Appends a text that ends in a line end; without an open file it is lost. False if the run must
  /// end, which has been said.
  bool write(const TextBuffer& line);
  /// No line comes any more. False as above.
  bool close();

 private:
  std::string name_;
  WritableFile file_;
  bool is_created_ = false;
  bool is_regular_ = false;
  std::uintmax_t size_ = 0;  ///< of the complete lines
  Checksum checksum_;        ///< of the complete lines
};

/// Waits until lines lie on the disk; any thread may call it, while the file grows on.
void bring_to_disk(const WrittenLines& lines);

/// Ends the run with a message where a file does not begin with these lines any more. A device or a
/// pipe keeps none, and has them.
void require_lines(const WrittenLines& lines);

}  // namespace utils
