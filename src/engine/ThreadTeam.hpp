// Threads that run the same loop body over shares of a range, again and again.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

namespace engine {

class ThreadTeam {
 public:
  /// A team of `size` threads, the calling one included.
  explicit ThreadTeam(int size);
  ~ThreadTeam();
  ThreadTeam(const ThreadTeam&) = delete;
  ThreadTeam& operator=(const ThreadTeam&) = delete;

  int size() const { return size_; }
  /// Calls body(member) on every member, 0 being the calling thread; returns when all are done.
  /// Allocates nothing.
  template <class Body>
  void run(const Body& body) {
    run({[](const void* context, int member) { (*static_cast<const Body*>(context))(member); },
         &body});
  }

 private:
  struct Task {
    void (*call)(const void* context, int member);
    const void* context;
  };

  void run(Task task);
  void serve(int member);

  int size_;
  Task task_{};
  std::atomic<std::uint32_t> round_ = 0;
  std::atomic<std::uint32_t> working_ = 0;
  std::atomic<bool> ends_ = false;
  std::vector<std::thread> threads_;
};

/// Threads for a mesh: OMP_NUM_THREADS, or every core, but fewer for a small mesh.
int threads_for(int cells);

}  // namespace engine
