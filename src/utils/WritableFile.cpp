#include "utils/WritableFile.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace utils {

namespace {
constexpr int writing = O_WRONLY | O_CREAT | O_CLOEXEC;
constexpr mode_t for_everyone = 0666;  // less what the umask of the process takes away

/// Calls write(begin, size, bytes done so far) until a whole text is written.
template <class Write>
int write_with(const Write& write, std::string_view text) {
  for (std::size_t done = 0; done < text.size();) {
    const ssize_t written = write(text.data() + done, text.size() - done, done);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return written < 0 ? errno : EIO;
    done += static_cast<std::size_t>(written);
  }
  return 0;
}
}  // namespace

int WritableFile::open(const std::string& name) {
  return take(::open(name.c_str(), writing | O_TRUNC, for_everyone));
}

int WritableFile::open_as_it_is(const std::string& name) {
  return take(::open(name.c_str(), O_WRONLY | O_CLOEXEC));
}

int WritableFile::open_behind(const std::string& name, std::uintmax_t size) {
  const int error = open_as_it_is(name);
  if (error != 0 || !is_regular()) return error;
  if (const int error_of_cut = cut_off(size); error_of_cut != 0) return error_of_cut;
  return lseek(descriptor_, 0, SEEK_END) < 0 ? errno : 0;
}

int WritableFile::create_anew(const std::string& name) {
  unlink(name.c_str());  // what cannot be removed makes the next call fail
  return take(::open(name.c_str(), writing | O_EXCL | O_NOFOLLOW, for_everyone));
}

int WritableFile::take(int descriptor) {
  descriptor_ = descriptor;
  return is_open() ? 0 : errno;
}

bool WritableFile::is_regular() const {
  struct stat status = {};
  return fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
}

int WritableFile::write(std::string_view text) {
  return write_with([this](const char* begin, std::size_t size,
                           std::size_t) { return ::write(descriptor_, begin, size); },
                    text);
}

int WritableFile::write_at(std::uintmax_t place, std::string_view text) {
  return write_with(
      [&](const char* begin, std::size_t size, std::size_t done) {
        return pwrite(descriptor_, begin, size, static_cast<off_t>(place + done));
      },
      text);
}

int WritableFile::cut_off(std::uintmax_t size) {
  return ftruncate(descriptor_, static_cast<off_t>(size)) == 0 ? 0 : errno;
}

int WritableFile::sync() { return fsync(descriptor_) == 0 ? 0 : errno; }

int WritableFile::close() {
  if (!is_open()) return 0;
  return ::close(std::exchange(descriptor_, -1)) == 0 ? 0 : errno;
}

}  // namespace utils
