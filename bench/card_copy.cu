// Measures the copies of a graphics card. Prints its name, and GB/s that a copy within its memory
// reads and writes, and that come from it into memory of the host that does not move; the best of
// ten. Exit status 77 without a card.
#include <cuda_runtime.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr std::size_t bytes = std::size_t{1} << 30;

void check(cudaError_t status) {
  if (status == cudaSuccess) return;
  std::fprintf(stderr, "card_copy: %s\n", cudaGetErrorString(status));
  std::exit(1);
}

/// Shortest time of a copy, s.
double time_of_copy(void* to, const void* from, cudaMemcpyKind kind) {
  cudaEvent_t begin, end;
  check(cudaEventCreate(&begin));
  check(cudaEventCreate(&end));
  float best = 1e30F;
  for (int pass = 0; pass < 10; ++pass) {
    check(cudaEventRecord(begin));
    check(cudaMemcpyAsync(to, from, bytes, kind));
    check(cudaEventRecord(end));
    check(cudaEventSynchronize(end));
    float milliseconds = 0.0F;
    check(cudaEventElapsedTime(&milliseconds, begin, end));
    best = std::min(best, milliseconds);
  }
  return 1e-3 * best;
}

}  // namespace

int main() {
  int cards = 0;
  if (cudaGetDeviceCount(&cards) != cudaSuccess || cards == 0) {
    std::puts("no card");
    return 77;
  }
  cudaDeviceProp card;
  check(cudaGetDeviceProperties(&card, 0));
  void *a = nullptr, *b = nullptr, *host = nullptr;
  check(cudaMalloc(&a, bytes));
  check(cudaMalloc(&b, bytes));
  check(cudaMallocHost(&host, bytes));
  const double within = 2e-9 * bytes / time_of_copy(b, a, cudaMemcpyDeviceToDevice);
  const double home = 1e-9 * bytes / time_of_copy(host, a, cudaMemcpyDeviceToHost);
  std::printf("%s\n%.1f\n%.1f\n", card.name, within, home);
  return 0;
}
