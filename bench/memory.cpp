// Measures the memory bandwidth that streams reach: bench_memory THREADS. Prints GB/s, the best of
// five passes of a = a/2 + b over arrays far larger than any cache.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

void stream(std::vector<double>& a, const std::vector<double>& b, std::size_t begin,
            std::size_t end) {
  for (std::size_t i = begin; i < end; ++i) a[i] = 0.5 * a[i] + b[i];
}

}  // namespace

int main(int argc, char** argv) {
  const int threads = argc == 2 ? std::atoi(argv[1]) : 0;
  if (threads < 1) {
    std::cerr << "usage: bench_memory THREADS\n";
    return 2;
  }
  const std::size_t count = 40'000'000;
  std::vector<double> a(count, 1.0), b(count, 2.0);
  double best = 1e30;
  for (int pass = 0; pass < 5; ++pass) {
    const auto start = Clock::now();
    std::vector<std::thread> team;
    for (int k = 0; k < threads; ++k) {
      const auto cut = [&](int i) {
        return count * static_cast<std::size_t>(i) / static_cast<std::size_t>(threads);
      };
      team.emplace_back([&, k, cut] { stream(a, b, cut(k), cut(k + 1)); });
    }
    for (std::thread& thread : team) thread.join();
    best = std::min(best, std::chrono::duration<double>(Clock::now() - start).count());
  }
  constexpr double bytes_per_value = 24.0;  // two read, one written
  std::printf("%.1f\n", bytes_per_value * count / best * 1e-9);
  return 0;
}
