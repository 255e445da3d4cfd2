// Threads that run the same loop body over shares of a range, again and again.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace engine {

class ThreadTeam {
 public:
  /// A team of `size` threads, the calling one included; of fewer, if the system gives no more.
  explicit ThreadTeam(int size);
  ~ThreadTeam();
  ThreadTeam(const ThreadTeam&) = delete;
  ThreadTeam& operator=(const ThreadTeam&) = delete;

  int size() const { return size_; }
  /// Calls body(share) for the shares 0 to size() - 1 and returns when all are done. A thread
  /// begins with its own share and goes on with those that nobody has begun, so that on a busy
  /// machine no one waits for a thread that does not get a core. Allocates nothing.
  template <class Body>
  void run(const Body& body) {
    run({[](const void* context, int share) { (*static_cast<const Body*>(context))(share); },
         &body});
  }

 private:
  struct Task {
    void (*call)(const void* context, int share);
    const void* context;
  };

  void run(Task task);
  void serve(int member);
  /// Runs what is left to begin of a round, the own share first.
  void work(int member, std::uint32_t round);

  int size_;
  Task task_{};
  std::atomic<std::uint32_t> round_ = 0;
  std::atomic<std::uint32_t> unfinished_ = 0;         ///< shares
  std::vector<std::atomic<std::uint32_t>> begun_in_;  ///< last round of every share
  std::atomic<bool> ends_ = false;
  std::vector<std::thread> threads_;
};

/// Threads for a mesh: at most so many (0: one per core), but fewer for a small mesh.
int threads_for(int cells, int most);

}  // namespace engine
