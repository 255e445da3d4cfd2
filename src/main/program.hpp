// The program, as one process runs it or the first of several ranks.
#pragma once

#include "ranks/Group.hpp"

/// The signals, streams and memory of the process: nothing of theirs may end it without a word, or
/// in the middle of a result. To be called before anything else.
void secure_process();

/// A call with the arguments of main(). The ranks of the group share its run, this one being rank 0
/// (null: there is one). Answers the exit status.
int call_program(int argc, char** argv, ranks::Group* group);
