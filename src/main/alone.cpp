// The program in one process.
#include "main/program.hpp"

int main(int argc, char** argv) {
  secure_process();
  return call_program(argc, argv, nullptr);
}
