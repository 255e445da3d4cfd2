// The program over the processes of an MPI job: rank 0 runs it, the others serve.
#include <exception>
#include <iostream>
#include <string>

#include "fields/serve.hpp"
#include "main/program.hpp"
#include "ranks/mpi/MpiGroup.hpp"
#include "utils/signals.hpp"

namespace {

constexpr int status_of_errors = -1;

/// The exit status that rank 0 ends with.
int serve(ranks::Group& group) {
  utils::listen_for_interruption();
  // Wishes for checkpoints go to all processes of a job; rank 0 hears them.
  utils::listen_for_checkpoint_wishes();
  return fields::serve(group, [] { return utils::interrupting_signal() != 0; });
}

int run_rank(ranks::Group& group, int argc, char** argv) {
  if (group.rank() > 0) return serve(group);
  const int status = call_program(argc, argv, &group);
  // The others wait in what failed.
  if (group.is_broken()) ranks::MpiSession::abort(status != 0 ? status : status_of_errors);
  fields::end_service(group, status);
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  secure_process();
  try {
    const ranks::MpiSession session(argc, argv);
    try {
      ranks::MpiGroup group;
      return run_rank(group, argc, argv);
    } catch (const std::exception& error) {  // of a rank that serves: the others wait for it
      std::cerr << std::string("Error. A rank failed: ") + error.what() + "\n";
      ranks::MpiSession::abort(status_of_errors);
    }
  } catch (const std::exception& error) {
    std::cerr << std::string(error.what()) + "\n";
    return status_of_errors;
  }
}
