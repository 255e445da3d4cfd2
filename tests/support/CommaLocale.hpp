// A locale in which a number reads "1.234,5".
#pragma once

#include <clocale>
#include <cstdlib>
#include <locale>
#include <string>

#include "support/TemporaryFolder.hpp"

namespace support {

/// The definition of a locale of the C library that writes a decimal comma, in a folder of its own,
/// and in the environment of this process and its children. It takes localedef and the sources of
/// the locales, which not every machine has.
class CommaLocaleInEnvironment {
 public:
  CommaLocaleInEnvironment() {
    const std::string command =
        "localedef -i de_DE -f UTF-8 '" + folder_.file("comma") + "' >/dev/null 2>&1";
    is_there_ = std::system(command.c_str()) == 0;
    setenv("LOCPATH", folder_.path().c_str(), 1);
    setenv("LC_ALL", "comma", 1);
  }
  ~CommaLocaleInEnvironment() {
    unsetenv("LC_ALL");
    unsetenv("LOCPATH");
  }
  CommaLocaleInEnvironment(const CommaLocaleInEnvironment&) = delete;
  CommaLocaleInEnvironment& operator=(const CommaLocaleInEnvironment&) = delete;

  bool is_there() const { return is_there_; }

 private:
  TemporaryFolder folder_;
  bool is_there_;
};

/// The locale of this process, for the C++ library, and for the C library where it is there.
class CommaLocale {
 public:
  CommaLocale() : before_(std::locale::global({std::locale::classic(), new Comma})) {
    if (environment_.is_there()) std::setlocale(LC_ALL, "");
  }
  ~CommaLocale() {
    std::locale::global(before_);
    std::setlocale(LC_ALL, "C");
  }
  CommaLocale(const CommaLocale&) = delete;
  CommaLocale& operator=(const CommaLocale&) = delete;

 private:
  class Comma : public std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
  };

  CommaLocaleInEnvironment environment_;
  std::locale before_;
};

}  // namespace support
