/// \file
/// The face that every library in the comparison has: what it can do of the workloads, and by which of its functions.
///
/// A library is a program of its own, so that one that is not installed removes only itself. Its source is peer(); the
/// rest (worker.cpp) is the same for all: memory, pictures, clock, and the few words that the driver speaks.
#ifndef Q_MUR_PEERS_WORKER_H
#define Q_MUR_PEERS_WORKER_H

#include "workloads.h"

#include <functional>
#include <string>
#include <vector>

namespace peers {

/// Does a workload once. Its picture is in the stage's `dst` then.
using Run = std::function<void()>;

/// How a library does the workloads of a kind.
struct Job {
    std::string kind;
    std::string by;                ///< its functions
    Run (*prepare)(const Stage &); ///< wraps the stage's memory, untimed
    std::string note = "";         ///< what makes the work another one
};

struct Peer {
    std::string name; ///< with its version
    std::vector<Job> jobs;
};

/// What the program stands for. \param set the instruction set asked for, empty if none is
Peer peer(const std::string &set);

} // namespace peers

#endif
