#include "sources/CNTerm.hpp"

#include <iostream>

CNTerm::CNTerm(int id, double CN, double a, double b)
    : SourceTerm(id), CN_(CN), a_(a), b_(b), S_((25400.0 - 254.0 * CN) / CN), Ia_(a * S_) {
  std::cout << "CNTerm created with ID: " << id << ", CN: " << CN_ << std::endl;
}
